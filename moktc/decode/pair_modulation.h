#pragma once

#include <array>
#include <cstdint>

#include "moktc/block/moktc_block.h"
#include "moktc/decode/cell_lanes.h"

/// @file
/// The modulation of a cell's rows at 4 bpp in the form that the lanes take, for the fast decoder.

namespace moktexture::moktc {

/// What half a row of a block, two pixels, does to the blend of its two pixels.
struct PairModulation {
    LaneValues weights;
    LaneValues kept;  ///< all ones; zero where a punch-through pixel has nothing
};

// Row: the mode bit. Column: two indices of 2 bits, the left pixel's in the low bits.
using PairTable = std::array<std::array<PairModulation, 16>, 2>;

template <bool secondGeneration>
constexpr PairTable makePairTable() {
    PairTable table{};
    for (std::uint32_t mode = 0; mode < 2; ++mode) {
        for (std::uint32_t indices = 0; indices < 16; ++indices) {
            for (unsigned lane = 0; lane < 8; ++lane) {
                const std::uint32_t index = indexAt(indices, lane / 4);
                const bool isPunchThrough = mode == 1 && index == punchThroughIndex;
                const bool isCleared = isPunchThrough && (secondGeneration || lane % 4 == 3);
                table[mode][indices].weights[lane] = indexWeights[mode][index];
                table[mode][indices].kept[lane] = isCleared ? 0 : -1;
            }
        }
    }
    return table;
}

}  // namespace moktexture::moktc
