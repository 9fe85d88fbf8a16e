#include "etc1/etc1_decoder.h"

#include <algorithm>

#include "etc1/etc1.h"

namespace moktexture {
namespace etc1 {
namespace {

constexpr std::uint32_t opaque = 0xFF000000u;

/// The four colours that a half's indices choose from.
std::array<std::uint32_t, modifierCount> halfPalette(const Colour& base, std::uint32_t table) {
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
BlockPixels decodeHalves(const BlockWords& words) {
    const std::array<Codes, 2> codes = codesOf(words);
    BlockPixels block;
    for (std::size_t half = 0; half < 2; ++half) {
        const std::array<std::uint32_t, modifierCount> palette =
            halfPalette(expand(codes[half], formOf(words)), tableOf(words, half));
        for (std::size_t n = 0; n < halfArea; ++n) {
            const std::size_t pixel = pixelNumber(split, half, n);
            block[rasterPlace(pixel)] = palette[indexOf(words, pixel)];
        }
    }
    return block;
}

void storePixel(std::uint32_t pixel, std::uint8_t* pixels, const Level& level, std::size_t x, std::size_t y) {
    const std::size_t index = level.indexOf(x, y);
    if (index < level.pixelCount()) std::memcpy(pixels + index * bytesPerPixel, &pixel, bytesPerPixel);
}

/// Stores the two halves in step, row by row.
/// Kept: in levels below 4 pixels wide the later of two pixels that fall together stays, be it the spilled one; small MIP levels
/// look as they always have.
void storeOverhanging(const BlockPixels& block, Split split, std::uint8_t* pixels, const Level& level, std::size_t x,
                      std::size_t y) {
    const bool isFlipped = split == Split::topBottom;
    const std::size_t columns = isFlipped ? 4 : 2, rows = isFlipped ? 2 : 4;
    const std::size_t secondColumn = isFlipped ? 0 : 2, secondRow = isFlipped ? 2 : 0;
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < columns; ++column) {
            storePixel(block[row * blockEdge + column], pixels, level, x + column, y + row);
            storePixel(block[(row + secondRow) * blockEdge + column + secondColumn], pixels, level, x + column + secondColumn,
                       y + row + secondRow);
        }
    }
}

}  // namespace

BlockPixels decodeBlock(const BlockWords& words) {
    return splitOf(words) == Split::leftRight ? decodeHalves<Split::leftRight>(words) : decodeHalves<Split::topBottom>(words);
}

void storeBlock(const BlockPixels& block, Split split, std::uint8_t* pixels, const Level& level, std::size_t x, std::size_t y) {
    if (!level.holdsBlock(x, y)) return storeOverhanging(block, split, pixels, level, x, y);
    for (std::size_t row = 0; row < blockEdge; ++row)
        std::memcpy(pixels + level.indexOf(x, y + row) * bytesPerPixel, &block[row * blockEdge], blockEdge * bytesPerPixel);
}

}  // namespace etc1

std::uint32_t DecompressETC1(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height) {
    using namespace etc1;
    if (width == nullptr || height == nullptr) return 0;
    const std::uint32_t size = *width * *height * static_cast<std::uint32_t>(bytesPerPixel);
    if (blocks == nullptr || pixels == nullptr) return size;
    const auto* source = static_cast<const std::uint8_t*>(blocks);
    const Level level{*width, *height};
    for (std::size_t y = 0; y < level.height; y += blockEdge) {
        for (std::size_t x = 0; x < level.width; x += blockEdge, source += bytesPerBlock) {
            const BlockWords words = readWords(source);
            storeBlock(decodeBlock(words), splitOf(words), static_cast<std::uint8_t*>(pixels), level, x, y);
        }
    }
    return size;
}

}  // namespace moktexture
