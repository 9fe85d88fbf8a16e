#include <algorithm>
#include <optional>

#include "etc1/etc1_code_errors.h"
#include "etc1/etc1_legal_pairs.h"
#include "etc1/etc1_search.h"

namespace moktexture::etc1 {
namespace {

/// The colours of a block in one split.
struct SplitChoice {
    Split split;
    Form form;
    std::array<Codes, 2> codes;
    int error;
};

/// One split of a block and what its search starts from.
struct SplitSearch {
    Split split;
    int radius;
    std::array<Half, 2> halves;
    std::array<Codes, 2> fiveBits;  ///< averages
    std::array<Codes, 2> fourBits;  ///< averages, within the codes that are tried
    bool differentialSearched;

    SplitSearch(const BlockPixels& block, Split blockSplit, int searchRadius, Measure measure)
        : split(blockSplit), radius(searchRadius), halves(halvesOf(block, blockSplit, measure)) {
        for (std::size_t half = 0; half < 2; ++half) {
            const FloatColour average = HalfAverage(halves[half]);
            fiveBits[half] = roundToFiveBits(average);
            fourBits[half] = roundToFourBits(average);
            for (int& code : fourBits[half])
                code = std::min(code, greatestIndividualCode);
        }
        differentialSearched = isDifferentialSearched(fiveBits, radius);
    }
};

/// The second colours that are legal for a first colour, or with `sign` -1 the first colours for a second one, within a box.
CodeBox legalPartners(const Codes& codes, int sign, CodeBox box) {
    const int below = sign > 0 ? leastDelta : -greatestDelta, above = sign > 0 ? greatestDelta : -leastDelta;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        box.first[channel] = std::max(box.first[channel], codes[channel] + below);
        box.last[channel] = std::min(box.last[channel], codes[channel] + above);
    }
    return box;
}

/// An error that the split's search reaches for certain: that of a legal pair near the averages.
int reachableError(const SplitSearch& search) {
    if (!search.differentialSearched)
        return codeBlock(search.halves, search.split, Form::individual, search.fourBits, BestTableLanes).error;
    std::array<Codes, 2> pair = search.fiveBits;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        pair[1][channel] = std::clamp(pair[1][channel], pair[0][channel] + leastDelta, pair[0][channel] + greatestDelta);
    return codeBlock(search.halves, search.split, Form::differential, pair, BestTableLanes).error;
}

/// The best legal pair if the best colours of the halves are none. `first` and `second` are those.
std::optional<PairError> searchContestedPair(const std::array<CodeErrors, 2>& errors, const ColourError& first,
                                             const ColourError& second, int limit) {
    const std::optional<ColourError> secondForFirst =
        lowestError(errors[1], legalPartners(first.codes, 1, errors[1].box), second.codes, limit - first.error);
    if (secondForFirst) limit = std::min(limit, first.error + secondForFirst->error);
    const std::optional<ColourError> firstForSecond =
        lowestError(errors[0], legalPartners(second.codes, -1, errors[0].box), first.codes, limit - second.error);
    if (firstForSecond) limit = std::min(limit, firstForSecond->error + second.error);
    BoxErrors firstErrors, secondErrors;
    collectErrors(errors[0], limit - second.error, firstErrors);
    collectErrors(errors[1], limit - first.error, secondErrors);
    const PairError pair = bestLegalPair(firstErrors, errors[0].box, secondErrors, errors[1].box);
    if (pair.error > limit) return std::nullopt;
    return pair;
}

/// Best colours of both halves, each by itself, if their errors add up to at most `limit`.
std::optional<std::array<ColourError, 2>> searchHalves(const std::array<CodeErrors, 2>& errors, const std::array<Codes, 2>& start,
                                                       int limit) {
    const std::optional<ColourError> first = lowestError(errors[0], errors[0].box, start[0], limit - errorFloor(errors[1]));
    if (!first) return std::nullopt;
    const std::optional<ColourError> second = lowestError(errors[1], errors[1].box, start[1], limit - first->error);
    if (!second) return std::nullopt;
    return {{*first, *second}};
}

std::optional<SplitChoice> searchDifferential(const SplitSearch& search, int limit) {
    const std::array<CodeErrors, 2> errors = {
        CodeErrors(search.halves[0], boxAround(search.fiveBits[0], search.radius), Form::differential),
        CodeErrors(search.halves[1], boxAround(search.fiveBits[1], search.radius), Form::differential)};
    const auto best = searchHalves(errors, search.fiveBits, limit);
    if (!best) return std::nullopt;
    const ColourError &first = (*best)[0], &second = (*best)[1];
    if (isLegalPair(first.codes, second.codes))
        return SplitChoice{search.split, Form::differential, {first.codes, second.codes}, first.error + second.error};
    const std::optional<PairError> pair = searchContestedPair(errors, first, second, limit);
    if (!pair) return std::nullopt;
    return SplitChoice{search.split, Form::differential, pair->codes, pair->error};
}

std::optional<SplitChoice> searchIndividual(const SplitSearch& search, int limit) {
    constexpr int last = greatestIndividualCode;
    constexpr CodeBox allCodes = {{0, 0, 0}, {last, last, last}};
    const std::array<CodeErrors, 2> errors = {CodeErrors(search.halves[0], allCodes, Form::individual),
                                              CodeErrors(search.halves[1], allCodes, Form::individual)};
    const auto best = searchHalves(errors, search.fourBits, limit);
    if (!best) return std::nullopt;
    return SplitChoice{search.split, Form::individual, {(*best)[0].codes, (*best)[1].codes}, (*best)[0].error + (*best)[1].error};
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

BlockWords CompressBlockSearchBounded(const BlockPixels& block, int radius, Measure measure) {
    const SplitSearch leftRight(block, Split::leftRight, radius, measure), topBottom(block, Split::topBottom, radius, measure);
    const int leftRightReachable = reachableError(leftRight), topBottomReachable = reachableError(topBottom);
    // The likely winner goes first, so that the other is mostly cut off. Left and right halves win ties.
    std::optional<SplitChoice> choice;
    if (leftRightReachable <= topBottomReachable) {
        choice = searchSplit(leftRight, leftRightReachable);
        if (const std::optional<SplitChoice> other = searchSplit(topBottom, choice->error - 1)) choice = other;
    } else {
        choice = searchSplit(topBottom, topBottomReachable);
        if (const std::optional<SplitChoice> other = searchSplit(leftRight, choice->error)) choice = other;
    }
    const SplitSearch& search = choice->split == Split::leftRight ? leftRight : topBottom;
    return codeBlock(search.halves, choice->split, choice->form, choice->codes, BestTableLanes).words;
}

}  // namespace moktexture::etc1
