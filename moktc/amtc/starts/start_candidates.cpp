// Start candidates: the colour pairs from which the refinement of each region mode begins.
//
// Problem   The refinement improves a pair step by step and finds a local minimum only; what it reaches depends on where it
//           starts.
// Idea      Each region mode starts from the representative that describes the pixels as this mode shows them:
//
//     mode                 pixels                                   axis and bounds
//      0  standard         whole footprint                          the detail's or the whole's, see `axesOfSmoothModes`
//      1  punch-through    opaque pixels                            axis of the opaque detail, bounds of the opaque pixels
//      2  flat             the block itself                         its own
//      3  corner palette   clusters (cluster_start.cpp)             axis of the whole for the first two clusters
//      8  direct           as 0
//      9, 10, 11           copies of 8
//     12  flat direct      as 2
//     13, 14, 15           copies of 12
//
//           A representative of one colour gives two pairs around that colour (single_colour.cpp). Any other gives the pair
//           fitted along the axis (axis_endpoints.cpp), and three pairs inside it, for blocks whose pixels gather away from the
//           ends.
// Cost      One axis search per distinct start: at most three per block and, for mode 3, one clustering.

#include "moktc/amtc/starts/start_candidates.h"

#include <cstdio>
#include <cstdlib>

#include "moktc/amtc/starts/colour_quantiser.h"

namespace moktexture::amtc {

namespace {

/// The pixels of a block and their weights.
struct StartInput {
    const AmtcLevelSettings& settings;
    const Footprint& footprint;
    const FootprintKernel& sharpKernel;
};

/// The positions of A and B of the further candidates on the line of the first one. More of them would start more refinements,
/// whose time grows linearly; four candidates are what a record holds. The bytes depend on them.
struct LineFractions {
    float a, b;
};
constexpr std::array<LineFractions, 3> furtherCandidates = {{{0.25f, 0.75f}, {0.25f, 1}, {0, 0.75f}}};

/// The sum of the extents of the pixels along the four axes.
float RepRange(const Rep& rep) {
    float range = 0;
    for (std::size_t axis = 0; axis < channelCount; ++axis)
        range += rep.projMax[axis] - rep.projMin[axis];
    return range;
}

/// The representative whose axes the smooth modes use.
const Rep& axesOfSmoothModes(const BlockRecord& block) {
    // Kept (axes-of-smaller-range): of the whole and its detail the one with the smaller range gives the axes. `RepStart::axes`,
    // to whose bounds the refinement clamps solved colours, depends on it for every block of modes 0 and 8.
    const bool detailIsSmaller = RepRange(block.reps[wholeRep]) >= RepRange(block.reps[detailRep]);
    return block.reps[detailIsSmaller ? detailRep : wholeRep];
}

void addCandidate(RepStart& start, const ColourPair& pair) {
    start.candidates[start.count++] = {pair.a, pair.b};
}

/// Candidates around the one colour of a flat representative.
void startFromColour(const StartInput& input, bool isPunchThrough, const Rep& rep, RepStart& start) {
    std::uint32_t colour = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        colour |= std::uint32_t{rep.meanColour[channel]} << 8 * channel;
    Swappable swappable{};
    for (const bool narrow : {false, true})
        addCandidate(start, SingleColourMatch(colour, isPunchThrough, input.settings.generation(), narrow, swappable));
    start.isFlatStart = 1;
}

/// A candidate fitted along the first axis of `axisRep`, and three on the line between its colours.
void startFromLine(const StartInput& input, bool isPunchThrough, const Rep& axisRep, RepStart& start) {
    const ColourPair pair =
        FindAxisEndpoints(input.settings, isPunchThrough, input.footprint, input.sharpKernel, axisRep.axes[0]);
    addCandidate(start, pair);
    const ColourVector a = toVector(pair.a), b = toVector(pair.b);
    for (const LineFractions& fractions : furtherCandidates)
        addCandidate(start, QuantiseColourPair(input.settings.generation(), isPunchThrough, pointBetween(a, b, fractions.a),
                                               pointBetween(a, b, fractions.b)));
}

/// The representatives that one start uses.
struct StartReps {
    const Rep& pixels;  ///< what the candidates are to show
    const Rep& axis;    ///< its first axis is the line along which they are searched
    const Rep& bounds;  ///< to which the refinement will clamp
};

RepStart RepFromAxis(const StartInput& input, bool isPunchThrough, const StartReps& reps) {
    RepStart start{};
    start.axes = &reps.bounds;
    if (reps.pixels.isFlat != 0)
        startFromColour(input, isPunchThrough, reps.pixels, start);
    else
        startFromLine(input, isPunchThrough, reps.axis, start);
    return start;
}

/// The start of the modes that upscale the colours and have no punch-through pixels.
RepStart startOfSmoothModes(const StartInput& input, const BlockRecord& block) {
    const Rep& axes = axesOfSmoothModes(block);
    return RepFromAxis(input, false, {block.reps[wholeRep], axes, axes});
}

RepStart startFromClusters(const StartInput& input, const Rep& rep) {
    RepStart start{};
    start.axes = &rep;
    ClusterStart(rep.axes[0], input.footprint, start);
    return start;
}

/// The first candidates of one region mode. Modes that share theirs with an earlier one copy its record.
RepStart makeStart(std::uint32_t mode, const BlockRecord& block, const StartInput& input) {
    using namespace region_mode;
    const auto& reps = block.reps;
    switch (mode) {
        case standard:
        case direct:
            return startOfSmoothModes(input, block);
        case punchThrough:
            return RepFromAxis(input, true, {reps[opaqueRep], reps[opaqueDetailRep], reps[opaqueRep]});
        case flat4bpp:
        case flatDirect:
            return RepFromAxis(input, false, {reps[centreRep], reps[centreRep], reps[centreRep]});
        case cornerPalette:
            return startFromClusters(input, reps[wholeRep]);
        case average:
        case horizontal:
        case vertical:
            return block.repStarts[0];
        case flatAverage:
        case flatHorizontal:
        case flatVertical:
            return block.repStarts[flatDirect - direct];
        default:
            std::fputs("Error: Unexpected mode in SetUpStandardRepStarts()!\n", stderr);
            return {};
    }
}

}  // namespace

std::uint32_t startingRegionMode(const AmtcLevelSettings& settings, bool transparentInCentre) {
    if (settings.bitsPerPixel == 1) {
        // Kept (first-mode-aborts-at-1bpp): this rate was never finished. `ListRegionModes` aborts before with a message of its
        // own; a caller that calls this directly finds this message in its log.
        std::fputs("Exiting - 1bpp not yet implemented (SetUpStandardRepStarts)!\n", stderr);
        std::abort();
    }
    if (settings.bitsPerPixel == 2) return region_mode::average;
    return transparentInCentre && settings.secondGeneration != 0 ? region_mode::punchThrough : region_mode::standard;
}

void SetUpStandardRepStarts(BlockRecord& block, const AmtcLevelSettings& settings, const Footprint& footprint,
                            const FootprintKernel& sharpKernel) {
    const StartInput input = {settings, footprint, sharpKernel};
    RegionModeList modes{};
    const std::uint32_t count = ListRegionModes(settings, true, modes);
    for (std::uint32_t i = 0; i < count; ++i) {
        block.repStarts[i] = makeStart(modes[i], block, input);
        block.repStarts[i].mode = static_cast<std::uint8_t>(modes[i]);
    }
    block.bestMode = startingRegionMode(settings, block.transparentInCentre != 0);
}

}  // namespace moktexture::amtc
