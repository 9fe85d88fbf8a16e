#include <algorithm>
#include <vector>

#include "etc1/etc1_search.h"

namespace moktexture::etc1 {
namespace {

struct BoxColour {
    Codes codes;
    int error;
};

/// The errors of all colours of a box, red outermost.
std::vector<BoxColour> boxErrors(const Half& half, const CodeBox& box, Form form) {
    std::vector<BoxColour> errors;
    for (int r = box.first[0]; r <= box.last[0]; ++r) {
        for (int g = box.first[1]; g <= box.last[1]; ++g) {
            for (int b = box.first[2]; b <= box.last[2]; ++b)
                errors.push_back({{r, g, b}, BestTablePlain(half, expand({r, g, b}, form)).error});
        }
    }
    return errors;
}

/// The first pair of least error among the legal ones.
std::array<Codes, 2> bestLegalPair(const std::vector<BoxColour>& first, const std::vector<BoxColour>& second) {
    int least = blockErrorBound;
    std::array<Codes, 2> best{};
    for (const BoxColour& a : first) {
        for (const BoxColour& b : second) {
            if (a.error + b.error >= least || !isLegalPair(a.codes, b.codes)) continue;
            least = a.error + b.error;
            best = {a.codes, b.codes};
        }
    }
    return best;
}

CodedBlock searchDifferential(const std::array<Half, 2>& halves, Split split, const std::array<Codes, 2>& averages, int radius) {
    const std::array<Codes, 2> pair = bestLegalPair(boxErrors(halves[0], boxAround(averages[0], radius), Form::differential),
                                                    boxErrors(halves[1], boxAround(averages[1], radius), Form::differential));
    return codeBlock(halves, split, Form::differential, pair, BestTablePlain);
}

Codes bestIndividual(const Half& half) {
    constexpr int last = greatestIndividualCode;
    const std::vector<BoxColour> errors = boxErrors(half, {{0, 0, 0}, {last, last, last}}, Form::individual);
    return std::min_element(errors.begin(), errors.end(), [](const auto& a, const auto& b) { return a.error < b.error; })->codes;
}

CodedBlock searchSplit(const BlockPixels& block, Split split, int radius, Measure measure) {
    const std::array<Half, 2> halves = halvesOf(block, split, measure);
    const std::array<Codes, 2> averages = {roundToFiveBits(HalfAverage(halves[0])), roundToFiveBits(HalfAverage(halves[1]))};
    // A form that is left out keeps its start value and loses. In the wide search, where only the differential form can be left
    // out, half as much is enough: the individual form's error is never that large.
    CodedBlock differential{radius == wideRadius ? halfErrorBound : blockErrorBound, {}};
    CodedBlock individual{blockErrorBound, {}};
    const bool differentialSearched = isDifferentialSearched(averages, radius);
    if (differentialSearched) differential = searchDifferential(halves, split, averages, radius);
    if (isIndividualSearched(differentialSearched, radius))
        individual =
            codeBlock(halves, split, Form::individual, {bestIndividual(halves[0]), bestIndividual(halves[1])}, BestTablePlain);
    return differential.error > individual.error ? individual : differential;
}

}  // namespace

BlockWords CompressBlockSearchPlain(const BlockPixels& block, int radius, Measure measure) {
    const CodedBlock leftRight = searchSplit(block, Split::leftRight, radius, measure);
    const CodedBlock topBottom = searchSplit(block, Split::topBottom, radius, measure);
    return leftRight.error > topBottom.error ? topBottom.words : leftRight.words;
}

}  // namespace moktexture::etc1
