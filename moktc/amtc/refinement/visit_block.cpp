// One visit to a block, for refinement:
//
//     unless forced: return if no neighbour has changed since the last visit
//     load the footprint; find its segments, if this block and sweep use them
//     for each region mode of the format:
//         skip it if it has converged under the same inputs
//         refine its candidates                                              (mode_refinement.cpp)
//     best mode = the one whose best candidate has the lowest error; earlier modes win ties
//     lastVisited = step;  lastChanged = step if a mode's best pair or the best mode changed
//
// Two rules save work without changing a byte of the result:
//
// - Skipping a block. Steps count the parity phases. If `lastVisited` is greater than `lastChanged` of all eight neighbours, none
//   of what this block sees has changed since, and its own change alone does not make it worth a visit.
// - Skipping a mode. Refinement depends on the pixels, the neighbours' colours and modes, five settings and the mode's own
//   candidates, and on nothing else. If a visit left the candidates of a mode as they were, another one under the same inputs
//   would do so again: the mode has converged until an input differs.
//
// The first rule alone decides `lastVisited` and `lastChanged`, so the second one does not alter which blocks are visited.

#include "moktc/amtc/refinement/visit_block.h"

#include <algorithm>

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/starts/start_candidates.h"

namespace moktexture::amtc {
namespace {

NeighbourMeans meansAround(const Neighbourhood& neighbours) {
    NeighbourMeans means;
    for (std::size_t i = 0; i < means.size(); ++i)
        means[i] = neighbours[i]->reps[wholeRep].meanColour;
    return means;
}

NeighbourColours coloursAround(const Neighbourhood& neighbours) {
    NeighbourColours colours;
    for (std::size_t i = 0; i < colours.size(); ++i)
        colours[i] = neighbours[i]->best().colours();
    return colours;
}

/// True if no neighbour has changed since the block's last visit.
bool isNeighbourhoodUnchanged(const BlockRecord& block, const Neighbourhood& neighbours) {
    std::uint32_t lastChange = 0;
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
        if (i != centreOfNeighbourhood) lastChange = std::max(lastChange, neighbours[i]->lastChanged);
    }
    return block.lastVisited > lastChange;
}

RefinementInputs inputsOf(const VisitContext& visit) {
    const AmtcLevelSettings& settings = visit.settings;
    RefinementInputs inputs{visit.neighbourColours, {}, {}};
    for (std::size_t i = 0; i < visit.neighbours.size(); ++i)
        inputs.neighbourModes[i] = static_cast<std::uint8_t>(visit.neighbours[i]->bestMode);
    inputs.neighbourColours[centreOfNeighbourhood] = {};
    inputs.neighbourModes[centreOfNeighbourhood] = 0;
    std::size_t rule = 0;
    for (const std::uint32_t setting : {settings.refineIterations, settings.candidatesKept, settings.neighbourModeVariants,
                                        settings.clampToBounds, settings.useSegments})
        inputs.rules[rule++] = static_cast<std::uint8_t>(setting);
    return inputs;
}

bool haveSameCandidates(const RepStart& first, const RepStart& second) {
    const auto haveSameColours = [](const Candidate& a, const Candidate& b) { return a.colours() == b.colours(); };
    return first.count == second.count && std::equal(first.candidates.begin(), first.candidates.begin() + first.count,
                                                     second.candidates.begin(), haveSameColours);
}

/// Refines the modes that have not converged. True if a mode's best pair changed.
bool refineModes(const VisitContext& visit, std::uint32_t modeCount, BlockRecord& block) {
    const RefinementInputs inputs = inputsOf(visit);
    if (inputs != block.lastInputs) block.convergedModes = 0;
    block.lastInputs = inputs;
    bool hasChanged = false;
    for (std::uint32_t i = 0; i < modeCount; ++i) {
        if ((block.convergedModes >> i & 1) != 0) continue;
        const RepStart before = block.repStarts[i];
        hasChanged |= refineMode(visit, block.repStarts[i]);
        if (haveSameCandidates(before, block.repStarts[i])) block.convergedModes |= 1u << i;
    }
    return hasChanged;
}

std::uint32_t bestModeOf(const BlockRecord& block, std::uint32_t modeCount) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < modeCount; ++i) {
        if (block.repStarts[i].candidates[0].error < block.repStarts[best].candidates[0].error) best = i;
    }
    return block.repStarts[best].mode;
}

}  // namespace

void VisitBlockSetup(const BlockVisit& visit, std::uint32_t pass, const FootprintKernels& kernels) {
    const auto& [image, settings, blockRows, row, column] = visit;
    BlockRecord& block = blockRows[row][column];
    Footprint footprint;
    LoadBlockFootprint(image, row, column, settings, footprint);
    if (pass == 0) {
        AnalyseFootprint(footprint, settings, kernels, block);
        block.lastChanged = block.lastVisited = 0;
        return;
    }
    AnalyseDetail(footprint, settings, kernels, meansAround(gatherNeighbourhood(blockRows, settings, row, column)), block);
    FootprintMask labels, order;
    block.segmentable = SegmentFootprint(footprint, settings, labels, order) < settings.footprintPixels() / 4;
    SetUpStandardRepStarts(block, settings, footprint, kernels.sharp);
}

void VisitBlockRefine(const BlockVisit& visit, std::uint32_t step, InstructionSet instructionSet, VisitSpace& space) {
    const auto& [image, settings, blockRows, row, column] = visit;
    BlockRecord& block = blockRows[row][column];
    const Neighbourhood neighbours = gatherNeighbourhood(blockRows, settings, row, column);
    if (settings.forceVisit == 0 && isNeighbourhoodUnchanged(block, neighbours)) return;

    RegionModeList modes;
    const std::uint32_t modeCount = ListRegionModes(settings, settings.extendedModes != 0, modes);
    VisitContext context{settings, neighbours, instructionSet, space.blendTable, space.pairCache, coloursAround(neighbours)};
    LoadBlockFootprint(image, row, column, settings, context.footprint);
    context.usesSegments = settings.bitsPerPixel == 4 && block.segmentable != 0 && settings.useSegments != 0;
    if (context.usesSegments)
        context.segments.count = SegmentFootprint(context.footprint, settings, context.segments.labels, context.segments.order);

    // A single evaluation only scores the start: the block counts as changed, so that its neighbours are visited again.
    bool hasChanged = settings.refineIterations < 2;
    hasChanged |= refineModes(context, modeCount, block);
    const std::uint32_t bestMode = bestModeOf(block, modeCount);
    hasChanged |= bestMode != block.bestMode;
    block.bestMode = bestMode;
    block.lastVisited = step;
    if (hasChanged) block.lastChanged = step;
}

void VisitBlockSetup(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row,
                     std::uint32_t column, const FootprintMask& centreMask, const FootprintKernel& sharpKernel,
                     const FootprintKernel& smoothKernel, const BlockRows& blockRows) {
    VisitBlockSetup({image, settings, blockRows, row, column}, pass, {sharpKernel, smoothKernel, centreMask});
}

void VisitBlockRefine(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row, std::uint32_t column,
                      BlendTable& blendTable, std::uint32_t step, const BlockRows& blockRows) {
    VisitSpace space{blendTable};
    VisitBlockRefine({image, settings, blockRows, row, column}, step, detectInstructionSet(), space);
}

}  // namespace moktexture::amtc
