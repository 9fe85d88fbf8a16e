#pragma once

#include <cstdint>

#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {

/// The blocks of one level by column and row of its grid, with the places of TwiddleIndex() or in linear order.
class LevelBlocks {
public:
    /// `data` holds `count` blocks and outlives this.
    LevelBlocks(const std::uint8_t* data, std::uint64_t count, std::uint32_t columns, std::uint32_t rows, bool linear);

    std::uint32_t columns() const { return blocksX; }
    std::uint32_t rows() const { return blocksY; }

    /// What a column and what a row bring to a place; the place is their sum.
    std::uint64_t columnPart(std::uint32_t x) const;
    std::uint64_t rowPart(std::uint32_t y) const;

    /// The block at a place; all zero if the place lies outside the data.
    Block at(std::uint64_t place) const { return place < blockCount ? readBlock(blocks + place * bytesPerBlock) : Block{0, 0}; }

private:
    const std::uint8_t* blocks;
    std::uint64_t blockCount;
    std::uint32_t blocksX;
    std::uint32_t blocksY;
    bool isLinear;
    unsigned interleavedBits;
};

}  // namespace moktexture::moktc
