#pragma once

#include <cstdint>

namespace moktexture {

/// A float of 5 exponent bits with bias 15, laid out from bit 0 up: mantissa, exponent, sign if the format has one.
struct SmallFloat {
    unsigned int mantissaBits;
    bool hasSign;
};
inline constexpr unsigned int smallFloatExponentBits = 5;
inline constexpr SmallFloat smallFloat16{10, true};
inline constexpr SmallFloat smallFloat11{6, false};
inline constexpr SmallFloat smallFloat10{5, false};

/// The value of a field; bits above the format's are ignored. There are no denormals, infinities or NaNs.
float floatFromSmallFloat(std::uint32_t field, SmallFloat format);

/// The field for a value, with a truncated mantissa. No range is handled: exponents and signs that the format has no room for lie
/// in the bits above it.
std::uint32_t smallFloatFromFloat(float value, SmallFloat format);

}  // namespace moktexture
