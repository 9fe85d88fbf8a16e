#pragma once

#include <optional>

#include "moktc/amtc/evaluation/region_evaluator.h"
#include "moktc/amtc/refinement/endpoint_solver.h"

namespace moktexture::amtc {

/// What candidates of one block are refined against in one region mode, with the neighbours fixed. It refers to its arguments.
struct RefinementRegion {
    const AmtcLevelSettings& settings;
    const BlendTable& table;
    const Footprint& footprint;
    const Segments* segments;                  ///< null where pixels choose their indices freely
    const NeighbourColours& neighbourColours;  ///< the block's own pair has no effect
    StepRules rules;
};

/// What is known of one pair of colours in a region.
struct EvaluatedPair {
    ColourPair pair;
    RegionError error;
    bool isEvaluated, hasOuterError;
    std::optional<ColourPair> afterFineStep, afterCoarseStep;  ///< where the solver takes the pair
    RegressionSums sums;
};

/// A hash table of the pairs of one region after another, with linear probing. When three quarters are in use it is cleared.
class PairCache {
public:
    void clear();

    /// The entry of a pair, blank if the pair is new. Valid until the next call.
    EvaluatedPair& find(const ColourPair& pair);

private:
    /// Larger: longer searches fit without clearing the table, at about 300 bytes per slot and thread. The best quality reaches
    /// at most 126 pairs in a region (14 candidates, 9 evaluations each), which 256 slots hold without long probes.
    static constexpr std::uint32_t slotBits = 8;
    static constexpr std::size_t slotCount = 1 << slotBits;

    static std::size_t firstSlotOf(const ColourPair& pair);
    EvaluatedPair& occupy(std::size_t slot, const ColourPair& pair);

    std::uint32_t age = 1;  ///< slots of another age are free
    std::size_t pairCount = 0;
    std::array<std::uint32_t, slotCount> ages{};
    std::array<EvaluatedPair, slotCount> slots;
};

/// Evaluates the pairs that the candidates of one region reach. Candidates that reach the same pair continue identically, so each
/// pair is evaluated, solved and moved once: its results depend on nothing but the pair and the region.
class CachedEvaluator {
public:
    /// Refers to `refinedRegion` and `pairCache`, and clears the latter.
    CachedEvaluator(const RefinementRegion& refinedRegion, InstructionSet instructionSet, PairCache& pairCache);

    const StepRules& rules() const { return region.rules; }

    /// The inner error and, if `withOuter`, the outer one of a pair. The result is valid until the next call.
    EvaluatedPair& evaluate(const ColourPair& pair, bool withOuter);

    /// The pair that comes after an evaluated one.
    ColourPair move(EvaluatedPair& evaluated, Step step) const;

private:
    void evaluatePair(EvaluatedPair& entry, bool withOuter) const;

    const RegionEvaluator evaluator;
    const RefinementRegion& region;
    PairCache& cache;
    const bool isOuterErrorShared;
    std::optional<std::uint32_t> sharedOuterError;
};

/// Improves the candidate's pair in at most `iterations` evaluations, and sets its error. `evaluator` is of the region.
void OptimiseRegion(Candidate& candidate, std::uint32_t iterations, CachedEvaluator& evaluator);

}  // namespace moktexture::amtc
