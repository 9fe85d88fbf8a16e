#include "moktc/amtc/refinement/visit_block.h"

#include <algorithm>

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/refinement/mode_candidates.h"
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

/// What stays the same during a visit.
struct Visit {
    const AmtcLevelSettings& settings;
    const Neighbourhood& neighbours;
    NeighbourColours neighbourColours;
    Footprint footprint;
    Segments segments;
    bool usesSegments;
    InstructionSet instructionSet;
};

std::uint32_t iterationsFor(const RepStart& record, const AmtcLevelSettings& settings) {
    // Kept: flat starts are scored and not refined, though the perturbed pairs tried beside them are no flat ones; smooth areas
    // keep their single-colour pairs. The corner palette is exempt, as a block of one colour still has its neighbours' colours to
    // choose from there; its starts come from clusters and are not flat so far.
    return record.isFlatStart && record.mode != region_mode::cornerPalette ? 1 : settings.refineIterations;
}

PerturbedPairs perturb(const RepStart& record, const StepRules& rules, const AmtcLevelSettings& settings) {
    return settings.refineIterations == 1 ? PerturbedPairs() : PerturbedPairs(record.candidates[0], rules);
}

/// True if the mode's best pair changed.
bool refineMode(const Visit& visit, RepStart& record, VisitSpace& space) {
    const AmtcLevelSettings& settings = visit.settings;
    const StepRules rules = {*record.axes, settings.clampToBounds != 0, settings.generation(),
                             record.mode == region_mode::punchThrough};
    const PerturbedPairs perturbed = perturb(record, rules, settings);
    const std::uint32_t iterations = iterationsFor(record, settings);
    // Kept: the best under any variant wins, though the neighbours' modes stay as they are and the pair's real error may be
    // worse.
    const std::uint32_t variants = settings.neighbourModeVariants != 0 ? mostVariants : 1;
    WorkList work;
    for (std::uint32_t variant = 0; variant < variants; ++variant) {
        CreateBlendingAndUpdateWeights(record.mode, visit.neighbours, variant, settings, space.blendTable);
        const RefinementRegion region = {
            settings, space.blendTable, visit.footprint, visit.usesSegments ? &visit.segments : nullptr, visit.neighbourColours,
            rules};
        EvaluatedPairs pairs(region, visit.instructionSet, space.pairCache);
        work.addVariant(record, perturbed, iterations, pairs);
    }
    return work.storeBest(record, settings.candidatesKept);
}

RefinementInputs inputsOf(const Visit& visit) {
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
    const auto sameColours = [](const Candidate& a, const Candidate& b) { return a.colours() == b.colours(); };
    return first.count == second.count &&
           std::equal(first.candidates.begin(), first.candidates.begin() + first.count, second.candidates.begin(), sameColours);
}

/// Refines those modes that would not stay as they are. True if a mode's best pair changed.
bool refineModes(const Visit& visit, std::uint32_t modeCount, BlockRecord& block, VisitSpace& space) {
    const RefinementInputs inputs = inputsOf(visit);
    if (inputs != block.lastInputs) block.convergedModes = 0;
    block.lastInputs = inputs;
    bool hasChanged = false;
    for (std::uint32_t i = 0; i < modeCount; ++i) {
        if ((block.convergedModes >> i & 1) != 0) continue;
        const RepStart before = block.repStarts[i];
        hasChanged |= refineMode(visit, block.repStarts[i], space);
        if (haveSameCandidates(before, block.repStarts[i])) block.convergedModes |= 1u << i;
    }
    return hasChanged;
}

std::uint32_t bestOf(const BlockRecord& block, std::uint32_t modeCount) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < modeCount; ++i) {
        if (block.repStarts[i].candidates[0].error < block.repStarts[best].candidates[0].error) best = i;
    }
    return block.repStarts[best].mode;
}

}  // namespace

void VisitBlockSetup(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row,
                     std::uint32_t column, const FootprintKernels& kernels, const BlockRows& blockRows) {
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

void VisitBlockRefine(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t row, std::uint32_t column,
                      InstructionSet instructionSet, VisitSpace& space, std::uint32_t step, const BlockRows& blockRows) {
    BlockRecord& block = blockRows[row][column];
    const Neighbourhood neighbours = gatherNeighbourhood(blockRows, settings, row, column);
    if (settings.forceVisit == 0 && isNeighbourhoodUnchanged(block, neighbours)) return;

    RegionModeList modes;
    const std::uint32_t modeCount = ListRegionModes(settings, settings.extendedModes != 0, modes);
    Visit visit{settings, neighbours, coloursAround(neighbours), {}, {}, false, instructionSet};
    LoadBlockFootprint(image, row, column, settings, visit.footprint);
    visit.usesSegments = settings.bitsPerPixel == 4 && block.segmentable != 0 && settings.useSegments != 0;
    if (visit.usesSegments)
        visit.segments.count = SegmentFootprint(visit.footprint, settings, visit.segments.labels, visit.segments.order);

    // One evaluation has but scored the start: nothing here is at rest yet, and the neighbours are to look again.
    bool hasChanged = settings.refineIterations < 2;
    hasChanged |= refineModes(visit, modeCount, block, space);
    const std::uint32_t bestMode = bestOf(block, modeCount);
    hasChanged |= bestMode != block.bestMode;
    block.bestMode = bestMode;
    block.lastVisited = step;
    if (hasChanged) block.lastChanged = step;
}

}  // namespace moktexture::amtc
