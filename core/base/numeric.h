#pragma once

#include <cstdint>
#include <limits>

/// @file
/// Rules for numbers that every module shares.

namespace moktexture {

/// The smallest multiple of `step` that is not below `value`; `value + step` must fit the type.
template <class Integer>
constexpr Integer roundUp(Integer value, Integer step) {
    return (value + step - 1) / step * step;
}

/// Truncates toward zero through 64 bits; callers keep the low bits that they need, of negative values too. NaN and values that
/// 64 bits cannot hold give 0: a float that large has no low bits.
inline std::int64_t truncateToInteger(float value) {
    constexpr float limit = 9223372036854775808.0f;
    return value > -limit && value < limit ? static_cast<std::int64_t>(value) : 0;
}

/// The value, or for any NaN the quiet NaN without sign and payload. A computed float is stored through this: which operand's NaN
/// an addition keeps is the compiler's choice, so that the stored bits would depend on the build.
inline float canonicalNaN(float value) {
    return value == value ? value : std::numeric_limits<float>::quiet_NaN();
}

/// Shares of red, green and blue in the luminance of a pixel.
inline constexpr float luminanceWeights[3] = {0.2126f, 0.7152f, 0.0722f};

}  // namespace moktexture
