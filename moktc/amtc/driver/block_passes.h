#pragma once

#include "core/base/instruction_set.h"
#include "core/base/parallel.h"
#include "moktc/amtc/analysis/footprint_analysis.h"

/// @file
/// Passes over the block grid of a level, each spread over threads and joined before it returns.

namespace moktexture::amtc {

inline constexpr std::uint32_t maxThreads = 32;

/// What the threads of a pass share; they read it only.
struct AmtcThreadContext {
    const AmtcImage& image;
    const AmtcLevelSettings& settings;
    const BlockRows& blockRows;
    std::uint32_t threadLimit;                               ///< most threads by the height of the grid, from 1 to maxThreads
    std::uint32_t threads = availableThreads();              ///< most threads by the machine; the result does not depend on it
    InstructionSet instructionSet = detectInstructionSet();  ///< nor on this one
};

/// The blocks of every second row and column, from `row` and `column` on, each 0 or 1.
struct ParityPhase {
    std::uint32_t row, column;
};

/// Visits all blocks to set them up; pass 1 needs what pass 0 found around each block.
void RunBlockPass(const AmtcThreadContext& context, std::uint32_t pass, const FootprintKernels& kernels);
void RunBlockPass(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, const FootprintMask& centreMask,
                  const FootprintKernel& sharpKernel, const FootprintKernel& smoothKernel, std::uint32_t threadLimit,
                  const BlockRows& blockRows);

/// Visits the blocks of a phase to refine them. A grid one block high is not visited.
/// @param step number of the phase, counted from 1 over all sweeps
void RunParityPhase(const AmtcThreadContext& context, const ParityPhase& phase, std::uint32_t step);
void RunParityPhase(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t rowPhase, std::uint32_t columnPhase,
                    std::uint32_t step, std::uint32_t threadLimit, const BlockRows& blockRows);

}  // namespace moktexture::amtc
