#include "moktc/fast/fast_compressor.h"

#include <memory>

#include "core/base/parallel.h"
#include "moktc/fast/MOKTC2bppCompressor.h"
#include "moktc/fast/MOKTC4bppCompressor.h"
#include "moktc/fast/MOKTCCompressorDriver.h"

// The fast compressor
//
// The format blends two upscaled images of one colour per block, by one weight per pixel. With known weights the best colours are
// a least squares problem, and with known colours the best weight of each pixel is found by trying all of them. The compressor
// alternates the two:
//
//     for each block: colours A, B = the two pixels furthest apart in and around the block     (MOKTCCompressor)
//     upscale A and B to full size
//     for each block: choose the index of each pixel, and the modulation mode                 (fast_kernels)
//     repeat 8 times
//         for each block: move A and B by a least squares fit of the residuals                 (colour_fit)
//         upscale A and B
//         for each block: choose indices and mode again
//     write all blocks, colours truncated to the bits of their fields
//
// There is no search among candidates, no best result is kept, and each pass overwrites the one before, so the loop ends after a
// fixed number of passes. The time is linear in the number of pixels; the memory is 12 bytes per pixel (the source and both
// upscaled images) and the blocks' records. The passes are divided among threads by MOKTCCompressorDriver.
//
// Two approximations make it fast: a fit treats a block's colours as if they reached only its own pixels, and it ignores
// that colours will be quantised to 3 to 5 bits when they are written.

namespace moktexture::moktc {
namespace {

std::unique_ptr<MOKTCCompressor> createCompressor(const ConstImageView& image, Rate rate) {
    if (rate == Rate::twoBpp) return std::make_unique<MOKTC2bppCompressor>(image, fastKernels());
    return std::make_unique<MOKTC4bppCompressor>(image, fastKernels());
}

}  // namespace

bool encodeFast(const FastRequest& request, std::uint8_t* blocks) {
    if (request.image.width < blockWidth(request.rate) || request.image.height < blockHeight) return false;
    const std::unique_ptr<MOKTCCompressor> compressor = createCompressor(request.image, request.rate);
    compressor->setIterations(request.passes);
    compressor->initialise(request.wideFootprint);
    MOKTCCompressorDriver(*compressor, request.threads).run();
    compressor->writeBlocks(blocks, true);
    return true;
}

// Kept (fast-encoder-ignores-has-alpha): `hasAlpha` has no effect, so a texture in an RGB format gets translucent blocks where
// its pixels are translucent. Transcode() passes the same pixels to the RGB and the RGBA format, and both give the same bytes.
std::uint32_t CompressMOKTCFast(const void* pixels, void* out, std::uint32_t width, std::uint32_t height, bool /*hasAlpha*/,
                                bool wideFootprint, bool is2bpp, std::uint32_t iterations) {
    const Rate rate = rateOf(is2bpp);
    const FastRequest request = {packedImage(pixels, width, height), rate, wideFootprint, iterations, availableThreads()};
    return encodeFast(request, static_cast<std::uint8_t*>(out)) ? width * height * bitsPerPixel(rate) / 8 : 0;
}

}  // namespace moktexture::moktc
