// Colour quantiser: from two target colours to a pair that a block can hold.
//
// Problem   A block stores its colours with few bits:
//
//                         R  G  B  alpha
//               opaque A  5  5  4    -      translucent A  4  4  3  even 4-bit values
//               opaque B  5  5  5    -      translucent B  4  4  4  even ones, odd ones in the second generation
//
//           Rounding each colour independently is right for colours far apart. For close ones it is not: both may round to the
//           same code, and the blends between A and B, which could come nearer to the target colours than any code does,
//           collapse.
// Idea      Three regimes by the squared distance of the target colours over the four channels:
//
//               below 3     the colours are the same after rounding: a pair one of whose blends hits that colour
//                           (single_colour.cpp), oriented so that A is near the target A
//               below 64    try three pairs further apart, such that the target colours fall near neighbouring blends, 0 and 3/8,
//                           3/8 and 5/8, or 5/8 and 1; take the one with the smallest squared error at those blends
//               otherwise   round each channel to its nearest code
//
// Ties      In a channel half-way between two codes, A moves away from B and B away from A, so that the pair spans the target
//           range. Of two alphas equally near, the higher is taken; of pairs with equal errors, the first.
// Cost      Constant: at most 3 pairs of 8 channels. A channel takes one table lookup and one comparison, because codes are more
//           than one apart: between two integers there is at most one rounding threshold.

#include "moktc/amtc/starts/colour_quantiser.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace moktexture::amtc {

namespace {

/// Squared distance over the four channels below which the target colours count as one: about 1 in each of three channels. A
/// larger value loses real differences, a smaller one leaves pairs to collapse to one code.
constexpr float sameColourDistance = 3;
/// Squared distance below which the three placements are tried: 8 in one channel, about one step of 5 bits. A larger value tries
/// them for more pairs, which costs time.
constexpr float closeColourDistance = 64;
/// A pair whose alphas are both at least this is opaque. A lower value gives nearly opaque pairs more colour bits, a higher one
/// keeps more of their alpha.
constexpr float lowestOpaqueAlpha = 253;

constexpr std::uint32_t fewestBits = 3, maxBits = 5;

/// The rounding of the values from one integer up to the next: to `lower` below the threshold, to `upper` above it, to either on
/// it.
struct RoundingStep {
    float threshold;
    std::uint8_t lower, upper;
};

/// One step per integer from 0 to 255.
using RoundingSteps = std::array<RoundingStep, 256>;

constexpr RoundingSteps makeRoundingSteps(std::uint32_t bits) {
    RoundingSteps steps{};
    std::uint32_t code = 0;
    for (std::uint32_t integer = 0; integer < steps.size(); ++integer) {
        const std::uint32_t lower = expandToByte(code, bits);
        const std::uint32_t next = code + 1 < 1u << bits ? code + 1 : code;
        const std::uint32_t twiceMiddle = lower + expandToByte(next, bits);
        if (next != code && twiceMiddle / 2 == integer) code = next;
        steps[integer] = {static_cast<float>(twiceMiddle) * 0.5f, static_cast<std::uint8_t>(lower),
                          static_cast<std::uint8_t>(expandToByte(code, bits))};
    }
    return steps;
}

/// Entry 0 is for 3 bits.
constexpr std::array<RoundingSteps, maxBits - fewestBits + 1> roundingSteps = {makeRoundingSteps(3), makeRoundingSteps(4),
                                                                               makeRoundingSteps(5)};

inline std::uint32_t quantise(float value, std::uint32_t bits, bool preferUpper) {
    if (!(value > 0)) return 0;
    if (value >= 255) return 255;
    const RoundingStep& step = roundingSteps[bits - fewestBits][static_cast<std::size_t>(static_cast<int>(value))];
    return value > step.threshold || (preferUpper && value == step.threshold) ? step.upper : step.lower;
}

inline std::uint32_t quantiseAlpha(float value, std::uint32_t lowBit) {
    if (!(value > 0)) return 0;
    if (value >= 255) return 255;
    const std::uint32_t code = (static_cast<std::uint32_t>(static_cast<int>(value / 255.0f * 15.0f)) & ~1u) | lowBit;
    const std::uint32_t lower = code * 17, upper = std::min(lower + 34, 255u);
    const float toLower = std::abs(value - static_cast<float>(lower)), toUpper = std::abs(static_cast<float>(upper) - value);
    return toUpper <= toLower ? upper : lower;
}

/// Quantises both colours, opaque if `isOpaque`, else with the alphas that they have.
inline ColourPair quantiseEach(Generation generation, bool isOpaque, const ColourVector& floatA, const ColourVector& floatB) {
    const bool secondGeneration = generation == Generation::second;
    const std::uint32_t alphaA = isOpaque ? 255 : quantiseAlpha(floatA[alphaChannel], 0);
    const std::uint32_t alphaB = isOpaque ? 255 : quantiseAlpha(floatB[alphaChannel], secondGeneration ? 1 : 0);
    // Kept (unstorable-alphas-stay): in the second generation an alpha of 255 for A or 0 for B stays beside a translucent other,
    // though the block will hold 238 or 17. The refinement computes the errors of such a pair with these values, so that rounding
    // them here would make it choose other pairs and blocks.
    const bool isOpaqueA = alphaA == 255 && (!secondGeneration || alphaB == 255);
    const bool isOpaqueB = alphaB == 255 && (!secondGeneration || alphaA == 255);
    const ChannelBits& depthsA = bitsOfA[isOpaqueA ? 1 : 0];
    const ChannelBits& depthsB = bitsOfB[isOpaqueB ? 1 : 0];
    ColourPair pair = {alphaA << 8 * alphaChannel, alphaB << 8 * alphaChannel};
    for (std::size_t channel = 0; channel < alphaChannel; ++channel) {
        const bool isBLower = floatB[channel] < floatA[channel];
        pair.a |= quantise(floatA[channel], depthsA[channel], isBLower) << 8 * channel;
        pair.b |= quantise(floatB[channel], depthsB[channel], !isBLower) << 8 * channel;
    }
    return pair;
}

/// The positions on the line between the stored colours where the target ones are to lie.
struct Placement {
    float fractionA, fractionB;
};
constexpr std::array<Placement, 3> placements = {{{0, 0.375f}, {0.375f, 0.625f}, {0.625f, 1}}};

/// The best of the pairs further apart that have the target colours near two neighbouring blends.
ColourPair placeAtBlends(Generation generation, bool isOpaque, const ColourVector& floatA, const ColourVector& floatB) {
    ColourPair best{};
    float bestError = std::numeric_limits<float>::infinity();
    for (const Placement& placement : placements) {
        // Kept (close-pairs-miss-their-blends): the ends move apart by fractions of the target colours' distance, not of the
        // pair's own, which is larger; the target colours lie near the blends and not on them. Start candidates and the
        // refinement both round through here, so that the exact pair would change most encoded blocks of smooth images.
        ColourVector a, b;
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            const float difference = floatB[channel] - floatA[channel];
            a[channel] = floatA[channel] - difference * placement.fractionA;
            b[channel] = floatB[channel] + difference * (1 - placement.fractionB);
        }
        const ColourPair pair = quantiseEach(generation, isOpaque, a, b);
        const ColourVector storedA = toVector(pair.a), storedB = toVector(pair.b);
        const float error = squaredDistance(pointBetween(storedA, storedB, placement.fractionA), floatA) +
                            squaredDistance(pointBetween(storedA, storedB, placement.fractionB), floatB);
        if (error < bestError) {
            best = pair;
            bestError = error;
        }
    }
    return best;
}

}  // namespace

std::uint32_t QuantiseChannel(float value, std::uint32_t bits, bool preferUpper) {
    return quantise(value, bits, preferUpper);
}

std::uint32_t QuantiseChannelByte(std::uint32_t value, std::uint32_t bits, bool preferUpper) {
    return quantise(static_cast<float>(value), bits, preferUpper);
}

std::uint32_t QuantiseAlpha(float value, std::uint32_t lowBit) {
    return quantiseAlpha(value, lowBit);
}

ColourPair QuantiseColourPair(Generation generation, bool isPunchThrough, const ColourVector& floatA,
                              const ColourVector& floatB) {
    const bool isOpaque = floatA[alphaChannel] >= lowestOpaqueAlpha && floatB[alphaChannel] >= lowestOpaqueAlpha;
    const float distance = squaredDistance(floatA, floatB);
    if (distance < sameColourDistance) return SplitEqualPair(generation, isPunchThrough, floatA, floatB, roundToRGBA(floatA));
    if (distance < closeColourDistance) return placeAtBlends(generation, isOpaque, floatA, floatB);
    return quantiseEach(generation, isOpaque, floatA, floatB);
}

}  // namespace moktexture::amtc
