// Problem: refining one candidate ends in a local minimum near its start. Also, how a block's pixels decode depends on the region
// modes of its neighbours, which may still change.
//
// Idea: start from several pairs, and under several assumptions on the neighbours:
//
//     perturbed = pairs on the line through the best candidate's colours        (PerturbationTable)
//     for each variant of the neighbours' modes:                                (1, or 8 if wanted)
//         build the blend table of the mode and the variant
//         refine the record's candidates, at most 4
//         refine each perturbed pair that is not among the pairs refined so far
//     sort all by error; keep the best 4 for the next visit
//
// The variants take each of the upper left, upper and left neighbour as flat or not flat. A block's choice of a flat mode pays
// only if its neighbours choose likewise, so without them an image in smooth modes would never change to flat ones.
//
// Cost: at most 8 * (4 + 10) refinements, in sweeps with variants. The pair cache removes about as many evaluations as the
// candidates of one variant meet.

#include <algorithm>

#include "moktc/amtc/refinement/visit_block.h"

namespace moktexture::amtc {
namespace {

std::uint32_t iterationsFor(const RepStart& record, const AmtcLevelSettings& settings) {
    // Kept (flat-starts-not-refined): the candidates of a flat start are scored and not refined, though the perturbed pairs tried
    // beside them are not flat. Smooth areas keep their single-colour pairs in the blocks of every .mok file. The corner palette
    // is exempt: a block of one colour still chooses among its neighbours' colours there.
    return record.isFlatStart && record.mode != region_mode::cornerPalette ? 1 : settings.refineIterations;
}

PerturbedPairs perturb(const RepStart& record, const StepRules& rules, const AmtcLevelSettings& settings) {
    return settings.refineIterations == 1 ? PerturbedPairs() : PerturbedPairs(record.candidates[0], rules);
}

}  // namespace

PerturbedPairs::PerturbedPairs(const Candidate& source, const StepRules& rules) {
    for (const FractionPair& fractions : PerturbationTable) {
        if (MakePerturbedCandidate(source, rules, fractions, candidates[count])) ++count;
    }
}

bool RefinedCandidates::contains(const ColourPair& pair) const {
    const auto isPair = [&pair](const Candidate& candidate) { return candidate.colours() == pair; };
    return std::find(unrefined.begin(), unrefined.begin() + unrefinedCount, pair) != unrefined.begin() + unrefinedCount ||
           std::any_of(refined.begin(), refined.begin() + refinedCount, isPair);
}

void RefinedCandidates::refine(const Candidate& candidate, std::uint32_t iterations, CachedEvaluator& evaluator) {
    unrefined[unrefinedCount++] = candidate.colours();
    refined[refinedCount] = candidate;
    OptimiseRegion(refined[refinedCount++], iterations, evaluator);
}

void RefinedCandidates::addVariant(const RepStart& record, const PerturbedPairs& perturbed, std::uint32_t iterations,
                                   CachedEvaluator& evaluator) {
    unrefinedCount = 0;
    for (std::size_t i = 0; i < record.count; ++i)
        refine(record.candidates[i], iterations, evaluator);
    for (const Candidate& candidate : perturbed) {
        if (!contains(candidate.colours())) refine(candidate, iterations, evaluator);
    }
}

bool RefinedCandidates::storeBest(RepStart& record, std::uint32_t kept) const {
    std::array<std::uint64_t, maxVariants * maxCandidatesPerVariant> order{};  // error << 32 | index in `refined`
    for (std::size_t i = 0; i < refinedCount; ++i)
        order[i] = std::uint64_t{refined[i].error} << 32 | i;
    std::sort(order.begin(), order.begin() + refinedCount);

    const ColourPair before = record.candidates[0].colours();
    record.candidates[0] = refined[order[0] & 0xFFFFFFFF];
    record.count = 1;
    // Kept (only-adjacent-duplicates-dropped): a candidate has only to differ from the one stored before it, so a record can hold
    // a pair twice. The next visit then starts from fewer pairs, and the blocks that it ends with depend on that.
    for (std::size_t i = 1; i < refinedCount && record.count < kept; ++i) {
        const Candidate& candidate = refined[order[i] & 0xFFFFFFFF];
        if (candidate.colours() != record.candidates[record.count - 1u].colours()) record.candidates[record.count++] = candidate;
    }
    return record.candidates[0].colours() != before;
}

bool refineMode(const VisitContext& visit, RepStart& record) {
    const AmtcLevelSettings& settings = visit.settings;
    const StepRules rules = {*record.axes, settings.clampToBounds != 0, settings.generation(),
                             record.mode == region_mode::punchThrough};
    const PerturbedPairs perturbed = perturb(record, rules, settings);
    const std::uint32_t iterations = iterationsFor(record, settings);
    // Kept (best-of-all-variants-wins): the best under any variant wins, though the neighbours' modes stay as they are and the
    // pair's real error may be higher. The second generation's blocks in .mok files depend on the choice.
    const std::uint32_t variants = settings.neighbourModeVariants != 0 ? maxVariants : 1;
    RefinedCandidates refined;
    for (std::uint32_t variant = 0; variant < variants; ++variant) {
        CreateBlendingAndUpdateWeights(record.mode, visit.neighbours, variant, settings, visit.blendTable);
        const RefinementRegion region = {
            settings, visit.blendTable, visit.footprint, visit.usesSegments ? &visit.segments : nullptr, visit.neighbourColours,
            rules};
        CachedEvaluator evaluator(region, visit.instructionSet, visit.pairCache);
        refined.addVariant(record, perturbed, iterations, evaluator);
    }
    return refined.storeBest(record, settings.candidatesKept);
}

}  // namespace moktexture::amtc
