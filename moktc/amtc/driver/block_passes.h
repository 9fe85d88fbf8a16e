#pragma once

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/driver/level_resources.h"

/// @file
/// Passes over a level's blocks, fanned out over threads. A pass is cut into shares of rows by the height of the grid alone; as
/// many workers as the machine runs at once carry them.
///
/// No pass takes a lock: no worker reads what another one writes at the same time. A visit writes its own block and reads those
/// around it, and blocks of one parity are no neighbours. The exceptions are at the edges of odd grids, where the first block
/// and the last one meet: those of a row are visited by one worker, in order, and the last row waits until all others are done.

namespace moktexture::amtc {

inline constexpr std::uint32_t mostThreads = 32;

/// Visits all blocks for set-up; pass 1 needs what pass 0 found around each block.
/// @param threadLimit most shares, from 1 to mostThreads
void RunBlockPass(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, const FootprintKernels& kernels,
                  std::uint32_t threadLimit, const LevelResources& resources, const BlockRows& blockRows);

/// Visits the blocks of every second row and column, from `rowPhase` and `columnPhase` on, for refinement. A grid one block high
/// is not visited.
/// @param step number of the phase, counted from 1 over all sweeps
void RunParityPhase(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t rowPhase, std::uint32_t columnPhase,
                    std::uint32_t step, std::uint32_t threadLimit, const LevelResources& resources, const BlockRows& blockRows);

}  // namespace moktexture::amtc
