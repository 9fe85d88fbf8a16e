#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "dxtn/dxtn.h"
#include "dxtn/dxtn_kernels.h"
#include "reference/dxtn_reference_axis.h"

namespace {

using namespace moktexture;

constexpr DXTMode measuredModes[] = {1, 3, 5};

std::uint64_t pixelsOf(const BenchPicture& picture) {
    return std::uint64_t{picture.width} * picture.height;
}

std::vector<std::uint8_t> encoded(const BenchPicture& picture, DXTMode mode) {
    std::vector<std::uint8_t> blocks(CompressDXTn(nullptr, nullptr, &picture.width, &picture.height, &mode));
    CompressDXTn(picture.rgba.data(), blocks.data(), &picture.width, &picture.height, &mode);
    return blocks;
}

void encode(benchmark::State& state, const BenchPicture& picture, DXTMode mode, const dxtn::EncoderKernel& kernel) {
    std::vector<std::uint8_t> blocks = encoded(picture, mode);
    const ConstImageView image = packedImage(picture.rgba.data(), picture.width, picture.height);
    for (auto _ : state) {
        kernel.encode(image, blocks.data(), mode);
        benchmark::ClobberMemory();
    }
    countPixels(state, pixelsOf(picture));
}

/// The axis search of one block at a time, in scalar code.
void searchAxes(benchmark::State& state, const BenchPicture& picture) {
    const ConstImageView image = packedImage(picture.rgba.data(), picture.width, picture.height);
    for (auto _ : state) {
        for (std::size_t y = 0; y < image.height; y += blockEdge) {
            for (std::size_t x = 0; x < image.width; x += blockEdge)
                benchmark::DoNotOptimize(dxtn::encodeAlongAxisReference(loadBlock(image, x, y), 0));
        }
    }
    countPixels(state, pixelsOf(picture));
}

void decode(benchmark::State& state, const BenchPicture& picture, DXTMode mode) {
    const std::vector<std::uint8_t> blocks = encoded(picture, mode);
    std::vector<std::uint8_t> pixels(picture.rgba.size());
    for (auto _ : state) {
        DecompressDXTn(blocks.data(), pixels.data(), &picture.width, &picture.height, &mode);
        benchmark::ClobberMemory();
    }
    countPixels(state, pixelsOf(picture));
}

}  // namespace

void registerDXTnBenchmarks(const std::vector<BenchPicture>& pictures) {
    const InstructionSet detected = detectInstructionSet();
    for (const BenchPicture& picture : pictures) {
        registerCopyBenchmark("dxtn", picture);
        benchmark::RegisterBenchmark(("dxtn/axis/reference/" + picture.name).c_str(),
                                     [&picture](benchmark::State& state) { searchAxes(state, picture); });
        for (const DXTMode mode : measuredModes) {
            const std::string format = "dxtn/DXT" + std::to_string(mode);
            for (const InstructionSet set : {InstructionSet::baseline, InstructionSet::sse41, InstructionSet::avx2}) {
                if (set > detected) continue;
                const dxtn::EncoderKernel& kernel = dxtn::encoderFor(set);
                benchmark::RegisterBenchmark(
                    (format + "/encode/" + kernel.name + "/" + picture.name).c_str(),
                    [&picture, mode, &kernel](benchmark::State& state) { encode(state, picture, mode, kernel); });
            }
            benchmark::RegisterBenchmark((format + "/decode/" + picture.name).c_str(),
                                         [&picture, mode](benchmark::State& state) { decode(state, picture, mode); });
        }
    }
}
