#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_pictures.h"
#include "etc1/etc1.h"
#include "etc1/etc1_encoder.h"

namespace {

using namespace moktexture;

constexpr std::uint32_t qualities = 6;

/// The plain searches take minutes a megapixel: encoders work on the middle rows of blocks, as many as fit in so many pixels.
constexpr std::uint32_t measuredPixels = 1u << 16, plainMeasuredPixels = 1u << 11;

struct Rows {
    const std::uint8_t* pixels;
    std::uint32_t width;
    std::uint32_t height;
};

Rows middleRows(const BenchPicture& picture, std::uint32_t pixels) {
    const std::uint32_t fitting = pixels / picture.width / 4 * 4;
    const std::uint32_t height = fitting < 4 ? 4 : fitting < picture.height ? fitting : picture.height;
    const std::size_t first = (picture.height - height) / 8 * 4;
    return {picture.rgba.data() + first * picture.width * 4, picture.width, height};
}

void copy(benchmark::State& state, const BenchPicture& picture) {
    std::vector<std::uint8_t> target(picture.rgba.size());
    for (auto _ : state) {
        std::memcpy(target.data(), picture.rgba.data(), target.size());
        benchmark::ClobberMemory();
    }
    countPixels(state, std::uint64_t{picture.width} * picture.height);
}

void encode(benchmark::State& state, const Rows& rows, std::uint32_t quality, const etc1::EncoderForm& form) {
    std::vector<std::uint8_t> blocks(std::size_t{rows.width} * rows.height / 2);
    for (auto _ : state) {
        etc1::encodeLevel(rows.pixels, blocks.data(), {rows.width, rows.height}, quality, form);
        benchmark::ClobberMemory();
    }
    countPixels(state, std::uint64_t{rows.width} * rows.height);
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

void registerEncoder(const BenchPicture& picture, std::uint32_t quality, const etc1::EncoderForm& form, std::uint32_t pixels) {
    const std::string name = "etc1/encode/quality" + std::to_string(quality) + "/" + form.name + "/" + picture.name;
    benchmark::RegisterBenchmark(name.c_str(), [&picture, quality, &form, pixels](benchmark::State& state) {
        encode(state, middleRows(picture, pixels), quality, form);
    });
}

}  // namespace

void registerETC1Benchmarks(const std::vector<BenchPicture>& pictures) {
    for (const BenchPicture& picture : pictures) {
        benchmark::RegisterBenchmark(("etc1/memcpy/" + picture.name).c_str(),
                                     [&picture](benchmark::State& state) { copy(state, picture); });
        benchmark::RegisterBenchmark(("etc1/decode/" + picture.name).c_str(),
                                     [&picture](benchmark::State& state) { decode(state, picture); });
        for (std::uint32_t quality = 0; quality < qualities; ++quality) {
            registerEncoder(picture, quality, etc1::plainEncoder, plainMeasuredPixels);
            registerEncoder(picture, quality, etc1::boundedEncoder, measuredPixels);
        }
    }
}
