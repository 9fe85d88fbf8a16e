#pragma once

#include <array>
#include <cstdint>

#include "moktc/block/moktc_block.h"
#include "moktc/decode/cell_lanes.h"

/// @file
/// The interpolation weights of a cell's rows as the blend needs them: for each pixel pair a vector with the pixel's weight in
/// all of its four lanes.
///
/// 4 bpp: a row of a cell takes two pixels, 4 index bits, from the left block and two from the right. A table of 16 entries per
/// mode turns 4 bits into a ready vector of weights and a mask for punch-through pixels.
///
/// 2 bpp: a row of a block is one 64-bit word with a byte per pixel. Three such rows around a cell's row give the means of all
/// odd pixels at once:
///
///     columns of a block pair     0 1 2 3 4 5 6 7 | 0 1 2 3 4 5 6 7        left block | right block
///     the cell's row                      x x x x   x x x x                here = columns 4 to 11
///     its left neighbours               x x x x x   x x x                  columns 3 to 10
///     its right neighbours                  x x x   x x x x x              columns 5 to 12
///
///     horizontal = left neighbours + right neighbours          vertical = row above + row below
///     mean       = (horizontal + vertical + 2) / 4,  (horizontal + 1) / 2  or  (vertical + 1) / 2,  by the pixel's own sub-mode
///     weight     = stored weight | mean     on odd pixels: interpolated blocks store 0 there, direct blocks have mean 0
///
/// A weight is 8 at most, so four of them and the rounding stay below 64 and no sum carries into the next byte.

namespace moktexture::moktc {

// 4 bpp

/// The modulation of two adjacent pixels.
struct PairModulation {
    LaneValues weights;
    LaneValues kept;  ///< mask of the blended channels that are kept: all ones, or 0 where a punch-through pixel is cleared
};

/// Rows: modulation mode. Columns: two 2-bit indices, the left pixel's in the low bits.
using PairTable = std::array<std::array<PairModulation, 16>, 2>;

template <Generation generation>
constexpr PairTable makePairTable() {
    PairTable table{};
    for (std::uint32_t mode = 0; mode < 2; ++mode) {
        for (std::uint32_t indices = 0; indices < 16; ++indices) {
            for (unsigned lane = 0; lane < 8; ++lane) {
                const std::uint32_t index = indexAt(indices, lane / 4);
                const bool isPunchThrough = mode == 1 && index == punchThroughIndex;
                // Kept (punch-through-colour-by-generation): a punch-through pixel is 0, 0, 0, 0 in the second generation, while
                // in the first only its alpha is 0. Texture filtering shows the colour under alpha 0, so each generation's
                // textures were made for their own rule.
                const bool isCleared = isPunchThrough && (generation == Generation::second || lane % 4 == 3);
                table[mode][indices].weights[lane] = indexWeights[mode][index];
                table[mode][indices].kept[lane] = isCleared ? 0 : -1;
            }
        }
    }
    return table;
}

template <Generation generation>
inline constexpr PairTable pairTable = makePairTable<generation>();

// 2 bpp

/// The weights of 8 pixels, the leftmost in the lowest byte.
using WeightRow = std::uint64_t;

constexpr WeightRow broadcastByte(std::uint64_t byte) {
    return byte * 0x0101010101010101u;
}
inline constexpr WeightRow evenColumns = 0x00FF00FF00FF00FFu;

/// Weights of a row of a direct block by 8 bits of its modulation word, one bit per pixel.
inline constexpr std::array<WeightRow, 256> directRows = [] {
    std::array<WeightRow, 256> rows{};
    for (std::uint32_t bits = 0; bits < 256; ++bits) {
        for (unsigned x = 0; x < 8; ++x)
            rows[bits] |= WeightRow{(bits >> x & 1) * 8} << 8 * x;
    }
    return rows;
}();

/// Weights of an even row of an interpolated block by 8 bits of samples, two bits for each even column.
inline constexpr std::array<WeightRow, 256> sampleRows = [] {
    std::array<WeightRow, 256> rows{};
    for (std::uint32_t samples = 0; samples < 256; ++samples) {
        for (unsigned sample = 0; sample < 4; ++sample)
            rows[samples] |= WeightRow{indexWeights[0][indexAt(samples, sample)]} << 16 * sample;
    }
    return rows;
}();

/// A block's stored weights, 0 for pixels whose weight is a mean, and a mask for each kind of mean: all ones if the block's
/// sub-mode is that one, otherwise 0.
struct BlockWeights {
    std::array<WeightRow, blockHeight> rows;
    std::uint32_t average, horizontal, vertical;
};

inline BlockWeights unpackWeights(const Block& block) {
    const SubMode subMode = subModeOf(block);
    BlockWeights weights;
    if (subMode == SubMode::direct) {
        for (unsigned y = 0; y < blockHeight; ++y)
            weights.rows[y] = directRows[block.modulation >> 8 * y & 255];
    } else {
        const std::uint32_t samples = samplesOf(block.modulation);
        for (unsigned y = 0; y < blockHeight; ++y)
            weights.rows[y] = sampleRows[samples >> 8 * y & 255] << (y % 2 == 0 ? 0 : 8);
    }
    const auto maskFor = [subMode](SubMode wanted) { return subMode == wanted ? ~0u : 0u; };
    weights.average = maskFor(SubMode::average);
    weights.horizontal = maskFor(SubMode::horizontal);
    weights.vertical = maskFor(SubMode::vertical);
    return weights;
}

/// Eight columns of a block pair, from `column` of the left block on; 1 to 7.
constexpr WeightRow extractAcrossBlocks(WeightRow left, WeightRow right, unsigned column) {
    return left >> 8 * column | right << (64 - 8 * column);
}

/// A row of weights of the left and of the right block.
using RowPair = std::array<WeightRow, 2>;

/// A cell's row and the rows above and below it.
struct NeighbourRows {
    RowPair above, here, below;
};

/// Weights of a cell's row dy. `left` and `right` are the blocks that the row lies in.
inline WeightRow resolveMeans(const NeighbourRows& rows, const BlockWeights& left, const BlockWeights& right, unsigned dy) {
    const auto columnsFrom = [](const RowPair& row, unsigned column) { return extractAcrossBlocks(row[0], row[1], column); };
    const auto bothHalves = [](std::uint32_t low, std::uint32_t high) { return low | WeightRow{high} << 32; };
    const WeightRow horizontalSum = columnsFrom(rows.here, 3) + columnsFrom(rows.here, 5);
    const WeightRow verticalSum = columnsFrom(rows.above, 4) + columnsFrom(rows.below, 4);
    // After a shift, bits that came from the next byte are masked off.
    const WeightRow means =
        (((horizontalSum + verticalSum + broadcastByte(2)) >> 2 & broadcastByte(63)) & bothHalves(left.average, right.average)) |
        (((horizontalSum + broadcastByte(1)) >> 1 & broadcastByte(127)) & bothHalves(left.horizontal, right.horizontal)) |
        (((verticalSum + broadcastByte(1)) >> 1 & broadcastByte(127)) & bothHalves(left.vertical, right.vertical));
    const WeightRow oddPixels = dy % 2 == 0 ? ~evenColumns : evenColumns;
    return columnsFrom(rows.here, 4) | (means & oddPixels);
}

/// Spreads a row's weights to the lanes of its four pixel pairs.
inline void spreadWeights(WeightRow row, Lanes (&pairs)[4]) {
    using Bytes = std::uint8_t __attribute__((vector_size(16)));
    using Words = std::int32_t __attribute__((vector_size(16)));
    using Halves = std::uint64_t __attribute__((vector_size(16)));
    const Bytes bytes = reinterpret_cast<Bytes>(Halves{row, 0});
    // One weight per lane, then each twice: a 32-bit word per pixel, which fills the pixel's four lanes.
    const Lanes single =
        reinterpret_cast<Lanes>(__builtin_shufflevector(bytes, Bytes{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    const Words low = reinterpret_cast<Words>(__builtin_shufflevector(single, single, 0, 0, 1, 1, 2, 2, 3, 3));
    const Words high = reinterpret_cast<Words>(__builtin_shufflevector(single, single, 4, 4, 5, 5, 6, 6, 7, 7));
    pairs[0] = reinterpret_cast<Lanes>(__builtin_shufflevector(low, low, 0, 0, 1, 1));
    pairs[1] = reinterpret_cast<Lanes>(__builtin_shufflevector(low, low, 2, 2, 3, 3));
    pairs[2] = reinterpret_cast<Lanes>(__builtin_shufflevector(high, high, 0, 0, 1, 1));
    pairs[3] = reinterpret_cast<Lanes>(__builtin_shufflevector(high, high, 2, 2, 3, 3));
}

}  // namespace moktexture::moktc
