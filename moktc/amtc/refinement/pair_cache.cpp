#include "moktc/amtc/refinement/pair_cache.h"

namespace moktexture::amtc {
namespace {

/// The neighbours' colours with the pair in the middle, and wherever a thin grid makes the block its own neighbour.
NeighbourColours coloursAround(const RefinementRegion& region, const ColourPair& pair) {
    const bool oneAcross = region.settings.blocksAcross == 1, oneDown = region.settings.blocksDown == 1;
    NeighbourColours colours = region.neighbourColours;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const bool isOwnRow = i / 3 == 1 || oneDown, isOwnColumn = i % 3 == 1 || oneAcross;
        if (isOwnRow && isOwnColumn) colours[i] = pair;
    }
    return colours;
}

/// Whether the ring's error is the same for all pairs of the block: not if the grid is so thin that the block is its own
/// neighbour, nor if pixels of the ring take their level from pixels inside, as segments and interpolated modulation make them.
bool outerErrorIsShared(const RefinementRegion& region) {
    const bool isThin = region.settings.blocksAcross == 1 || region.settings.blocksDown == 1;
    return region.settings.bitsPerPixel == 4 && region.segments == nullptr && !isThin;
}

}  // namespace

std::size_t PairCache::firstSlotOf(const ColourPair& pair) {
    const std::uint64_t key = std::uint64_t{pair.a} << 32 | pair.b;
    return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15u >> (64 - slotBits));
}

void PairCache::forgetAll() {
    pairCount = 0;
    if (++age == 0) {
        ages.fill(0);
        age = 1;
    }
}

EvaluatedPair& PairCache::occupy(std::size_t slot, const ColourPair& pair) {
    ages[slot] = age;
    ++pairCount;
    EvaluatedPair& entry = slots[slot];
    entry.pair = pair;
    entry.isEvaluated = entry.knowsOuterError = false;
    entry.afterFineStep = entry.afterCoarseStep = std::nullopt;
    return entry;
}

EvaluatedPair& PairCache::find(const ColourPair& pair) {
    if (!remembers || pairCount == slotCount * 3 / 4) forgetAll();
    std::size_t slot = firstSlotOf(pair);
    while (ages[slot] == age && slots[slot].pair != pair)
        slot = (slot + 1) % slotCount;
    return ages[slot] == age ? slots[slot] : occupy(slot, pair);
}

EvaluatedPairs::EvaluatedPairs(const RefinementRegion& refinedRegion, InstructionSet level, PairCache& pairCache)
    : evaluator(refinedRegion.settings, refinedRegion.table, refinedRegion.footprint, refinedRegion.segments, level),
      region(refinedRegion),
      slots(pairCache),
      ringIsShared(slots.remembersPairs() && outerErrorIsShared(region)) {
    slots.forgetAll();
}

void EvaluatedPairs::evaluateAnew(EvaluatedPair& entry, bool withOuter) const {
    entry.error = evaluator.evaluate(coloursAround(region, entry.pair), withOuter, entry.sums);
    entry.isEvaluated = true;
    entry.knowsOuterError = withOuter;
}

EvaluatedPair& EvaluatedPairs::evaluate(const ColourPair& pair, bool withOuter) {
    EvaluatedPair& entry = slots.find(pair);
    const bool ringIsWanted = withOuter && !knowsSharedOuter;
    if (!entry.isEvaluated || (ringIsWanted && !entry.knowsOuterError)) evaluateAnew(entry, ringIsWanted);
    if (ringIsShared && ringIsWanted) {
        sharedOuter = entry.error.outer;
        knowsSharedOuter = true;
    }
    if (knowsSharedOuter) entry.error.outer = sharedOuter;
    return entry;
}

ColourPair EvaluatedPairs::move(EvaluatedPair& evaluated, Step step) const {
    std::optional<ColourPair>& moved = step == Step::coarse ? evaluated.afterCoarseStep : evaluated.afterFineStep;
    if (!moved) moved = followDeltas(evaluated.pair, SolveEndpointDeltas(evaluated.sums), step, region.rules);
    return *moved;
}

}  // namespace moktexture::amtc
