#include <algorithm>
#include <vector>

#include "core/base/parallel.h"
#include "moktc/amtc/amtc_localised.h"
#include "moktc/amtc/records/work_image.h"
#include "moktc/block/moktc_block.h"
#include "moktc/block_padding.h"
#include "moktc/fast/fast_compressor.h"
#include "moktc/moktc.h"

namespace moktexture {
namespace {

constexpr auto largestSide = static_cast<std::uint32_t>(amtc::largestSide);
constexpr std::uint32_t fastPasses = 8;
constexpr std::uint32_t highestEffort = 4;
constexpr std::uint32_t formatVersion = 4;

struct Surface {
    const std::uint8_t* pixels;
    std::uint32_t width, height;
};

std::uint32_t roundUp(std::uint32_t size, std::uint32_t step) {
    return (size + step - 1) / step * step;
}

bool isWholeBlocks(std::uint32_t width, std::uint32_t height, bool is2bpp) {
    return width % moktc::blockWidth(is2bpp) == 0 && height % moktc::blockHeight == 0;
}

/// A copy in whole blocks, whose pixels are in `storage`. Neither side is 0.
Surface padToBlocks(const Surface& surface, bool is2bpp, std::vector<std::uint8_t>& storage) {
    const std::uint32_t width = roundUp(surface.width, moktc::blockWidth(is2bpp));
    const std::uint32_t height = roundUp(surface.height, moktc::blockHeight);
    storage = moktc::padByRepeating(surface.pixels, surface.width, surface.height, width, height);
    return {storage.data(), width, height};
}

/// Encodes whole blocks by the slow encoder; false if it failed. The first generation's lowest quality is the fast compressor's.
bool compressSlowly(const Surface& surface, void* blocks, bool hasAlpha, bool is2bpp, std::uint32_t secondGeneration,
                    std::uint32_t quality) {
    constexpr std::uint32_t isRGBAOrder = 1, colourMIPs = 0;
    constexpr std::int32_t rowStride = 0, mipMode = 0, punchThrough = 0;
    constexpr std::uint64_t reserved = 0;
    const std::uint32_t effort = std::min(secondGeneration == 1 ? quality : quality - 1, highestEffort);
    const std::uint32_t linearBlockOrder = secondGeneration;
    return amtc::CompressImageLevels(surface.pixels, isRGBAOrder, static_cast<std::int32_t>(surface.width),
                                     static_cast<std::int32_t>(surface.height), rowStride, static_cast<std::uint8_t*>(blocks),
                                     static_cast<std::uint8_t>(effort), mipMode, hasAlpha ? 1 : 0, punchThrough, formatVersion,
                                     moktc::bitsPerPixel(is2bpp), secondGeneration, reserved, linearBlockOrder, colourMIPs,
                                     nullptr) == 0;
}

}  // namespace

std::uint32_t CompressMOKTC(const void* pixels, void* destination, const std::uint32_t* width, const std::uint32_t* height,
                            bool hasAlpha, bool is2bpp, std::uint32_t secondGeneration, std::uint32_t quality) {
    if (width == nullptr || height == nullptr || *width > largestSide || *height > largestSide || secondGeneration > 1) return 0;
    const bool isWhole = isWholeBlocks(*width, *height, is2bpp);
    if (secondGeneration != 1 && !isWhole) return 0;
    // Kept: a second-generation size is that of the unpadded image, though whole blocks are written; callers add it up as it is,
    // and Transcode() tells such textures as failed.
    const std::uint32_t size = *width * *height * moktc::bitsPerPixel(is2bpp) >> 3;
    const bool isEmpty = *width == 0 || *height == 0;
    if (pixels == nullptr || destination == nullptr || isEmpty) return size;

    if (quality == 0 && secondGeneration == 0)
        return moktc::CompressMOKTCFast(pixels, destination, *width, *height, hasAlpha, true, is2bpp, fastPasses,
                                        moktc::sse2FastKernels, availableThreads());
    Surface surface{static_cast<const std::uint8_t*>(pixels), *width, *height};
    std::vector<std::uint8_t> padded;
    if (!isWhole) surface = padToBlocks(surface, is2bpp, padded);
    return compressSlowly(surface, destination, hasAlpha, is2bpp, secondGeneration, quality) ? size : 0;
}

}  // namespace moktexture
