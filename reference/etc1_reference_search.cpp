#include "reference/etc1_reference_search.h"

#include <algorithm>
#include <type_traits>
#include <vector>

#include "etc1/etc1_encoder.h"

namespace moktexture::etc1 {
namespace {

/// A channel of base colour plus modifier as the search takes it.
int searchedChannel(int sum, bool wrapsBelowZero) {
    if (sum < 0) return wrapsBelowZero ? 255 : 0;
    return sum > 255 ? 255 : sum;
}

/// The error of one colour in the type that the metric computes with.
template <class Error>
Error pixelError(const Subblock& subblock, const Colour& pixel, const Colour& base, int modifier) {
    Error error{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int difference = pixel[channel] - searchedChannel(base[channel] + modifier, subblock.wrapsBelowZero);
        const Error square = static_cast<Error>(difference * difference);
        if constexpr (std::is_same_v<Error, float>)
            error += channelWeights(ErrorMetric::perceptual)[channel] * square;
        else
            error += square;
    }
    return error;
}

/// Chooses the modifiers of the subblock's pixels from one table and returns the sum of their errors.
template <class Error>
Error chooseModifiers(const Subblock& subblock, const Colour& base, std::uint32_t table,
                      std::array<std::uint32_t, subblockArea>& indices) {
    Error sum{};
    for (std::size_t n = 0; n < subblockArea; ++n) {
        Error smallest = static_cast<Error>(blockErrorBound);
        for (const std::uint32_t index : ascendingIndices) {
            const Error error = pixelError<Error>(subblock, subblock.pixels[n], base, modifiers[table][index]);
            if (error < smallest) {
                smallest = error;
                indices[n] = index;
            }
        }
        sum += smallest;
    }
    return sum;
}

template <class Error>
TableFit bestOfTables(const Subblock& subblock, const Colour& base) {
    TableFit fit{};
    Error smallest = static_cast<Error>(subblockErrorBound);
    for (std::uint32_t table = 0; table < tableCount; ++table) {
        std::array<std::uint32_t, subblockArea> indices{};
        const Error error = chooseModifiers<Error>(subblock, base, table, indices);
        if (error < smallest) {
            smallest = error;
            fit.table = table;
            fit.indices = indices;
        }
    }
    fit.error = static_cast<int>(smallest);
    return fit;
}

CodedBlock code(const Subblocks& subblocks, Split split, ColourMode mode, const std::array<Codes, 2>& codes) {
    return packBlock(
        split, mode, codes,
        {BestTableReference(subblocks[0], expand(codes[0], mode)), BestTableReference(subblocks[1], expand(codes[1], mode))});
}

struct ColourError {
    Codes codes;
    int error;
};

/// The errors of all colours of a box, red outermost.
std::vector<ColourError> boxErrors(const Subblock& subblock, const CodeBox& box, ColourMode mode) {
    std::vector<ColourError> errors;
    for (int r = box.first[0]; r <= box.last[0]; ++r) {
        for (int g = box.first[1]; g <= box.last[1]; ++g) {
            for (int b = box.first[2]; b <= box.last[2]; ++b)
                errors.push_back({{r, g, b}, BestTableReference(subblock, expand({r, g, b}, mode)).error});
        }
    }
    return errors;
}

/// The first pair of lowest error among the legal ones.
std::array<Codes, 2> bestLegalPair(const std::vector<ColourError>& first, const std::vector<ColourError>& second) {
    int smallest = blockErrorBound;
    std::array<Codes, 2> best{};
    for (const ColourError& a : first) {
        for (const ColourError& b : second) {
            if (a.error + b.error >= smallest || !isLegalPair(a.codes, b.codes)) continue;
            smallest = a.error + b.error;
            best = {a.codes, b.codes};
        }
    }
    return best;
}

CodedBlock searchDifferential(const Subblocks& subblocks, Split split, const std::array<Codes, 2>& averages, int radius) {
    constexpr ColourMode mode = ColourMode::differential;
    const std::array<Codes, 2> pair = bestLegalPair(boxErrors(subblocks[0], boxAround(averages[0], radius), mode),
                                                    boxErrors(subblocks[1], boxAround(averages[1], radius), mode));
    return code(subblocks, split, mode, pair);
}

Codes bestIndividual(const Subblock& subblock) {
    const std::vector<ColourError> errors = boxErrors(subblock, individualBox, ColourMode::individual);
    return std::min_element(errors.begin(), errors.end(), [](const auto& a, const auto& b) { return a.error < b.error; })->codes;
}

CodedBlock searchSplit(const PixelBlock& block, Split split, int radius, ErrorMetric metric) {
    const Subblocks subblocks = subblocksOf(block, split, metric);
    const std::array<Codes, 2> averages = {roundToFiveBits(HalfAverage(subblocks[0])),
                                           roundToFiveBits(HalfAverage(subblocks[1]))};
    // A mode that is left out keeps its start value and loses. In the wide search, where only the differential mode can be left
    // out, half as much is enough: the individual mode's error is never that large.
    CodedBlock differential{radius == wideRadius ? subblockErrorBound : blockErrorBound, {}};
    CodedBlock individual{blockErrorBound, {}};
    const bool differentialSearched = isDifferentialSearched(averages, radius);
    if (differentialSearched) differential = searchDifferential(subblocks, split, averages, radius);
    if (isIndividualSearched(differentialSearched, radius))
        individual = code(subblocks, split, ColourMode::individual, {bestIndividual(subblocks[0]), bestIndividual(subblocks[1])});
    return differential.error > individual.error ? individual : differential;
}

}  // namespace

TableFit BestTableReference(const Subblock& subblock, const Colour& base) {
    return subblock.metric == ErrorMetric::uniform ? bestOfTables<std::int32_t>(subblock, base)
                                                   : bestOfTables<float>(subblock, base);
}

BlockWords CompressBlockSearchReference(const PixelBlock& block, int radius, ErrorMetric metric) {
    const CodedBlock leftRight = searchSplit(block, Split::leftRight, radius, metric);
    const CodedBlock topBottom = searchSplit(block, Split::topBottom, radius, metric);
    return leftRight.error > topBottom.error ? topBottom.words : leftRight.words;
}

}  // namespace moktexture::etc1
