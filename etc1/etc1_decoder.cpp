#include <algorithm>

#include "etc1/etc1.h"
#include "etc1/etc1_block.h"

namespace moktexture {
namespace etc1 {
namespace {

constexpr std::uint32_t opaque = 0xFF000000u;

template <class Byte>
bool containsBlock(const BasicImageView<Byte>& image, std::size_t x, std::size_t y) {
    return image.width - x >= blockEdge && image.height - y >= blockEdge;
}

template <class Byte>
std::size_t pixelCount(const BasicImageView<Byte>& image) {
    return std::size_t{image.width} * image.height;
}

/// The four colours that a subblock's indices select.
std::array<std::uint32_t, modifierCount> subblockPalette(const Colour& base, std::uint32_t table) {
    std::array<std::uint32_t, modifierCount> palette;
    for (std::size_t index = 0; index < modifierCount; ++index) {
        std::uint32_t rgba = opaque;
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            rgba |= static_cast<std::uint32_t>(std::clamp(base[channel] + modifiers[table][index], 0, 255)) << 8 * channel;
        palette[index] = rgba;
    }
    return palette;
}

template <Split split>
PixelBlock decodeSubblocks(const BlockWords& words) {
    const std::array<Codes, 2> codes = codesOf(words);
    PixelBlock block;
    for (std::size_t subblock = 0; subblock < 2; ++subblock) {
        const std::array<std::uint32_t, modifierCount> palette =
            subblockPalette(expand(codes[subblock], colourModeOf(words)), tableOf(words, subblock));
        for (std::size_t n = 0; n < subblockArea; ++n) {
            const std::size_t pixel = pixelNumber(split, subblock, n);
            block[rasterIndex(pixel)] = palette[indexOf(words, pixel)];
        }
    }
    return block;
}

void writePixel(std::uint32_t pixel, const ImageView& image, std::size_t x, std::size_t y) {
    const std::size_t index = y * image.width + x;
    if (index < pixelCount(image)) std::memcpy(image.pixels + index * bytesPerRGBA8Pixel, &pixel, bytesPerRGBA8Pixel);
}

/// Writes a block that overhangs the image: row by row, each pixel of the first subblock followed by its counterpart in the
/// second.
/// Kept (etc1-last-write-wins): in images below 4 pixels wide two pixels of a block may have the same number; the one that this
/// order writes last stays, even if it lies beyond the image's right edge. The small MIP levels of .mok and KTX files would
/// change.
void writeOverhanging(const PixelBlock& block, Split split, const ImageView& image, std::size_t x, std::size_t y) {
    const bool isFlipped = split == Split::topBottom;
    const std::size_t columns = isFlipped ? 4 : 2, rows = isFlipped ? 2 : 4;
    const std::size_t secondColumn = isFlipped ? 0 : 2, secondRow = isFlipped ? 2 : 0;
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < columns; ++column) {
            writePixel(block[row * blockEdge + column], image, x + column, y + row);
            writePixel(block[(row + secondRow) * blockEdge + column + secondColumn], image, x + column + secondColumn,
                       y + row + secondRow);
        }
    }
}

}  // namespace

PixelBlock readBlock(const ConstImageView& image, std::size_t x, std::size_t y) {
    if (containsBlock(image, x, y)) return loadBlock(image, x, y);
    PixelBlock block;
    for (std::size_t n = 0; n < blockArea; ++n) {
        std::size_t index = (y + n / blockEdge) * image.width + x + n % blockEdge;
        if (index >= pixelCount(image)) index = std::size_t{image.height - 1} * image.width + index % image.width;
        std::memcpy(&block[n], image.pixels + index * bytesPerRGBA8Pixel, bytesPerRGBA8Pixel);
    }
    return block;
}

PixelBlock decodeBlock(const BlockWords& words) {
    return splitOf(words) == Split::leftRight ? decodeSubblocks<Split::leftRight>(words)
                                              : decodeSubblocks<Split::topBottom>(words);
}

void writeBlock(const PixelBlock& block, Split split, const ImageView& image, std::size_t x, std::size_t y) {
    if (containsBlock(image, x, y)) return storeBlock(block, image, x, y);
    writeOverhanging(block, split, image, x, y);
}

}  // namespace etc1

std::uint32_t DecompressETC1(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height) {
    using namespace etc1;
    if (width == nullptr || height == nullptr) return 0;
    const std::uint32_t size = *width * *height * static_cast<std::uint32_t>(bytesPerRGBA8Pixel);
    if (blocks == nullptr || pixels == nullptr) return size;
    const ImageView image = packedImage(pixels, *width, *height);
    const auto* source = static_cast<const std::uint8_t*>(blocks);
    for (std::size_t y = 0; y < image.height; y += blockEdge) {
        for (std::size_t x = 0; x < image.width; x += blockEdge, source += bytesPerBlock) {
            const BlockWords words = readWords(source);
            writeBlock(decodeBlock(words), splitOf(words), image, x, y);
        }
    }
    return size;
}

}  // namespace moktexture
