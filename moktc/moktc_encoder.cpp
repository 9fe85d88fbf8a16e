#include "moktc/fast_compressor.h"
#include "moktc/moktc.h"
#include "moktc/moktc_block.h"
#include "moktc/parallel_tasks.h"

namespace moktexture {
namespace {

constexpr std::uint32_t largestSide = 4096;
constexpr std::uint32_t fastPasses = 8;

bool isWholeBlocks(std::uint32_t width, std::uint32_t height, bool is2bpp) {
    return width % moktc::blockWidth(is2bpp) == 0 && height % moktc::blockHeight == 0;
}

}  // namespace

std::uint32_t CompressMOKTC(const void* pixels, void* destination, const std::uint32_t* width, const std::uint32_t* height,
                            bool hasAlpha, bool is2bpp, std::uint32_t secondGeneration, std::uint32_t quality) {
    if (width == nullptr || height == nullptr || *width > largestSide || *height > largestSide) return 0;
    if (secondGeneration != 1 && !isWholeBlocks(*width, *height, is2bpp)) return 0;
    // Kept: a second-generation size is that of the unpadded image, though whole blocks are written; callers add it up as it is,
    // and Transcode() tells such textures as failed.
    const std::uint32_t size = *width * *height * moktc::bitsPerPixel(is2bpp) >> 3;
    if (pixels == nullptr || destination == nullptr) return size;
    if (quality != 0 || secondGeneration != 0) return 0;
    return moktc::CompressMOKTCFast(pixels, destination, *width, *height, hasAlpha, true, is2bpp, fastPasses,
                                    moktc::sse2FastKernels, moktc::availableThreads());
}

}  // namespace moktexture
