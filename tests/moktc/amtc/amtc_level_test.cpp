#include <gtest/gtest.h>

#include <vector>

#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/driver/sweep_settings.h"
#include "moktc/amtc/driver/threadsupport.h"

namespace moktexture::amtc {
namespace {

/// A sweep's settings: iterations, extended modes, variants, clamping, segments, forced visit.
using SweepRow = std::array<std::uint32_t, 6>;

struct SweepCase {
    std::uint32_t quality, generation, sweeps;
    std::vector<SweepRow> rows;  ///< the last one repeats to the end, but for the last sweep
    SweepRow last;
};

// clang-format off
const SweepCase sweepCases[] = {
    //          iterations, extended, variants, clamp, segments, forced
    {0, 2, 2,  {{1,0,0,1,0,1}}, {3,0,0,1,1,1}},
    {1, 2, 4,  {{1,0,0,1,0,1}, {3,0,0,1,1,1}, {3,0,0,1,1,0}}, {3,1,0,1,1,1}},
    {2, 1, 8,  {{1,0,0,1,0,1}, {4,0,0,1,1,1}, {4,0,0,1,1,0}, {4,0,0,1,1,0}, {4,0,0,0,0,1}, {4,0,0,0,0,0}}, {4,0,0,0,0,0}},
    {3, 2, 16, {{1,0,0,1,0,1}, {6,0,0,1,1,1}, {6,0,0,1,1,0}, {6,1,1,1,1,1}, {6,1,1,0,0,1}, {6,1,1,0,0,0}}, {6,1,0,0,0,0}},
    {4, 1, 32, {{1,0,0,1,0,1}, {8,0,0,1,1,1}, {8,0,0,1,1,0}, {8,0,0,1,1,0}, {8,0,0,0,0,1}, {8,0,0,0,0,0}}, {8,0,0,0,0,0}},
};
// clang-format on

TEST(AmtcSweeps, WidenTheSearchAsTheyGoOn) {
    for (const SweepCase& effort : sweepCases) {
        ASSERT_EQ(sweepCount(effort.quality), effort.sweeps);
        AmtcLevelSettings settings = makeLevelSettings(64, 8, {Rate::fourBpp, Generation(effort.generation - 1)});
        for (std::uint32_t sweep = 0; sweep < effort.sweeps; ++sweep) {
            const AmtcLevelSettings previous = settings;
            SetSweepSettings(effort.quality, effort.sweeps, sweep, settings, previous);
            const SweepRow row = {settings.refineIterations, settings.extendedModes, settings.neighbourModeVariants,
                                  settings.clampToBounds,    settings.useSegments,   settings.forceVisit};
            const bool isLast = sweep + 1 == effort.sweeps;
            EXPECT_EQ(row, isLast ? effort.last : effort.rows[std::min<std::size_t>(sweep, effort.rows.size() - 1)])
                << "quality " << effort.quality << ", generation " << effort.generation << ", sweep " << sweep;
            EXPECT_EQ(settings.candidatesKept, 4u);
        }
    }
    EXPECT_EQ(sweepCount(255), 32u) << "held to the best effort";
    AmtcLevelSettings narrow = makeLevelSettings(4, 64, {Rate::fourBpp, Generation::second});
    SetSweepSettings(2, 8, 3, narrow, narrow);
    EXPECT_EQ(narrow.neighbourModeVariants, 0u) << "one block across";
}

TEST(AmtcLevelDeathTest, RefusesOneBitPerPixel) {
    const WorkImage image = makeWorkImage();
    image->Width = image->Height = 32;
    std::array<std::uint8_t, 128> blocks{};
    EXPECT_DEATH(CompressLevel(*image, 4, 1, 0, blocks.data(), true, 0, {InstructionSet::baseline, 1}),
                 "1bpp not yet implemented \\(OptimiseRegion\\)");
}

TEST(AmtcLevelDeathTest, NamesTheSameFileAndLineWheneverThreadsRunOut) {
    EXPECT_DEATH(failToCreateThread(), "Create thread at \"threadsupport.cpp\":85");
}

}  // namespace
}  // namespace moktexture::amtc
