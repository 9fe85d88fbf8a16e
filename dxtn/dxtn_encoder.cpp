#include <algorithm>

#include "dxtn/dxtn.h"
#include "dxtn/dxtn_axis_lanes.h"
#include "dxtn/dxtn_block.h"
#include "dxtn/dxtn_kernels.h"

// The encoder's method, the same in all kernels. Blocks are independent and encoded in one pass:
//
//   for each block:
//       modes 2, 3:  alpha block = the top 4 bits of each pixel's alpha
//       modes 4, 5:  a0, a1 = greatest and smallest alpha; each pixel takes the nearest of the eight steps between them
//       transparent = mode 1: the pixels of alpha 0
//       by the number of different colours in 5-6-5 form:
//           1, 2:    they are the endpoints
//           more:    endpoints along the principal axis of the colours (dxtn_axis_lanes.h)
//
// The order of the endpoints selects four colours or, in a block with transparent pixels, three and transparent black: in that
// case c0 is the smaller one. There is no refit of endpoints after the indices are known.
//
// The axis takes most of the time. It is computed for several blocks side by side: blocks of more than two colours wait in a
// batch until it is full. The kernels differ in the width of that batch and in how they do the rest. The one in this file serves
// every processor: alpha and blocks of one or two colours in scalar code, other colours four blocks side by side in the
// compiler's own vectors.

namespace moktexture {
namespace dxtn {
namespace {

using Colours565 = std::array<std::uint16_t, blockArea>;

constexpr std::uint32_t alphaOf(std::uint32_t rgba) {
    return rgba >> 24;
}

/// The alpha block of modes 2 and 3: the top 4 bits of each pixel's alpha.
/// Kept (dxtn-alpha-truncates): truncated, not rounded to the nearest, so that alpha 8 becomes 0; blocks that are encoded again
/// would differ from those in stored DXT2 and DXT3 files.
std::uint64_t EncodeExplicitAlpha(const PixelBlock& pixels) {
    std::uint64_t word = 0;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel)
        word |= std::uint64_t{alphaOf(pixels[pixel]) >> 4} << 4 * pixel;
    return word;
}

/// The alpha block of modes 4 and 5: the greatest and the smallest alpha, and for each pixel the nearest of the eight steps
/// between them; halves round up. A block of one alpha has indices 0.
std::uint64_t EncodeInterpolatedAlpha(const PixelBlock& pixels) {
    // The format puts the endpoints first. Column: step from the smallest alpha to the greatest.
    constexpr std::uint64_t indexOfStep[8] = {1, 7, 6, 5, 4, 3, 2, 0};
    std::uint32_t smallest = 255, greatest = 0;
    for (const std::uint32_t pixel : pixels) {
        smallest = std::min(smallest, alphaOf(pixel));
        greatest = std::max(greatest, alphaOf(pixel));
    }
    const std::uint32_t range = greatest - smallest;
    std::uint64_t word = greatest | smallest << 8;
    if (range == 0) return word;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel) {
        const std::uint32_t step = (14 * (alphaOf(pixels[pixel]) - smallest) + range) / (2 * range);
        word |= indexOfStep[step] << (16 + 3 * pixel);
    }
    return word;
}

/// Bit i is set where pixel i has alpha 0.
std::uint32_t transparentPixels(const PixelBlock& pixels) {
    std::uint32_t mask = 0;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel)
        mask |= std::uint32_t{alphaOf(pixels[pixel]) == 0} << pixel;
    return mask;
}

/// The different 5-6-5 colours of a block, as far as they are counted.
struct DistinctColours {
    int count;  ///< 1, 2, or 3 for all above 2
    std::uint16_t first;
    std::uint16_t second;  ///< equal to `first` if there is only one
};

/// Counts the colours, those of transparent pixels too.
DistinctColours CountDistinctColours(const Colours565& colours) {
    DistinctColours distinct = {1, colours[0], colours[0]};
    for (const std::uint16_t colour : colours) {
        if (colour == distinct.first || colour == distinct.second) continue;
        if (distinct.count == 2) return {3, distinct.first, distinct.second};
        distinct = {2, distinct.first, colour};
    }
    return distinct;
}

/// Index 3 for transparent pixels, 1 for others of colour `c1`, 0 for the rest.
std::uint32_t indicesByColour(const Colours565& colours, std::uint16_t c1, std::uint32_t transparent) {
    std::uint32_t indices = 0;
    for (std::size_t pixel = 0; pixel < blockArea; ++pixel) {
        const std::uint32_t index = transparent >> pixel & 1 ? 3 : colours[pixel] == c1 ? 1 : 0;
        indices |= index << 2 * pixel;
    }
    return indices;
}

/// The colour block of one or two colours.
ColourBlock encodeFewColours(const Colours565& colours, const DistinctColours& distinct, std::uint32_t transparent) {
    const bool hasTransparency = transparent != 0;
    if (distinct.count == 1 && !hasTransparency) return {distinct.first, 0, 0};
    if (distinct.count == 1) return {0, distinct.first, indicesByColour(colours, distinct.first, transparent)};
    const auto [smaller, larger] = std::minmax(distinct.first, distinct.second);
    const std::uint16_t c0 = hasTransparency ? smaller : larger;
    const std::uint16_t c1 = hasTransparency ? larger : smaller;
    return {c0, c1, indicesByColour(colours, c1, transparent)};
}

/// Writes the colour block, or adds the block to the batch, which writes it later.
void encodeColours(Batch<FourLanes>& batch, const PixelBlock& block, std::uint32_t transparent, std::uint8_t* out) {
    Colours565 colours;
    std::transform(block.begin(), block.end(), colours.begin(), packRGB565);
    const DistinctColours distinct = CountDistinctColours(colours);
    if (distinct.count <= 2) return writeWord(out, packColourBlock(encodeFewColours(colours, distinct, transparent)));
    append<FourLanes>(batch, block.data(), transparent, out);
    if (batch.filled == FourLanes::count) flush<FourLanes>(batch);
}

void encodeImage(const ConstImageView& image, std::uint8_t* out, DXTMode mode) {
    const AlphaBlock alpha = alphaBlockOf(mode);
    Batch<FourLanes> batch;
    for (std::size_t y = 0; y < image.height; y += blockEdge) {
        for (std::size_t x = 0; x < image.width; x += blockEdge) {
            const PixelBlock block = loadBlock(image, x, y);
            // Kept (dxtn-premultiplied-encode): the premultiplied modes 2 and 4 are encoded like 3 and 5. Callers of `Transcode`
            // multiply with `PreMultiplyAlpha` beforehand; multiplying here would do it twice.
            if (alpha != AlphaBlock::none) {
                const bool isExplicit = alpha == AlphaBlock::explicitBits;
                writeWord(out, isExplicit ? EncodeExplicitAlpha(block) : EncodeInterpolatedAlpha(block));
                out += wordBytes;
            }
            encodeColours(batch, block, mode == 1 ? transparentPixels(block) : 0, out);
            out += wordBytes;
        }
    }
    if (batch.filled > 0) flush<FourLanes>(batch);
}

}  // namespace

const EncoderKernel baselineEncoder = {"baseline", encodeImage};

const EncoderKernel& encoderFor([[maybe_unused]] InstructionSet instructionSet) {
#if MOKTEX_X86_KERNELS
    if (instructionSet == InstructionSet::avx2) return avx2Encoder;
    if (instructionSet == InstructionSet::sse41) return sse41Encoder;
#endif
    return baselineEncoder;
}

}  // namespace dxtn

std::uint32_t CompressDXTn(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           const DXTMode* mode) {
    using namespace dxtn;
    if (width == nullptr || height == nullptr || mode == nullptr) return 0;
    const std::uint32_t size = *width * *height >> (*mode == 1 ? 1 : 0);
    if (pixels == nullptr || out == nullptr) return size;
    if (!isWholeBlocks(*width, *height, *mode)) return 0;
    const EncoderKernel& kernel = encoderFor(detectInstructionSet());
    kernel.encode(packedImage(pixels, *width, *height), static_cast<std::uint8_t*>(out), *mode);
    return size;
}

}  // namespace moktexture
