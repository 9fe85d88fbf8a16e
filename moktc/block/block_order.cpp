#include "moktc/block/block_order.h"

#include <algorithm>
#include <bit>

namespace moktexture::moktc {
namespace {

std::uint64_t divideRoundingUp(std::uint32_t size, std::uint32_t step) {
    return (std::uint64_t{size} + step - 1) / step;
}

/// Moves bit i to bit 2i.
constexpr std::uint64_t spreadBits(std::uint64_t value) {
    value = (value | value << 16) & 0x0000FFFF0000FFFFu;
    value = (value | value << 8) & 0x00FF00FF00FF00FFu;
    value = (value | value << 4) & 0x0F0F0F0F0F0F0F0Fu;
    value = (value | value << 2) & 0x3333333333333333u;
    return (value | value << 1) & 0x5555555555555555u;
}

std::uint64_t lowBits(std::uint32_t value, unsigned count) {
    return value & ((std::uint64_t{1} << count) - 1);
}

/// Bits of each coordinate that twiddled order interleaves: those that count the blocks of the shorter side.
unsigned interleavedBits(std::uint32_t columns, std::uint32_t rows) {
    const std::uint32_t shorter = std::min(columns, rows);
    return shorter < 2 ? 0 : static_cast<unsigned>(std::bit_width(shorter - 1));
}

}  // namespace

std::uint64_t TwiddleIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y) {
    const BlockGrid grid({}, blocksX, blocksY, false);
    return grid.columnOffset(x) + grid.rowOffset(y);
}

std::uint64_t BlockIndex(std::uint32_t blocksX, std::uint32_t blocksY, std::uint32_t x, std::uint32_t y, bool linear) {
    const BlockGrid grid({}, blocksX, blocksY, linear);
    return grid.columnOffset(x) + grid.rowOffset(y);
}

std::uint64_t levelBlockCount(std::uint32_t width, std::uint32_t height, BlockVariant variant) {
    const std::uint32_t smallestSide = variant.isSecondGeneration() ? 1 : 2;
    return divideRoundingUp(width, smallestSide * blockWidth(variant.rate)) *
           divideRoundingUp(height, smallestSide * blockHeight) * smallestSide * smallestSide;
}

// Kept (twiddled-index-beyond-grid): a grid with a side that is not a power of two is numbered by the same rule, so some indices
// lie beyond the level's data. writeBlocks() drops those blocks and decoders read zeroes for them; a .mok file of 48 by 48 pixels
// would load with its blocks exchanged if the order were compacted.
BlockGrid::BlockGrid(std::span<const std::uint8_t> data, std::uint32_t columns, std::uint32_t rows, bool linear)
    : m_data(data.data()),
      m_blockCount(data.size() / bytesPerBlock),
      m_columns(columns),
      m_rows(rows),
      m_isLinear(linear),
      m_interleavedBits(interleavedBits(columns, rows)) {}

std::uint64_t BlockGrid::columnOffset(std::uint32_t x) const {
    if (m_isLinear) return x;
    const std::uint64_t squaresBefore = m_rows < m_columns ? std::uint64_t{x} >> m_interleavedBits : 0;
    return (spreadBits(lowBits(x, m_interleavedBits)) << 1) + (squaresBefore << 2 * m_interleavedBits);
}

std::uint64_t BlockGrid::rowOffset(std::uint32_t y) const {
    if (m_isLinear) return std::uint64_t{y} * m_columns;
    const std::uint64_t squaresBefore = m_rows < m_columns ? 0 : std::uint64_t{y} >> m_interleavedBits;
    return spreadBits(lowBits(y, m_interleavedBits)) + (squaresBefore << 2 * m_interleavedBits);
}

}  // namespace moktexture::moktc
