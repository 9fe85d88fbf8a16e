#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dxtn/dxtn.h"
#include "dxtn/dxtn_block.h"

namespace moktexture {
namespace {

using namespace dxtn;

constexpr std::uint32_t opaque = 0xFF000000u;

/// (weight0 * c0 + weight1 * c1) >> shift for red, green and blue; the weights add up to 1 << shift at most.
constexpr std::uint32_t mix(std::uint32_t c0, std::uint32_t weight0, std::uint32_t c1, std::uint32_t weight1, unsigned shift) {
    // Red and blue at once, each with 8 bits of room above it; then green.
    constexpr std::uint32_t redBlue = 0x00FF00FFu, green = 0x0000FF00u;
    const std::uint32_t rb = ((c0 & redBlue) * weight0 + (c1 & redBlue) * weight1) >> shift & redBlue;
    const std::uint32_t g = ((c0 & green) * weight0 + (c1 & green) * weight1) >> shift & green;
    return rb | g;
}

/// The four colours that a block's indices choose from, with alpha in mode 1 and with alpha 0 in the others.
template <AlphaHalf alpha>
std::array<std::uint32_t, 4> colourPalette(const ColourHalf& half) {
    constexpr std::uint32_t full = alpha == AlphaHalf::none ? opaque : 0;
    const std::uint32_t c0 = expandRGB565(half.c0), c1 = expandRGB565(half.c1);
    // Kept: three colours also in modes 2 to 5, where the published format has four; stored textures look as they always have.
    if (half.c0 <= half.c1) return {c0 | full, c1 | full, mix(c0, 1, c1, 1, 1) | full, 0};
    // Kept: 42 and 22 over 64 instead of thirds; decoded pixels are the same as ever.
    return {c0 | full, c1 | full, mix(c0, 42, c1, 22, 6) | full, mix(c0, 22, c1, 42, 6) | full};
}

/// The eight alpha values, each in the top byte, that an interpolated alpha half's indices choose from.
std::array<std::uint32_t, 8> alphaPalette(std::uint64_t half) {
    const std::uint32_t a0 = half & 255, a1 = half >> 8 & 255;
    std::array<std::uint32_t, 8> palette = {a0, a1, 0, 0, 0, 0, 0, 255};
    const std::uint32_t parts = a0 > a1 ? 7 : 5;
    for (std::uint32_t part = 1; part < parts; ++part)
        palette[1 + part] = ((parts - part) * a0 + part * a1) / parts;
    for (std::uint32_t& alpha : palette)
        alpha <<= 24;
    return palette;
}

/// Gives each of the block's pixels its colour and, in the modes with an alpha half, its alpha.
template <AlphaHalf alpha>
BlockPixels decodeBlock(const std::uint8_t* block) {
    const std::uint64_t alphaHalf = readHalf(block);
    const ColourHalf colourHalf = unpackColourHalf(readHalf(block + bytesPerBlock(alpha) - bytesPerHalf));
    const std::array<std::uint32_t, 4> colours = colourPalette<alpha>(colourHalf);
    BlockPixels pixels;
    for (unsigned pixel = 0; pixel < blockArea; ++pixel)
        pixels[pixel] = colours[colourHalf.indices >> 2 * pixel & 3];
    if constexpr (alpha == AlphaHalf::explicitBits) {
        for (unsigned pixel = 0; pixel < blockArea; ++pixel)
            pixels[pixel] |= static_cast<std::uint32_t>(alphaHalf >> 4 * pixel & 15) * 0x11u << 24;
    } else if constexpr (alpha == AlphaHalf::interpolated) {
        const std::array<std::uint32_t, 8> alphas = alphaPalette(alphaHalf);
        for (unsigned pixel = 0; pixel < blockArea; ++pixel)
            pixels[pixel] |= alphas[alphaHalf >> (16 + 3 * pixel) & 7];
    }
    return pixels;
}

template <AlphaHalf alpha>
void decodeImage(const std::uint8_t* block, std::uint8_t* pixels, std::size_t width, std::size_t height) {
    const std::size_t rowBytes = width * bytesPerPixel;
    constexpr std::size_t blockRowBytes = blockEdge * bytesPerPixel;
    for (std::size_t y = 0; y < height; y += blockEdge, pixels += blockEdge * rowBytes) {
        for (std::size_t offset = 0; offset < rowBytes; offset += blockRowBytes) {
            const BlockPixels decoded = decodeBlock<alpha>(block);
            for (std::size_t row = 0; row < blockEdge; ++row)
                std::memcpy(pixels + row * rowBytes + offset, &decoded[row * blockEdge], blockRowBytes);
            block += bytesPerBlock(alpha);
        }
    }
}

}  // namespace

std::uint32_t DecompressDXTn(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                             const DXTMode* mode) {
    if (width == nullptr || height == nullptr || mode == nullptr) return 0;
    if (blocks == nullptr || pixels == nullptr) return *width * *height * static_cast<std::uint32_t>(bytesPerPixel);
    if (!isWholeBlocks(*width, *height, *mode)) return 0;
    const auto* source = static_cast<const std::uint8_t*>(blocks);
    auto* target = static_cast<std::uint8_t*>(pixels);
    // Kept: the premultiplied modes 2 and 4 are read like 3 and 5; callers get the colours as they are stored.
    switch (alphaHalfOf(*mode)) {
        case AlphaHalf::none:
            decodeImage<AlphaHalf::none>(source, target, *width, *height);
            break;
        case AlphaHalf::explicitBits:
            decodeImage<AlphaHalf::explicitBits>(source, target, *width, *height);
            break;
        case AlphaHalf::interpolated:
            decodeImage<AlphaHalf::interpolated>(source, target, *width, *height);
            break;
    }
    // Kept: 0 after success too; callers cannot and do not take the result for a count of bytes.
    return 0;
}

}  // namespace moktexture
