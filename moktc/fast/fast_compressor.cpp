#include "moktc/fast/fast_compressor.h"

#include <memory>

#include "moktc/fast/MOKTC2bppCompressor.h"
#include "moktc/fast/MOKTC4bppCompressor.h"
#include "moktc/fast/MOKTCCompressorDriver.h"

namespace moktexture::moktc {
namespace {

std::unique_ptr<MOKTCCompressor> createCompressor(const void* pixels, std::uint32_t width, std::uint32_t height, bool is2bpp,
                                                  const FastKernels& kernels) {
    if (is2bpp) return std::make_unique<MOKTC2bppCompressor>(pixels, width, height, kernels);
    return std::make_unique<MOKTC4bppCompressor>(pixels, width, height, kernels);
}

}  // namespace

// Kept: `hasAlpha` plays no part, so a texture without alpha may get translucent blocks; its pixels say what it holds.
std::uint32_t CompressMOKTCFast(const void* pixels, void* out, std::uint32_t width, std::uint32_t height, bool /*hasAlpha*/,
                                bool wideFootprint, bool is2bpp, std::uint32_t iterations, const FastKernels& kernels,
                                std::uint32_t threads) {
    if (width < blockWidth(is2bpp) || height < blockHeight) return 0;
    const std::unique_ptr<MOKTCCompressor> compressor = createCompressor(pixels, width, height, is2bpp, kernels);
    compressor->setIterations(iterations);
    compressor->initialise(wideFootprint);
    MOKTCCompressorDriver(*compressor, threads).run();
    compressor->writeBlocks(out, true);
    return width * height >> (is2bpp ? 2 : 1);
}

}  // namespace moktexture::moktc
