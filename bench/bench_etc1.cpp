#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "core/base/pixel_block.h"
#include "etc1/etc1.h"
#include "etc1/etc1_encoder.h"
#include "reference/etc1_reference_search.h"

namespace {

using namespace moktexture;

constexpr std::uint32_t qualities = 6;

/// Encoders work on as many rows of blocks from the middle as fit in so many pixels; the exhaustive reference takes minutes a
/// megapixel.
constexpr std::uint32_t measuredPixels = 1u << 16, referencePixels = 1u << 11;

ConstImageView middleRows(const BenchPicture& picture, std::uint32_t pixels) {
    const std::uint32_t fitting = pixels / picture.width / 4 * 4;
    const std::uint32_t height = fitting < 4 ? 4 : fitting < picture.height ? fitting : picture.height;
    const std::size_t first = (picture.height - height) / 8 * 4;
    return packedImage(picture.rgba.data() + first * picture.width * 4, picture.width, height);
}

void encode(benchmark::State& state, const ConstImageView& image, std::uint32_t quality) {
    std::vector<std::uint8_t> blocks(std::size_t{image.width} * image.height / 2);
    for (auto _ : state) {
        CompressETC1(image.pixels, blocks.data(), &image.width, &image.height, quality);
        benchmark::ClobberMemory();
    }
    countPixels(state, std::uint64_t{image.width} * image.height);
}

/// The reference of qualities 2 to 5.
void searchExhaustively(benchmark::State& state, const ConstImageView& image, std::uint32_t quality) {
    const int radius = quality < 4 ? etc1::narrowRadius : etc1::wideRadius;
    const etc1::ErrorMetric metric = quality % 2 == 0 ? etc1::ErrorMetric::uniform : etc1::ErrorMetric::perceptual;
    for (auto _ : state) {
        for (std::size_t y = 0; y < image.height; y += blockEdge) {
            for (std::size_t x = 0; x < image.width; x += blockEdge)
                benchmark::DoNotOptimize(etc1::CompressBlockSearchReference(loadBlock(image, x, y), radius, metric));
        }
    }
    countPixels(state, std::uint64_t{image.width} * image.height);
}

void decode(benchmark::State& state, const BenchPicture& picture) {
    std::vector<std::uint8_t> blocks(CompressETC1(nullptr, nullptr, &picture.width, &picture.height, 1));
    CompressETC1(picture.rgba.data(), blocks.data(), &picture.width, &picture.height, 1);
    std::vector<std::uint8_t> pixels(picture.rgba.size());
    for (auto _ : state) {
        DecompressETC1(blocks.data(), pixels.data(), &picture.width, &picture.height);
        benchmark::ClobberMemory();
    }
    countPixels(state, std::uint64_t{picture.width} * picture.height);
}

void registerEncoders(const BenchPicture& picture, std::uint32_t quality) {
    const std::string name = "etc1/encode/quality" + std::to_string(quality);
    benchmark::RegisterBenchmark((name + "/" + picture.name).c_str(), [&picture, quality](benchmark::State& state) {
        encode(state, middleRows(picture, measuredPixels), quality);
    });
    if (quality < 2) return;
    benchmark::RegisterBenchmark((name + "/reference/" + picture.name).c_str(), [&picture, quality](benchmark::State& state) {
        searchExhaustively(state, middleRows(picture, referencePixels), quality);
    });
}

}  // namespace

void registerETC1Benchmarks(const std::vector<BenchPicture>& pictures) {
    for (const BenchPicture& picture : pictures) {
        registerCopyBenchmark("etc1", picture);
        benchmark::RegisterBenchmark(("etc1/decode/" + picture.name).c_str(),
                                     [&picture](benchmark::State& state) { decode(state, picture); });
        for (std::uint32_t quality = 0; quality < qualities; ++quality)
            registerEncoders(picture, quality);
    }
}
