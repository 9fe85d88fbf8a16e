#include "moktc/decode/LevelBlocks.h"

#include <algorithm>
#include <bit>

namespace moktexture::moktc {
namespace {

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

}  // namespace

LevelBlocks::LevelBlocks(const std::uint8_t* data, std::uint64_t count, std::uint32_t columns, std::uint32_t rows, bool linear)
    : blocks(data), blockCount(count), blocksX(columns), blocksY(rows), isLinear(linear) {
    const std::uint32_t shorter = std::min(columns, rows);
    interleavedBits = shorter < 2 ? 0 : static_cast<unsigned>(std::bit_width(shorter - 1));
}

std::uint64_t LevelBlocks::columnPart(std::uint32_t x) const {
    if (isLinear) return x;
    const std::uint64_t squaresBefore = blocksY < blocksX ? x >> interleavedBits : 0;
    return (spreadBits(lowBits(x, interleavedBits)) << 1) + (squaresBefore << 2 * interleavedBits);
}

std::uint64_t LevelBlocks::rowPart(std::uint32_t y) const {
    if (isLinear) return std::uint64_t{y} * blocksX;
    const std::uint64_t squaresBefore = blocksY < blocksX ? 0 : y >> interleavedBits;
    return spreadBits(lowBits(y, interleavedBits)) + (squaresBefore << 2 * interleavedBits);
}

}  // namespace moktexture::moktc
