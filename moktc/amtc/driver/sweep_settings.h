#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// Number of sweeps over a level, by quality 0 to 4; here and below a higher quality is taken as 4.
std::uint32_t sweepCount(std::uint32_t quality);

/// Sets what changes from sweep to sweep for sweep `sweep` of `sweeps`. `previous` is the settings of the sweep before and is not
/// read in sweep 0.
void SetSweepSettings(std::uint32_t quality, std::uint32_t sweeps, std::uint32_t sweep, AmtcLevelSettings& settings,
                      const AmtcLevelSettings& previous);

}  // namespace moktexture::amtc
