#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "moktc/amtc/evaluation/region_evaluator.h"

namespace {

using namespace moktexture;
using namespace moktexture::amtc;

/// What is evaluated: a region mode among neighbours of the same.
struct Evaluated {
    const char* name;
    std::uint32_t bitsPerPixel, mode;
    bool withSegments;
};
constexpr Evaluated allEvaluated[] = {
    {"4bpp/standard", 4, region_mode::standard, false},
    {"4bpp/punch-through", 4, region_mode::punchThrough, false},
    {"4bpp/corner palette", 4, region_mode::cornerPalette, false},
    {"4bpp/segments", 4, region_mode::standard, true},
    {"2bpp/direct", 2, region_mode::direct, false},
    {"2bpp/average", 2, region_mode::average, false},
};

/// One block of a picture. Its neighbours' colours are their corner pixels.
struct Scene {
    Scene(const BenchPicture& picture, const AmtcLevelSettings& settings, std::uint32_t left, std::uint32_t top) {
        const auto pixelAt = [&](std::uint32_t x, std::uint32_t y) {
            const std::uint8_t* p = &picture.rgba[(std::size_t{y % picture.height} * picture.width + x % picture.width) * 4];
            return p[0] | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[3]} << 24;
        };
        for (std::uint32_t i = 0; i < settings.footprintPixels(); ++i)
            footprint[i] = pixelAt(left + i % settings.footprintWidth, top + i / settings.footprintWidth);
        for (std::uint32_t i = 0; i < colours.size(); ++i) {
            const std::uint32_t x = left + i % 3 * settings.blockWidth, y = top + i / 3 * settings.blockHeight;
            colours[i] = {pixelAt(x, y), pixelAt(x + settings.blockWidth - 1u, y + settings.blockHeight - 1u)};
        }
        if (settings.bitsPerPixel == 4) segments.count = SegmentFootprint(footprint, settings, segments.labels, segments.order);
    }

    Footprint footprint{};
    NeighbourColours colours{};
    Segments segments{};
};

/// A few blocks spread over the picture.
std::vector<Scene> scenesOf(const BenchPicture& picture, const AmtcLevelSettings& settings) {
    std::vector<Scene> scenes;
    for (std::uint32_t i = 0; i < 16; ++i)
        scenes.emplace_back(picture, settings, picture.width * (i % 4) / 4 + i, picture.height * (i / 4) / 4 + 2 * i);
    return scenes;
}

BlendTable tableOf(const Evaluated& evaluated, const AmtcLevelSettings& settings) {
    BlockRecord block{};
    block.bestMode = evaluated.mode;
    Neighbourhood neighbours;
    neighbours.fill(&block);
    BlendTable table{};
    CreateBlendingAndUpdateWeights(evaluated.mode, neighbours, 0, settings, table);
    return table;
}

/// `evaluations` of each block after one preparation: 0 measures the preparation alone.
void evaluate(benchmark::State& state, const BenchPicture& picture, const Evaluated& evaluated, InstructionSet instructionSet,
              int evaluations) {
    const AmtcLevelSettings settings = makeLevelSettings(64, 64, {Rate(evaluated.bitsPerPixel), Generation::second});
    const std::vector<Scene> scenes = scenesOf(picture, settings);
    const BlendTable table = tableOf(evaluated, settings);
    for (auto _ : state) {
        for (const Scene& scene : scenes) {
            const RegionEvaluator evaluator(settings, table, scene.footprint, evaluated.withSegments ? &scene.segments : nullptr,
                                            instructionSet);
            benchmark::DoNotOptimize(evaluator);
            RegressionSums sums;
            for (int i = 0; i < evaluations; ++i) {
                benchmark::DoNotOptimize(evaluator.evaluate(scene.colours, i == 0, sums));
                benchmark::ClobberMemory();
            }
        }
    }
    const std::size_t blockPixels = std::size_t{settings.blockWidth} * settings.blockHeight;
    const std::size_t passes = evaluations == 0 ? 1 : static_cast<std::size_t>(evaluations);
    countPixels(state, scenes.size() * blockPixels * passes);
    const double perIteration = static_cast<double>(scenes.size() * passes) * static_cast<double>(state.iterations());
    state.counters["each"] = benchmark::Counter(perIteration, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

}  // namespace

/// For the first picture: the time of one evaluation ("each"; one in twenty with the outer ring) in every form, and that of
/// laying out the lanes.
void registerAmtcEvaluationBenchmarks(const std::vector<BenchPicture>& pictures) {
    const BenchPicture& picture = pictures.front();
    for (const Evaluated& evaluated : allEvaluated) {
        for (const InstructionSet instructionSet : {InstructionSet::baseline, InstructionSet::avx2}) {
            if (instructionSet > detectInstructionSet()) continue;
            for (const int evaluations : {20, 0}) {
                if (instructionSet == InstructionSet::baseline && evaluations == 0) continue;
                const std::string work = evaluations == 0 ? "amtc/lane layout/" : "amtc/evaluation/";
                const std::string form = instructionSet == InstructionSet::baseline ? "scalar" : "AVX2";
                benchmark::RegisterBenchmark((work + evaluated.name + "/" + form).c_str(),
                                             [&picture, &evaluated, instructionSet, evaluations](benchmark::State& state) {
                                                 evaluate(state, picture, evaluated, instructionSet, evaluations);
                                             });
            }
        }
    }
}
