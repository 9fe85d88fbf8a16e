#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "moktc/fast/MOKTCCompressor.h"
#include "moktc/fast/fast_compressor.h"

namespace {

using namespace moktexture;
using namespace moktexture::moktc;

constexpr std::uint32_t passes = 8;

template <class Compressor>
void encode(benchmark::State& state, const BenchPicture& picture, Rate rate, const FastKernels& kernels) {
    // Sides of pictures are multiples of 4; what exceeds a multiple of the block is left out.
    ConstImageView image = packedImage(picture.rgba.data(), picture.width, picture.height);
    image.width -= image.width % blockWidth(rate);
    const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
    std::vector<std::uint8_t> blocks(pixels * bitsPerPixel(rate) / 8);
    for (auto _ : state) {
        Compressor compressor(image, kernels);
        compressor.setIterations(passes);
        compressor.initialise(true);
        MOKTCCompressorDriver(compressor, 1).run();
        compressor.writeBlocks(blocks.data(), true);
        benchmark::ClobberMemory();
    }
    countPixels(state, pixels);
}

template <class Compressor>
void registerEncoder(const BenchPicture& picture, Rate rate, const FastKernels& kernels) {
    const std::string name = "moktc/" + std::to_string(bitsPerPixel(rate)) + "bpp/fast encode/" + kernels.name;
    benchmark::RegisterBenchmark((name + "/" + picture.name).c_str(), [&picture, rate, &kernels](benchmark::State& state) {
        encode<Compressor>(state, picture, rate, kernels);
    });
}

}  // namespace

/// On one thread, so that figures of different machines can be compared.
void registerMOKTCEncodeBenchmarks(const std::vector<BenchPicture>& pictures) {
    for (const BenchPicture& picture : pictures) {
        registerEncoder<MOKTC4bppCompressor>(picture, Rate::fourBpp, scalarFastKernels);
        registerEncoder<MOKTC4bppCompressor>(picture, Rate::fourBpp, fastKernels());
        if (picture.width < blockWidth(Rate::twoBpp)) continue;
        registerEncoder<MOKTC2bppCompressor>(picture, Rate::twoBpp, scalarFastKernels);
        registerEncoder<MOKTC2bppCompressor>(picture, Rate::twoBpp, fastKernels());
    }
}
