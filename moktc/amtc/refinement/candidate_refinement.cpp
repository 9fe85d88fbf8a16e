// Problem: improve one pair of colours of one block, with its neighbours fixed. The error depends on the colours and on the
// modulation index of every pixel, and the best of either is easy to find only when the other is known.
//
// Idea: alternating least squares, with the format's quantisation in the loop:
//
//     pair = start
//     for i in 0 .. iterations - 1:
//         evaluate pair: the best index of every pixel, the error, the sums for the solver     (pixel_evaluation.cpp)
//         if i is the last: take pair, or start if pair is worse than it; stop
//         if i is the last but one and pair is worse than the best one seen:
//             second chance = the best one made storable
//         pair = pair moved by the solver's deltas                                              (endpoint_solver.cpp)
//         if pair equals start: take start; stop
//     if there is a second chance and it is better than the pair taken: take it
//
// Each half step alone cannot raise the weighted error that it minimises, but quantising the new colours can, and the solver
// weights pixels by influence where the error does not. So the loop may get worse, which the comparison with the start and the
// second chance repair. During the coarse part large steps move on the 8-bit grid: rounding to stored colours there would hold
// the search at a pair whose neighbours on the coarser grid are all worse.
//
// It ends after `iterations` evaluations, or earlier when the search comes back to its start.
//
// The error counts all pixels of the footprint. Those of the outer ring decode without this block's colours, so the ring is
// evaluated once and its error added to every total; only a comparison with other modes needs it at all.
//
// The pair cache: up to 14 candidates of a region reach the same pairs after a few steps, as the pairs that a block can store are
// few. What follows a pair depends on the pair alone, so each is evaluated once per region. The cache changes no result.
//
// Cost: at most `iterations` + 1 evaluations for a candidate, fewer where the cache holds a pair.

#include "moktc/amtc/refinement/candidate_refinement.h"

namespace moktexture::amtc {
namespace {

/// The neighbours' colours with the pair in the middle, and wherever a grid one block wide or high makes the block its own
/// neighbour.
NeighbourColours coloursWithPair(const RefinementRegion& region, const ColourPair& pair) {
    const bool isOneAcross = region.settings.blocksAcross == 1, isOneDown = region.settings.blocksDown == 1;
    NeighbourColours colours = region.neighbourColours;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const bool isOwnRow = i / 3 == 1 || isOneDown, isOwnColumn = i % 3 == 1 || isOneAcross;
        if (isOwnRow && isOwnColumn) colours[i] = pair;
    }
    return colours;
}

/// Whether the outer ring's error is the same for all pairs of the block: not on a grid one block wide or high, where the block
/// is its own neighbour, nor if pixels of the ring take their index from pixels inside, as in segments and at 2 bits per pixel.
bool isRingIndependentOf(const RefinementRegion& region) {
    const bool isThin = region.settings.blocksAcross == 1 || region.settings.blocksDown == 1;
    return region.settings.bitsPerPixel == 4 && region.segments == nullptr && !isThin;
}

struct ScoredPair {
    ColourPair pair;
    std::uint32_t error;
};

struct SearchResult {
    ScoredPair found;
    std::uint32_t outerError;
    std::optional<ColourPair> secondChance;
};

/// The loop above up to the second chance. `iterations` is not 0.
SearchResult search(const ColourPair& startPair, std::uint32_t iterations, CachedEvaluator& evaluator) {
    ScoredPair start{}, best{startPair, 0};
    SearchResult result{};
    ColourPair pair = startPair;
    for (std::uint32_t i = 0;; ++i) {
        EvaluatedPair& evaluated = evaluator.evaluate(pair, i == 0);
        if (i == 0) result.outerError = evaluated.error.outer;
        const ScoredPair current = {pair, evaluated.error.inner + result.outerError};
        if (i == 0) start = best = current;
        if (current.error < best.error) best = current;
        if (i + 1 == iterations) {
            // Kept (last-pair-wins): the last pair wins if it is no worse than the first, even if a better one was seen between.
            // The blocks of every .mok file encoded with more than one iteration depend on it.
            result.found = current.error > start.error ? start : current;
            return result;
        }
        const bool isLastButOne = i + 2 == iterations;
        if (isLastButOne && current.error > best.error) {
            const ColourPair retry = makeStorable(best.pair, evaluator.rules());
            if (retry != startPair) result.secondChance = retry;
        }
        pair = evaluator.move(evaluated, isLastButOne ? Step::fine : Step::coarse);
        if (pair == startPair) {
            result.found = start;
            return result;
        }
    }
}

}  // namespace

std::size_t PairCache::firstSlotOf(const ColourPair& pair) {
    const std::uint64_t key = std::uint64_t{pair.a} << 32 | pair.b;
    return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15u >> (64 - slotBits));
}

void PairCache::clear() {
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
    entry.isEvaluated = entry.hasOuterError = false;
    entry.afterFineStep = entry.afterCoarseStep = std::nullopt;
    return entry;
}

EvaluatedPair& PairCache::find(const ColourPair& pair) {
    if (pairCount == slotCount * 3 / 4) clear();
    std::size_t slot = firstSlotOf(pair);
    while (ages[slot] == age && slots[slot].pair != pair)
        slot = (slot + 1) % slotCount;
    return ages[slot] == age ? slots[slot] : occupy(slot, pair);
}

CachedEvaluator::CachedEvaluator(const RefinementRegion& refinedRegion, InstructionSet instructionSet, PairCache& pairCache)
    : evaluator(refinedRegion.settings, refinedRegion.table, refinedRegion.footprint, refinedRegion.segments, instructionSet),
      region(refinedRegion),
      cache(pairCache),
      isOuterErrorShared(isRingIndependentOf(region)) {
    cache.clear();
}

void CachedEvaluator::evaluatePair(EvaluatedPair& entry, bool withOuter) const {
    entry.error = evaluator.evaluate(coloursWithPair(region, entry.pair), withOuter, entry.sums);
    entry.isEvaluated = true;
    entry.hasOuterError = withOuter;
}

EvaluatedPair& CachedEvaluator::evaluate(const ColourPair& pair, bool withOuter) {
    EvaluatedPair& entry = cache.find(pair);
    const bool isRingWanted = withOuter && !sharedOuterError;
    if (!entry.isEvaluated || (isRingWanted && !entry.hasOuterError)) evaluatePair(entry, isRingWanted);
    if (isOuterErrorShared && isRingWanted) sharedOuterError = entry.error.outer;
    if (sharedOuterError) entry.error.outer = *sharedOuterError;
    return entry;
}

ColourPair CachedEvaluator::move(EvaluatedPair& evaluated, Step step) const {
    std::optional<ColourPair>& moved = step == Step::coarse ? evaluated.afterCoarseStep : evaluated.afterFineStep;
    if (!moved) moved = applyDeltas(evaluated.pair, SolveEndpointDeltas(evaluated.sums), step, region.rules);
    return *moved;
}

void OptimiseRegion(Candidate& candidate, std::uint32_t iterations, CachedEvaluator& evaluator) {
    ScoredPair found = {candidate.colours(), 0};
    if (iterations != 0) {
        const SearchResult result = search(candidate.colours(), iterations, evaluator);
        found = result.found;
        if (result.secondChance && *result.secondChance != found.pair) {
            const std::uint32_t error = evaluator.evaluate(*result.secondChance, false).error.inner + result.outerError;
            if (error < found.error) found = {*result.secondChance, error};
        }
    }
    candidate.colourA = found.pair.a;
    candidate.colourB = found.pair.b;
    candidate.error = found.error;
}

}  // namespace moktexture::amtc
