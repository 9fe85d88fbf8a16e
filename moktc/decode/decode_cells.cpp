#include "moktc/decode/decode_cells.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "moktc/block/block_order.h"
#include "moktc/block/moktc_block.h"
#include "moktc/decode/LevelBlocks.h"
#include "moktc/decode/cell_pixels.h"

namespace moktexture::moktc {
namespace {

struct PixelRows {
    std::uint8_t* pixels;
    std::uint32_t width, height;

    std::size_t stride() const { return width * bytesPerPixel; }
    std::uint8_t* at(std::size_t x, std::size_t y) const { return pixels + y * stride() + x * bytesPerPixel; }
};

/// The cell around the upper left corner of block (x, y). Its left and upper halves lie in the column and row of blocks before,
/// which for the first are the last.
struct CellPosition {
    std::uint32_t x, y;
};

template <bool is2bpp>
struct Frame {
    static constexpr std::uint32_t cellWidth = blockWidth(is2bpp);

    LevelBlocks blocks;
    PixelRows target;

    /// Whether the cell's pixels lie together, and inside the picture.
    bool isWhole(const CellPosition& cell) const {
        return cell.x != 0 && cell.y != 0 && std::uint64_t{cell.x} * cellWidth + cellWidth / 2 <= target.width &&
               std::uint64_t{cell.y} * blockHeight + blockHeight / 2 <= target.height;
    }
    CellTarget place(const CellPosition& cell) const {
        return {target.at(std::size_t{cell.x} * cellWidth - cellWidth / 2, std::size_t{cell.y} * blockHeight - blockHeight / 2),
                target.stride()};
    }
};

/// Coordinate in the surface of a cell's column or row `offset`: its first half lies in the block before, around the edge.
std::size_t wrappedCoordinate(std::uint32_t block, std::uint32_t blockCount, std::uint32_t length, std::uint32_t offset) {
    const std::size_t size = std::size_t{blockCount} * length;
    return (std::size_t{block} * length + size - length / 2 + offset) % size;
}

/// Stores the pixels of a cell at the edge that lie inside the picture.
template <bool is2bpp>
void storeEdgeCell(const Frame<is2bpp>& frame, const CellPosition& cell, const std::uint8_t* cellPixels) {
    constexpr std::uint32_t width = Frame<is2bpp>::cellWidth;
    for (std::uint32_t dy = 0; dy < blockHeight; ++dy) {
        const std::size_t y = wrappedCoordinate(cell.y, frame.blocks.rows(), blockHeight, dy);
        if (y >= frame.target.height) continue;
        for (std::uint32_t dx = 0; dx < width; ++dx) {
            const std::size_t x = wrappedCoordinate(cell.x, frame.blocks.columns(), width, dx);
            if (x < frame.target.width)
                std::memcpy(frame.target.at(x, y), cellPixels + (dy * width + dx) * bytesPerPixel, bytesPerPixel);
        }
    }
}

template <bool is2bpp, bool secondGeneration>
void decodeCellRow(const Frame<is2bpp>& frame, std::uint32_t y) {
    constexpr std::size_t cellStride = Frame<is2bpp>::cellWidth * bytesPerPixel;
    const LevelBlocks& blocks = frame.blocks;
    const std::uint64_t above = blocks.rowPart(y == 0 ? blocks.rows() - 1 : y - 1), here = blocks.rowPart(y);
    const auto column = [&](std::uint32_t x) {
        const std::uint64_t part = blocks.columnPart(x);
        return BlockColumn<is2bpp>{unpackBlock<is2bpp, secondGeneration>(blocks.at(above + part)),
                                   unpackBlock<is2bpp, secondGeneration>(blocks.at(here + part))};
    };
    std::array<BlockColumn<is2bpp>, 2> columns = {column(0), column(blocks.columns() - 1)};
    for (std::uint32_t x = 0; x < blocks.columns(); ++x) {
        BlockColumn<is2bpp>& right = columns[x % 2];
        const BlockColumn<is2bpp>& left = columns[1 - x % 2];
        if (x != 0) right = column(x);
        if (const CellPosition cell = {x, y}; frame.isWhole(cell)) {
            decodeCell<is2bpp, secondGeneration>(left, right, frame.place(cell));
        } else {
            std::array<std::uint8_t, cellStride * blockHeight> pixels;
            decodeCell<is2bpp, secondGeneration>(left, right, {pixels.data(), cellStride});
            storeEdgeCell(frame, cell, pixels.data());
        }
    }
}

/// Zeroes the pixels to the right of the grid and below it.
void clearBeyond(const PixelRows& target, std::size_t gridWidth, std::size_t gridHeight) {
    const std::size_t rows = std::min<std::size_t>(target.height, gridHeight);
    if (gridWidth < target.width) {
        for (std::size_t y = 0; y < rows; ++y)
            std::memset(target.at(gridWidth, y), 0, (target.width - gridWidth) * bytesPerPixel);
    }
    if (rows < target.height) std::memset(target.at(0, rows), 0, (target.height - rows) * target.stride());
}

/// Blocks along a side: whole ones, at least two, in the first generation, and all that the side touches in the second.
std::uint32_t blocksAlong(std::uint32_t size, std::uint32_t length, bool secondGeneration) {
    // Kept: the first generation drops the rest of a side; its decoders have always left those pixels out.
    return secondGeneration ? size / length + (size % length != 0 ? 1 : 0) : std::max(size / length, 2u);
}

template <bool is2bpp, bool secondGeneration>
void decodeLevel(const std::uint8_t* blocks, const PixelRows& target) {
    const std::uint32_t columns = blocksAlong(target.width, blockWidth(is2bpp), secondGeneration),
                        rows = blocksAlong(target.height, blockHeight, secondGeneration);
    const std::uint64_t count = levelBlockCount(target.width, target.height, is2bpp, secondGeneration);
    const Frame<is2bpp> frame = {LevelBlocks(blocks, count, columns, rows, secondGeneration), target};
    for (std::uint32_t y = 0; y < rows; ++y)
        decodeCellRow<is2bpp, secondGeneration>(frame, y);
    clearBeyond(target, std::size_t{columns} * blockWidth(is2bpp), std::size_t{rows} * blockHeight);
}

}  // namespace

void decodeCells(const std::uint8_t* blocks, bool is2bpp, bool secondGeneration, std::uint32_t width, std::uint32_t height,
                 std::uint8_t* pixels) {
    if (width == 0 || height == 0) return;
    const PixelRows target = {pixels, width, height};
    if (is2bpp) {
        secondGeneration ? decodeLevel<true, true>(blocks, target) : decodeLevel<true, false>(blocks, target);
    } else {
        secondGeneration ? decodeLevel<false, true>(blocks, target) : decodeLevel<false, false>(blocks, target);
    }
}

}  // namespace moktexture::moktc
