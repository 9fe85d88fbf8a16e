#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "core/base/numeric.h"
#include "transcode/pixels/bit_field.h"

/// @file
/// Integer channels as normalised floats and back. A width is the channel's bit rate, from 1 up.
// Kept: integer types that are not normalised are taken as normalised, so that both kinds of a texture hold the same bits.

namespace moktexture {

/// The largest value of a width as a float: 255, 65535. From 25 bits up it is the power of two above.
inline float unsignedScale(unsigned int width) {
    return static_cast<float>(lowBits(width));
}

inline float unsignedToFloat(std::uint64_t raw, unsigned int width) {
    return static_cast<float>(raw) / unsignedScale(width);
}

/// `raw` is a sign-extended storage element, or a field of the pixel word that is not sign-extended.
inline float signedToFloat(std::int64_t raw, unsigned int width) {
    const unsigned int magnitudeBits = std::min(width - 1, 63u);
    const std::int64_t sign = raw >> magnitudeBits;
    // Kept: negatives count as sign and magnitude, over 2^c - 2 in an element and over 2^c in a packed field.
    const std::uint64_t divisor = (std::uint64_t{1} << magnitudeBits) + static_cast<std::uint64_t>(sign) - 1;
    if (divisor == 0) return static_cast<float>(raw);
    if (sign == 0) return static_cast<float>(raw) / static_cast<float>(divisor);
    const std::int64_t magnitude = raw & static_cast<std::int64_t>(lowBits(magnitudeBits));
    return -(static_cast<float>(magnitude) / static_cast<float>(divisor));
}

// Kept: there is no upper clamp; values above 1.0 exceed the width, and 1.0 itself does from 24 bits up.
inline std::uint64_t floatToUnsigned(float value, unsigned int width) {
    const float positive = value > 0.0f ? value : 0.0f;
    return static_cast<std::uint64_t>(truncateToInteger(positive * unsignedScale(width) + 0.5f));
}

/// Sign and magnitude: the sign lies in the top bit of the width.
// Kept: negatives are scaled by one more than positives, so that -1.0 exceeds the magnitude's bits.
inline std::uint64_t floatToSigned(float value, unsigned int width) {
    const unsigned int magnitudeBits = width - 1;
    const unsigned int negative = value < 0.0f ? 1 : 0;
    const auto scale = static_cast<float>(lowBits(magnitudeBits) + negative);
    const auto magnitude = static_cast<std::uint64_t>(truncateToInteger(std::fabs(value) * scale + 0.5f));
    return magnitude | shiftedLeft(negative, magnitudeBits);
}

/// The result of a sum of channels: which of several NaNs an addition keeps is the compiler's choice, so that all become one.
inline float withOneNaN(float sum) {
    return std::isnan(sum) ? std::numeric_limits<float>::quiet_NaN() : sum;
}

}  // namespace moktexture
