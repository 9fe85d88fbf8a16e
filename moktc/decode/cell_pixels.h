#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/base/image_view.h"
#include "moktc/block/block_variant.h"
#include "moktc/block/moktc_block.h"
#include "moktc/decode/cell_lanes.h"
#include "moktc/decode/cell_modulation.h"

/// @file
/// The pixels of one cell from the four blocks around it.
///
/// Bilinear interpolation needs no multiplication per pixel. With corners P Q / R S and a cell of `width` by 4 pixels the sum at
/// column dx of row dy is
///
///     left(dy)  = (4 - dy) * P + dy * R          right(dy) = (4 - dy) * Q + dy * S
///     V(dx, dy) = (width - dx) * left + dx * right
///
/// so `left` and `right` grow by R - P and S - Q from row to row, and V grows by right - left from column to column. Each step is
/// one addition of vectors for two adjacent pixels at once.

namespace moktexture::moktc {

/// A block as its cells need it: its colours, and its modulation as stored (4 bpp) or by rows (2 bpp).
template <Rate rate>
struct UnpackedBlock;

template <>
struct UnpackedBlock<Rate::fourBpp> {
    Lanes colours;
    std::uint32_t indices;
    std::uint32_t mode;
    bool isFlat;
};

template <>
struct UnpackedBlock<Rate::twoBpp> {
    Lanes colours;
    BlockWeights weights;
    bool isFlat;
};

template <BlockVariant variant>
UnpackedBlock<variant.rate> unpackBlock(const Block& block) {
    UnpackedBlock<variant.rate> unpacked;
    ColourPair pair;
    unpacked.isFlat = UnpackColours(block.colours, variant.isSecondGeneration(), pair);
    unpacked.colours = colourLanes(pair);
    if constexpr (variant.is2bpp()) {
        unpacked.weights = unpackWeights(block);
    } else {
        unpacked.indices = block.modulation;
        unpacked.mode = block.colours & modeBit;
    }
    return unpacked;
}

/// The upper and the lower block on one side of a cell.
template <Rate rate>
using BlockColumn = std::array<UnpackedBlock<rate>, 2>;

/// The four blocks around a cell.
template <Rate rate>
struct CellBlocks {
    const BlockColumn<rate>& left;
    const BlockColumn<rate>& right;
};

template <Rate rate>
inline constexpr std::size_t pairsPerRow = blockWidth(rate) / 2;

/// The modulation of a cell's row, by pixel pair. At 4 bpp `kept` clears punch-through pixels; at 2 bpp it is unused.
template <Rate rate>
struct RowModulation {
    Lanes weights[pairsPerRow<rate>];
    Lanes kept[2];
};

/// The two indices that a block gives to a cell's row: those of its right half if it is the left block (side 0), of its left half
/// if it is the right block (side 1).
inline std::uint32_t halfRowIndices(const UnpackedBlock<Rate::fourBpp>& block, unsigned dy, unsigned side) {
    return block.indices >> (8 * ((dy + 2) % 4) + (side == 0 ? 4 : 0)) & 15;
}

// Kept (flat-cell-ignores-mode-weights): in a flat cell the mode bit changes no weight and makes no pixel punch-through; it only
// selects the corner palette. The slow encoder's blend table predicts flat cells so, and its textures would decode to other
// pixels.
template <Generation generation, bool isFlat>
void findModulation(const CellBlocks<Rate::fourBpp>& blocks, unsigned dy, RowModulation<Rate::fourBpp>& row) {
    const UnpackedBlock<Rate::fourBpp>* const own[] = {&blocks.left[dy / 2], &blocks.right[dy / 2]};
    for (unsigned side = 0; side < 2; ++side) {
        const std::uint32_t mode = isFlat ? 0 : own[side]->mode;
        const PairModulation& pair = pairTable<generation>[mode][halfRowIndices(*own[side], dy, side)];
        row.weights[side] = loadLanes(pair.weights);
        row.kept[side] = loadLanes(pair.kept);
    }
}

template <Generation generation, bool isFlat>
void findModulation(const CellBlocks<Rate::twoBpp>& blocks, unsigned dy, RowModulation<Rate::twoBpp>& row) {
    const auto rowsAt = [&](unsigned gridRow) {
        return RowPair{blocks.left[gridRow / 4].weights.rows[gridRow % 4], blocks.right[gridRow / 4].weights.rows[gridRow % 4]};
    };
    const NeighbourRows rows = {rowsAt(dy + 1), rowsAt(dy + 2), rowsAt(dy + 3)};
    spreadWeights(resolveMeans(rows, blocks.left[dy / 2].weights, blocks.right[dy / 2].weights, dy), row.weights);
}

/// Blends and stores a row. `a` and `b` are the 8-bit colours of its pixel pairs.
template <Rate rate>
void storeRow(const Lanes* a, const Lanes* b, const RowModulation<rate>& modulation, std::uint8_t* target) {
    Lanes pixels[pairsPerRow<rate>];
    for (std::size_t pair = 0; pair < pairsPerRow<rate>; ++pair) {
        pixels[pair] = blendLanes(a[pair], b[pair], modulation.weights[pair]);
        if constexpr (rate == Rate::fourBpp) pixels[pair] &= modulation.kept[pair];
    }
    for (std::size_t pair = 0; pair < pairsPerRow<rate>; pair += 2)
        storePixels(target + pair * 2 * bytesPerRGBA8Pixel, pixels[pair], pixels[pair + 1]);
}

/// An ordinary cell: both colours are interpolated between the four blocks.
template <BlockVariant variant>
void decodeInterpolatedCell(const CellBlocks<variant.rate>& blocks, const ImageView& cell) {
    constexpr Rate rate = variant.rate;
    constexpr std::int16_t width = blockWidth(rate), height = blockHeight;
    const auto& [left, right] = blocks;
    Lanes leftSum = left[0].colours * height, rightSum = right[0].colours * height;
    for (unsigned dy = 0; dy < blockHeight; ++dy) {
        const Lanes first = leftSum * width, step = rightSum - leftSum;
        // A pixel pair starts with columns 0 and 1 and advances by two columns.
        Lanes sumA = broadcastLow(first) + shiftLowToHigh(step), sumB = broadcastHigh(first) + keepHigh(step);
        const Lanes stepA = broadcastLow(step) * std::int16_t{2}, stepB = broadcastHigh(step) * std::int16_t{2};
        Lanes a[pairsPerRow<rate>], b[pairsPerRow<rate>];
        for (std::size_t pair = 0; pair < pairsPerRow<rate>; ++pair, sumA += stepA, sumB += stepB) {
            a[pair] = sumsTo8Bits<rate>(sumA);
            b[pair] = sumsTo8Bits<rate>(sumB);
        }
        RowModulation<rate> modulation;
        findModulation<variant.generation, false>(blocks, dy, modulation);
        storeRow<rate>(a, b, modulation, cell.row(dy));
        leftSum += left[1].colours - left[0].colours;
        rightSum += right[1].colours - right[0].colours;
    }
}

/// The palette from the 8-bit colours of the four corners.
inline CornerPalette packPalette(const Corners<Lanes>& corners) {
    CornerPalette palette;
    auto* bytes = reinterpret_cast<std::uint8_t*>(palette.data());
    storePixels(bytes, corners[paletteCorners[0]], corners[paletteCorners[1]]);
    storePixels(bytes + sizeof palette / 2, corners[paletteCorners[2]], corners[paletteCorners[3]]);
    return palette;
}

/// Overwrites the pixels of blocks that have the mode bit, except the pixel at the corner, by colours of the corner palette.
inline void drawPalettePixels(const CellBlocks<Rate::fourBpp>& blocks, const CornerPalette& palette, const ImageView& cell) {
    for (unsigned pixel = 1; pixel < 16; ++pixel) {
        const unsigned dx = pixel % 4, dy = pixel / 4;
        const UnpackedBlock<Rate::fourBpp>& own = (dx < 2 ? blocks.left : blocks.right)[dy / 2];
        if (own.mode == 0) continue;
        const std::uint32_t rgba = CornerPaletteColour(palette, dx, dy, indexAt(halfRowIndices(own, dy, dx / 2), dx % 2));
        std::memcpy(cell.pixel(dx, dy), &rgba, bytesPerRGBA8Pixel);
    }
}

/// A flat cell of the second generation: each quarter blends its own block's colours, or takes colours of the corner palette.
template <Rate rate>
void decodeFlatCell(const CellBlocks<rate>& blocks, const ImageView& cell) {
    const auto& [left, right] = blocks;
    const Corners<Lanes> corners = {channelsTo8Bits(left[0].colours), channelsTo8Bits(right[0].colours),
                                    channelsTo8Bits(left[1].colours), channelsTo8Bits(right[1].colours)};
    for (unsigned dy = 0; dy < blockHeight; ++dy) {
        Lanes a[pairsPerRow<rate>], b[pairsPerRow<rate>];
        for (std::size_t pair = 0; pair < pairsPerRow<rate>; ++pair) {
            const Lanes own = corners[dy / 2 * 2 + (pair < pairsPerRow<rate> / 2 ? 0 : 1)];
            a[pair] = broadcastLow(own);
            b[pair] = broadcastHigh(own);
        }
        RowModulation<rate> modulation;
        findModulation<Generation::second, true>(blocks, dy, modulation);
        storeRow<rate>(a, b, modulation, cell.row(dy));
    }
    if constexpr (rate == Rate::fourBpp) {
        if ((left[0].mode | left[1].mode | right[0].mode | right[1].mode) != 0)
            drawPalettePixels(blocks, packPalette(corners), cell);
    }
}

template <BlockVariant variant>
void decodeCell(const CellBlocks<variant.rate>& blocks, const ImageView& cell) {
    // Kept (flat-flag-of-upper-left-block): only the upper left block's flat flag decides how a cell is decoded, also in the
    // quarters of the other three blocks. The slow encoder's blend table predicts cells so.
    if (variant.isSecondGeneration() && blocks.left[0].isFlat) {
        decodeFlatCell<variant.rate>(blocks, cell);
    } else {
        decodeInterpolatedCell<variant>(blocks, cell);
    }
}

}  // namespace moktexture::moktc
