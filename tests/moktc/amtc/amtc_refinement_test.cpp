#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "moktc/amtc/refinement/candidate_refinement.h"
#include "support/test_images.h"

namespace moktexture::amtc {
namespace {

using testimages::Random;

constexpr std::int32_t half = 1 << 17;  // with two weights of this influence a residual is divided by 2048

struct SolverCase {
    const char* name;
    struct {
        std::size_t value;  ///< interpolation weight
        std::int32_t count, influence;
        ColourDifference residual;
    } weights[2];
    EndpointDeltas expected;
};

// clang-format off
const SolverCase solverCases[] = {
    {"each end follows its own residual", {{0, 5, half, {2048, -1024, 0, 4096}}, {8, 5, half, {1024, 0, -2048, 0}}},
     {{1, -0.5f, 0, 2}, {0.5f, 0, -1, 0}, true}},
    {"slope limited to 20", {{3, 1, half, {-40960, 40960, 0, -128}}, {4, 1, half, {40960, -40960, 0, 128}}},
     {{-8.75f, 8.75f, 0, -0.4375f}, {11.25f, -11.25f, 0, 0.5625f}, true}},
    {"A alone", {{0, 9, 1000, {6143, 0, -4096, 2048}}}, {{6143 / 4096.0f, 0, -1, 0.5f}, {}, false}},
    {"B alone, large from 1.5", {{8, 9, 1000, {0, -6144, 0, 0}}}, {{}, {0, -1.5f, 0, 0}, true}},
    {"one weight between", {{5, 1, 64, {4096, 0, 0, -2048}}}, {{1, 0, 0, -0.5f}, {1, 0, 0, -0.5f}, false}},
    {"pixels without influence count, but give no slope", {{0, 2, 64, {4096, 0, 0, 0}}, {8, 3, 0, {9999, 1, 2, 3}}},
     {{1, 0, 0, 0}, {1, 0, 0, 0}, false}},
    {"influence without pixels does not count", {{0, 1, 64, {4096, 0, 0, 0}}, {8, 0, 64, {4096, 0, 0, 0}}},
     {{0.5f / (1 - 64 / 262144.0f), 0, 0, 0}, {}, false}},
    {"an interpolation weight outweighed by 2^18 has no effect", {{0, 1, 1 << 18, {}}, {8, 1, 1 << 10, {1 << 30, 0, 0, 0}}}, {{}, {}, false}},
    {"the ignored value is not in use", {{9, 40, 5000, {4096, 0, 0, 0}}}, {{}, {}, true}},
    {"influences that cancel", {{0, 1, 64, {4096, 0, 0, 0}}, {8, 1, -64, {4096, 0, 0, 0}}}, {{}, {}, true}},
};
// clang-format on

TEST(AmtcSolver, SolvesForTheDeltasWorkedOutByHand) {
    for (const SolverCase& solver : solverCases) {
        RegressionSums sums;
        for (const auto& weight : solver.weights) {
            sums.levelCount[weight.value] += weight.count;
            sums.levelWeight[weight.value] += weight.influence;
            if (weight.count != 0) sums.levelResidual[weight.value] = weight.residual;
        }
        const EndpointDeltas deltas = SolveEndpointDeltas(sums);
        EXPECT_EQ(deltas.a, solver.expected.a) << solver.name;
        EXPECT_EQ(deltas.b, solver.expected.b) << solver.name;
        EXPECT_EQ(deltas.isLargeStep, solver.expected.isLargeStep) << solver.name;
    }
}

TEST(AmtcSteps, LargeCoarseStepsEndOnBytesAndAllOthersOnStorableColours) {
    const Rep rep{};
    const StepRules rules = {rep, false, Generation::second, false};
    const ColourPair pair = {0xFF606060, 0xFFA0A0A0};
    const EndpointDeltas large = {{5.4f, 5.6f, -300, 0}, {0, 0, 0, 9}, true},
                         meeting = {{32, 32, 32, 0}, {-32, -32, -32, 0}, true};
    EXPECT_EQ(applyDeltas(pair, large, Step::coarse, rules), (ColourPair{0xFF006665, 0xFFA0A0A0}));
    EXPECT_EQ(applyDeltas(pair, large, Step::fine, rules), makeStorable({0xFF006665, 0xFFA0A0A0}, rules));
    const EndpointDeltas small = {large.a, large.b, false};
    EXPECT_EQ(applyDeltas(pair, small, Step::coarse, rules), makeStorable({0xFF006665, 0xFFA0A0A0}, rules));
    const ColourPair split = applyDeltas(pair, meeting, Step::coarse, rules);
    EXPECT_NE(split.a, split.b) << "equal colours are split";
}

struct BlockCase {
    std::uint32_t bitsPerPixel, mode;
    bool usesSegments;
    std::uint32_t across, down;
};
constexpr BlockCase blockCases[] = {{4, 0, false, 4, 4}, {4, 1, false, 4, 4}, {4, 2, false, 2, 2},  {4, 3, false, 4, 4},
                                    {4, 0, false, 1, 4}, {4, 2, false, 1, 1}, {4, 1, true, 4, 4},   {4, 3, true, 4, 4},
                                    {4, 0, true, 4, 1},  {2, 8, false, 4, 4}, {2, 15, false, 4, 4}, {2, 11, false, 1, 2}};

/// A block with random neighbours and the pixels of a generated image.
struct Block {
    Block(testimages::Kind kind, const BlockCase& how)
        : settings(makeLevelSettings(8, 8, {Rate(how.bitsPerPixel), Generation::second})),
          rules{rep, true, Generation::second, how.mode == region_mode::punchThrough},
          shared(how.usesSegments ? &segments : nullptr) {
        settings.blocksAcross = how.across;
        settings.blocksDown = how.down;
        rep.axes = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
        rep.projMax.fill(200);
        const std::vector<std::uint8_t> pixels = testimages::make(kind, settings.footprintWidth, settings.footprintHeight);
        std::memcpy(footprint.data(), pixels.data(), pixels.size());
        segments.count = SegmentFootprint(footprint, settings, segments.labels, segments.order);
        std::array<BlockRecord, 9> records{};
        Neighbourhood neighbours;
        for (std::size_t i = 0; i < neighbours.size(); ++i) {
            neighbours[i] = &records[i];
            records[i].bestMode = how.bitsPerPixel == 4 ? random.below(4) : 8 + random.below(8);
            neighbourColours[i] = pair();
        }
        CreateBlendingAndUpdateWeights(how.mode, neighbours, 0, settings, table);
    }

    ColourPair pair() { return makeStorable({random.next() | 0xFF000000, random.next() | 0xFF000000}, rules); }
    RefinementRegion region() const { return {settings, table, footprint, shared, neighbourColours, rules}; }
    /// The pair's error by a full evaluation, with the pair wherever the grid makes the block its own neighbour.
    RegionError errorOf(const ColourPair& colours) const {
        NeighbourColours around = neighbourColours;
        for (std::size_t i = 0; i < around.size(); ++i) {
            if ((settings.blocksAcross == 1 || i % 3 == 1) && (settings.blocksDown == 1 || i / 3 == 1)) around[i] = colours;
        }
        RegressionSums sums;
        return RegionEvaluator(settings, table, footprint, shared, {}).evaluate(around, true, sums);
    }

    Random random{77};
    AmtcLevelSettings settings;
    Rep rep{};
    Footprint footprint{};
    Segments segments{};
    BlendTable table;
    NeighbourColours neighbourColours;
    StepRules rules;
    const Segments* shared;
};

/// Follows one search through its coarse steps and holds what OptimiseRegion() gives against it.
struct SearchCheck {
    void operator()(Block& block, CachedEvaluator& evaluator, const ColourPair& start, std::uint32_t iterations) {
        Candidate candidate = {start.a, start.b};
        OptimiseRegion(candidate, iterations, evaluator);
        const ColourPair found = candidate.colours();
        const auto errorOf = [&](const ColourPair& pair) { return block.errorOf(pair).inner; };
        EXPECT_EQ(candidate.error, errorOf(found) + block.errorOf(start).outer);
        EXPECT_LE(errorOf(found), errorOf(start));
        EXPECT_EQ(found == start ? found : makeStorable(found, block.rules), found);

        const RefinementRegion region = block.region();
        PairCache empty;
        CachedEvaluator another(region, {}, empty);
        Candidate again = {start.a, start.b};
        OptimiseRegion(again, iterations, another);
        EXPECT_EQ(again.colours(), found) << "whatever the cache holds";

        std::vector<ColourPair> walk = {start};
        while (walk.size() + 1 < iterations && (walk.size() == 1 || walk.back() != start))
            walk.push_back(evaluator.move(evaluator.evaluate(walk.back(), false), Step::coarse));
        const auto isBetter = [&](const ColourPair& a, const ColourPair& b) { return errorOf(a) < errorOf(b); };
        const ColourPair best = *std::min_element(walk.begin(), walk.end(), isBetter);
        if (iterations == 1 || (walk.size() > 1 && walk.back() == start)) {
            EXPECT_EQ(found, start) << "no step, or back at the start";
            returned += walk.size() > 1;
        } else if (errorOf(walk.back()) > errorOf(best)) {
            EXPECT_LE(errorOf(found), errorOf(makeStorable(best, block.rules))) << "the second chance";
            ++secondChances;
        }
        notBest += found != start && errorOf(found) > errorOf(best);
    }

    std::size_t returned = 0, secondChances = 0, notBest = 0;
};

TEST(AmtcRefinement, EndsOnAStorablePairThatIsNoWorseThanTheStart) {
    SearchCheck check;
    PairCache shared;
    for (const BlockCase& how : blockCases) {
        for (const testimages::Kind kind : {testimages::Kind::edges, testimages::Kind::gradient, testimages::Kind::text}) {
            SCOPED_TRACE(testing::Message() << testimages::nameOf(kind) << ", case " << &how - blockCases);
            Block block(kind, how);
            const RefinementRegion region = block.region();
            CachedEvaluator evaluator(region, {}, shared);
            for (std::uint32_t i = 0; i < 96; ++i) {  // more pairs than the cache holds
                ColourPair start = block.pair();
                for (std::uint32_t step = 0; step < i % 16; ++step)  // nearer to where the search converges, or cycles
                    start = evaluator.move(evaluator.evaluate(start, false), Step::coarse);
                if (i % 2 != 0) start.a ^= block.random.next() & 0x070707;  // not storable, though decoded alike
                check(block, evaluator, start, 1 + i / 16);
            }
        }
    }
    EXPECT_GT(check.returned, 10u);
    EXPECT_GT(check.secondChances, 10u);
    EXPECT_GT(check.notBest, 10u) << "the last pair wins, not the best";
}

}  // namespace
}  // namespace moktexture::amtc
