#pragma once

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/refinement/candidate_refinement.h"

/// @file
/// The visits of a thread to one block of the grid.

namespace moktexture::amtc {

/// A block to visit.
struct BlockVisit {
    const AmtcImage& image;
    const AmtcLevelSettings& settings;
    const BlockRows& blockRows;
    std::uint32_t row, column;
};

/// Pass 0: the block's statistics. Pass 1, when all blocks have theirs: the detail around it and the start candidates.
void VisitBlockSetup(const BlockVisit& visit, std::uint32_t pass, const FootprintKernels& kernels);
void VisitBlockSetup(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row,
                     std::uint32_t column, const FootprintMask& centreMask, const FootprintKernel& sharpKernel,
                     const FootprintKernel& smoothKernel, const BlockRows& blockRows);

/// One thread's working space for its visits.
struct VisitSpace {
    BlendTable& blendTable;
    PairCache pairCache{};
};

/// Refines the block's candidates in all region modes and chooses its mode; unless the settings force a visit, only if a
/// neighbour has changed since the last one. Writes the block's own record only.
/// @param step number of the phase, counted from 1 over all sweeps
void VisitBlockRefine(const BlockVisit& visit, std::uint32_t step, InstructionSet instructionSet, VisitSpace& space);
void VisitBlockRefine(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row, std::uint32_t column,
                      BlendTable& blendTable, std::uint32_t step, const BlockRows& blockRows);

}  // namespace moktexture::amtc
