#include "etc1/etc1_quick_candidates.h"

#include "etc1/etc1_decoder.h"
#include "etc1/etc1_quantiser.h"

namespace moktexture::etc1 {
namespace {

CodedBlock codeSplit(const BlockPixels& block, Split split, Measure measure, const Quantisers& quantisers, BestTable bestTable) {
    const std::array<Half, 2> halves = halvesOf(block, split, measure);
    const std::array<FloatColour, 2> averages = {HalfAverage(halves[0]), HalfAverage(halves[1])};
    const std::array<Codes, 2> fiveBits = {quantisers.fiveBits(averages[0]), quantisers.fiveBits(averages[1])};
    if (isLegalPair(fiveBits[0], fiveBits[1])) return codeBlock(halves, split, Form::differential, fiveBits, bestTable);
    const std::array<Codes, 2> fourBits = {quantisers.fourBits(averages[0]), quantisers.fourBits(averages[1])};
    return codeBlock(halves, split, Form::individual, fourBits, bestTable);
}

CodedBlock codeBetterSplit(const BlockPixels& block, Measure measure, const Quantisers& quantisers, BestTable bestTable) {
    const CodedBlock leftRight = codeSplit(block, Split::leftRight, measure, quantisers, bestTable);
    const CodedBlock topBottom = codeSplit(block, Split::topBottom, measure, quantisers, bestTable);
    return leftRight.error > topBottom.error ? topBottom : leftRight;
}

/// The error of a candidate as it would be decoded into the level.
double decodedError(const BlockPixels& block, const BlockWords& words, const ScratchRow& scratch, Measure measure) {
    storeBlock(decodeBlock(words), splitOf(words), scratch.pixels, scratch.level, scratch.x, 0);
    const BlockPixels decoded = readBlock(scratch.pixels, scratch.level, scratch.x, 0);
    double sum = 0.0;
    for (std::size_t place = 0; place < blockArea; ++place) {
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            const double weight = measure == Measure::perceptual ? static_cast<double>(perceptualWeights[channel]) : 1.0;
            const double difference = channelOf(block[place], channel) - channelOf(decoded[place], channel);
            sum += weight * (difference * difference);
        }
    }
    return sum;
}

}  // namespace

CodedBlock FastRounded(const BlockPixels& block, Measure measure, BestTable bestTable) {
    return codeBetterSplit(block, measure, {roundToFiveBits, roundToFourBits}, bestTable);
}

CodedBlock FastQuantised(const BlockPixels& block, Measure measure, BestTable bestTable) {
    const bool isPlain = measure == Measure::plain;
    const Quantisers quantisers = {isPlain ? QuantiseColour555 : QuantiseColour555Perceptual,
                                   isPlain ? QuantiseColour444 : QuantiseColour444Perceptual};
    return codeBetterSplit(block, measure, quantisers, bestTable);
}

BlockWords CompressBlockFast(const BlockPixels& block, const ScratchRow& scratch, Measure measure, BestTable bestTable) {
    const BlockWords rounded = FastRounded(block, measure, bestTable).words;
    const BlockWords quantised = FastQuantised(block, measure, bestTable).words;
    const double roundedError = decodedError(block, rounded, scratch, measure);
    const double quantisedError = decodedError(block, quantised, scratch, measure);
    return quantisedError < roundedError ? quantised : rounded;
}

}  // namespace moktexture::etc1
