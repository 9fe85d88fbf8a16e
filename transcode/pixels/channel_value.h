#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "core/base/numeric.h"

/// @file
/// The number forms of a channel: bit fields, integers and small floats, each to a normalised float and back. A width is the
/// channel's bit count, from 1 up.
// Kept (raw-integers-are-normalised): integer types that are not normalised are converted as normalised ones. A texture with
// eVarUByte and one with eVarUByteNorm hold the same bytes after the same conversion.

namespace moktexture {

/// `count` one-bits from bit 0 up; all 64 from 64 up.
constexpr std::uint64_t lowBits(unsigned int count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// Shifts by any count; 0 from 64 up.
constexpr std::uint64_t shiftedLeft(std::uint64_t value, unsigned int count) {
    return count >= 64 ? 0 : value << count;
}
constexpr std::uint64_t shiftedRight(std::uint64_t value, unsigned int count) {
    return count >= 64 ? 0 : value >> count;
}

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
    // Kept (negatives-read-as-magnitude): a negative value is read as sign and magnitude, over 2^c - 2 in an element and over 2^c
    // in a packed field, c being the bits of the magnitude. Signed .mok textures decode to these values.
    const std::uint64_t divisor = (std::uint64_t{1} << magnitudeBits) + static_cast<std::uint64_t>(sign) - 1;
    if (divisor == 0) return static_cast<float>(raw);
    if (sign == 0) return static_cast<float>(raw) / static_cast<float>(divisor);
    const std::int64_t magnitude = raw & static_cast<std::int64_t>(lowBits(magnitudeBits));
    return -(static_cast<float>(magnitude) / static_cast<float>(divisor));
}

// Kept (no-upper-clamp): values above 1.0 exceed the width, and 1.0 itself does from 24 bits up, so that white in a 32-bit
// channel is stored as 0. Files of 32-bit normalised layouts hold such zeros.
inline std::uint64_t floatToUnsigned(float value, unsigned int width) {
    const float positive = value > 0.0f ? value : 0.0f;
    return static_cast<std::uint64_t>(truncateToInteger(positive * unsignedScale(width) + 0.5f));
}

/// Sign and magnitude: the sign is the top bit of the width.
// Kept (negatives-scaled-by-one-more): -1.0 is scaled by one more than 1.0, and so exceeds the bits of the magnitude. The stored
// bytes of signed targets depend on it.
inline std::uint64_t floatToSigned(float value, unsigned int width) {
    const unsigned int magnitudeBits = width - 1;
    const unsigned int negative = value < 0.0f ? 1 : 0;
    const auto scale = static_cast<float>(lowBits(magnitudeBits) + negative);
    const auto magnitude = static_cast<std::uint64_t>(truncateToInteger(std::fabs(value) * scale + 0.5f));
    return magnitude | shiftedLeft(negative, magnitudeBits);
}

/// A float of 5 exponent bits with bias 15. From bit 0 up: mantissa, exponent, sign if the format has one.
struct SmallFloat {
    unsigned int mantissaBits;
    bool hasSign;
};
inline constexpr unsigned int smallFloatExponentBits = 5;
inline constexpr SmallFloat smallFloat16{10, true};
inline constexpr SmallFloat smallFloat11{6, false};
inline constexpr SmallFloat smallFloat10{5, false};

/// Bits of the mantissa of a 32-bit float.
inline constexpr unsigned int floatMantissaBits = 23;
/// Bias of a float's exponent minus bias of a small float's.
inline constexpr std::uint32_t smallFloatBiasDifference = 127 - 15;

/// The value of a field; bits above the format's are ignored. There are no denormals, infinities or NaNs.
inline float floatFromSmallFloat(std::uint32_t field, SmallFloat format) {
    constexpr std::uint32_t exponentMask = (1u << smallFloatExponentBits) - 1;
    const auto mantissaMask = static_cast<std::uint32_t>(lowBits(format.mantissaBits));
    const std::uint32_t mantissa = (field & mantissaMask) << (floatMantissaBits - format.mantissaBits);
    const std::uint32_t exponent = field >> format.mantissaBits & exponentMask;
    const std::uint32_t sign = format.hasSign ? field >> (format.mantissaBits + smallFloatExponentBits) << 31 : 0;

    // Kept (small-float-zero): exponent 0 is rebiased like any other, so that a stored zero reads as 2 to the -15. Half-float
    // textures that are converted to 32 bits hold this value for black.
    std::uint32_t exponentField = (exponent + smallFloatBiasDifference) << floatMantissaBits;
    // Kept (small-float-infinity): the 255 is at bit 0, so that an infinity or NaN reads as a tiny number. Half-float textures
    // that are converted to 32 bits hold it.
    if (exponent == exponentMask) exponentField = 255;
    return std::bit_cast<float>(sign | exponentField | mantissa);
}

/// The field for a value, with the mantissa truncated. The range is not clamped: an exponent or a sign that does not fit
/// the format is in the bits above it.
inline std::uint32_t smallFloatFromFloat(float value, SmallFloat format) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    const std::uint32_t mantissa = (bits & 0x7FFFFFu) >> (floatMantissaBits - format.mantissaBits);
    const std::uint32_t exponent = bits >> floatMantissaBits & 255;

    // Kept (small-float-range): the exponent is not clamped; one outside the range runs into the bits above the format. The bytes
    // of half-float and r11g11b10 textures depend on it.
    const std::uint32_t exponentField = exponent == 0 ? 0 : (exponent - smallFloatBiasDifference) << format.mantissaBits;
    // Kept (small-float-sign): the sign goes above the exponent in the formats without one too, and so into the next channel of a
    // packed pixel. The bytes of r11g11b10 textures with negative values depend on it.
    const std::uint32_t sign = bits >> 31 << (format.mantissaBits + smallFloatExponentBits);
    return sign | exponentField | mantissa;
}

}  // namespace moktexture
