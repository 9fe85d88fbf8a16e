#include "moktc/amtc/amtc_localised.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "moktc/amtc/driver/mip_levels.h"
#include "moktc/amtc/driver/punch_through.h"

namespace moktexture::amtc {

std::FILE* diagnosticsStream = nullptr;

namespace {

constexpr std::uint8_t highestQuality = 4;
constexpr std::uint32_t failed = 1;
constexpr std::size_t blockBytes = 8;

void say(const char* line) {
    if (diagnosticsStream != nullptr) std::fputs(line, diagnosticsStream);
}

template <class... Values>
void say(const char* format, Values... values) {
    if (diagnosticsStream != nullptr) std::fprintf(diagnosticsStream, format, values...);
}

bool isSide(std::int32_t size) {
    return size >= 1 && size <= largestSide;
}

std::ptrdiff_t strideOf(std::int32_t rowStride, std::int32_t width) {
    return rowStride != 0 ? rowStride : std::ptrdiff_t{4} * width;
}

/// One row of pixels with the alpha in front.
void rotateRow(const std::uint8_t* source, std::int32_t width, std::uint32_t* row) {
    for (std::int32_t x = 0; x < width; ++x, source += 4)
        row[x] = std::uint32_t{source[1]} | std::uint32_t{source[2]} << 8 | std::uint32_t{source[3]} << 16 |
                 std::uint32_t{source[0]} << 24;
}

/// The top level in a work image; null for sizes that have no place in it and where memory is short.
WorkImage loadWorkImage(const std::uint8_t* source, bool isRGBAOrder, std::int32_t width, std::int32_t height,
                        std::ptrdiff_t stride) {
    if (source == nullptr || !isSide(width) || !isSide(height)) return nullptr;
    WorkImage image = makeWorkImage();
    if (image == nullptr) return nullptr;
    image->Width = width;
    image->Height = height;
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint8_t* const row = source + stride * y;
        if (isRGBAOrder)
            std::memcpy(image->Pixels[y], row, std::size_t{4} * static_cast<std::uint32_t>(width));
        else
            rotateRow(row, width, image->Pixels[y]);
    }
    return image;
}

/// How many levels follow the top one.
std::uint32_t countFurtherLevels(std::int32_t mipMode, std::int32_t width, std::int32_t height) {
    if (mipMode == 0) return 0;
    if (isPowerOfTwo(width) && isPowerOfTwo(height)) return furtherLevelCount(width, height);
    say("Warning: Size is not compatible with MIP mapping. Ignoring -m\n");
    return 0;
}

struct BlockGrid {
    std::int32_t across, down;

    std::size_t bytes() const { return static_cast<std::size_t>(across) * static_cast<std::size_t>(down) * blockBytes; }
};

/// The blocks of a level; none if it is not made of whole blocks.
BlockGrid blockGrid(const AmtcImage& image, std::uint32_t bitsPerPixel) {
    const std::int32_t blockWidth = bitsPerPixel == 4 ? 4 : 8, blockHeight = bitsPerPixel == 1 ? 8 : 4;
    if (image.Width % blockWidth != 0 || image.Height % blockHeight != 0) return {0, 0};
    return {image.Width / blockWidth, image.Height / blockHeight};
}

}  // namespace

// Kept: `hasAlpha` and `reserved` are taken and not used; hosts call with both, and translucency comes from the pixels.
std::uint32_t CompressImageLevels(const std::uint8_t* source, std::uint32_t isRGBAOrder, std::int32_t width, std::int32_t height,
                                  std::int32_t rowStride, std::uint8_t* destination, std::uint8_t quality, std::int32_t mipMode,
                                  std::uint64_t /*hasAlpha*/, std::int32_t punchThrough, std::uint32_t formatVersion,
                                  std::uint32_t bitsPerPixel, std::uint32_t secondGeneration, std::uint64_t reserved,
                                  std::uint32_t linearBlockOrder, std::uint32_t colourMIPs, AmtcProgress** progress,
                                  const LevelResources& resources) {
    if (progress != nullptr && *progress != nullptr) ResetProgress(**progress, mipMode);
    const std::ptrdiff_t stride = strideOf(rowStride, width);
    const WorkImage image = loadWorkImage(source, isRGBAOrder != 0, width, height, stride);
    if (image == nullptr) return failed;
    const auto compress = [&] {
        return CompressOneLevel(*image, formatVersion, bitsPerPixel, secondGeneration, linearBlockOrder, quality, reserved,
                                destination, progress, resources);
    };

    say("\nCompressing data. Please wait...\n\n");
    const std::uint32_t furtherLevels = countFurtherLevels(mipMode, width, height);
    const bool readsLevels = furtherLevels != 0 && mipMode != 1 && colourMIPs == 0;
    if (readsLevels && stride < 0) return failed;
    if (punchThrough != 0) {
        say("Doing \"Punch-Through\" preprocess of top map.....\n");
        PunchThroughPreprocess(*image, secondGeneration);
    }
    say("Compressing top map (%d * %d).....\n", width, height);
    if (compress() != 0) return failed;
    say("\n");

    const std::uint8_t* nextLevel = readsLevels ? source + stride * height : nullptr;
    for (std::uint32_t level = 1; level <= furtherLevels; ++level) {
        destination += blockGrid(*image, bitsPerPixel).bytes();
        tileSmallestMap(*image, bitsPerPixel);
        if (colourMIPs != 0)
            halveToLevelColour(*image, level);
        else if (readsLevels)
            nextLevel = halveByReading(*image, nextLevel);
        else
            halveByAveraging(*image);
        say("\nDoing Level %d (%d x %d).....\n", static_cast<int>(level), image->Width, image->Height);
        if (compress() != 0) return failed;
    }
    return 0;
}

std::uint32_t CompressOneLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                               std::uint32_t secondGeneration, std::uint32_t linearBlockOrder, std::uint8_t quality,
                               std::uint64_t /*reserved*/, std::uint8_t* destination, AmtcProgress**,
                               const LevelResources& resources) {
    const bool isKnownRate = bitsPerPixel == 1 || bitsPerPixel == 2 || bitsPerPixel == 4;
    if (destination == nullptr || !isKnownRate || !isSide(image.Width) || !isSide(image.Height)) return failed;
    const BlockGrid grid = blockGrid(image, bitsPerPixel);
    if (grid.bytes() == 0) return failed;

    // Kept: a grid whose sides are no powers of two is stored row by row also where twiddled order is wanted. Decoders of the
    // first generation read twiddled places there; hosts that decode such levels take them row by row.
    const bool isLinear = linearBlockOrder != 0 || !isPowerOfTwo(grid.across) || !isPowerOfTwo(grid.down);
    std::memset(destination, 0, grid.bytes());
    return CompressLevel(image, formatVersion, bitsPerPixel, secondGeneration, destination, isLinear,
                         std::min(quality, highestQuality), resources)
               ? 0
               : failed;
}

}  // namespace moktexture::amtc
