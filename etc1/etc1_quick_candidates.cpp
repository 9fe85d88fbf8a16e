#include "etc1/etc1_block.h"
#include "etc1/etc1_encoder.h"

// Qualities 0 and 1. The average of a subblock is a good base colour; the question is how to quantise it to codes of 4 or 5
// bits. Two candidates do that differently, and the better one is taken:
//
//   for each candidate, rounded and quantised:
//       for each split, left and right first:
//           codes = both subblocks' averages in 5 bits          candidate's rule
//           if a difference is outside -4 to 3: codes in 4 bits, individual mode
//           fit the modifiers around the codes; error = sum over both subblocks
//       keep the split of lower error
//   decode both candidates; keep the one nearer to the block's pixels
//
// The rounded candidate takes the nearest code of each channel separately. The quantised one looks at the eight corners of the
// cube of codes below and above the average, and takes the one whose error has the most equal red, green and blue parts: a grey
// error is one that the modifiers, which change all three channels equally, can compensate. So the hue of the base colour counts
// and its brightness does not.
//
//   hue error = wRG * (eR - eG)^2 + wRB * (eR - eB)^2 + wGB * (eG - eB)^2         e: code's colour minus average
//
// A block costs eight runs of BestTable at most, and two decodes.

namespace moktexture::etc1 {
namespace {

using Quantise = Codes (*)(const FloatColour& colour);

/// How a candidate quantises averages to codes.
struct Quantisers {
    Quantise fiveBits;
    Quantise fourBits;
};

/// Weights of the squared differences between the errors of two channels.
struct PairWeights {
    float redGreen, redBlue, greenBlue;
};

constexpr PairWeights equalWeights = {1.0f, 1.0f, 1.0f};
/// The products of the perceptual metric's channel weights.
constexpr PairWeights perceptualPairWeights = {0.175513f, 0.034086f, 0.066918f};

// Row: a corner between low and high codes. Column: whether red, green and blue take the high code.
// clang-format off
constexpr std::array<std::array<bool, channelCount>, 8> corners = {{
    // red, green, blue
    {false, false, false},
    {true,  false, false},
    {false, true,  false},
    {false, false, true },
    {true,  true,  false},
    {true,  false, true },
    {false, true,  true },
    {true,  true,  true },
}};
// clang-format on

constexpr std::size_t allLow = 0, allHigh = 7;

/// Squared error of the all-low corner above which QuantiseColour444 prefers all-high: 8 in each channel, about half a step
/// of 17.
constexpr float greatestLowError = 192.0f;

constexpr float square(float value) {
    return value * value;
}

/// The codes below and above a colour.
struct CodeRange {
    ColourMode mode;
    Codes low;
    Codes high;

    CodeRange(const FloatColour& colour, ColourMode codeMode) : mode(codeMode), low{}, high{} {
        // Kept (etc1-five-bit-step): 255 / 31 cut to seven digits. With the quotient itself 255 would get the low code 30, and
        // the white blocks of .mok files encoded at qualities 0 and 1 would come out as other bytes.
        const double step = mode == ColourMode::individual ? 17.0 : 8.225806;
        const int greatest = mode == ColourMode::individual ? 15 : 31;
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            low[channel] = static_cast<int>(static_cast<double>(colour[channel]) / step);
            high[channel] = low[channel] < greatest ? low[channel] + 1 : greatest;
        }
    }

    Codes corner(std::size_t number) const {
        Codes codes{};
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            codes[channel] = corners[number][channel] ? high[channel] : low[channel];
        return codes;
    }

    FloatColour errorOf(const Codes& codes, const FloatColour& colour) const {
        const Colour expanded = expand(codes, mode);
        FloatColour error{};
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            error[channel] = expanded[channel] - colour[channel];
        return error;
    }
};

float hueError(const FloatColour& error, const PairWeights& weights) {
    return weights.redGreen * square(error[0] - error[1]) + weights.redBlue * square(error[0] - error[2]) +
           weights.greenBlue * square(error[1] - error[2]);
}

std::size_t bestCorner(const CodeRange& range, const FloatColour& colour, const PairWeights& weights) {
    std::size_t best = 0;
    float smallest = hueError(range.errorOf(range.corner(0), colour), weights);
    for (std::size_t number = 1; number < corners.size(); ++number) {
        const float error = hueError(range.errorOf(range.corner(number), colour), weights);
        if (error < smallest) {
            smallest = error;
            best = number;
        }
    }
    return best;
}

Codes hueCorner(const FloatColour& colour, ColourMode mode, const PairWeights& weights) {
    const CodeRange range(colour, mode);
    return range.corner(bestCorner(range, colour, weights));
}

CodedBlock codeSplit(const PixelBlock& block, Split split, ErrorMetric metric, const Quantisers& quantisers) {
    const Subblocks subblocks = subblocksOf(block, split, metric);
    const std::array<FloatColour, 2> averages = {HalfAverage(subblocks[0]), HalfAverage(subblocks[1])};
    const std::array<Codes, 2> fiveBits = {quantisers.fiveBits(averages[0]), quantisers.fiveBits(averages[1])};
    if (isLegalPair(fiveBits[0], fiveBits[1])) return codeBlock(subblocks, split, ColourMode::differential, fiveBits);
    const std::array<Codes, 2> fourBits = {quantisers.fourBits(averages[0]), quantisers.fourBits(averages[1])};
    return codeBlock(subblocks, split, ColourMode::individual, fourBits);
}

CodedBlock codeBetterSplit(const PixelBlock& block, ErrorMetric metric, const Quantisers& quantisers) {
    const CodedBlock leftRight = codeSplit(block, Split::leftRight, metric, quantisers);
    const CodedBlock topBottom = codeSplit(block, Split::topBottom, metric, quantisers);
    return leftRight.error > topBottom.error ? topBottom : leftRight;
}

/// The error of a candidate as it would be decoded into the image.
double decodedError(const PixelBlock& block, const BlockWords& words, const ScratchRow& scratch, ErrorMetric metric) {
    writeBlock(decodeBlock(words), splitOf(words), scratch.image, scratch.x, 0);
    const ConstImageView image = {scratch.image.pixels, scratch.image.width, scratch.image.height, scratch.image.rowBytes};
    const PixelBlock decoded = readBlock(image, scratch.x, 0);
    const std::array<float, channelCount> weights = channelWeights(metric);
    double sum = 0.0;
    for (std::size_t n = 0; n < blockArea; ++n) {
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            const double difference = channelOf(block[n], channel) - channelOf(decoded[n], channel);
            sum += static_cast<double>(weights[channel]) * (difference * difference);
        }
    }
    return sum;
}

}  // namespace

Codes QuantiseColour444(const FloatColour& colour) {
    const CodeRange range(colour, ColourMode::individual);
    const std::size_t best = bestCorner(range, colour, equalWeights);
    if (best != allLow && best != allHigh) return range.corner(best);
    // Kept (etc1-size-decides-444): the all-low and all-high corners have equal hue errors, and only here, not with 5 bits or
    // with weights, the size of the error decides between them. Blocks encoded at quality 0 would differ from those in stored
    // .mok files.
    const FloatColour error = range.errorOf(range.low, colour);
    return square(error[0]) + square(error[1]) + square(error[2]) > greatestLowError ? range.high : range.low;
}

Codes QuantiseColour555(const FloatColour& colour) {
    return hueCorner(colour, ColourMode::differential, equalWeights);
}

Codes QuantiseColour444Perceptual(const FloatColour& colour) {
    return hueCorner(colour, ColourMode::individual, perceptualPairWeights);
}

Codes QuantiseColour555Perceptual(const FloatColour& colour) {
    return hueCorner(colour, ColourMode::differential, perceptualPairWeights);
}

CodedBlock FastRounded(const PixelBlock& block, ErrorMetric metric) {
    return codeBetterSplit(block, metric, {roundToFiveBits, roundToFourBits});
}

CodedBlock FastQuantised(const PixelBlock& block, ErrorMetric metric) {
    if (metric == ErrorMetric::uniform) return codeBetterSplit(block, metric, {QuantiseColour555, QuantiseColour444});
    return codeBetterSplit(block, metric, {QuantiseColour555Perceptual, QuantiseColour444Perceptual});
}

BlockWords CompressBlockFast(const PixelBlock& block, const ScratchRow& scratch, ErrorMetric metric) {
    const BlockWords rounded = FastRounded(block, metric).words;
    const BlockWords quantised = FastQuantised(block, metric).words;
    const double roundedError = decodedError(block, rounded, scratch, metric);
    const double quantisedError = decodedError(block, quantised, scratch, metric);
    return quantisedError < roundedError ? quantised : rounded;
}

}  // namespace moktexture::etc1
