#include <algorithm>
#include <optional>

#include "etc1/etc1_code_errors.h"
#include "etc1/etc1_encoder.h"
#include "etc1/etc1_subblock.h"

// Qualities 2 to 5. The result is defined by an exhaustive search, which the reference form in `reference/` implements literally:
//
//   for each split, left and right first:
//       differential mode, if the averages are near enough:
//           all pairs of colours within `radius` codes of the two averages that differ by -4 to 3 in each channel
//       individual mode, if the radius is wide or the differential mode is left out:
//           all colours of 0 to 14 in each channel, for each subblock separately
//       keep the mode of lower error; of equal ones the differential mode
//   keep the split of lower error; of equal ones left and right
//
// with a run of BestTable for each colour: 343 or 1331 for a subblock in the differential mode, 3375 in the individual one, and
// up to 1.8 million pairs. This file gives the same words with far less work. Every step below has a limit: the largest error
// that could still win. It discards only colours and pairs whose error is above its limit.
//
//   reachable[split] = error of one pair near the averages that the search of the split contains
//   search the split of lower reachable error first, with that error as its limit;
//   then the other one, with the first one's error as its limit, or 1 less if a tie would lose
//
//   search of a split in the differential mode:
//       tabulate the errors of both subblocks (etc1_code_errors.cpp)
//       first  = best first colour alone,  limit - lower bound of the second one's errors
//       second = best second colour alone, limit - first's error
//       if the two are a legal pair, it is the best pair: no pair's error is below the sum of both minima
//       otherwise the pair is contested:
//           limit = min(limit, first + its best legal partner, second + its best legal partner)
//           collect the first colours of error <= limit - second's error, and second colours of error <= limit - first's error
//           best legal pair among those (etc1_legal_pairs.cpp)
//
// In a legal pair of error <= limit neither colour can have more than the limit less the lowest error of the other one, so that
// the collected colours contain all such pairs, those of equal error included. In the individual mode both subblocks are
// independent and the last step is not needed. All loops are bounded by the boxes. Memory: two tables of 47 KB and two boxes of
// errors, on the stack.

namespace moktexture::etc1 {
namespace {

/// The base colours of a block in one split.
struct SplitChoice {
    Split split;
    ColourMode mode;
    std::array<Codes, 2> codes;
    int error;
};

/// One split of a block and where its search starts.
struct SplitSearch {
    Split split;
    int radius;
    Subblocks subblocks;
    std::array<Codes, 2> fiveBits;  ///< averages
    std::array<Codes, 2> fourBits;  ///< averages, within `individualBox`
    bool differentialSearched;

    SplitSearch(const PixelBlock& block, Split blockSplit, int searchRadius, ErrorMetric metric)
        : split(blockSplit), radius(searchRadius), subblocks(subblocksOf(block, blockSplit, metric)) {
        for (std::size_t subblock = 0; subblock < 2; ++subblock) {
            const FloatColour average = HalfAverage(subblocks[subblock]);
            fiveBits[subblock] = roundToFiveBits(average);
            fourBits[subblock] = roundToFourBits(average);
            for (int& code : fourBits[subblock])
                code = std::min(code, greatestIndividualCode);
        }
        differentialSearched = isDifferentialSearched(fiveBits, radius);
    }
};

/// The part of a box that is legal beside a colour of the other subblock: with differences of `fromDelta` to `toDelta` to it.
CodeBox legalPartners(const Codes& codes, int fromDelta, int toDelta, CodeBox box) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        box.first[channel] = std::max(box.first[channel], codes[channel] + fromDelta);
        box.last[channel] = std::min(box.last[channel], codes[channel] + toDelta);
    }
    return box;
}

/// An error that the search of the split certainly reaches: that of a legal pair near the averages.
int reachableError(const SplitSearch& search) {
    if (!search.differentialSearched)
        return codeBlock(search.subblocks, search.split, ColourMode::individual, search.fourBits).error;
    std::array<Codes, 2> pair = search.fiveBits;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        pair[1][channel] = std::clamp(pair[1][channel], pair[0][channel] + minDelta, pair[0][channel] + maxDelta);
    return codeBlock(search.subblocks, search.split, ColourMode::differential, pair).error;
}

/// The best legal pair where the best colours of the subblocks, `first` and `second`, are no legal pair.
std::optional<PairError> searchContestedPair(const std::array<CodeErrors, 2>& errors, const ColourError& first,
                                             const ColourError& second, int limit) {
    const std::optional<ColourError> secondForFirst =
        lowestError(errors[1], legalPartners(first.codes, minDelta, maxDelta, errors[1].box), second.codes, limit - first.error);
    if (secondForFirst) limit = std::min(limit, first.error + secondForFirst->error);
    const std::optional<ColourError> firstForSecond = lowestError(
        errors[0], legalPartners(second.codes, -maxDelta, -minDelta, errors[0].box), first.codes, limit - second.error);
    if (firstForSecond) limit = std::min(limit, firstForSecond->error + second.error);
    BoxErrors firstErrors, secondErrors;
    collectErrors(errors[0], limit - second.error, firstErrors);
    collectErrors(errors[1], limit - first.error, secondErrors);
    const PairError pair = lowestLegalPair({firstErrors, errors[0].box}, {secondErrors, errors[1].box});
    if (pair.error > limit) return std::nullopt;
    return pair;
}

/// The best colours of both subblocks, each chosen alone, if their errors add up to at most `limit`.
std::optional<std::array<ColourError, 2>> searchSubblocks(const std::array<CodeErrors, 2>& errors,
                                                          const std::array<Codes, 2>& start, int limit) {
    const std::optional<ColourError> first = lowestError(errors[0], errors[0].box, start[0], limit - errorLowerBound(errors[1]));
    if (!first) return std::nullopt;
    const std::optional<ColourError> second = lowestError(errors[1], errors[1].box, start[1], limit - first->error);
    if (!second) return std::nullopt;
    return {{*first, *second}};
}

std::optional<SplitChoice> searchDifferential(const SplitSearch& search, int limit) {
    constexpr ColourMode mode = ColourMode::differential;
    const std::array<CodeErrors, 2> errors = {
        CodeErrors(search.subblocks[0], boxAround(search.fiveBits[0], search.radius), mode),
        CodeErrors(search.subblocks[1], boxAround(search.fiveBits[1], search.radius), mode)};
    const auto best = searchSubblocks(errors, search.fiveBits, limit);
    if (!best) return std::nullopt;
    const auto& [first, second] = *best;
    if (isLegalPair(first.codes, second.codes))
        return SplitChoice{search.split, mode, {first.codes, second.codes}, first.error + second.error};
    const std::optional<PairError> pair = searchContestedPair(errors, first, second, limit);
    if (!pair) return std::nullopt;
    return SplitChoice{search.split, mode, pair->codes, pair->error};
}

std::optional<SplitChoice> searchIndividual(const SplitSearch& search, int limit) {
    constexpr ColourMode mode = ColourMode::individual;
    const std::array<CodeErrors, 2> errors = {CodeErrors(search.subblocks[0], individualBox, mode),
                                              CodeErrors(search.subblocks[1], individualBox, mode)};
    const auto best = searchSubblocks(errors, search.fourBits, limit);
    if (!best) return std::nullopt;
    const auto& [first, second] = *best;
    return SplitChoice{search.split, mode, {first.codes, second.codes}, first.error + second.error};
}

/// The choice of the split if its error is at most `limit`.
std::optional<SplitChoice> searchSplit(const SplitSearch& search, int limit) {
    std::optional<SplitChoice> choice;
    if (search.differentialSearched) choice = searchDifferential(search, limit);
    if (choice) limit = choice->error - 1;
    if (isIndividualSearched(search.differentialSearched, search.radius)) {
        if (const std::optional<SplitChoice> individual = searchIndividual(search, limit)) choice = individual;
    }
    return choice;
}

}  // namespace

CodeBox boxAround(const Codes& centre, int radius) {
    CodeBox box{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        box.first[channel] = std::max(centre[channel] - radius, 0);
        box.last[channel] = std::min(centre[channel] + radius, 31);
    }
    return box;
}

bool isDifferentialSearched(const std::array<Codes, 2>& averages, int radius) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int delta = averages[1][channel] - averages[0][channel];
        if (delta < minDelta - radius || delta > maxDelta + radius) return false;
    }
    return true;
}

BlockWords CompressBlockSearch(const PixelBlock& block, int radius, ErrorMetric metric) {
    const SplitSearch leftRight(block, Split::leftRight, radius, metric), topBottom(block, Split::topBottom, radius, metric);
    const int leftRightReachable = reachableError(leftRight), topBottomReachable = reachableError(topBottom);
    // The likely winner goes first, so that most of the other search is cut off. Left and right subblocks win ties.
    std::optional<SplitChoice> choice;
    if (leftRightReachable <= topBottomReachable) {
        choice = searchSplit(leftRight, leftRightReachable);
        if (const std::optional<SplitChoice> other = searchSplit(topBottom, choice->error - 1)) choice = other;
    } else {
        choice = searchSplit(topBottom, topBottomReachable);
        if (const std::optional<SplitChoice> other = searchSplit(leftRight, choice->error)) choice = other;
    }
    const SplitSearch& search = choice->split == Split::leftRight ? leftRight : topBottom;
    return codeBlock(search.subblocks, choice->split, choice->mode, choice->codes).words;
}

}  // namespace moktexture::etc1
