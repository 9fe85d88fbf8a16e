#pragma once

#include <cstddef>
#include <type_traits>

#include "core/texture/subresources.h"

namespace moktexture {

/// Elements of a pixel of an operable texture: red, green, blue, alpha.
inline constexpr std::size_t channelsPerPixel = 4;

/// A pixel that is moved without being interpreted: 4, 8 or 16 bytes.
template <std::size_t Size>
struct WholePixel {
    std::byte bytes[Size];
};

/// Array elements that a pixel takes: four channels, or one WholePixel.
template <typename T>
inline constexpr std::size_t elementsPerPixel = channelsPerPixel;
template <std::size_t Size>
inline constexpr std::size_t elementsPerPixel<WholePixel<Size>> = 1;

/// The pixels of one face of one layer at one MIP level: `size.depth` slices of `size.height` rows of `size.width` pixels,
/// without gaps. T is a channel's element (const for a level that is only read) or a WholePixel. Does not own the pixels.
template <typename T>
struct LevelView {
    T* data;
    LevelSize size;

    T* row(std::size_t y, std::size_t z) const { return pixel(0, y, z); }
    T* pixel(std::size_t x, std::size_t y, std::size_t z) const {
        return data + ((z * size.height + y) * size.width + x) * elementsPerPixel<std::remove_const_t<T>>;
    }
    operator LevelView<const T>() const requires(!std::is_const_v<T>) { return {data, size}; }
};

/// A level seen as whole pixels. 32-bit integers and floats give the same type.
template <typename T>
auto wholePixels(const LevelView<T>& level) {
    using Pixel = WholePixel<channelsPerPixel * sizeof(T)>;
    using SameConstness = std::conditional_t<std::is_const_v<T>, const Pixel, Pixel>;
    return LevelView<SameConstness>{reinterpret_cast<SameConstness*>(level.data), level.size};
}

}  // namespace moktexture
