#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/evaluation/pixel_evaluation.h"
#include "moktc/amtc/host/front_end.h"
#include "moktc/amtc/refinement/visit_block.h"
#include "moktc/amtc/starts/start_candidates.h"
#include "moktc/block/block_order.h"
#include "moktc/moktc.h"
#include "reference/colour_interpolation.h"
#include "support/test_images.h"

namespace moktexture::amtc {
namespace {

using testimages::Kind;

struct Grid {
    std::uint32_t across, down, bitsPerPixel, generation;
};
constexpr Grid fourByFour = {4, 4, 4, 1};

/// A generated image, and records of its blocks that are not set.
struct Level {
    Level(Kind kind, const Grid& grid, std::uint64_t seed = 1)
        : width(grid.across * 16 / grid.bitsPerPixel),
          height(grid.down * 4),
          settings(makeLevelSettings(image->Width = std::int32_t(width), image->Height = std::int32_t(height),
                                     {Rate(grid.bitsPerPixel), Generation(grid.generation)})) {
        const std::vector<std::uint8_t> pixels = testimages::make(kind, width, height, seed);
        for (std::uint32_t y = 0; y < height; ++y)
            std::memcpy(image->Pixels[y], &pixels[y * width * 4], width * 4);
        EXPECT_TRUE(AllocateBlockRows(image->Width, image->Height, settings.blockWidth, settings.blockHeight, rows));
    }
    Level(const Level&) = delete;
    ~Level() { FreeBlockRows(rows); }

    template <class Look>
    void forEach(Look look) {
        for (std::uint32_t i = 0; i < settings.blocksAcross * settings.blocksDown; ++i)
            look(rows[i / settings.blocksAcross][i % settings.blocksAcross], i / settings.blocksAcross,
                 i % settings.blocksAcross);
    }

    WorkImage image = makeWorkImage();
    std::uint32_t width, height;
    AmtcLevelSettings settings;
    BlockRows rows{};
    BlendTable blendTable;
};

/// A level after its set-up passes, with the settings of a late sweep.
struct VisitedLevel : Level {
    VisitedLevel(Kind kind, const Grid& grid) : Level(kind, grid) {
        SetSweepSettings(1, 4, 3, settings, settings);
        settings.forceVisit = 1;
        const FootprintKernels kernels = makeFootprintKernels(settings);
        for (const std::uint32_t pass : {0u, 1u})
            RunBlockPass(pass, *image, settings, kernels.centre, kernels.sharp, kernels.smooth, 1, rows);
    }
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

    std::unique_ptr<VisitSpace> space{new VisitSpace{blendTable}};
};

TEST(AmtcPasses, GiveTheBytesOfASerialWalkOnAnyNumberOfThreads) {
    constexpr Grid grids[] = {{4, 4, 4, 1}, {3, 7, 4, 0}, {3, 3, 2, 1}, {1, 5, 4, 1}, {4, 2, 2, 0}, {1, 2, 2, 1}, {2, 67, 4, 0}};
    for (const Grid& grid : grids) {
        const std::uint32_t quality = grid.across == 3 ? 2 : 1;
        VisitedLevel level(Kind::edges, grid);
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
    VisitedLevel level(Kind::edges, {4, 1, 4, 1});
    EXPECT_EQ(level.compressed(1, 2), level.packed());
    level.visitPhase(0, 0, 1);
    EXPECT_NE(level.compressed(1, 2), level.packed());
}

TEST(AmtcVisits, TakeTheBestOfAllVariantsOfTheNeighboursModes) {
    std::size_t better = 0;
    for (const Kind kind : testimages::allKinds) {
        VisitedLevel one(kind, fourByFour), eight(kind, fourByFour);
        eight.settings.neighbourModeVariants = 1;
        const std::uint32_t error = eight.visit(2, 1, 1).best().error, errorOfOne = one.visit(2, 1, 1).best().error;
        EXPECT_LE(error, errorOfOne);
        better += error < errorOfOne;
    }
    EXPECT_GT(better, 0u);
}

TEST(AmtcVisits, ScoreFlatStartsAndTheFirstSweepWithoutRefining) {
    for (const bool isFlat : {true, false}) {
        VisitedLevel level(Kind::edges, fourByFour);
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
    const VisitedLevel level(Kind::noise, fourByFour);
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

/// A level whose blocks have random storable colours and random region modes.
struct RandomLevel : Level {
    RandomLevel(Kind kind, const Grid& grid, testimages::Random& random) : Level(kind, grid, random.next()) {
        RegionModeList modes{};
        const std::uint32_t count = ListRegionModes(settings, true, modes);
        forEach([&](BlockRecord& block, auto, auto) {
            for (std::uint32_t i = 0; i < count; ++i) {
                moktc::ColourPair pair{};
                moktc::UnpackColours(random.next(), settings.secondGeneration != 0, pair);
                block.repStarts[i].candidates[0] = {moktc::ExpandColour(pair.a), moktc::ExpandColour(pair.b)};
            }
            block.bestMode = modes[random.below(count)];
        });
    }

    /// Packs all blocks, keeps the error that is returned for each, and decodes.
    void pack() {
        std::vector<std::uint8_t> blocks(std::size_t{settings.blocksAcross} * settings.blocksDown * 8);
        forEach([&](const BlockRecord&, std::uint32_t row, std::uint32_t column) {
            const auto index =
                moktc::BlockIndex(settings.blocksAcross, settings.blocksDown, column, row, settings.secondGeneration != 0);
            returnedErrors.push_back(PackLocalBlock(*image, rows, settings, row, column, blendTable, &blocks[8 * index]));
        });
        decoded.resize(std::size_t{width} * height);
        DecompressMOKTC(blocks.data(), decoded.data(), &width, &height, settings.bitsPerPixel == 2, &settings.secondGeneration);
    }

    /// Squared error of the decoded pixels over a rectangle that may wrap.
    std::uint32_t errorOf(std::uint32_t x, std::uint32_t y, std::uint32_t columns, std::uint32_t lines) const {
        std::uint32_t error = 0;
        for (std::uint32_t i = 0; i < columns * lines; ++i) {
            const std::uint32_t u = (x + i % columns) % width, v = (y + i / columns) % height;
            error += squaredDistance(decoded[v * width + u], image->Pixels[v][u]);
        }
        return error;
    }

    void expectEvaluatedAsDecoded(std::uint32_t row, std::uint32_t column) const {
        const Neighbourhood neighbours = gatherNeighbourhood(rows, settings, row, column);
        NeighbourColours colours{};
        std::transform(neighbours.begin(), neighbours.end(), colours.begin(),
                       [](auto* block) { return block->best().colours(); });
        Footprint footprint;
        BlendTable table;
        LoadBlockFootprint(*image, row, column, settings, footprint);
        CreateBlendingAndUpdateWeights(rows[row][column].bestMode, neighbours, 0, settings, table);
        RegressionSums sums;
        const bool is2bpp = settings.bitsPerPixel == 2;
        const RegionError error = (is2bpp ? EvalRegion2bpp : EvalRegion4bpp)(table, footprint, colours, true, sums);
        const std::uint32_t x = column * settings.blockWidth + width - settings.blockWidth / 2u, y = row * 4 + height - 2;
        const std::uint32_t inner = errorOf(x + 1, y + 1, settings.footprintWidth - 2u, settings.footprintHeight - 2u);
        EXPECT_EQ(error.inner, inner);
        if (!is2bpp) {
            EXPECT_EQ(error.outer + inner, errorOf(x, y, settings.footprintWidth, settings.footprintHeight));
        }
    }

    std::vector<std::uint32_t> returnedErrors, decoded;
};

// The error returned for a block and the evaluated error of its footprint are those of the decoder's pixels; at 2 bits per pixel
// those of the outer ring are estimates, as some of its means need samples from beyond it.
TEST(AmtcPacking, ReturnsAndEvaluatesTheErrorsOfTheDecodersPixels) {
    constexpr Grid grids[] = {{2, 2, 4, 0}, {8, 4, 4, 0}, {4, 4, 2, 0}, {2, 8, 2, 0}, {1, 1, 4, 1},
                              {5, 4, 4, 1}, {1, 3, 4, 1}, {1, 1, 2, 1}, {3, 5, 2, 1}, {4, 2, 2, 1}};
    testimages::Random random(6);
    for (std::size_t i = 0; i < 240 && !HasFailure(); ++i) {
        const Kind kind = std::array{Kind::noise, Kind::edges, Kind::softAlpha}[i % 3];
        RandomLevel level(kind, grids[i % 10], random);
        level.pack();
        level.forEach([&, errors = level.returnedErrors.begin()](const BlockRecord& block, auto row, auto column) mutable {
            SCOPED_TRACE(testing::Message() << nameOf(kind) << ", grid " << i % 10 << ", row " << row << ", column " << column
                                            << " in mode " << block.bestMode);
            const std::uint32_t across = level.settings.blockWidth;
            EXPECT_EQ(*errors++, level.errorOf(column * across, row * 4, across, 4));
            level.expectEvaluatedAsDecoded(row, column);
        });
    }
}

TEST(AmtcDeathTest, EndsTheProcessWithFixedMessages) {
    const AmtcLevelSettings oneBit = makeLevelSettings(8, 8, {oneBpp, Generation::first});
    RegionModeList modes;
    EXPECT_DEATH(packColourWord({0, 0}, 0, oneBit), "Exiting! 1BPP mode not yet implemented \\(PackLocalBlock\\)");
    EXPECT_DEATH(ListRegionModes(oneBit, false, modes), "Exiting! 1bpp not yet implemented \\(OptimiseRegion\\)");
    EXPECT_DEATH(startingRegionMode(oneBit, false), "Exiting - 1bpp not yet implemented \\(SetUpStandardRepStarts\\)!");
    BlockRecord block{};
    Neighbourhood neighbours;
    neighbours.fill(&block);
    BlendTable table;
    for (const char* message :
         {"1bpp not yet implemented \\(CreateBlendingAndUpdateWeights", "1bpp not implemented \\(CreateBlending"})
        EXPECT_DEATH(CreateBlendingAndUpdateWeights(0, neighbours, 0, oneBit, table), message);
    requireOneBitIndex(3);
    EXPECT_DEATH(requireOneBitIndex(2), "Special case T00 expected 0 or 3 \\(got 2\\)");
    EXPECT_DEATH(meanClassOf(region_mode::direct), "ERROR: Unexpected Region mode in 2bpp Eval All Cands!");
    EXPECT_DEATH(failToCreateThread(), "Create thread at \"threadsupport.cpp\":85");
    std::int32_t width = 7, height = 16;
    std::uint32_t isLinear = 1;
    EXPECT_DEATH(CheckSourceSize("a", 2, &width, &height, &isLinear, 0), "Error :Src Image \"a\" is too small for compressor ");
}

}  // namespace
}  // namespace moktexture::amtc
