#include <benchmark/benchmark.h>

#include <string>

#include "bench_pictures.h"
#include "moktc/block/block_order.h"
#include "moktc/block/moktc_block.h"
#include "moktc/moktc.h"
#include "reference/moktc_decoders.h"

namespace {

using namespace moktexture;

struct Format {
    const char* name;
    bool is2bpp;
    std::uint32_t secondGeneration;
};
constexpr Format formats[] = {{"4bpp", false, 0}, {"2bpp", true, 0}, {"II-4bpp", false, 1}, {"II-2bpp", true, 1}};

std::uint64_t pixelsOf(const BenchPicture& picture) {
    return std::uint64_t{picture.width} * picture.height;
}

/// The blocks that the fast compressor writes for a picture, in the second generation without flat blocks; zeroes if it refuses
/// the size.
std::vector<std::uint8_t> encoded(const BenchPicture& picture, const Format& format) {
    const std::uint64_t count =
        moktc::levelBlockCount(picture.width, picture.height, {moktc::rateOf(format.is2bpp), moktc::Generation::first});
    std::vector<std::uint8_t> blocks(count * moktc::bytesPerBlock);
    CompressMOKTC(picture.rgba.data(), blocks.data(), &picture.width, &picture.height, false, format.is2bpp, 0, 0);
    for (std::size_t offset = 0; format.secondGeneration != 0 && offset < blocks.size(); offset += moktc::bytesPerBlock) {
        moktc::Block block = moktc::readBlock(&blocks[offset]);
        block.colours &= ~moktc::flatBit;
        moktc::writeBlock(&blocks[offset], block);
    }
    return blocks;
}

void decode(benchmark::State& state, const BenchPicture& picture, const Format& format) {
    const std::vector<std::uint8_t> blocks = encoded(picture, format);
    std::vector<std::uint8_t> pixels(picture.rgba.size());
    for (auto _ : state) {
        DecompressMOKTC(blocks.data(), pixels.data(), &picture.width, &picture.height, format.is2bpp, &format.secondGeneration);
        benchmark::ClobberMemory();
    }
    countPixels(state, pixelsOf(picture));
}

void decodeByReference(benchmark::State& state, const BenchPicture& picture, const Format& format) {
    const std::vector<std::uint8_t> blocks = encoded(picture, format);
    std::vector<std::uint8_t> pixels(picture.rgba.size());
    for (auto _ : state) {
        if (format.secondGeneration != 0) {
            moktc::DecodeLinear(blocks.data(), format.is2bpp, picture.width, picture.height, pixels.data());
        } else {
            moktc::DecodeTwiddled(blocks.data(), format.is2bpp, picture.width, picture.height, pixels.data());
        }
        benchmark::ClobberMemory();
    }
    countPixels(state, pixelsOf(picture));
}

}  // namespace

void registerMOKTCBenchmarks(const std::vector<BenchPicture>& pictures) {
    for (const BenchPicture& picture : pictures) {
        registerCopyBenchmark("moktc", picture);
        for (const Format& format : formats) {
            const std::string name = std::string("moktc/") + format.name;
            benchmark::RegisterBenchmark((name + "/decode/" + picture.name).c_str(),
                                         [&](benchmark::State& state) { decode(state, picture, format); });
            benchmark::RegisterBenchmark((name + "/decode/reference/" + picture.name).c_str(),
                                         [&](benchmark::State& state) { decodeByReference(state, picture, format); });
        }
    }
}
