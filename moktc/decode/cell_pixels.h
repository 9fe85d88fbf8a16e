#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "moktc/block/corner_palette.h"
#include "moktc/block/moktc_block.h"
#include "moktc/decode/cell_lanes.h"
#include "moktc/decode/pair_modulation.h"
#include "moktc/decode/weight_rows.h"

/// @file
/// The pixels of one cell from the four blocks around it, for the fast decoder.

namespace moktexture::moktc {

/// A block as its cells need it: the samples, and the modulation as stored (4 bpp) or by rows (2 bpp).
template <bool is2bpp>
struct UnpackedBlock;

template <>
struct UnpackedBlock<false> {
    Lanes samples;
    std::uint32_t indices;
    std::uint32_t mode;
    bool isFlat;
};

template <>
struct UnpackedBlock<true> {
    Lanes samples;
    BlockWeights weights;
    bool isFlat;
};

template <bool is2bpp, bool secondGeneration>
UnpackedBlock<is2bpp> unpackBlock(const Block& block) {
    UnpackedBlock<is2bpp> unpacked;
    ColourPair pair;
    unpacked.isFlat = UnpackColours(block.colours, secondGeneration, pair);
    unpacked.samples = lanesOf(pair);
    if constexpr (is2bpp) {
        unpacked.weights = unpackWeights(block);
    } else {
        unpacked.indices = block.modulation;
        unpacked.mode = block.colours & modeBit;
    }
    return unpacked;
}

/// The upper and the lower block of a column of the cell.
template <bool is2bpp>
using BlockColumn = std::array<UnpackedBlock<is2bpp>, 2>;

/// The cell's pixels go to rows of `stride` bytes from `pixels` on.
struct CellTarget {
    std::uint8_t* pixels;
    std::size_t stride;
};

/// A row's pairs of pixels.
template <bool is2bpp>
inline constexpr std::size_t pairsPerRow = is2bpp ? 4 : 2;

/// What the modulation does to each pair of a row. At 4 bpp `kept` clears punch-through pixels.
template <bool is2bpp>
struct RowModulation {
    Lanes weights[pairsPerRow<is2bpp>];
    Lanes kept[2];
};

inline constexpr PairTable firstPairTable = makePairTable<false>();
inline constexpr PairTable secondPairTable = makePairTable<true>();

/// The two indices of half a row: of the left block's right half, or of the right block's left half.
inline std::uint32_t halfRowIndices(const UnpackedBlock<false>& block, unsigned dy, unsigned side) {
    return block.indices >> (8 * ((dy + 2) % 4) + (side == 0 ? 4 : 0)) & 15;
}

template <bool secondGeneration, bool isFlat>
void findModulation(const BlockColumn<false>& left, const BlockColumn<false>& right, unsigned dy, RowModulation<false>& row) {
    const PairTable& table = secondGeneration ? secondPairTable : firstPairTable;
    const UnpackedBlock<false>* const own[] = {&left[dy / 2], &right[dy / 2]};
    for (unsigned side = 0; side < 2; ++side) {
        const PairModulation& pair = table[isFlat ? 0 : own[side]->mode][halfRowIndices(*own[side], dy, side)];
        row.weights[side] = loadLanes(pair.weights);
        row.kept[side] = loadLanes(pair.kept);
    }
}

template <bool secondGeneration, bool isFlat>
void findModulation(const BlockColumn<true>& left, const BlockColumn<true>& right, unsigned dy, RowModulation<true>& row) {
    const auto rowsAt = [&](unsigned gridRow) {
        return std::array{left[gridRow / 4].weights.rows[gridRow % 4], right[gridRow / 4].weights.rows[gridRow % 4]};
    };
    const NeighbourRows rows = {rowsAt(dy + 1), rowsAt(dy + 2), rowsAt(dy + 3)};
    spreadWeights(resolveMeans(rows, left[dy / 2].weights, right[dy / 2].weights, dy), row.weights);
}

/// Blends and stores a row. `a` and `b` are the 8-bit values of its pairs.
template <bool is2bpp>
void storeRow(const Lanes* a, const Lanes* b, const RowModulation<is2bpp>& modulation, std::uint8_t* target) {
    Lanes pixels[pairsPerRow<is2bpp>];
    for (std::size_t pair = 0; pair < pairsPerRow<is2bpp>; ++pair) {
        pixels[pair] = blendLanes(a[pair], b[pair], modulation.weights[pair]);
        if constexpr (!is2bpp) pixels[pair] &= modulation.kept[pair];
    }
    for (std::size_t pair = 0; pair < pairsPerRow<is2bpp>; pair += 2)
        storePixels(target + pair * 2 * bytesPerPixel, pixels[pair], pixels[pair + 1]);
}

/// An ordinary cell: both colours are upscaled.
template <bool is2bpp, bool secondGeneration>
void decodeUpscaledCell(const BlockColumn<is2bpp>& left, const BlockColumn<is2bpp>& right, const CellTarget& target) {
    constexpr std::int16_t width = blockWidth(is2bpp);
    Lanes leftSum = left[0].samples * std::int16_t{blockHeight}, rightSum = right[0].samples * std::int16_t{blockHeight};
    for (unsigned dy = 0; dy < blockHeight; ++dy) {
        const Lanes first = leftSum * width, step = rightSum - leftSum;
        Lanes sumA = broadcastLow(first) + shiftLowToHigh(step), sumB = broadcastHigh(first) + keepHigh(step);
        const Lanes stepA = broadcastLow(step) * std::int16_t{2}, stepB = broadcastHigh(step) * std::int16_t{2};
        Lanes a[pairsPerRow<is2bpp>], b[pairsPerRow<is2bpp>];
        for (std::size_t pair = 0; pair < pairsPerRow<is2bpp>; ++pair, sumA += stepA, sumB += stepB) {
            a[pair] = sumsTo8Bits<is2bpp>(sumA);
            b[pair] = sumsTo8Bits<is2bpp>(sumB);
        }
        RowModulation<is2bpp> modulation;
        findModulation<secondGeneration, false>(left, right, dy, modulation);
        storeRow<is2bpp>(a, b, modulation, target.pixels + dy * target.stride);
        leftSum += left[1].samples - left[0].samples;
        rightSum += right[1].samples - right[0].samples;
    }
}

/// The expanded samples of four corners, as RGBA8 colours.
inline CornerPalette packPalette(const Corners<Lanes>& corners) {
    CornerPalette palette;
    auto* bytes = reinterpret_cast<std::uint8_t*>(palette.data());
    storePixels(bytes, corners[paletteCorners[0]], corners[paletteCorners[1]]);
    storePixels(bytes + sizeof palette / 2, corners[paletteCorners[2]], corners[paletteCorners[3]]);
    return palette;
}

/// Overwrites the pixels of blocks with the mode bit by colours of the corner palette, but for the one at the corner.
inline void drawPalettePixels(const BlockColumn<false>& left, const BlockColumn<false>& right, const CornerPalette& palette,
                              const CellTarget& target) {
    for (unsigned pixel = 1; pixel < 16; ++pixel) {
        const unsigned dx = pixel % 4, dy = pixel / 4;
        const UnpackedBlock<false>& own = (dx < 2 ? left : right)[dy / 2];
        if (own.mode == 0) continue;
        const std::uint32_t rgba = CornerPaletteColour(palette, dx, dy, indexAt(halfRowIndices(own, dy, dx / 2), dx % 2));
        std::memcpy(target.pixels + dy * target.stride + dx * bytesPerPixel, &rgba, bytesPerPixel);
    }
}

/// A flat cell of the second generation: each quarter has its own block's samples, or pixels from the corner palette.
template <bool is2bpp>
void decodeFlatCell(const BlockColumn<is2bpp>& left, const BlockColumn<is2bpp>& right, const CellTarget& target) {
    const Corners<Lanes> corners = {samplesTo8Bits(left[0].samples), samplesTo8Bits(right[0].samples),
                                    samplesTo8Bits(left[1].samples), samplesTo8Bits(right[1].samples)};
    for (unsigned dy = 0; dy < blockHeight; ++dy) {
        Lanes a[pairsPerRow<is2bpp>], b[pairsPerRow<is2bpp>];
        for (std::size_t pair = 0; pair < pairsPerRow<is2bpp>; ++pair) {
            const Lanes own = corners[dy / 2 * 2 + (pair < pairsPerRow<is2bpp> / 2 ? 0 : 1)];
            a[pair] = broadcastLow(own);
            b[pair] = broadcastHigh(own);
        }
        RowModulation<is2bpp> modulation;
        findModulation<true, true>(left, right, dy, modulation);
        storeRow<is2bpp>(a, b, modulation, target.pixels + dy * target.stride);
    }
    if constexpr (!is2bpp) {
        if ((left[0].mode | left[1].mode | right[0].mode | right[1].mode) != 0)
            drawPalettePixels(left, right, packPalette(corners), target);
    }
}

/// The cell between the centres of the four blocks; the upper left one decides whether it is flat.
template <bool is2bpp, bool secondGeneration>
void decodeCell(const BlockColumn<is2bpp>& left, const BlockColumn<is2bpp>& right, const CellTarget& target) {
    if (secondGeneration && left[0].isFlat) {
        decodeFlatCell<is2bpp>(left, right, target);
    } else {
        decodeUpscaledCell<is2bpp, secondGeneration>(left, right, target);
    }
}

}  // namespace moktexture::moktc
