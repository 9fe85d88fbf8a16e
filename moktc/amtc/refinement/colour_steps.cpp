#include "moktc/amtc/refinement/colour_steps.h"

#include <algorithm>

namespace moktexture::amtc {
namespace {

ColourVector sumOf(const ColourVector& colour, const ColourVector& delta) {
    ColourVector sum{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        sum[channel] = colour[channel] + delta[channel];
    return sum;
}

ColourPair quantise(const ColourVector& a, const ColourVector& b, const StepRules& rules) {
    return QuantiseColourPair(rules.generation, rules.isPunchThrough, a, b);
}

ColourPair roundToBytes(const ColourVector& a, const ColourVector& b, const StepRules& rules) {
    const ColourPair rounded = {roundToRGBA(a), roundToRGBA(b)};
    return rounded.a == rounded.b ? SplitEqualPair(rules.generation, rules.isPunchThrough, a, b, rounded.a) : rounded;
}

/// A point beyond the two colours is held to 0 to 255; one between them needs no holding.
ColourVector pointAt(const ColourVector& a, const ColourVector& b, float fraction, const StepRules& rules) {
    ColourVector point = pointBetween(a, b, fraction);
    if (fraction < 0 || fraction > 1) {
        for (float& channel : point)
            channel = std::clamp(channel, 0.0f, 255.0f);
    }
    if (rules.clampToBounds) ClampToRep(rules.axes, point);
    return point;
}

}  // namespace

void ClampToRep(const Rep& axes, ColourVector& colour) {
    ColourVector held{};
    bool isHeld = false;
    for (std::size_t axis = 0; axis < channelCount; ++axis) {
        held[axis] = dotProduct(colour, axes.axes[axis]);
        if (held[axis] < axes.projMin[axis]) {
            held[axis] = axes.projMin[axis];
            isHeld = true;
        } else if (held[axis] > axes.projMax[axis]) {
            held[axis] = axes.projMax[axis];
            isHeld = true;
        }
    }
    if (!isHeld) return;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        colour[channel] = 0;
        for (std::size_t axis = 0; axis < channelCount; ++axis)
            colour[channel] += held[axis] * axes.axes[axis][channel];
    }
}

ColourPair followDeltas(const ColourPair& pair, const EndpointDeltas& deltas, Step step, const StepRules& rules) {
    ColourVector a = sumOf(toVector(pair.a), deltas.a), b = sumOf(toVector(pair.b), deltas.b);
    if (rules.clampToBounds) {
        ClampToRep(rules.axes, a);
        ClampToRep(rules.axes, b);
    }
    // Kept: large steps go to any colours of 8 bits and not to storable ones; which pairs the search meets, and so the choice of
    // colours, depends on it.
    return deltas.isLargeStep && step == Step::coarse ? roundToBytes(a, b, rules) : quantise(a, b, rules);
}

ColourPair makeStorable(const ColourPair& pair, const StepRules& rules) {
    return quantise(toVector(pair.a), toVector(pair.b), rules);
}

bool MakePerturbedCandidate(const Candidate& source, const StepRules& rules, const FractionPair& fractions, Candidate& result) {
    const ColourVector a = toVector(source.colourA), b = toVector(source.colourB);
    const ColourPair pair = quantise(pointAt(a, b, fractions.a, rules), pointAt(a, b, fractions.b, rules), rules);
    result = source;
    result.colourA = pair.a;
    result.colourB = pair.b;
    return pair != source.colours();
}

}  // namespace moktexture::amtc
