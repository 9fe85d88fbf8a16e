#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "core/base/numeric.h"
#include "operations/frame/operation_frame.h"
#include "texture_enums.h"

/// @file
/// The arithmetic of channel elements: unsigned integers of 8, 16 and 32 bits, where the largest value represents 1.0, and
/// floats.

namespace moktexture {

/// The value that represents 1.0 in an element. That of 32-bit elements is 2 to the 32, one above what the element can hold.
template <typename T>
inline constexpr float channelUnit = 1.0f;
template <>
inline constexpr float channelUnit<std::uint8_t> = 255.0f;
template <>
inline constexpr float channelUnit<std::uint16_t> = 65535.0f;
template <>
inline constexpr float channelUnit<std::uint32_t> = 4294967296.0f;

/// 32-bit elements are multiplied by this where the others are divided by their unit.
inline constexpr float reciprocalOfUnit32 = 2.3283064e-10f;

/// A float as an element: truncated toward zero with the low bits kept; unchanged for float elements.
template <typename T>
T elementFromFloat(float value) {
    if constexpr (std::is_same_v<T, float>) {
        return value;
    } else {
        return static_cast<T>(truncateToInteger(value));
    }
}

/// elementFromFloat() for a value from 0 to below channelUnit<T> + 1: the same element, by conversions that the compiler
/// vectorises.
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

/// A computed element as it is stored: canonicalNaN() for floats, unchanged for integers.
template <typename T>
T withCanonicalNaN(T element) {
    if constexpr (std::is_same_v<T, float>) {
        return canonicalNaN(element);
    } else {
        return element;
    }
}

/// An element of type S in the scale of element type D, which is 0 to 1 for floats. Multiplying by D's unit before dividing by
/// S's decides the last bit of the result.
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

/// Mask of the elements of a pixel that a destination channel writes: bit 0 red to bit 3 alpha. 0 for names without a channel.
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

/// Calls `write(c, i)` for each entry i and each element c of a pixel that its channel writes, entry by entry.
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
