#pragma once

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/refinement/pair_cache.h"

/// @file
/// What a worker does at one block.

namespace moktexture::amtc {

/// Pass 0: the block's statistics. Pass 1, when all blocks have theirs: the detail around it and the first candidates.
void VisitBlockSetup(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row,
                     std::uint32_t column, const FootprintKernels& kernels, const BlockRows& blockRows);

/// One worker's space for its visits.
struct VisitSpace {
    BlendTable blendTable;
    PairCache pairCache;
};

/// Refines the block's candidates in all region modes and chooses its mode; unless the settings force a visit, only if a
/// neighbour has changed since the last one. `step` numbers the phases from 1. Writes the block's own record only.
void VisitBlockRefine(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row, std::uint32_t column,
                      InstructionSet instructionSet, VisitSpace& space, std::uint32_t step, const BlockRows& blockRows);

}  // namespace moktexture::amtc
