#pragma once

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/refinement/candidate_refinement.h"

/// @file
/// The visits of a thread to one block of the grid (visit_block.cpp), and the refinement of its candidates in one region mode
/// (mode_refinement.cpp).

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

// Refinement of one block's candidates in one region mode

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
