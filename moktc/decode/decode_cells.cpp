#include "moktc/decode/decode_cells.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "moktc/block/block_order.h"
#include "moktc/decode/cell_pixels.h"

// Decoding by cells
//
// A pixel is interpolated between the four blocks whose centres surround it. So the level is not walked block by block but cell
// by cell: a cell has the size of a block and lies between the centres of four blocks, all its pixels depend on the same four
// blocks, and the bilinear weights run over it from 0 on. Cell (x, y) has block (x, y) at its lower right:
//
//     +-------+-------+
//     | P     | Q     |      P = block (x - 1, y - 1)    Q = block (x, y - 1)
//     |   .---|---.   |      R = block (x - 1, y)        S = block (x, y)
//     +---|--cell-|---+
//     |   '---|---'   |      Columns and rows before the first are the last ones.
//     | R     | S     |
//     +-------+-------+
//
//     for each row y of the grid
//         unpack the last column's two blocks as `left`
//         for each column x
//             unpack the two blocks of column x as `right`
//             decode the cell between `left` and `right` (cell_pixels.h)
//             `left` = `right`
//
// A cell in the middle of the level is decoded straight into the image. One that wraps around an edge or reaches beyond the image
// is decoded into a small buffer, from which the pixels inside the image are copied. The time is linear in the number of blocks;
// each block is unpacked twice, once for each row of cells that it borders on.

namespace moktexture::moktc {
namespace {

/// The column and row of a cell's lower right block.
struct CellIndex {
    std::uint32_t x, y;
};

template <Rate rate>
struct Level {
    static constexpr std::uint32_t cellWidth = blockWidth(rate);

    BlockGrid blocks;
    ImageView image;

    /// Whether the cell's pixels are contiguous and inside the image.
    bool isInside(const CellIndex& cell) const {
        return cell.x != 0 && cell.y != 0 && std::uint64_t{cell.x} * cellWidth + cellWidth / 2 <= image.width &&
               std::uint64_t{cell.y} * blockHeight + blockHeight / 2 <= image.height;
    }
    /// The image's pixels under a cell that is inside.
    ImageView viewOf(const CellIndex& cell) const {
        return {{image.pixel(cell.x * cellWidth - cellWidth / 2, cell.y * blockHeight - blockHeight / 2), cellWidth, blockHeight,
                 image.rowBytes}};
    }
};

/// The coordinate of a cell's column or row `offset` in the level, whose blocks are `length` pixels long. The cell's first half
/// lies in the block before.
std::size_t wrappedCoordinate(std::uint32_t block, std::uint32_t blockCount, std::uint32_t length, std::uint32_t offset) {
    // Kept (wrap-at-whole-blocks): neighbours wrap at the level's whole blocks, not at the image's edge: beyond it in the second
    // generation, where a level of one block wraps onto itself, and before it in the first. The slow encoder's
    // footprints wrap there, and textures would decode to other pixels along all their edges.
    const std::size_t size = std::size_t{blockCount} * length;
    return (std::size_t{block} * length + size - length / 2 + offset) % size;
}

/// Copies the pixels of a cell that lie inside the image.
template <Rate rate>
void copyEdgeCell(const Level<rate>& level, const CellIndex& cell, const ImageView& cellPixels) {
    for (std::uint32_t dy = 0; dy < blockHeight; ++dy) {
        const std::size_t y = wrappedCoordinate(cell.y, level.blocks.rows(), blockHeight, dy);
        if (y >= level.image.height) continue;
        for (std::uint32_t dx = 0; dx < level.cellWidth; ++dx) {
            const std::size_t x = wrappedCoordinate(cell.x, level.blocks.columns(), level.cellWidth, dx);
            if (x >= level.image.width) continue;
            std::uint8_t* const target = level.image.pixel(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
            std::memcpy(target, cellPixels.pixel(dx, dy), bytesPerRGBA8Pixel);
        }
    }
}

template <BlockVariant variant>
void decodeCellRow(const Level<variant.rate>& level, std::uint32_t y) {
    constexpr Rate rate = variant.rate;
    const BlockGrid& blocks = level.blocks;
    const std::uint64_t above = blocks.rowOffset(y == 0 ? blocks.rows() - 1 : y - 1), here = blocks.rowOffset(y);
    const auto column = [&](std::uint32_t x) {
        const std::uint64_t offset = blocks.columnOffset(x);
        return BlockColumn<rate>{unpackBlock<variant>(blocks.at(above + offset)), unpackBlock<variant>(blocks.at(here + offset))};
    };
    std::array<BlockColumn<rate>, 2> columns = {column(0), column(blocks.columns() - 1)};
    for (std::uint32_t x = 0; x < blocks.columns(); ++x) {
        BlockColumn<rate>& right = columns[x % 2];
        const BlockColumn<rate>& left = columns[1 - x % 2];
        if (x != 0) right = column(x);
        if (const CellIndex cell = {x, y}; level.isInside(cell)) {
            decodeCell<variant>({left, right}, level.viewOf(cell));
        } else {
            std::array<std::uint8_t, blockWidth(rate) * blockHeight * bytesPerRGBA8Pixel> buffer;
            const ImageView pixels = packedImage(buffer.data(), blockWidth(rate), blockHeight);
            decodeCell<variant>({left, right}, pixels);
            copyEdgeCell(level, cell, pixels);
        }
    }
}

/// Zeroes the pixels to the right of the grid and below it.
void clearBeyond(const ImageView& image, std::size_t gridWidth, std::size_t gridHeight) {
    for (std::uint32_t y = 0; y < image.height; ++y) {
        const std::size_t first = y < gridHeight ? std::min<std::size_t>(gridWidth, image.width) : 0;
        std::memset(image.row(y) + first * bytesPerRGBA8Pixel, 0, (image.width - first) * bytesPerRGBA8Pixel);
    }
}

/// Number of blocks along a side: only whole ones, but at least two, in the first generation; all that the side touches in the
/// second.
std::uint32_t blocksAlong(std::uint32_t size, std::uint32_t length, Generation generation) {
    // Kept (first-generation-drops-partial-blocks): first-generation levels with sides that are not multiples of the block lose
    // the pixels beyond the last whole block, and neighbours wrap there. A .mok file of such a level would load with other pixels
    // along all its edges if partial blocks were decoded.
    return generation == Generation::second ? size / length + (size % length != 0 ? 1 : 0) : std::max(size / length, 2u);
}

template <BlockVariant variant>
void decodeLevel(const std::uint8_t* blocks, const ImageView& image) {
    const std::uint32_t columns = blocksAlong(image.width, blockWidth(variant.rate), variant.generation);
    const std::uint32_t rows = blocksAlong(image.height, blockHeight, variant.generation);
    const std::span data(blocks, levelBlockCount(image.width, image.height, variant) * bytesPerBlock);
    const Level<variant.rate> level = {BlockGrid(data, columns, rows, variant.isSecondGeneration()), image};
    for (std::uint32_t y = 0; y < rows; ++y)
        decodeCellRow<variant>(level, y);
    clearBeyond(image, std::size_t{columns} * blockWidth(variant.rate), std::size_t{rows} * blockHeight);
}

}  // namespace

void decodeCells(const std::uint8_t* blocks, BlockVariant variant, const ImageView& image) {
    if (image.width == 0 || image.height == 0) return;
    const auto decode = [&]<Rate rate>() {
        variant.isSecondGeneration() ? decodeLevel<BlockVariant{rate, Generation::second}>(blocks, image)
                                     : decodeLevel<BlockVariant{rate, Generation::first}>(blocks, image);
    };
    variant.is2bpp() ? decode.operator()<Rate::twoBpp>() : decode.operator()<Rate::fourBpp>();
}

}  // namespace moktexture::moktc
