#include "moktc/moktc.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "core/base/numeric.h"
#include "core/base/parallel.h"
#include "moktc/amtc/amtc_localised.h"
#include "moktc/amtc/records/level_records.h"
#include "moktc/block/block_order.h"
#include "moktc/decode/decode_cells.h"
#include "moktc/fast/fast_compressor.h"

namespace moktexture::moktc {
namespace {

/// The column (row) of the image that column (row) `i` of the padded image repeats: the one `added` before, where `added` is the
/// number of columns that the padding adds.
std::uint32_t sourceIndex(std::uint32_t i, std::uint32_t size, std::uint32_t paddedSize) {
    if (i < size) return i;
    const std::uint32_t added = paddedSize - size;
    return added <= size ? i - added : i % size;
}

}  // namespace

std::vector<std::uint8_t> padByRepeating(const ConstImageView& image, std::uint32_t paddedWidth, std::uint32_t paddedHeight) {
    std::vector<std::uint8_t> pixels(paddedWidth * bytesPerRGBA8Pixel * paddedHeight);
    const ImageView padded = packedImage(pixels.data(), paddedWidth, paddedHeight);
    for (std::uint32_t y = 0; y < paddedHeight; ++y) {
        const std::uint32_t sourceRow = sourceIndex(y, image.height, paddedHeight);
        std::memcpy(padded.row(y), image.row(sourceRow), image.width * bytesPerRGBA8Pixel);
        for (std::uint32_t x = image.width; x < paddedWidth; ++x) {
            const std::uint8_t* const source = image.pixel(sourceIndex(x, image.width, paddedWidth), sourceRow);
            std::memcpy(padded.pixel(x, y), source, bytesPerRGBA8Pixel);
        }
    }
    return pixels;
}

}  // namespace moktexture::moktc

namespace moktexture {
namespace {

using namespace moktc;

constexpr auto largestSide = static_cast<std::uint32_t>(amtc::largestSide);

/// Whether the bytes of the pixels and the bits of the blocks can be counted in 32 bits.
bool sizesFit32Bits(std::uint32_t width, std::uint32_t height, BlockVariant variant) {
    constexpr std::uint64_t limit = 0xFFFFFFFFu, bitsPerBlock = 8 * bytesPerBlock;
    return std::uint64_t{width} * height <= limit / bytesPerRGBA8Pixel &&
           levelBlockCount(width, height, variant) <= limit / bitsPerBlock;
}

/// A level to encode.
struct LevelRequest {
    ConstImageView image;
    BlockVariant variant;
    std::uint32_t quality;
};

bool isWholeBlocks(std::uint32_t width, std::uint32_t height, Rate rate) {
    return width % blockWidth(rate) == 0 && height % blockHeight == 0;
}

/// Encodes whole blocks by the slow encoder; false if it fails. Its efforts are 0 to 4; quality 0 of the first generation is the
/// fast compressor's.
bool encodeSlowly(const LevelRequest& request, std::uint8_t* blocks) {
    const ConstImageView& image = request.image;
    const bool isSecond = request.variant.isSecondGeneration();
    return amtc::encodeImage({.source = {.pixels = image.pixels,
                                         .width = static_cast<std::int32_t>(image.width),
                                         .height = static_cast<std::int32_t>(image.height),
                                         .rowBytes = static_cast<std::ptrdiff_t>(image.rowBytes),
                                         .isRGBAOrder = true},
                              .destination = blocks,
                              .options = {.variant = request.variant,
                                          .linearBlockOrder = isSecond,
                                          .quality = isSecond ? request.quality : request.quality - 1}});
}

/// Encodes a level that is not empty; in the first generation its sides are multiples of the block.
bool encodeLevel(LevelRequest request, std::uint8_t* blocks) {
    if (request.quality == 0 && !request.variant.isSecondGeneration())
        return encodeFast({.image = request.image, .rate = request.variant.rate, .threads = availableThreads()}, blocks);
    const std::uint32_t width = roundUp(request.image.width, blockWidth(request.variant.rate));
    const std::uint32_t height = roundUp(request.image.height, blockHeight);
    std::vector<std::uint8_t> padded;
    if (width != request.image.width || height != request.image.height) {
        padded = padByRepeating(request.image, width, height);
        request.image = packedImage(padded.data(), width, height);
    }
    return encodeSlowly(request, blocks);
}

}  // namespace

std::uint32_t DecompressMOKTC(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                              std::uint8_t is2bpp, const std::uint32_t* secondGeneration) {
    if (width == nullptr || height == nullptr || secondGeneration == nullptr) return 0;
    const BlockVariant variant = {rateOf(is2bpp != 0), *secondGeneration != 0 ? Generation::second : Generation::first};
    const std::uint32_t size = *width * *height * static_cast<std::uint32_t>(bytesPerRGBA8Pixel);
    if (blocks == nullptr || pixels == nullptr) return size;
    if (!sizesFit32Bits(*width, *height, variant)) return 0;
    decodeCells(static_cast<const std::uint8_t*>(blocks), variant, packedImage(pixels, *width, *height));
    return size;
}

std::uint32_t CompressMOKTC(const void* pixels, void* destination, const std::uint32_t* width, const std::uint32_t* height,
                            bool /*hasAlpha*/, bool is2bpp, std::uint32_t secondGeneration, std::uint32_t quality) {
    if (width == nullptr || height == nullptr || *width > largestSide || *height > largestSide || secondGeneration > 1) return 0;
    const BlockVariant variant = {rateOf(is2bpp), static_cast<Generation>(secondGeneration)};
    if (!variant.isSecondGeneration() && !isWholeBlocks(*width, *height, variant.rate)) return 0;
    // Kept (second-generation-unpadded-size): the size of a second-generation level is that of the unpadded image, though whole
    // blocks are written. Transcode() adds these sizes up and compares them with getDataSize(), so that it reports such textures
    // as failed.
    const std::uint32_t size = *width * *height * bitsPerPixel(variant.rate) >> 3;
    const bool isEmpty = *width == 0 || *height == 0;
    if (pixels == nullptr || destination == nullptr || isEmpty) return size;
    const LevelRequest request = {packedImage(pixels, *width, *height), variant, quality};
    return encodeLevel(request, static_cast<std::uint8_t*>(destination)) ? size : 0;
}

}  // namespace moktexture
