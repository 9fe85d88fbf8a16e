#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

#include "bench_pictures.h"
#include "moktc/amtc/driver/level_pipeline.h"

namespace {

using namespace moktexture::amtc;

struct Format {
    const char* name;
    BlockVariant variant;
};
constexpr Format formats[] = {{"4bpp", {Rate::fourBpp, Generation::first}},
                              {"2bpp", {Rate::twoBpp, Generation::first}},
                              {"II-4bpp", {Rate::fourBpp, Generation::second}},
                              {"II-2bpp", {Rate::twoBpp, Generation::second}}};
constexpr std::int32_t sides[] = {256, 512, 1024};
constexpr std::uint32_t efforts = 5;

/// The picture, repeated or cut to a square.
WorkImage squareOf(const BenchPicture& picture, std::int32_t side) {
    WorkImage image = makeWorkImage();
    image->Width = image->Height = side;
    for (std::int32_t y = 0; y < side; ++y) {
        for (std::int32_t x = 0; x < side; ++x) {
            const std::size_t column = static_cast<std::size_t>(x) % picture.width,
                              row = static_cast<std::size_t>(y) % picture.height;
            const std::uint8_t* pixel = &picture.rgba[4 * (row * picture.width + column)];
            image->Pixels[y][x] = pixel[0] | pixel[1] << 8 | pixel[2] << 16 | static_cast<std::uint32_t>(pixel[3]) << 24;
        }
    }
    return image;
}

void encode(benchmark::State& state, const BenchPicture& picture, const Format& format, std::uint32_t effort, std::int32_t side,
            std::uint32_t threads) {
    const WorkImage image = squareOf(picture, side);
    std::vector<std::uint8_t> blocks(static_cast<std::size_t>(side) * static_cast<std::size_t>(side) *
                                     static_cast<std::size_t>(format.variant.rate) / 8);
    const EncodeOptions options = {.variant = format.variant, .linearBlockOrder = true, .quality = effort, .threads = threads};
    for (auto _ : state)
        encodeLevel(*image, options, blocks.data());
    countPixels(state, static_cast<std::uint64_t>(side) * static_cast<std::uint64_t>(side));
}

/// The stages of one level one after another on one thread, with the time of each as a counter in milliseconds: statistics and
/// starts, the first sweep, which only scores, a sweep with segments, one without, and packing.
void encodeByStages(benchmark::State& state, const BenchPicture& picture, const Format& format, std::int32_t side) {
    const WorkImage image = squareOf(picture, side);
    AmtcLevelSettings settings = makeLevelSettings(side, side, format.variant);
    const FootprintKernels kernels = makeFootprintKernels(settings);
    BlockRows rows;
    AllocateBlockRows(side, side, settings.blockWidth, settings.blockHeight, rows);
    const AmtcThreadContext context = {*image, settings, rows, maxThreads, 1};
    std::uint32_t step = 1;
    const auto sweep = [&](std::uint32_t number) {
        const AmtcLevelSettings previous = settings;
        SetSweepSettings(efforts - 1, 32, number, settings, previous);
        settings.forceVisit = 1;
        for (const ParityPhase& phase : {ParityPhase{0, 0}, {1, 1}, {0, 1}, {1, 0}})
            RunParityPhase(context, phase, step++);
    };
    const auto time = [&](const char* stage, const auto& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        state.counters[stage] = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    for (auto _ : state) {
        time("1 statistics", [&] { RunBlockPass(context, 0, kernels); });
        time("2 starts", [&] { RunBlockPass(context, 1, kernels); });
        time("3 scoring sweep", [&] { sweep(0); });
        time("4 sweep in segments", [&] { sweep(1); });
        time("5 free sweep", [&] { sweep(8); });
        time("6 packing", [&] {
            BlendTable table;
            std::uint8_t block[8];
            for (std::uint32_t row = 0; row < settings.blocksDown; ++row) {
                for (std::uint32_t column = 0; column < settings.blocksAcross; ++column)
                    benchmark::DoNotOptimize(PackLocalBlock(*image, rows, settings, row, column, table, block));
            }
        });
    }
    FreeBlockRows(rows);
}

}  // namespace

/// Efforts are the encoder's own, 0 to 4. One encoding each, as the high ones take minutes.
void registerAmtcBenchmarks(const std::vector<BenchPicture>& pictures) {
    for (const BenchPicture& picture : pictures) {
        for (const Format& format : formats) {
            benchmark::RegisterBenchmark(
                (std::string("amtc/") + format.name + "/stages/512/" + picture.name).c_str(),
                [&picture, format](benchmark::State& state) { encodeByStages(state, picture, format, 512); })
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
            for (std::uint32_t effort = 0; effort < efforts; ++effort) {
                for (const std::int32_t side : sides) {
                    for (const std::uint32_t threads : {1u, 2u}) {
                        const std::string name = std::string("amtc/") + format.name + "/effort " + std::to_string(effort) + "/" +
                                                 std::to_string(side) + "/" + std::to_string(threads) + " threads/" +
                                                 picture.name;
                        benchmark::RegisterBenchmark(name.c_str(),
                                                     [&picture, format, effort, side, threads](benchmark::State& state) {
                                                         encode(state, picture, format, effort, side, threads);
                                                     })
                            ->Iterations(1)
                            ->Unit(benchmark::kMillisecond)
                            ->UseRealTime();
                    }
                }
            }
        }
    }
}
