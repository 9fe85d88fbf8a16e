#pragma once

#include "moktc/amtc/refinement/candidate_refinement.h"

/// @file
/// Refinement of one block's candidates in one region mode.

namespace moktexture::amtc {

/// The pairs, other than its own, that PerturbationTable makes of a record's first candidate, in the order of the table.
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

inline constexpr std::size_t maxVariants = 8;
inline constexpr std::size_t maxCandidatesPerVariant = maxCandidates + perturbationCount;

/// Candidates refined so far in one visit and mode, under all variants of the neighbours' modes.
class RefinedCandidates {
public:
    /// Refines the record's candidates under one more variant, then those perturbed ones that are new.
    void addVariant(const RepStart& record, const PerturbedPairs& perturbed, std::uint32_t iterations,
                    CachedEvaluator& evaluator);

    /// Stores the best in the record, `kept` at most. True if the record's first pair of colours changed.
    bool storeBest(RepStart& record, std::uint32_t kept) const;

private:
    bool contains(const ColourPair& pair) const;
    void refine(const Candidate& candidate, std::uint32_t iterations, CachedEvaluator& evaluator);

    std::array<Candidate, maxVariants * maxCandidatesPerVariant> refined;
    std::size_t refinedCount = 0;
    std::array<ColourPair, maxCandidatesPerVariant> unrefined;  ///< of the current variant, before refinement
    std::size_t unrefinedCount = 0;
};

/// What stays the same while a visit refines one region mode after another.
struct VisitContext {
    const AmtcLevelSettings& settings;
    const Neighbourhood& neighbours;
    InstructionSet instructionSet;
    BlendTable& blendTable;  ///< working space, as is the cache
    PairCache& pairCache;
    NeighbourColours neighbourColours;
    Footprint footprint{};
    Segments segments{};
    bool usesSegments = false;
};

/// Refines the candidates of one region mode. True if the mode's best pair changed.
bool refineMode(const VisitContext& visit, RepStart& record);

}  // namespace moktexture::amtc
