#pragma once

#include <array>
#include <cstdint>

#include "moktc/block/moktc_block.h"
#include "moktc/decode/cell_lanes.h"

/// @file
/// The modulation of a cell's rows at 2 bpp, resolved a row at a time and spread to the lanes, for the fast decoder.

namespace moktexture::moktc {

/// A row of 8 weights; the leftmost pixel's is in the lowest byte.
using WeightRow = std::uint64_t;

/// Eight times the same byte.
constexpr WeightRow broadcastByte(std::uint64_t byte) {
    return byte * 0x0101010101010101u;
}
inline constexpr WeightRow evenColumns = 0x00FF00FF00FF00FFu;

// Row: a byte of a direct modulation word, a bit a pixel.
inline constexpr std::array<WeightRow, 256> directRows = [] {
    std::array<WeightRow, 256> rows{};
    for (std::uint32_t bits = 0; bits < 256; ++bits) {
        for (unsigned x = 0; x < 8; ++x)
            rows[bits] |= WeightRow{(bits >> x & 1) * 8} << 8 * x;
    }
    return rows;
}();

// Row: a byte of samples, two bits for each even column.
inline constexpr std::array<WeightRow, 256> sampleRows = [] {
    std::array<WeightRow, 256> rows{};
    for (std::uint32_t samples = 0; samples < 256; ++samples) {
        for (unsigned sample = 0; sample < 4; ++sample)
            rows[samples] |= WeightRow{indexWeights[0][indexAt(samples, sample)]} << 16 * sample;
    }
    return rows;
}();

/// A block's stored weights, 0 where the sub-mode has none, and for each kind of mean all ones if the sub-mode asks for it.
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
    const auto onesFor = [subMode](SubMode wanted) { return subMode == wanted ? ~0u : 0u; };
    weights.average = onesFor(SubMode::average);
    weights.horizontal = onesFor(SubMode::horizontal);
    weights.vertical = onesFor(SubMode::vertical);
    return weights;
}

/// Two neighbouring blocks' weights in the columns from `column` of the left one on.
constexpr WeightRow extractAcrossRows(WeightRow left, WeightRow right, unsigned column) {
    return left >> 8 * column | right << (64 - 8 * column);
}

/// All weights of a cell's row. `above`, `here` and `below` are the rows around it of the blocks to the left (first) and right.
struct NeighbourRows {
    std::array<WeightRow, 2> above, here, below;
};

/// Weights of a cell's row dy. `left` and `right` are the blocks that hold the row.
inline WeightRow resolveMeans(const NeighbourRows& rows, const BlockWeights& left, const BlockWeights& right, unsigned dy) {
    const WeightRow here = extractAcrossRows(rows.here[0], rows.here[1], 4);
    const auto bothHalves = [](std::uint32_t low, std::uint32_t high) { return low | WeightRow{high} << 32; };
    const WeightRow sideways =
        extractAcrossRows(rows.here[0], rows.here[1], 3) + extractAcrossRows(rows.here[0], rows.here[1], 5);
    const WeightRow upright =
        extractAcrossRows(rows.above[0], rows.above[1], 4) + extractAcrossRows(rows.below[0], rows.below[1], 4);
    // Weights are 8 at most, so no sum leaves its byte.
    const WeightRow means =
        (((sideways + upright + broadcastByte(2)) >> 2 & broadcastByte(63)) & bothHalves(left.average, right.average)) |
        (((sideways + broadcastByte(1)) >> 1 & broadcastByte(127)) & bothHalves(left.horizontal, right.horizontal)) |
        (((upright + broadcastByte(1)) >> 1 & broadcastByte(127)) & bothHalves(left.vertical, right.vertical));
    // Pixels of direct blocks have no mean and keep their own; those of interpolated blocks have none of their own.
    const WeightRow oddPixels = dy % 2 == 0 ? ~evenColumns : evenColumns;
    return here | (means & oddPixels);
}

/// A row's weights as four pairs of pixels.
inline void spreadWeights(WeightRow row, Lanes (&pairs)[4]) {
    const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi64_si128(static_cast<std::int64_t>(row)), _mm_setzero_si128());
    const __m128i low = _mm_unpacklo_epi16(words, words), high = _mm_unpackhi_epi16(words, words);
    pairs[0] = asLanes(_mm_unpacklo_epi32(low, low));
    pairs[1] = asLanes(_mm_unpackhi_epi32(low, low));
    pairs[2] = asLanes(_mm_unpacklo_epi32(high, high));
    pairs[3] = asLanes(_mm_unpackhi_epi32(high, high));
}

}  // namespace moktexture::moktc
