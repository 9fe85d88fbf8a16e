#pragma once

#include <cstddef>
#include <cstdint>

#include "PixelType.h"

namespace moktexture {

/// Which way a row of a format map is read: from a texture's format to the API's number, back, or both.
enum class MapDirection : std::uint8_t { getAndSet, getOnly, setOnly };

/// Whether a getter reads rows of that direction.
constexpr bool isForGetter(MapDirection direction) {
    return direction != MapDirection::setOnly;
}

/// Whether a setter reads rows of that direction.
constexpr bool isForSetter(MapDirection direction) {
    return direction != MapDirection::getOnly;
}

/// An uncompressed layout from its letters and the bits of each: `layout("rgb", 5, 6, 5)`.
template <std::size_t count, typename... Bits>
requires(sizeof...(Bits) + 1 == count && sizeof...(Bits) <= 4) consteval PixelType
    layout(const char (&letters)[count], Bits... bits) {
    std::uint8_t names[4] = {};
    for (std::size_t i = 0; i + 1 < count; ++i)
        names[i] = static_cast<std::uint8_t>(letters[i]);
    const std::uint8_t rates[4] = {static_cast<std::uint8_t>(bits)...};
    return {names[0], names[1], names[2], names[3], rates[0], rates[1], rates[2], rates[3]};
}

}  // namespace moktexture
