#pragma once

#include <array>
#include <ostream>

#include "moktc/block/block_order.h"
#include "moktc/moktc.h"

namespace moktexture::moktc {

// clang-format off
inline constexpr std::array<BlockVariant, 4> allVariants = {{
    {Rate::fourBpp, Generation::first}, {Rate::twoBpp, Generation::first},
    {Rate::fourBpp, Generation::second}, {Rate::twoBpp, Generation::second}}};
// clang-format on

inline std::ostream& operator<<(std::ostream& stream, const BlockVariant& variant) {
    return stream << bitsPerPixel(variant.rate) << " bpp, generation " << (variant.isSecondGeneration() ? 2 : 1);
}

/// A level of blocks for the tests.
struct Level {
    std::uint32_t width, height;
    BlockVariant variant;

    std::size_t blockCount() const { return levelBlockCount(width, height, variant); }
};

}  // namespace moktexture::moktc
