#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/driver/threadsupport.h"

namespace moktexture::amtc {
namespace {

constexpr std::uint32_t qualityCount = 5;

TEST(AmtcSweeps, EffortGrowsWithQuality) {
    constexpr std::uint32_t iterations[qualityCount] = {3, 3, 4, 6, 8};
    for (std::uint32_t quality = 0; quality < qualityCount; ++quality) {
        AmtcLevelSettings settings{};
        SetSweepSettings(quality, sweepCount(quality), 1, settings, settings);
        EXPECT_EQ(settings.refineIterations, iterations[quality]) << quality;
        EXPECT_EQ(sweepCount(quality), 2u << quality);
    }
    EXPECT_EQ(sweepCount(255), sweepCount(qualityCount - 1)) << "a higher quality counts as the best";
}

TEST(AmtcSweeps, WidenTheSearchAndVisitAllBlocksWhenTheyDo) {
    for (std::uint32_t run = 0; run < 2 * qualityCount; ++run) {
        const std::uint32_t quality = run / 2, secondGeneration = run % 2, sweeps = sweepCount(quality);
        AmtcLevelSettings settings = makeLevelSettings(64, 8, {Rate::fourBpp, Generation(secondGeneration)});
        for (std::uint32_t sweep = 0; sweep < sweeps; ++sweep) {
            SCOPED_TRACE("quality " + std::to_string(quality) + ", sweep " + std::to_string(sweep));
            const AmtcLevelSettings previous = settings;
            SetSweepSettings(quality, sweeps, sweep, settings, previous);
            EXPECT_EQ(settings.candidatesKept, 4u);
            EXPECT_EQ(settings.refineIterations == 1, sweep == 0) << "the first sweep only scores";
            EXPECT_EQ(settings.extendedModes, secondGeneration == 1 && sweep >= 3 ? 1u : 0u);
            EXPECT_EQ(settings.neighbourModeVariants, sweep + 1 == sweeps ? 0u : settings.extendedModes);
            EXPECT_EQ(settings.clampToBounds, sweep < 4 ? 1u : 0u);
            EXPECT_EQ(settings.useSegments, sweep == 0 ? 0u : settings.clampToBounds);
            const auto rules = [](const AmtcLevelSettings& s) {
                return std::tuple(s.extendedModes, s.clampToBounds, s.useSegments);
            };
            EXPECT_EQ(settings.forceVisit, sweep == 0 || rules(settings) != rules(previous) ? 1u : 0u);
        }
    }
    AmtcLevelSettings narrow = makeLevelSettings(4, 64, {Rate::fourBpp, Generation::second});
    SetSweepSettings(2, 8, 3, narrow, narrow);
    EXPECT_EQ(narrow.neighbourModeVariants, 0u) << "one block across";
}

TEST(AmtcLevelDeathTest, AThreadThatCannotBeStartedEndsTheProcessWithItsFixedMessage) {
    EXPECT_DEATH(failToCreateThread(), "Create thread at \"threadsupport.cpp\":85");
}

}  // namespace
}  // namespace moktexture::amtc
