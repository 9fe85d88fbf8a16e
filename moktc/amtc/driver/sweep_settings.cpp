#include "moktc/amtc/driver/sweep_settings.h"

#include <algorithm>

namespace moktexture::amtc {
namespace {

struct Effort {
    std::uint32_t sweeps, refineIterations;
};

// One row a quality, 0 to 4: sweeps over the level, and evaluations per candidate from sweep 1 on.
constexpr std::array<Effort, 5> efforts = {{
    {2, 3},
    {4, 3},
    {8, 4},
    {16, 6},
    {32, 8},
}};

const Effort& effortOf(std::uint32_t quality) {
    return efforts[std::min<std::size_t>(quality, efforts.size() - 1)];
}

constexpr std::uint32_t firstExtendedSweep = 3;  ///< the second generation's own modes join
constexpr std::uint32_t firstFreeSweep = 4;      ///< colours leave their box, pixels their segments

/// Whether the search became wider or a rule laxer, so that every block may find something new.
bool searchWidened(const AmtcLevelSettings& settings, const AmtcLevelSettings& previous) {
    return previous.extendedModes < settings.extendedModes || previous.neighbourModeVariants < settings.neighbourModeVariants ||
           previous.clampToBounds > settings.clampToBounds || previous.useSegments != settings.useSegments;
}

}  // namespace

std::uint32_t sweepCount(std::uint32_t quality) {
    return effortOf(quality).sweeps;
}

void SetSweepSettings(std::uint32_t quality, std::uint32_t sweeps, std::uint32_t sweep, AmtcLevelSettings& settings,
                      const AmtcLevelSettings& previous) {
    const bool isFirst = sweep == 0, isLast = sweep + 1 == sweeps;
    const bool isWide = settings.blocksDown >= 2 && settings.blocksAcross >= 2;
    settings.refineIterations = isFirst ? 1 : effortOf(quality).refineIterations;
    settings.candidatesKept = mostCandidates;
    settings.extendedModes = settings.secondGeneration != 0 && sweep >= firstExtendedSweep;
    settings.neighbourModeVariants = settings.extendedModes != 0 && !isLast && isWide;
    settings.clampToBounds = sweep < firstFreeSweep;
    settings.useSegments = !isFirst && sweep < firstFreeSweep;
    settings.forceVisit = isFirst || searchWidened(settings, previous);
}

}  // namespace moktexture::amtc
