#pragma once

#include "moktc/amtc/refinement/endpoint_solver.h"
#include "moktc/amtc/starts/colour_quantiser.h"

/// @file
/// From one pair of colours to the next one worth a try.

namespace moktexture::amtc {

/// Which pairs may come of a step in one region mode of one block.
struct StepRules {
    const Rep& axes;  ///< with its bounds, holds colours if `clampToBounds`
    bool clampToBounds;
    Generation generation;
    bool isPunchThrough;
};

/// Holds a colour in the box that the bounds of `axes` span along its axes. A colour inside keeps its bits.
void ClampToRep(const Rep& axes, ColourVector& colour);

enum class Step {
    fine,   ///< ends on storable colours
    coarse  ///< the same, but for large steps, which may end on any colours of 8 bits
};

/// The pair that the solved deltas lead to.
ColourPair followDeltas(const ColourPair& pair, const EndpointDeltas& deltas, Step step, const StepRules& rules);

/// The storable pair for colours that may be none.
ColourPair makeStorable(const ColourPair& pair, const StepRules& rules);

/// Where new colours lie on the line from A to B.
struct FractionPair {
    float a, b;
};

inline constexpr std::size_t perturbationCount = 10;

// clang-format off
/// In the order in which they are tried: the line made longer, cut short at one end, turned round, cut short at both ends, and
/// cut short and turned round.
inline constexpr std::array<FractionPair, perturbationCount> PerturbationTable = {{
    //  new A    new B
    {-0.25f,  1.25f},
    {-0.5f,   1.0f},
    { 0.0f,   1.5f},
    { 0.0f,   0.125f},
    { 0.875f, 1.0f},
    { 0.0f,   0.625f},
    { 0.375f, 1.0f},
    { 1.0f,   0.0f},
    { 0.375f, 0.625f},
    { 0.75f,  0.25f},
}};
// clang-format on

/// Makes `result` of `source` with colours at the fractions of the line from A to B. False if they are the source's own.
bool MakePerturbedCandidate(const Candidate& source, const StepRules& rules, const FractionPair& fractions, Candidate& result);

}  // namespace moktexture::amtc
