#pragma once

#include <cstdint>

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

}  // namespace moktexture
