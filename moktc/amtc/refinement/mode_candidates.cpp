#include "moktc/amtc/refinement/mode_candidates.h"

#include <algorithm>

#include "moktc/amtc/refinement/candidate_refinement.h"

namespace moktexture::amtc {

PerturbedPairs::PerturbedPairs(const Candidate& source, const StepRules& rules) {
    for (const FractionPair& fractions : PerturbationTable) {
        if (MakePerturbedCandidate(source, rules, fractions, candidates[count])) ++count;
    }
}

bool WorkList::knows(const ColourPair& pair) const {
    const auto isPair = [&pair](const Candidate& candidate) { return candidate.colours() == pair; };
    return std::find(unrefined.begin(), unrefined.begin() + unrefinedCount, pair) != unrefined.begin() + unrefinedCount ||
           std::any_of(refined.begin(), refined.begin() + refinedCount, isPair);
}

void WorkList::refine(const Candidate& candidate, std::uint32_t iterations, EvaluatedPairs& pairs) {
    unrefined[unrefinedCount++] = candidate.colours();
    refined[refinedCount] = candidate;
    OptimiseRegion(refined[refinedCount++], iterations, pairs);
}

void WorkList::addVariant(const RepStart& record, const PerturbedPairs& perturbed, std::uint32_t iterations,
                          EvaluatedPairs& pairs) {
    unrefinedCount = 0;
    for (std::size_t i = 0; i < record.count; ++i)
        refine(record.candidates[i], iterations, pairs);
    for (const Candidate& candidate : perturbed) {
        if (!knows(candidate.colours())) refine(candidate, iterations, pairs);
    }
}

bool WorkList::storeBest(RepStart& record, std::uint32_t kept) const {
    std::array<std::uint64_t, mostVariants * mostCandidatesPerVariant> order{};  // error, then place in the list
    for (std::size_t i = 0; i < refinedCount; ++i)
        order[i] = std::uint64_t{refined[i].error} << 32 | i;
    std::sort(order.begin(), order.begin() + refinedCount);

    const ColourPair before = record.candidates[0].colours();
    record.candidates[0] = refined[order[0] & 0xFFFFFFFF];
    record.count = 1;
    // Kept: a candidate has only to differ from the one stored before it, so a record can hold a pair twice; refining both costs
    // time, and the pairs that they crowd out are lost.
    for (std::size_t i = 1; i < refinedCount && record.count < kept; ++i) {
        const Candidate& candidate = refined[order[i] & 0xFFFFFFFF];
        if (candidate.colours() != record.candidates[record.count - 1u].colours()) record.candidates[record.count++] = candidate;
    }
    return record.candidates[0].colours() != before;
}

}  // namespace moktexture::amtc
