#include "dxtn/dxtn.h"
#include "dxtn/dxtn_block.h"

// A block's pixels are look-ups in two palettes, built once per block from the endpoints:
//
//   colours, 4 entries    c0 > c1:   c0, c1, (42 * c0 + 22 * c1) / 64, (22 * c0 + 42 * c1) / 64
//                         c0 <= c1:  c0, c1, (c0 + c1) / 2,            0 in all bytes
//   alphas, 8 entries     a0 > a1:   a0, a1, and 6 steps between them, in sevenths
//                         a0 <= a1:  a0, a1, and 4 steps between them, in fifths; 0; 255
//
// The modes differ in alpha only: mode 1 has it in the colour palette, the others OR it over the palette's colour.

namespace moktexture {
namespace {

using namespace dxtn;

constexpr std::uint32_t opaque = 0xFF000000u;

/// (weight0 * c0 + weight1 * c1) >> shift for red, green and blue; the weights add up to 1 << shift at most.
constexpr std::uint32_t mix(std::uint32_t c0, std::uint32_t weight0, std::uint32_t c1, std::uint32_t weight1, unsigned shift) {
    // Red and blue at once, each with 8 spare bits above it; then green.
    constexpr std::uint32_t redBlue = 0x00FF00FFu, green = 0x0000FF00u;
    const std::uint32_t rb = ((c0 & redBlue) * weight0 + (c1 & redBlue) * weight1) >> shift & redBlue;
    const std::uint32_t g = ((c0 & green) * weight0 + (c1 & green) * weight1) >> shift & green;
    return rb | g;
}

/// The four colours that a block's indices select, with their alpha in mode 1 and with alpha 0 in the others.
template <AlphaBlock alpha>
std::array<std::uint32_t, 4> colourPalette(const ColourBlock& block) {
    constexpr std::uint32_t full = alpha == AlphaBlock::none ? opaque : 0;
    const std::uint32_t c0 = expandRGB565(block.c0), c1 = expandRGB565(block.c1);
    // Kept (dxtn-three-colours-in-all-modes): three colours in modes 2 to 5 too, where the published formats have four. Such
    // blocks of stored .dds files would show other colours.
    if (block.c0 <= block.c1) return {c0 | full, c1 | full, mix(c0, 1, c1, 1, 1) | full, 0};
    // Kept (dxtn-weights-42-22): 42 and 22 over 64, not thirds. The pixels that hosts get from .dds and .mok files would differ
    // by up to 3 in a channel.
    return {c0 | full, c1 | full, mix(c0, 42, c1, 22, 6) | full, mix(c0, 22, c1, 42, 6) | full};
}

/// The eight alpha values, each in the top byte, that an interpolated alpha block's indices select.
std::array<std::uint32_t, 8> alphaPalette(std::uint64_t word) {
    const std::uint32_t a0 = word & 255, a1 = word >> 8 & 255;
    std::array<std::uint32_t, 8> palette = {a0, a1, 0, 0, 0, 0, 0, 255};
    const std::uint32_t parts = a0 > a1 ? 7 : 5;
    for (std::uint32_t part = 1; part < parts; ++part)
        palette[1 + part] = ((parts - part) * a0 + part * a1) / parts;
    for (std::uint32_t& alpha : palette)
        alpha <<= 24;
    return palette;
}

/// Looks up the colour of each of the block's pixels and, in the modes with an alpha block, its alpha.
template <AlphaBlock alpha>
PixelBlock decodeBlock(const std::uint8_t* block) {
    const std::uint64_t alphaWord = readWord(block);
    const ColourBlock colourBlock = unpackColourBlock(readWord(block + bytesPerBlock(alpha) - wordBytes));
    const std::array<std::uint32_t, 4> colours = colourPalette<alpha>(colourBlock);
    PixelBlock pixels;
    for (unsigned pixel = 0; pixel < blockArea; ++pixel)
        pixels[pixel] = colours[colourBlock.indices >> 2 * pixel & 3];
    if constexpr (alpha == AlphaBlock::explicitBits) {
        for (unsigned pixel = 0; pixel < blockArea; ++pixel)
            pixels[pixel] |= static_cast<std::uint32_t>(alphaWord >> 4 * pixel & 15) * 0x11u << 24;
    } else if constexpr (alpha == AlphaBlock::interpolated) {
        const std::array<std::uint32_t, 8> alphas = alphaPalette(alphaWord);
        for (unsigned pixel = 0; pixel < blockArea; ++pixel)
            pixels[pixel] |= alphas[alphaWord >> (16 + 3 * pixel) & 7];
    }
    return pixels;
}

template <AlphaBlock alpha>
void decodeImage(const std::uint8_t* blocks, const ImageView& image) {
    for (std::size_t y = 0; y < image.height; y += blockEdge) {
        for (std::size_t x = 0; x < image.width; x += blockEdge, blocks += bytesPerBlock(alpha))
            storeBlock(decodeBlock<alpha>(blocks), image, x, y);
    }
}

}  // namespace

std::uint32_t DecompressDXTn(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                             const DXTMode* mode) {
    if (width == nullptr || height == nullptr || mode == nullptr) return 0;
    if (blocks == nullptr || pixels == nullptr) return *width * *height * static_cast<std::uint32_t>(bytesPerRGBA8Pixel);
    if (!isWholeBlocks(*width, *height, *mode)) return 0;
    const auto* source = static_cast<const std::uint8_t*>(blocks);
    const ImageView image = packedImage(pixels, *width, *height);
    // Kept (dxtn-premultiplied-decode): the premultiplied modes 2 and 4 are decoded like 3 and 5. Hosts that blend with
    // premultiplied alpha want the colours as a DXT2 or DXT4 file stores them.
    switch (alphaBlockOf(*mode)) {
        case AlphaBlock::none:
            decodeImage<AlphaBlock::none>(source, image);
            break;
        case AlphaBlock::explicitBits:
            decodeImage<AlphaBlock::explicitBits>(source, image);
            break;
        case AlphaBlock::interpolated:
            decodeImage<AlphaBlock::interpolated>(source, image);
            break;
    }
    // Kept (dxtn-zero-after-decode): 0 after success too, so that `decompressStage` counts nothing for DXTn; `Transcode` ignores
    // that count, and must not take it for a sign of failure.
    return 0;
}

}  // namespace moktexture
