#pragma once

#include <array>
#include <cstdint>

namespace moktexture::amtc {

/// One way to hit a target byte with a pair of storable values.
struct SingleColourOption {
    std::uint8_t error;  ///< squared difference from the target, at most 255
    std::uint8_t a, b;   ///< expanded to 8 bits
};

/// What the options of a target aim at it: A alone, the blends at 3/8, 1/2 and 5/8 of the way from A to B, B alone, and the three
/// blends again with A and B close together.
using SingleColourRow = std::array<SingleColourOption, 8>;

/// One row a target byte.
using SingleColourTable = std::array<SingleColourRow, 256>;

/// By the bits that A and B store of a channel. Alphas are 4-bit values: of the first generation the even ones and 255, of the
/// second the even ones for A and the odd ones for B.
struct SingleColourTables {
    SingleColourTable a5b5, a4b5, a4b4, a3b4, a3b5, alpha, alpha2;
};
static_assert(sizeof(SingleColourTables) == 43008);

/// Made by the compiler, so that no thread has to wait for them or to allocate.
extern const SingleColourTables singleColourTables;

/// The alpha of an opaque target, whatever it is.
inline constexpr SingleColourRow opaqueAlphaRow = [] {
    SingleColourRow row{};
    row.fill({0, 255, 255});
    return row;
}();

}  // namespace moktexture::amtc
