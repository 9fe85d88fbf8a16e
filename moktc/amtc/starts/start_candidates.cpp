#include "moktc/amtc/starts/start_candidates.h"

#include <cstdio>
#include <cstdlib>

#include "moktc/amtc/starts/axis_endpoints.h"
#include "moktc/amtc/starts/cluster_start.h"
#include "moktc/amtc/starts/colour_quantiser.h"

namespace moktexture::amtc {

namespace {

/// A block's pixels and what tells how they count.
struct StartInput {
    const AmtcLevelSettings& settings;
    const Footprint& footprint;
    const FootprintKernel& sharpKernel;

    bool secondGeneration() const { return settings.secondGeneration != 0; }
};

/// Where on the line of the first candidate the others have their A and B.
struct LineFractions {
    float a, b;
};
constexpr std::array<LineFractions, 3> furtherCandidates = {{{0.25f, 0.75f}, {0.25f, 1}, {0, 0.75f}}};

/// How far the pixels reach along all four axes together.
float RepRange(const Rep& rep) {
    float range = 0;
    for (std::size_t axis = 0; axis < channelCount; ++axis)
        range += rep.projMax[axis] - rep.projMin[axis];
    return range;
}

/// The representative whose axes the smooth modes follow.
const Rep& axesOfSmoothModes(const BlockRecord& block) {
    // Kept: of the whole and its detail the one with the smaller range gives the axes; encoded files depend on it.
    const bool detailIsSmaller = RepRange(block.reps[wholeRep]) >= RepRange(block.reps[detailRep]);
    return block.reps[detailIsSmaller ? detailRep : wholeRep];
}

void addCandidate(RepStart& start, const ColourPair& pair) {
    start.candidates[start.count++] = {pair.a, pair.b};
}

/// Candidates around the one colour of a flat footprint.
void startFromColour(const StartInput& input, bool isPunchThrough, const Rep& rep, RepStart& start) {
    std::uint32_t colour = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        colour |= std::uint32_t{rep.meanColour[channel]} << 8 * channel;
    Swappable swappable{};
    for (const bool narrow : {false, true})
        addCandidate(start, SingleColourMatch(colour, isPunchThrough, input.secondGeneration(), narrow, swappable));
    start.isFlatStart = 1;
}

/// A candidate fitted along the first axis of `axisRep`, and three on the line between its colours.
void startFromLine(const StartInput& input, bool isPunchThrough, const Rep& axisRep, RepStart& start) {
    const ColourPair pair =
        FindAxisEndpoints(input.settings, isPunchThrough, input.footprint, input.sharpKernel, axisRep.axes[0]);
    addCandidate(start, pair);
    const ColourVector a = toVector(pair.a), b = toVector(pair.b);
    for (const LineFractions& fractions : furtherCandidates)
        addCandidate(start, QuantiseColourPair(input.secondGeneration(), isPunchThrough, pointBetween(a, b, fractions.a),
                                               pointBetween(a, b, fractions.b)));
}

/// Candidates for the pixels of `rep`, which lie along the axes of `axisRep`.
RepStart RepFromAxis(const StartInput& input, bool isPunchThrough, const Rep& rep, const Rep& axisRep, const Rep& bounds) {
    RepStart start{};
    start.axes = &bounds;
    if (rep.isFlat != 0)
        startFromColour(input, isPunchThrough, rep, start);
    else
        startFromLine(input, isPunchThrough, axisRep, start);
    return start;
}

/// The start of the modes that upscale the colours without holes.
RepStart startOfSmoothModes(const StartInput& input, const BlockRecord& block) {
    const Rep& axes = axesOfSmoothModes(block);
    return RepFromAxis(input, false, block.reps[wholeRep], axes, axes);
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
            return RepFromAxis(input, true, reps[opaqueRep], reps[opaqueDetailRep], reps[opaqueRep]);
        case flat4bpp:
        case flatDirect:
            return RepFromAxis(input, false, reps[centreRep], reps[centreRep], reps[centreRep]);
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
        // Kept: this rate was never built; the list of modes ends the process before with a message of its own.
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
