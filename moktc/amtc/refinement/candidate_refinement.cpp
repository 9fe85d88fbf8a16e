#include "moktc/amtc/refinement/candidate_refinement.h"

#include <optional>

namespace moktexture::amtc {
namespace {

struct ScoredPair {
    ColourPair pair;
    std::uint32_t error;
};

struct SearchResult {
    ScoredPair found;
    std::uint32_t outerError;
    std::optional<ColourPair> secondChance;  ///< the best pair made storable, if the search was getting worse near its end
};

/// `iterations` is not 0.
SearchResult search(const ColourPair& startPair, std::uint32_t iterations, EvaluatedPairs& pairs) {
    ScoredPair start{}, best{startPair, 0};
    SearchResult result{};
    ColourPair pair = startPair;
    for (std::uint32_t i = 0;; ++i) {
        EvaluatedPair& evaluated = pairs.evaluate(pair, i == 0);
        if (i == 0) result.outerError = evaluated.error.outer;
        const ScoredPair current = {pair, evaluated.error.inner + result.outerError};
        if (i == 0) start = best = current;
        if (current.error < best.error) best = current;
        if (i + 1 == iterations) {
            // Kept: the last pair wins if it is no worse than the first, whatever was seen between; colours depend on it.
            result.found = current.error > start.error ? start : current;
            return result;
        }
        const bool isLastButOne = i + 2 == iterations;
        if (isLastButOne && current.error > best.error) {
            const ColourPair retry = makeStorable(best.pair, pairs.rules());
            if (retry != startPair) result.secondChance = retry;
        }
        pair = pairs.move(evaluated, isLastButOne ? Step::fine : Step::coarse);
        if (pair == startPair) {
            result.found = start;
            return result;
        }
    }
}

}  // namespace

void OptimiseRegion(Candidate& candidate, std::uint32_t iterations, EvaluatedPairs& pairs) {
    ScoredPair found = {candidate.colours(), 0};
    if (iterations != 0) {
        const SearchResult result = search(candidate.colours(), iterations, pairs);
        found = result.found;
        if (result.secondChance && *result.secondChance != found.pair) {
            const std::uint32_t error = pairs.evaluate(*result.secondChance, false).error.inner + result.outerError;
            if (error < found.error) found = {*result.secondChance, error};
        }
    }
    candidate.colourA = found.pair.a;
    candidate.colourB = found.pair.b;
    candidate.error = found.error;
}

}  // namespace moktexture::amtc
