#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "moktc/amtc/refinement/candidate_refinement.h"
#include "support/test_images.h"

namespace moktexture::amtc {
namespace {

using testimages::Random;

constexpr std::int32_t half = 1 << 17;  // two levels of this weight: residuals count 1/2048 each

struct SolverCase {
    const char* name;
    struct {
        std::size_t value;
        std::int32_t count, weight;
        ColourDifference residual;
    } levels[2];
    EndpointDeltas expected;
};

// clang-format off
const SolverCase solverCases[] = {
    {"each end follows its own residual", {{0, 5, half, {2048, -1024, 0, 4096}}, {8, 5, half, {1024, 0, -2048, 0}}},
     {{1, -0.5f, 0, 2}, {0.5f, 0, -1, 0}, true}},
    {"slope held to 20", {{3, 1, half, {-40960, 40960, 0, -128}}, {4, 1, half, {40960, -40960, 0, 128}}},
     {{-8.75f, 8.75f, 0, -0.4375f}, {11.25f, -11.25f, 0, 0.5625f}, true}},
    {"A alone", {{0, 9, 1000, {6143, 0, -4096, 2048}}}, {{6143 / 4096.0f, 0, -1, 0.5f}, {}, false}},
    {"B alone, large from 1.5", {{8, 9, 1000, {0, -6144, 0, 0}}}, {{}, {0, -1.5f, 0, 0}, true}},
    {"one level between", {{5, 1, 64, {4096, 0, 0, -2048}}}, {{1, 0, 0, -0.5f}, {1, 0, 0, -0.5f}, false}},
    {"a level without weight counts, but gives no slope", {{0, 2, 64, {4096, 0, 0, 0}}, {8, 3, 0, {9999, 1, 2, 3}}},
     {{1, 0, 0, 0}, {1, 0, 0, 0}, false}},
    {"weight without pixels does not count", {{0, 1, 64, {4096, 0, 0, 0}}, {8, 0, 64, {4096, 0, 0, 0}}},
     {{0.5f / (1 - 64 / 262144.0f), 0, 0, 0}, {}, false}},
    {"a level outweighed by 2^18 says nothing", {{0, 1, 1 << 18, {}}, {8, 1, 1 << 10, {1 << 30, 0, 0, 0}}}, {{}, {}, false}},
    {"the ignored level is not in use", {{9, 40, 5000, {4096, 0, 0, 0}}}, {{}, {}, true}},
    {"weights that cancel", {{0, 1, 64, {4096, 0, 0, 0}}, {8, 1, -64, {4096, 0, 0, 0}}}, {{}, {}, true}},
};
// clang-format on

TEST(AmtcSolver, GivesTheDeltasWorkedOutByHand) {
    for (const SolverCase& solver : solverCases) {
        LevelSums sums;
        for (const auto& level : solver.levels) {
            sums.levelCount[level.value] += level.count;
            sums.levelWeight[level.value] += level.weight;
            if (level.count != 0) sums.levelResidual[level.value] = level.residual;
        }
        const EndpointDeltas deltas = SolveEndpointDeltas(sums);
        EXPECT_TRUE(deltas.a == solver.expected.a && deltas.b == solver.expected.b) << solver.name;
        EXPECT_EQ(deltas.isLargeStep, solver.expected.isLargeStep) << solver.name;
    }
}

/// Axes turned by 45 degrees in red and green.
Rep turnedRep(float least, float greatest) {
    const float root = std::sqrt(0.5f);
    Rep rep{};
    rep.axes = {{{root, root, 0, 0}, {-root, root, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    rep.projMin.fill(least);
    rep.projMax.fill(greatest);
    return rep;
}

TEST(AmtcSteps, ClampingMovesColoursOntoTheBoxAndNoFurther) {
    const float root = std::sqrt(0.5f);
    const struct {
        float least, greatest;
        ColourVector colour, held;
    } cases[] = {
        {20, 200, {90.3f, 120.7f, 33.3f, 200}, {90.3f, 120.7f, 33.3f, 200}},  // inside: every bit stays
        {20, 200, {240, 250, 10, 255}, {180 * root, 220 * root, 20, 200}},
        {100, 0, {50, 50, 50, -50}, {0, 200 * root, 100, 100}},  // the lower bound wins
    };
    for (const auto& [least, greatest, colour, held] : cases) {
        ColourVector clamped = colour;
        ClampToRep(turnedRep(least, greatest), clamped);
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            EXPECT_NEAR(clamped[channel], held[channel], colour == held ? 0 : 1e-3) << colour[0] << ", channel " << channel;
    }
}

TEST(AmtcSteps, PerturbationFollowsTheLineAndTellsWhetherAnythingMoved) {
    const Rep box = turnedRep(90, 160);
    const Candidate blackAndWhite = {0xFF000000, 0xFFFFFFFF};
    const struct {
        std::size_t index;
        bool isHeld, moves;
        std::uint32_t channel, a, b;
    } cases[] = {
        {0, false, false, 1, 0, 255},  // longer, but held to 0 to 255
        {7, false, true, 1, 255, 0},
        {8, false, true, 1, 96, 159},
        {7, true, true, 2, 160, 90},
    };
    for (const auto& [index, isHeld, moves, channel, a, b] : cases) {
        Candidate result{};
        const StepRules rules = {box, isHeld, Generation::first, false};
        EXPECT_EQ(MakePerturbedCandidate(blackAndWhite, rules, PerturbationTable[index], result), moves) << index;
        EXPECT_NEAR(channelOf(result.colourA, channel), a, 17) << index;
        EXPECT_NEAR(channelOf(result.colourB, channel), b, 17) << index;
    }
}

TEST(AmtcSteps, LargeStepsMoveOnBytesUntilTheLastOnes) {
    const Rep rep{};
    const StepRules rules = {rep, false, Generation::second, false};
    const ColourPair pair = {0xFF606060, 0xFFA0A0A0};
    const EndpointDeltas large = {{5.4f, 5.6f, -300, 0}, {0, 0, 0, 9}, true},
                         meeting = {{32, 32, 32, 0}, {-32, -32, -32, 0}, true};
    EXPECT_EQ(followDeltas(pair, large, Step::coarse, rules), (ColourPair{0xFF006665, 0xFFA0A0A0}));
    EXPECT_EQ(followDeltas(pair, large, Step::fine, rules), makeStorable({0xFF006665, 0xFFA0A0A0}, rules));
    const EndpointDeltas small = {large.a, large.b, false};
    EXPECT_EQ(followDeltas(pair, small, Step::coarse, rules), makeStorable({0xFF006665, 0xFFA0A0A0}, rules));
    const ColourPair split = followDeltas(pair, meeting, Step::coarse, rules);
    EXPECT_NE(split.a, split.b) << "equal colours are parted";
}

struct BlockCase {
    std::uint32_t bitsPerPixel, mode;
    bool usesSegments;
    std::uint32_t across, down;
};
constexpr BlockCase blockCases[] = {
    {4, 0, false, 4, 4}, {4, 1, false, 4, 4}, {4, 2, false, 2, 2},  {4, 3, false, 4, 4},  {4, 0, true, 4, 4},
    {4, 1, true, 4, 4},  {4, 3, true, 4, 4},  {4, 0, false, 1, 4},  {4, 0, true, 4, 1},   {4, 2, false, 1, 1},
    {2, 8, false, 4, 4}, {2, 9, false, 4, 4}, {2, 10, false, 4, 4}, {2, 15, false, 4, 4}, {2, 11, false, 1, 2},
};

/// A block with random neighbours and the pixels of a generated image.
struct Block {
    Block(testimages::Kind kind, const BlockCase& how)
        : settings(makeLevelSettings(8, 8, {Rate(how.bitsPerPixel), Generation::second})),
          rules{rep, true, Generation::second, how.mode == region_mode::punchThrough} {
        settings.blocksAcross = how.across;
        settings.blocksDown = how.down;
        usesSegments = how.usesSegments;
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
    const Segments* sharedLevels() const { return usesSegments ? &segments : nullptr; }
    RefinementRegion region() const { return {settings, table, footprint, sharedLevels(), neighbourColours, rules}; }
    /// The pair's error where all neighbours are others, or the block itself.
    RegionError errorOf(const ColourPair& colours) const {
        NeighbourColours around = neighbourColours;
        for (std::size_t i = 0; i < around.size(); ++i) {
            if ((settings.blocksAcross == 1 || i % 3 == 1) && (settings.blocksDown == 1 || i / 3 == 1)) around[i] = colours;
        }
        LevelSums sums;
        return RegionEvaluator(settings, table, footprint, sharedLevels(), {}).evaluate(around, true, sums);
    }

    Random random{77};
    AmtcLevelSettings settings;
    Rep rep = turnedRep(0, 400);
    Footprint footprint{};
    Segments segments{};
    BlendTable table;
    NeighbourColours neighbourColours;
    StepRules rules;
    bool usesSegments;
};

TEST(AmtcRefinement, TakesTheLastPairUnlessTheSearchGotWorseOrCameBack) {
    std::size_t returned = 0, lastThoughNotBest = 0, retried = 0;
    PairCache slots, plainSlots(false);
    const auto follow = [&](Block& block) {
        const RefinementRegion region = block.region();
        EvaluatedPairs pairs(region, {}, slots), plain(region, {}, plainSlots);
        const auto errorOf = [&](const ColourPair& pair) { return block.errorOf(pair).inner; };
        for (std::uint32_t i = 0; i < 96; ++i) {  // more pairs than there is room for
            ColourPair start = block.pair();
            for (std::uint32_t step = 0; step < i % 16; ++step)  // nearer to where the search rests, or goes in circles
                start = plain.move(plain.evaluate(start, false), Step::coarse);
            if (i % 2 != 0) start.a ^= block.random.next() & 0x070707;  // not storable, though decoded alike
            const std::uint32_t iterations = 1 + i / 16;

            std::vector<ColourPair> walk = {start};
            std::vector<std::uint32_t> errors = {errorOf(start)};
            while (walk.size() < iterations && (walk.size() == 1 || walk.back() != start)) {
                const Step step = walk.size() + 1 < iterations ? Step::coarse : Step::fine;
                walk.push_back(plain.move(plain.evaluate(walk.back(), false), step));
                errors.push_back(errorOf(walk.back()));
            }
            ColourPair expected = errors.back() > errors[0] ? start : walk.back();
            const auto last = errors.end() - (iterations > 1);
            const std::size_t best = std::min_element(errors.begin(), last) - errors.begin();
            returned += walk.size() < iterations;
            lastThoughNotBest += expected != start && errors.back() > errors[best];
            const ColourPair retry = makeStorable(walk[best], block.rules);
            if (iterations > 2 && walk.size() == iterations && errors[iterations - 2] > errors[best] && retry != start &&
                errorOf(retry) < errorOf(expected)) {
                expected = retry;
                ++retried;
            }
            for (EvaluatedPairs* form : {&pairs, &plain}) {
                Candidate candidate = {start.a, start.b};
                OptimiseRegion(candidate, iterations, *form);
                EXPECT_EQ(candidate.colours(), expected) << i;
                EXPECT_EQ(candidate.error, errorOf(expected) + block.errorOf(start).outer) << i;
            }
        }
    };
    for (const BlockCase& how : blockCases) {
        for (const testimages::Kind kind : {testimages::Kind::edges, testimages::Kind::gradient, testimages::Kind::noise}) {
            SCOPED_TRACE(testing::Message() << testimages::nameOf(kind) << ", case " << &how - blockCases);
            Block block(kind, how);
            follow(block);
        }
    }
    EXPECT_GT(returned, 10u);
    EXPECT_GT(lastThoughNotBest, 10u);
    EXPECT_GT(retried, 10u);
}

}  // namespace
}  // namespace moktexture::amtc
