#pragma once

#include "moktc/amtc/refinement/pair_cache.h"

/// @file
/// The candidates that one visit tries for a block in one region mode.

namespace moktexture::amtc {

/// The pairs, other than its own, that perturbation makes of a record's first candidate, in the order of the table.
class PerturbedPairs {
public:
    PerturbedPairs() = default;  ///< none
    PerturbedPairs(const Candidate& source, const StepRules& rules);

    const Candidate* begin() const { return candidates.data(); }
    const Candidate* end() const { return candidates.data() + count; }

private:
    std::array<Candidate, perturbationCount> candidates;
    std::size_t count = 0;
};

inline constexpr std::size_t mostVariants = 8;
inline constexpr std::size_t mostCandidatesPerVariant = mostCandidates + perturbationCount;

/// Candidates refined so far, from all variants of the neighbours' modes.
class WorkList {
public:
    /// Refines the record's candidates under one more variant, then those perturbed ones that are new to it.
    void addVariant(const RepStart& record, const PerturbedPairs& perturbed, std::uint32_t iterations, EvaluatedPairs& pairs);

    /// Puts the best into the record, `kept` at most. True if the record's first pair of colours changed.
    bool storeBest(RepStart& record, std::uint32_t kept) const;

private:
    bool knows(const ColourPair& pair) const;
    void refine(const Candidate& candidate, std::uint32_t iterations, EvaluatedPairs& pairs);

    std::array<Candidate, mostVariants * mostCandidatesPerVariant> refined;
    std::size_t refinedCount = 0;
    std::array<ColourPair, mostCandidatesPerVariant> unrefined;  ///< of the variant at hand, as they were
    std::size_t unrefinedCount = 0;
};

}  // namespace moktexture::amtc
