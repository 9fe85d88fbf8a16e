#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "moktc/block/block_variant.h"
#include "moktc/block/moktc_block.h"

/// @file
/// Where the block at a column and row of a level's grid is stored. The first generation stores blocks in twiddled order, the
/// second in linear order, row by row.
///
/// Twiddled order is Morton order: the bits of the row and of the column are interleaved, the row's in the even positions. In a
/// grid that is not square the Morton squares follow each other along the longer side:
///
///     4 columns, 4 rows        4 columns, 2 rows
///      0  2  8 10               0  2  4  6
///      1  3  9 11               1  3  5  7
///      4  6 12 14
///      5  7 13 15

namespace moktexture::moktc {

/// Index of a block in twiddled order; (x, y) lies in the grid. If a side is not a power of two, some indices are not below
/// `blocksX * blocksY`.
std::uint64_t TwiddleIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y);

/// Index of a block in linear or in twiddled order.
std::uint64_t BlockIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y, bool linear);

/// Number of blocks stored for a level of `width * height` pixels, less than 2 to the 40. Each side is rounded up to a multiple
/// of the smallest level's, which is two blocks in the first generation and one in the second.
std::uint64_t levelBlockCount(std::uint32_t width, std::uint32_t height, BlockVariant variant);

/// Read access to the blocks of one level by column and row. A block's index is `columnOffset(x) + rowOffset(y)`, which is
/// BlockIndex() split so that a loop over a row computes each part once.
class BlockGrid {
public:
    /// `data` holds whole blocks and outlives the grid.
    BlockGrid(std::span<const std::uint8_t> data, std::uint32_t columns, std::uint32_t rows, bool linear);

    std::uint32_t columns() const { return m_columns; }
    std::uint32_t rows() const { return m_rows; }
    std::uint64_t columnOffset(std::uint32_t x) const;
    std::uint64_t rowOffset(std::uint32_t y) const;

    /// The block at an index; all zero if the index lies beyond the data.
    Block at(std::uint64_t index) const { return index < m_blockCount ? readBlock(m_data + index * bytesPerBlock) : Block{0, 0}; }

private:
    const std::uint8_t* m_data;
    std::uint64_t m_blockCount;
    std::uint32_t m_columns;
    std::uint32_t m_rows;
    bool m_isLinear;
    unsigned m_interleavedBits;  ///< bits of each coordinate that are interleaved
};

}  // namespace moktexture::moktc
