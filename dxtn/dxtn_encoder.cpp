#include "dxtn/dxtn_encoder.h"

#include "dxtn/dxtn.h"
#include "dxtn/dxtn_alpha_encoder.h"
#include "dxtn/dxtn_block.h"
#include "dxtn/dxtn_colour_encoder.h"

namespace moktexture {
namespace dxtn {
namespace {

BlockPixels readBlock(const std::uint8_t* pixels, std::size_t rowBytes) {
    BlockPixels block;
    for (std::size_t row = 0; row < blockEdge; ++row)
        std::memcpy(&block[row * blockEdge], pixels + row * rowBytes, blockEdge * bytesPerPixel);
    return block;
}

/// Writes one block and returns the place of the next.
std::uint8_t* encodeBlock(const BlockPixels& block, std::uint8_t* out, DXTMode mode) {
    // Kept: the premultiplied modes 2 and 4 are written like 3 and 5; callers multiply beforehand, and would get it twice.
    if (alphaHalfOf(mode) != AlphaHalf::none) {
        const bool isExplicit = alphaHalfOf(mode) == AlphaHalf::explicitBits;
        writeHalf(out, isExplicit ? EncodeExplicitAlpha(block) : EncodeInterpolatedAlpha(block));
        out += bytesPerHalf;
    }
    writeHalf(out, packColourHalf(encodeColours(block, mode)));
    return out + bytesPerHalf;
}

void encodeImage(const std::uint8_t* pixels, std::uint8_t* out, std::size_t width, std::size_t height, DXTMode mode) {
    const std::size_t rowBytes = width * bytesPerPixel;
    for (std::size_t y = 0; y < height; y += blockEdge) {
        for (std::size_t x = 0; x < width; x += blockEdge)
            out = encodeBlock(readBlock(pixels + y * rowBytes + x * bytesPerPixel, rowBytes), out, mode);
    }
}

}  // namespace

const EncoderKernel plainEncoder = {"plain", encodeImage};

const EncoderKernel& encoderFor(InstructionSet level) {
    switch (level) {
        case InstructionSet::avx2:
            return avx2Encoder;
        case InstructionSet::sse41:
            return sse41Encoder;
        case InstructionSet::baseline:
            break;
    }
    return plainEncoder;
}

}  // namespace dxtn

std::uint32_t CompressDXTn(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           const DXTMode* mode) {
    using namespace dxtn;
    if (width == nullptr || height == nullptr || mode == nullptr) return 0;
    const std::uint32_t size = *width * *height >> (*mode == 1 ? 1 : 0);
    if (pixels == nullptr || out == nullptr) return size;
    if (!isWholeBlocks(*width, *height, *mode)) return 0;
    encoderFor(detectInstructionSet())
        .encode(static_cast<const std::uint8_t*>(pixels), static_cast<std::uint8_t*>(out), *width, *height, *mode);
    return size;
}

}  // namespace moktexture
