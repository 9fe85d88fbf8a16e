#include <cstddef>

#include "moktc/block/block_order.h"
#include "moktc/block/moktc_block.h"
#include "moktc/decode/decode_cells.h"
#include "moktc/moktc.h"

namespace moktexture {
namespace {

using namespace moktc;

/// Whether pixels and blocks of a level are no more than a texture can count in 32 bits.
bool isCountable(std::uint32_t width, std::uint32_t height, bool is2bpp, bool secondGeneration) {
    constexpr std::uint64_t limit = 0xFFFFFFFFu, bitsPerBlock = 8 * bytesPerBlock;
    return std::uint64_t{width} * height <= limit / bytesPerPixel &&
           levelBlockCount(width, height, is2bpp, secondGeneration) <= limit / bitsPerBlock;
}

}  // namespace

std::uint32_t DecompressMOKTC(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                              std::uint8_t is2bpp, const std::uint32_t* secondGeneration) {
    if (width == nullptr || height == nullptr || secondGeneration == nullptr) return 0;
    const std::uint32_t size = *width * *height * static_cast<std::uint32_t>(bytesPerPixel);
    if (blocks == nullptr || pixels == nullptr) return size;
    if (!isCountable(*width, *height, is2bpp != 0, *secondGeneration != 0)) return 0;
    decodeCells(static_cast<const std::uint8_t*>(blocks), is2bpp != 0, *secondGeneration != 0, *width, *height,
                static_cast<std::uint8_t*>(pixels));
    return size;
}

}  // namespace moktexture
