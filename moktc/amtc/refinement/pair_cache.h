#pragma once

#include <optional>

#include "moktc/amtc/evaluation/region_evaluator.h"
#include "moktc/amtc/refinement/colour_steps.h"

namespace moktexture::amtc {

/// What candidates of one block are refined against in one region mode, with the neighbours fixed. It refers to what it is given.
struct RefinementRegion {
    const AmtcLevelSettings& settings;
    const BlendTable& table;
    const Footprint& footprint;
    const Segments* segments;                  ///< null where pixels choose their levels freely
    const NeighbourColours& neighbourColours;  ///< the block's own pair counts for nothing
    StepRules rules;
};

/// One pair of colours in a region.
struct EvaluatedPair {
    ColourPair pair;
    RegionError error;
    bool isEvaluated, knowsOuterError;
    std::optional<ColourPair> afterFineStep, afterCoarseStep;  ///< where the solver takes the pair
    LevelSums sums;
};

/// Room for the pairs of one region after another.
class PairCache {
public:
    /// The plain form, for tests to compare with, remembers nothing.
    explicit PairCache(bool remembersPairs = true) : remembers(remembersPairs) {}

    bool remembersPairs() const { return remembers; }
    void forgetAll();

    /// The entry of a pair, blank if the pair is new. It is good until the next call.
    EvaluatedPair& find(const ColourPair& pair);

private:
    static constexpr std::uint32_t slotBits = 8;
    static constexpr std::size_t slotCount = 1 << slotBits;  ///< 14 candidates come to at most 126 pairs at the best quality

    static std::size_t firstSlotOf(const ColourPair& pair);
    EvaluatedPair& occupy(std::size_t slot, const ColourPair& pair);

    bool remembers;
    std::uint32_t age = 1;  ///< entries of another age are forgotten
    std::size_t pairCount = 0;
    std::array<std::uint32_t, slotCount> ages{};
    std::array<EvaluatedPair, slotCount> slots;
};

/// The pairs that the candidates of one region come to. Candidates that meet go on alike, so each pair is evaluated, solved and
/// moved once: its results depend on nothing but the pair and the region.
class EvaluatedPairs {
public:
    /// Refers to both and forgets what `pairCache` held. If the slots remember nothing, nor is the error of the ring remembered.
    EvaluatedPairs(const RefinementRegion& refinedRegion, InstructionSet level, PairCache& pairCache);

    const StepRules& rules() const { return region.rules; }

    /// The inner error and, if `withOuter`, the outer one of a pair. The result is good until the next call.
    EvaluatedPair& evaluate(const ColourPair& pair, bool withOuter);

    /// The pair that comes after an evaluated one.
    ColourPair move(EvaluatedPair& evaluated, Step step) const;

private:
    void evaluateAnew(EvaluatedPair& entry, bool withOuter) const;

    const RegionEvaluator evaluator;
    const RefinementRegion& region;
    PairCache& slots;
    const bool ringIsShared;
    bool knowsSharedOuter = false;
    std::uint32_t sharedOuter = 0;
};

}  // namespace moktexture::amtc
