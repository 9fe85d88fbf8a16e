#pragma once

#include <cstdint>

/// @file
/// Integer rules that every module shares.

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

}  // namespace moktexture
