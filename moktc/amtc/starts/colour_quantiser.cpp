#include "moktc/amtc/starts/colour_quantiser.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace moktexture::amtc {

namespace {

constexpr std::uint32_t fewestBits = 3, mostBits = 5;

/// What the values from one integer up to the next round to: `lower` below the threshold, `upper` above it, either on it.
struct RoundingStep {
    float threshold;
    std::uint8_t lower, upper;
};

/// One step an integer from 0 to 255.
using RoundingSteps = std::array<RoundingStep, 256>;

/// Codes are more than one apart, so that two of them at most are nearest to values between two integers.
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

/// By bits, from 3.
constexpr std::array<RoundingSteps, mostBits - fewestBits + 1> roundingSteps = {makeRoundingSteps(3), makeRoundingSteps(4),
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

/// A pair from this alpha on, on both sides, is opaque.
constexpr float lowestOpaqueAlpha = 253;

/// Quantises both colours, opaque if `isOpaque`, else with the alphas that they have. On a tie a channel of A moves away from
/// that of B, and the other way round.
inline ColourPair quantiseEach(bool secondGeneration, bool isOpaque, const ColourVector& floatA, const ColourVector& floatB) {
    const std::uint32_t alphaA = isOpaque ? 255 : quantiseAlpha(floatA[alphaChannel], 0);
    const std::uint32_t alphaB = isOpaque ? 255 : quantiseAlpha(floatB[alphaChannel], secondGeneration ? 1 : 0);
    // Kept: in the second generation an alpha of 255 for A or 0 for B stays beside a translucent other, though the block will
    // hold 238 or 17; the search weighs such pairs by what they claim to be, and encoded files depend on it.
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

/// Where on the line between the stored colours the wanted ones are to lie.
struct Placement {
    float fractionA, fractionB;
};
constexpr std::array<Placement, 3> placements = {{{0, 0.375f}, {0.375f, 0.625f}, {0.625f, 1}}};

/// For colours less than two steps of the format apart: a pair further apart between two of whose levels they lie.
ColourPair placeBetweenLevels(bool secondGeneration, bool isOpaque, const ColourVector& floatA, const ColourVector& floatB) {
    ColourPair best{};
    float bestError = std::numeric_limits<float>::infinity();
    for (const Placement& placement : placements) {
        // Kept: the pair is moved apart by the fractions of its own distance, which falls short of bringing the wanted colours to
        // the levels exactly; encoded files depend on it.
        ColourVector a, b;
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            const float difference = floatB[channel] - floatA[channel];
            a[channel] = floatA[channel] - difference * placement.fractionA;
            b[channel] = floatB[channel] + difference * (1 - placement.fractionB);
        }
        const ColourPair pair = quantiseEach(secondGeneration, isOpaque, a, b);
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

ColourPair QuantiseColourPair(bool secondGeneration, bool isPunchThrough, const ColourVector& floatA,
                              const ColourVector& floatB) {
    constexpr float sameColour = 3, fewSteps = 64;
    const bool isOpaque = floatA[alphaChannel] >= lowestOpaqueAlpha && floatB[alphaChannel] >= lowestOpaqueAlpha;
    const float distance = squaredDistance(floatA, floatB);
    if (distance < sameColour) return SplitEqualPair(secondGeneration, isPunchThrough, floatA, floatB, roundToRGBA(floatA));
    if (distance < fewSteps) return placeBetweenLevels(secondGeneration, isOpaque, floatA, floatB);
    return quantiseEach(secondGeneration, isOpaque, floatA, floatB);
}

}  // namespace moktexture::amtc
