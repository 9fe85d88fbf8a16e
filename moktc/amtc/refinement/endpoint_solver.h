#pragma once

#include "moktc/amtc/evaluation/pixel_evaluation.h"
#include "moktc/amtc/starts/colour_quantiser.h"

/// @file
/// From one pair of colours to the next one to evaluate: the solver's deltas, steps along them, and perturbed pairs.

namespace moktexture::amtc {

/// The change of the block's two colours.
struct EndpointDeltas {
    ColourVector a, b;
    bool isLargeStep;  ///< a channel changes by 1.5 or more, or no weight is in use
};

/// Fits a line to the pixels' differences over their interpolation weights, one for each channel.
EndpointDeltas SolveEndpointDeltas(const RegressionSums& sums);

/// Which pairs a step may lead to in one region mode of one block.
struct StepRules {
    const Rep& axes;  ///< with its bounds, clamps colours if `clampToBounds`
    bool clampToBounds;
    Generation generation;
    bool isPunchThrough;
};

/// Clamps a colour to the box that the bounds of `axes` span along its axes. A colour inside keeps its bits.
void ClampToRep(const Rep& axes, ColourVector& colour);

enum class Step {
    fine,   ///< ends on storable colours
    coarse  ///< the same, except that large steps may end on any colours of 8 bits
};

/// The pair that the deltas lead to.
ColourPair applyDeltas(const ColourPair& pair, const EndpointDeltas& deltas, Step step, const StepRules& rules);

/// The nearest pair that a block can store, with the stored bits expanded.
ColourPair makeStorable(const ColourPair& pair, const StepRules& rules);

/// Positions on the line from A (0) to B (1).
struct FractionPair {
    float a, b;
};

inline constexpr std::size_t perturbationCount = 10;

// In the order in which they are tried. More of them escape more local minima, at one refinement each in every visit and mode.
// clang-format off
inline constexpr std::array<FractionPair, perturbationCount> PerturbationTable = {{
    //  new A    new B
    {-0.25f,  1.25f},    // extended
    {-0.5f,   1.0f},
    { 0.0f,   1.5f},
    { 0.0f,   0.125f},   // shortened at one end
    { 0.875f, 1.0f},
    { 0.0f,   0.625f},
    { 0.375f, 1.0f},
    { 1.0f,   0.0f},     // exchanged
    { 0.375f, 0.625f},   // shortened at both ends
    { 0.75f,  0.25f},    // and exchanged
}};
// clang-format on

/// Makes `result` a copy of `source` with colours at the fractions of the line from A to B. False if they are the source's own.
bool MakePerturbedCandidate(const Candidate& source, const StepRules& rules, const FractionPair& fractions, Candidate& result);

}  // namespace moktexture::amtc
