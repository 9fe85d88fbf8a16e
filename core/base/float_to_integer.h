#pragma once

#include <cstdint>

namespace moktexture {

/// Truncates toward zero through 64 bits; callers keep the low bits that they need, of negatives too. NaN gives 0, and so does
/// what 64 bits cannot hold: a float that large has no low bits.
inline std::int64_t truncateToInteger(float value) {
    constexpr float limit = 9223372036854775808.0f;
    return value > -limit && value < limit ? static_cast<std::int64_t>(value) : 0;
}

}  // namespace moktexture
