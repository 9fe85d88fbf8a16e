#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "moktc/block/moktc_block.h"
#include "moktc/fast/fast_compressor.h"

namespace {

using namespace moktexture::moktc;

constexpr std::uint32_t passes = 8;

void encode(benchmark::State& state, const BenchPicture& picture, bool is2bpp, const FastKernels& kernels) {
    // Sides of pictures are multiples of 4; what they have beyond a multiple of the block is left out.
    const std::uint32_t width = picture.width / blockWidth(is2bpp) * blockWidth(is2bpp);
    std::vector<std::uint8_t> pixels;
    for (std::size_t y = 0; y < picture.height; ++y) {
        const auto row = picture.rgba.begin() + static_cast<std::ptrdiff_t>(y * picture.width * bytesPerPixel);
        pixels.insert(pixels.end(), row, row + static_cast<std::ptrdiff_t>(width * bytesPerPixel));
    }
    std::vector<std::uint8_t> blocks(pixels.size() / (is2bpp ? 16 : 8));
    for (auto _ : state) {
        CompressMOKTCFast(pixels.data(), blocks.data(), width, picture.height, true, true, is2bpp, passes, kernels, 1);
        benchmark::ClobberMemory();
    }
    countPixels(state, std::uint64_t{width} * picture.height);
}

}  // namespace

/// On one thread, so that figures of machines compare.
void registerMOKTCEncodeBenchmarks(const std::vector<BenchPicture>& pictures) {
    for (const BenchPicture& picture : pictures) {
        for (const bool is2bpp : {false, true}) {
            if (picture.width < blockWidth(is2bpp)) continue;
            for (const FastKernels* kernels : {&plainFastKernels, &sse2FastKernels}) {
                const std::string format = is2bpp ? "moktc/2bpp/fast encode/" : "moktc/4bpp/fast encode/";
                benchmark::RegisterBenchmark(
                    (format + kernels->name + "/" + picture.name).c_str(),
                    [&picture, is2bpp, kernels](benchmark::State& state) { encode(state, picture, is2bpp, *kernels); });
            }
        }
    }
}
