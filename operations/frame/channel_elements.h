#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "core/base/numeric.h"
#include "texture_enums.h"

namespace moktexture {

/// A pixel of an operable texture is four elements: red, green, blue, alpha.
inline constexpr std::size_t channelsPerPixel = 4;

/// What stands for 1.0 in an element. The 32-bit one is a power of two, which the element itself cannot hold.
template <typename T>
inline constexpr float channelUnit = 1.0f;
template <>
inline constexpr float channelUnit<std::uint8_t> = 255.0f;
template <>
inline constexpr float channelUnit<std::uint16_t> = 65535.0f;
template <>
inline constexpr float channelUnit<std::uint32_t> = 4294967296.0f;

/// 32-bit elements are multiplied by this where others are divided by their unit.
inline constexpr float reciprocalOfUnit32 = 2.3283064e-10f;

/// A float as an element: truncated, low bits kept; as it stands for float elements.
template <typename T>
T elementFromFloat(float value) {
    if constexpr (std::is_same_v<T, float>) {
        return value;
    } else {
        return static_cast<T>(truncateToInteger(value));
    }
}

/// elementFromFloat() for values that are known to lie from 0 to channelUnit<T>, or not a whole unit above it: the same element,
/// by conversions that the compiler vectorises.
template <typename T>
T elementFromBounded(float value) {
    if constexpr (std::is_same_v<T, float>) {
        return value;
    } else if constexpr (sizeof(T) < sizeof(std::int32_t)) {
        return static_cast<T>(static_cast<std::int32_t>(value));
    } else {
        return static_cast<T>(static_cast<std::int64_t>(value));
    }
}

/// A computed element as it is stored: of NaN the quiet one without payload. Of two NaN operands the compiler chooses the one
/// whose payload a sum keeps, so that results would depend on the build.
template <typename T>
T withPlainNaN(T value) {
    if constexpr (std::is_same_v<T, float>) {
        return value == value ? value : std::numeric_limits<float>::quiet_NaN();
    } else {
        return value;
    }
}

/// An element of type S in the scale of element type D; for D float, from 0 to 1. The order of the factors decides the last bit.
template <typename D, typename S>
float scaledElement(S element) {
    float value = static_cast<float>(element);
    if constexpr (!std::is_same_v<D, float>) value *= channelUnit<D>;
    if constexpr (std::is_same_v<S, std::uint32_t>) {
        value *= reciprocalOfUnit32;
    } else if constexpr (!std::is_same_v<S, float>) {
        value /= channelUnit<S>;
    }
    return value;
}

/// Bit c is set if writing to the channel of that name writes element c of a pixel. 0 for names without a channel.
inline unsigned int elementsWrittenBy(EChannelName name) {
    // clang-format off
    constexpr std::uint8_t elements[] = {
        0b0000,  // eChannelNone
        0b0001,  // eChannelRed
        0b0010,  // eChannelGreen
        0b0100,  // eChannelBlue
        0b1000,  // eChannelAlpha
        0b0111,  // eChannelLuminance
        0b0111,  // eChannelIntensity
        0b1000,  // eChannelUnspecified
    };
    // clang-format on
    return name <= eChannelUnspecified ? elements[name] : 0;
}

/// Calls `write(element of a pixel, number of the entry)` for every element that the channels of the entries write, entry by
/// entry.
template <typename Write>
void forEachWrite(unsigned int count, const EChannelName* channels, Write write) {
    for (unsigned int i = 0; i < count; ++i) {
        const unsigned int written = elementsWrittenBy(channels[i]);
        for (std::size_t c = 0; c < channelsPerPixel; ++c) {
            if ((written >> c & 1) != 0) write(c, i);
        }
    }
}

}  // namespace moktexture
