#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "moktc/amtc/evaluation/region_evaluator.h"
#include "support/test_images.h"

namespace {

using namespace moktexture;
using namespace moktexture::amtc;
using testimages::Random;

/// Random footprints, colours and neighbours' modes: smooth ones, and extremes that no picture has.
class RandomScenes {
public:
    RandomScenes(std::uint32_t bitsPerPixel, std::uint32_t generation, std::uint64_t seed)
        : settings(makeLevelSettings(64, 64, {Rate(bitsPerPixel), Generation(generation - 1)})), random(seed) {}

    BlendTable randomTable() {
        RegionModeList modes;
        const std::uint32_t count = ListRegionModes(settings, true, modes), common = random.below(count);
        const auto mode = [&] { return modes[random.below(2) == 0 ? common : random.below(count)]; };
        std::array<BlockRecord, 9> blocks{};
        Neighbourhood neighbours;
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            blocks[i].bestMode = mode();
            neighbours[i] = &blocks[i];
        }
        BlendTable table{};
        CreateBlendingAndUpdateWeights(mode(), neighbours, random.below(8), settings, table);
        return table;
    }

    std::uint32_t randomPixel(std::uint32_t kind, std::uint32_t base) {
        const std::uint32_t any = random.next(), alike = base ^ (any & 0x07070707), extreme = (any & 0x01010101) * 255;
        const std::uint32_t pixels[] = {any, base, alike, extreme, any & 0xFFFFFF, any | 0xFF000000};
        return pixels[kind];
    }

    Footprint randomFootprint() {
        Footprint footprint{};
        const std::uint32_t kind = random.below(7), base = random.next(), other = random.next();
        for (std::uint32_t i = 0; i < settings.footprintPixels(); ++i)
            footprint[i] = kind < 6 ? randomPixel(kind, base) : (i % settings.footprintWidth < 6 ? base : other);
        return footprint;
    }

    NeighbourColours randomColours(const Footprint& footprint) {
        NeighbourColours colours;
        const std::uint32_t kind = random.below(7), base = random.next();
        const auto colour = [&] { return kind < 6 ? randomPixel(kind, base) : footprint[random.below(81)]; };
        for (ColourPair& pair : colours)
            pair = {colour(), colour()};
        return colours;
    }

    /// The segments of the footprint, or other labels: one, two or three connected ones, one a pixel, or at random.
    Segments randomSegments(const Footprint& footprint) {
        Segments segments{};
        const std::uint32_t kind = random.below(6), split = random.below(81);
        SegmentFootprint(footprint, settings, segments.labels, segments.order);
        for (std::uint32_t i = 0; i < 81 && kind > 1; ++i) {
            const std::uint32_t lump = i % 9 > split % 9, border = i < 9 || i >= 72;
            const std::uint32_t labels[] = {0, border * 2 + lump, i, random.below(1 + split)};
            segments.labels[i] = static_cast<std::uint8_t>(labels[kind - 2]);
        }
        std::stable_sort(segments.order.begin(), segments.order.begin() + 81,
                         [&](std::uint8_t a, std::uint8_t b) { return segments.labels[a] < segments.labels[b]; });
        return segments;
    }

    AmtcLevelSettings settings;
    Random random;
};

/// The errors, then the sums by interpolation weight.
using Results = std::vector<std::int64_t>;

Results evaluated(const RegionEvaluator& evaluator, const NeighbourColours& colours, bool firstPass) {
    RegressionSums sums;
    sums.levelCount.fill(77);  // must be cleared
    const RegionError error = evaluator.evaluate(colours, firstPass, sums);
    Results results = {error.inner, error.outer};
    for (std::size_t value = 0; value <= 8; ++value) {
        const ColourDifference& residual = sums.levelResidual[value];
        results.insert(results.end(), {sums.levelCount[value], sums.levelWeight[value]});
        results.insert(results.end(), residual.begin(), residual.end());
    }
    return results;
}

/// Compares over one table and footprint, with several sets of colours and a first pass that need not come first.
void compareForms(RandomScenes& scenes, bool withSegments) {
    const BlendTable table = scenes.randomTable();
    const Footprint footprint = scenes.randomFootprint();
    const Segments segments = withSegments ? scenes.randomSegments(footprint) : Segments{};
    const Segments* const shared = withSegments ? &segments : nullptr;
    const RegionEvaluator scalar(scenes.settings, table, footprint, shared, InstructionSet::sse41);
    const RegionEvaluator fast(scenes.settings, table, footprint, shared, detectInstructionSet());
    ASSERT_EQ(scalar.form(), InstructionSet::baseline);
    ASSERT_EQ(fast.form() == InstructionSet::avx2, detectInstructionSet() == InstructionSet::avx2);
    for (int round = 0; round < 4; ++round) {
        const NeighbourColours colours = scenes.randomColours(footprint);
        const bool firstPass = scenes.random.below(2) == 0;
        ASSERT_EQ(evaluated(fast, colours, firstPass), evaluated(scalar, colours, firstPass)) << "first pass: " << firstPass;
    }
}

TEST(AmtcRegionEvaluator, AllFormsGiveTheScalarFormsErrorsAndSums) {
    for (const std::uint32_t generation : {1u, 2u})
        for (const auto& [bitsPerPixel, withSegments] : {std::pair(4u, false), std::pair(4u, true), std::pair(2u, false)}) {
            SCOPED_TRACE(testing::Message() << bitsPerPixel << " bpp, generation " << generation << ", segments "
                                            << withSegments);
            RandomScenes scenes(bitsPerPixel, generation, bitsPerPixel + generation);
            for (int i = 0; i < 1500 && !HasFatalFailure(); ++i)
                compareForms(scenes, withSegments);
        }
}

}  // namespace
