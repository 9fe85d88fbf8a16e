#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "moktc/amtc/driver/pack_local_block.h"
#include "moktc/amtc/evaluation/pixel_evaluation.h"
#include "moktc/block/block_order.h"
#include "moktc/moktc.h"
#include "reference/colour_interpolation.h"
#include "support/test_images.h"

using namespace moktexture;
using namespace moktexture::amtc;

namespace {

struct Grid {
    std::uint32_t across, down, bitsPerPixel, generation;
};

/// A level whose blocks have random storable colours and random region modes.
struct RandomLevel {
    RandomLevel(AmtcImage& workImage, const Grid& grid, testimages::Kind kind, testimages::Random& random) : image(&workImage) {
        image->Width = static_cast<std::int32_t>(grid.across * (grid.bitsPerPixel == 2 ? 8 : 4));
        image->Height = static_cast<std::int32_t>(grid.down * 4);
        settings = makeLevelSettings(image->Width, image->Height, {Rate(grid.bitsPerPixel), Generation(grid.generation)});
        const auto bytes = testimages::make(kind, width(), height(), random.next());
        for (std::uint32_t y = 0; y < height(); ++y)
            std::memcpy(image->Pixels[y], &bytes[y * width() * 4], width() * 4);
        EXPECT_TRUE(AllocateBlockRows(image->Width, image->Height, settings.blockWidth, settings.blockHeight, rows));
        for (std::uint32_t i = 0; i < grid.across * grid.down; ++i)
            makeBlock(rows[i / grid.across][i % grid.across], random);
    }
    ~RandomLevel() { FreeBlockRows(rows); }

    std::uint32_t width() const { return static_cast<std::uint32_t>(image->Width); }
    std::uint32_t height() const { return static_cast<std::uint32_t>(image->Height); }

    /// Packs all blocks, keeps the error that is returned for each, and decodes.
    void pack() {
        std::vector<std::uint8_t> blocks(std::size_t{settings.blocksAcross} * settings.blocksDown * 8);
        BlendTable table;
        for (std::uint32_t row = 0; row < settings.blocksDown; ++row)
            for (std::uint32_t column = 0; column < settings.blocksAcross; ++column) {
                const auto index =
                    moktc::BlockIndex(settings.blocksAcross, settings.blocksDown, column, row, settings.secondGeneration != 0);
                returnedErrors.push_back(PackLocalBlock(*image, rows, settings, row, column, table, &blocks[8 * index]));
            }
        decoded.resize(std::size_t{width()} * height());
        const std::uint32_t size[2] = {width(), height()};
        DecompressMOKTC(blocks.data(), decoded.data(), &size[0], &size[1], settings.bitsPerPixel == 2,
                        &settings.secondGeneration);
    }

    /// Squared error of the decoded pixels over a rectangle that may wrap.
    std::uint32_t errorOf(std::uint32_t x, std::uint32_t y, std::uint32_t columns, std::uint32_t lines) const {
        std::uint32_t error = 0;
        for (std::uint32_t i = 0; i < columns * lines; ++i) {
            const std::uint32_t u = (x + i % columns) % width(), v = (y + i / columns) % height();
            error += squaredDistance(decoded[v * width() + u], image->Pixels[v][u]);
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
        const std::uint32_t x = column * settings.blockWidth + width() - settings.blockWidth / 2u, y = row * 4 + height() - 2;
        const std::uint32_t inner = errorOf(x + 1, y + 1, settings.footprintWidth - 2u, settings.footprintHeight - 2u);
        EXPECT_EQ(error.inner, inner);
        if (!is2bpp) {
            EXPECT_EQ(error.outer + inner, errorOf(x, y, settings.footprintWidth, settings.footprintHeight));
        }
    }

    void makeBlock(BlockRecord& block, testimages::Random& random) const {
        RegionModeList modes{};
        const std::uint32_t count = ListRegionModes(settings, true, modes);
        for (std::uint32_t i = 0; i < count; ++i) {
            moktc::ColourPair pair{};
            moktc::UnpackColours(random.next(), settings.secondGeneration != 0, pair);
            block.repStarts[i].candidates[0] = {moktc::ExpandColour(pair.a), moktc::ExpandColour(pair.b)};
        }
        const std::uint32_t best = random.below(count);
        block.bestMode = modes[best];
        EXPECT_EQ(&block.best(), &block.repStarts[best].candidates[0]);
    }

    AmtcImage* image;
    AmtcLevelSettings settings{};
    BlockRows rows{};
    std::vector<std::uint32_t> returnedErrors, decoded;
};

constexpr Grid grids[] = {{2, 2, 4, 0}, {8, 4, 4, 0}, {4, 4, 2, 0}, {2, 8, 2, 0},  //
                          {1, 1, 4, 1}, {5, 4, 4, 1}, {1, 3, 4, 1}, {1, 1, 2, 1}, {3, 5, 2, 1}, {4, 2, 2, 1}};

}  // namespace

// The error returned for a block and the evaluated error of its footprint are those of the decoder's pixels; at 2 bits per pixel
// those of the outer ring are estimates, as some of its means need samples from beyond it.
TEST(AmtcPacking, ReturnsAndEvaluatesTheErrorsOfTheDecodersPixels) {
    testimages::Random random(6);
    const WorkImage image = makeWorkImage();
    for (const Grid& grid : grids)
        for (const testimages::Kind kind : {testimages::Kind::noise, testimages::Kind::edges, testimages::Kind::softAlpha})
            for (int repeat = 0; repeat < 8 && !HasFailure(); ++repeat) {
                RandomLevel level(*image, grid, kind, random);
                level.pack();
                for (std::uint32_t i = 0; i < grid.across * grid.down; ++i) {
                    const std::uint32_t row = i / grid.across, column = i % grid.across, width = level.settings.blockWidth;
                    SCOPED_TRACE(testing::Message() << nameOf(kind) << ", grid " << &grid - grids << ", block " << i
                                                    << " in mode " << level.rows[row][column].bestMode);
                    EXPECT_EQ(level.returnedErrors[i], level.errorOf(column * width, row * 4, width, 4));
                    level.expectEvaluatedAsDecoded(row, column);
                }
            }
}

TEST(AmtcPackingDeathTest, EndsTheProcessWhereNoBlockCanBePacked) {
    EXPECT_DEATH_IF_SUPPORTED(packColourWord({0, 0}, 0, makeLevelSettings(8, 8, {oneBpp, Generation::first})),
                              "Exiting! 1BPP mode not yet implemented \\(PackLocalBlock\\)");
    RegionModeList modes;
    EXPECT_DEATH_IF_SUPPORTED(ListRegionModes(makeLevelSettings(8, 8, {oneBpp, Generation::first}), false, modes),
                              "Exiting! 1bpp not yet implemented \\(OptimiseRegion\\)");
    requireOneBitIndex(3);
    EXPECT_DEATH_IF_SUPPORTED(requireOneBitIndex(2), "Special case T00 expected 0 or 3 \\(got 2\\)");
    EXPECT_DEATH_IF_SUPPORTED(meanClassOf(region_mode::direct), "ERROR: Unexpected Region mode in 2bpp Eval All Cands!");
}
