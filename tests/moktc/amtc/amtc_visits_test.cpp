#include <gtest/gtest.h>

#include <cstring>

#include "moktc/amtc/driver/block_passes.h"
#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/driver/pack_local_block.h"
#include "moktc/amtc/refinement/mode_refinement.h"
#include "moktc/amtc/refinement/visit_block.h"
#include "support/test_images.h"

namespace moktexture::amtc {
namespace {

using testimages::Kind;

struct Grid {
    std::uint32_t across, down, bitsPerPixel, secondGeneration;
};
constexpr Grid fourByFour = {4, 4, 4, 1};

/// A level after its set-up passes, with the settings of a late sweep.
class Level {
public:
    Level(Kind kind, const Grid& grid) : image(makeWorkImage()) {
        const std::uint32_t width = grid.across * 16 / grid.bitsPerPixel, height = grid.down * 4;
        image->Width = static_cast<std::int32_t>(width);
        image->Height = static_cast<std::int32_t>(height);
        const std::vector<std::uint8_t> pixels = testimages::make(kind, width, height);
        for (std::uint32_t y = 0; y < height; ++y)
            std::memcpy(image->Pixels[y], pixels.data() + std::size_t{4} * width * y, std::size_t{4} * width);
        settings = makeLevelSettings(image->Width, image->Height, {Rate(grid.bitsPerPixel), Generation(grid.secondGeneration)});
        SetSweepSettings(1, 4, 3, settings, settings);
        settings.forceVisit = 1;
        AllocateBlockRows(image->Width, image->Height, settings.blockWidth, settings.blockHeight, rows);
        const FootprintKernels kernels = makeFootprintKernels(settings);
        for (const std::uint32_t pass : {0u, 1u})
            RunBlockPass(pass, *image, settings, kernels.centre, kernels.sharp, kernels.smooth, 1, rows);
    }
    Level(const Level&) = delete;
    ~Level() { FreeBlockRows(rows); }

    /// In the scalar form, with no mode skipped as converged.
    BlockRecord& visit(std::uint32_t row, std::uint32_t column, std::uint32_t step) {
        rows[row][column].convergedModes = 0;
        VisitBlockRefine({*image, settings, rows, row, column}, step, InstructionSet::baseline, *space);
        return rows[row][column];
    }
    void visitPhase(std::uint32_t firstRow, std::uint32_t firstColumn, std::uint32_t step) {
        for (std::uint32_t row = firstRow; row < settings.blocksDown; row += 2) {
            for (std::uint32_t column = firstColumn; column < settings.blocksAcross; column += 2)
                visit(row, column, step);
        }
    }
    template <class Look>
    void forEach(const Look& look) {
        for (std::uint32_t row = 0; row < settings.blocksDown; ++row) {
            for (std::uint32_t column = 0; column < settings.blocksAcross; ++column)
                look(rows[row][column], row, column);
        }
    }
    using Blocks = std::vector<std::array<std::uint8_t, 8>>;
    Blocks packed() {
        Blocks blocks;
        forEach([&](const BlockRecord&, std::uint32_t row, std::uint32_t column) {
            PackLocalBlock(*image, rows, settings, row, column, blendTable, blocks.emplace_back().data());
        });
        return blocks;
    }
    /// With 0 threads by CompressLevel(), on as many as the machine has.
    Blocks compressed(std::uint32_t quality, std::uint32_t threads) const {
        Blocks blocks(std::size_t{settings.blocksAcross} * settings.blocksDown);
        const EncodeOptions options = {.variant = {Rate(settings.bitsPerPixel), settings.generation()},
                                       .linearBlockOrder = true,
                                       .quality = quality,
                                       .threads = threads};
        if (threads != 0) {
            EXPECT_TRUE(encodeLevel(*image, options, blocks.front().data()));
        } else {
            EXPECT_EQ(CompressLevel(*image, 4, settings.bitsPerPixel, settings.secondGeneration, blocks.front().data(), 1,
                                    static_cast<std::uint8_t>(quality), nullptr),
                      1u);
        }
        return blocks;
    }

    WorkImage image;
    AmtcLevelSettings settings;
    BlockRows rows;
    BlendTable blendTable;
    std::unique_ptr<VisitSpace> space = std::make_unique<VisitSpace>(blendTable);
};

TEST(AmtcPasses, GiveTheBytesOfASerialWalkOnAnyNumberOfThreads) {
    constexpr Grid grids[] = {{4, 4, 4, 1}, {3, 7, 4, 0}, {3, 3, 2, 1}, {1, 5, 4, 1}, {4, 2, 2, 0}, {1, 2, 2, 1}, {2, 67, 4, 0}};
    for (const Grid& grid : grids) {
        const std::uint32_t quality = grid.across == 3 ? 2 : 1;
        Level level(Kind::edges, grid);
        for (std::uint32_t sweep = 0, step = 1; sweep < sweepCount(quality); ++sweep) {
            const AmtcLevelSettings previous = level.settings;
            SetSweepSettings(quality, sweepCount(quality), sweep, level.settings, previous);
            for (const auto& [firstRow, firstColumn] : {std::pair{0u, 0u}, {1u, 1u}, {0u, 1u}, {1u, 0u}})
                level.visitPhase(firstRow, firstColumn, step++);
        }
        for (const std::uint32_t threads : {0u, 1u, 2u, 32u})
            EXPECT_EQ(level.compressed(quality, threads), level.packed())
                << grid.across << " by " << grid.down << ", " << threads << " threads";
    }
}

TEST(AmtcPasses, DoNotRefineImagesOneBlockHigh) {
    Level level(Kind::edges, {4, 1, 4, 1});
    EXPECT_EQ(level.compressed(1, 2), level.packed());
    level.visitPhase(0, 0, 1);
    EXPECT_NE(level.compressed(1, 2), level.packed());
}

TEST(AmtcVisits, SkipABlockWhoseNeighboursHaveNotChanged) {
    const auto isVisited = [](std::uint32_t across, std::uint32_t ownChange, std::uint32_t neighbourChange, bool isForced) {
        Level level(Kind::edges, {across, 4, 4, 1});
        level.settings.forceVisit = isForced;
        level.rows[0][across - 1].lastChanged = neighbourChange;  // across the left edge
        level.rows[1][0].lastChanged = ownChange;
        level.rows[1][0].lastVisited = 8;
        return level.visit(1, 0, 20).lastVisited == 20;
    };
    EXPECT_FALSE(isVisited(4, 6, 7, false)) << "neighbours unchanged";
    EXPECT_TRUE(isVisited(4, 0, 8, false)) << "a neighbour changed in the same step";
    EXPECT_FALSE(isVisited(4, 8, 7, false)) << "its own change does not count";
    EXPECT_TRUE(isVisited(1, 8, 7, false)) << "it is its own neighbour";
    EXPECT_TRUE(isVisited(4, 0, 0, true)) << "forced";
}

TEST(AmtcVisits, KeepTheBestCandidatesInOrderAndRecordChanges) {
    for (const Kind kind : testimages::allKinds) {
        Level level(kind, {3, 4, 4, 1});
        for (std::uint32_t step = 1; step <= 4; ++step) {
            level.settings.refineIterations = step == 4 ? 1 : 3;  // one iteration counts as a change
            level.forEach([&](const BlockRecord& block, std::uint32_t row, std::uint32_t column) {
                const BlockRecord before = block;
                level.visit(row, column, step);
                bool hasChanged = block.bestMode != before.bestMode || step == 4;
                for (std::size_t mode = 0; mode < 4; ++mode) {
                    const RepStart& record = block.repStarts[mode];
                    hasChanged |= record.candidates[0].colours() != before.repStarts[mode].candidates[0].colours();
                    EXPECT_GE(record.candidates[0].error, block.best().error + (mode < block.bestMode)) << "earlier modes win";
                    ASSERT_GE(record.count, 1u);
                    ASSERT_LE(record.count, maxCandidates);
                    for (std::size_t i = 1; i < record.count; ++i) {
                        EXPECT_LE(record.candidates[i - 1].error, record.candidates[i].error);
                        EXPECT_NE(record.candidates[i - 1].colours(), record.candidates[i].colours());
                    }
                }
                EXPECT_EQ(block.lastChanged == step, hasChanged);
            });
        }
    }
}

TEST(AmtcVisits, TakeTheBestOfAllVariantsOfTheNeighboursModes) {
    std::size_t better = 0;
    for (const Kind kind : testimages::allKinds) {
        Level one(kind, fourByFour), eight(kind, fourByFour);
        eight.settings.neighbourModeVariants = 1;
        const std::uint32_t error = eight.visit(2, 1, 1).best().error, errorOfOne = one.visit(2, 1, 1).best().error;
        EXPECT_LE(error, errorOfOne);
        better += error < errorOfOne;
    }
    EXPECT_GT(better, 0u);
}

TEST(AmtcVisits, ShareIndicesBySegmentsWhereBlockAndSweepAllowIt) {
    const auto errorWith = [](std::uint32_t segmentable, std::uint32_t useSegments) {
        Level level(Kind::gradient, fourByFour);
        level.rows[1][1].segmentable = segmentable;
        level.settings.useSegments = useSegments;
        return level.visit(1, 1, 1).best().error;
    };
    EXPECT_EQ(errorWith(1, 0), errorWith(0, 0));
    EXPECT_EQ(errorWith(0, 1), errorWith(0, 0));
    EXPECT_GT(errorWith(1, 1), errorWith(0, 0)) << "fewer choices";
}

TEST(AmtcVisits, ScoreFlatStartsAndTheFirstSweepWithoutRefining) {
    for (const bool isFlat : {true, false}) {
        Level level(Kind::edges, fourByFour);
        level.settings.refineIterations = isFlat ? 8 : 1;
        for (RepStart& record : level.rows[1][1].repStarts)
            record.isFlatStart = isFlat;
        const BlockRecord before = level.rows[1][1], after = level.visit(1, 1, 1);
        for (std::size_t mode = 0; mode < 4; ++mode) {
            const RepStart &start = before.repStarts[mode], &end = after.repStarts[mode];
            std::vector<ColourPair> known;
            for (std::size_t i = 0; i < start.count; ++i)
                known.push_back(start.candidates[i].colours());
            for (const Candidate& candidate :
                 PerturbedPairs(start.candidates[0], {*start.axes, true, Generation::second, mode == 1}))
                known.push_back(isFlat ? candidate.colours() : known[0]);
            const bool allKnown = std::all_of(end.candidates.begin(), end.candidates.begin() + end.count, [&](const auto& found) {
                return std::count(known.begin(), known.end(), found.colours()) != 0;
            });
            EXPECT_EQ(allKnown, !isFlat || mode != region_mode::cornerPalette) << "the corner palette is refined all the same";
        }
    }
}

TEST(AmtcVisits, AddNewPerturbedPairsAndKeepDuplicatesThatAreNotAdjacent) {
    const Level level(Kind::noise, fourByFour);
    const Candidate blackAndWhite = {0xFF000000, 0xFFFFFFFF};  // extended lines are clamped to the pair itself
    const StepRules rules = {level.rows[0][0].reps[wholeRep], false, Generation::second, false};
    const PerturbedPairs perturbed(blackAndWhite, rules);
    ASSERT_EQ(perturbed.end() - perturbed.begin(), 7);
    RepStart record{};
    record.count = 3;
    record.candidates = {blackAndWhite, perturbed.begin()[0], blackAndWhite};
    const RefinementRegion region = {level.settings, level.blendTable, {}, nullptr, {}, rules};
    CachedEvaluator evaluator(region, {}, level.space->pairCache);
    RefinedCandidates refined;
    refined.addVariant(record, perturbed, 0, evaluator);  // no evaluation: all keep their colours and their order
    EXPECT_FALSE(refined.storeBest(record, maxCandidates));
    EXPECT_EQ(record.candidates[2].colours(), blackAndWhite.colours());
    EXPECT_EQ(record.candidates[3].colours(), perturbed.begin()[1].colours());
}

}  // namespace
}  // namespace moktexture::amtc
