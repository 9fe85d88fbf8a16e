#include "moktc/amtc/analysis/footprint_statistics.h"

#include <cmath>

#include "moktc/amtc/analysis/rep_builder.h"

namespace moktexture::amtc {

namespace {

/// Which pixels count as transparent.
enum class TransparencyRule { never, zeroAlpha, allZero };

/// Kept: what counts as transparent depends on rate and generation: at 2 bits per pixel nothing does, at 4 an alpha of 0 in the
/// first generation, and a colour of 0 throughout in the second. The start candidates of cut-out pictures come from it.
TransparencyRule transparencyRuleOf(const AmtcLevelSettings& settings) {
    if (settings.bitsPerPixel != 4) return TransparencyRule::never;
    return settings.secondGeneration != 0 ? TransparencyRule::allZero : TransparencyRule::zeroAlpha;
}

bool isTransparent(std::uint32_t pixel, TransparencyRule rule) {
    switch (rule) {
        case TransparencyRule::zeroAlpha:
            return channelOf(pixel, alphaChannel) == 0;
        case TransparencyRule::allZero:
            return pixel == 0;
        default:
            return false;
    }
}

/// The alpha that transparent pixels of the first generation take among the opaque ones: the others' weighted mean, rounded.
float substituteAlphaOf(const Footprint& footprint, std::size_t pixels, const FootprintKernel& smoothKernel) {
    double sum = 0, weight = 0;
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint32_t alpha = channelOf(footprint[i], alphaChannel);
        if (alpha == 0) continue;
        sum += static_cast<double>(static_cast<float>(alpha) * smoothKernel[i]);
        weight += static_cast<double>(smoothKernel[i]);
    }
    return weight > 0 ? static_cast<float>(std::floor(sum / weight + 0.5)) : 0;
}

struct FootprintClouds {
    ColourCloud whole, centre;
    ColourCloud opaque;  ///< left empty if no pixel is transparent
    std::size_t transparentCount = 0;
    bool isTransparentInCentre = false;
};

void gatherWholeAndCentre(const Footprint& footprint, std::size_t pixels, TransparencyRule rule, const FootprintMask& centreMask,
                          const FootprintKernel& smoothKernel, FootprintClouds& clouds) {
    for (std::size_t i = 0; i < pixels; ++i) {
        const ColourVector colour = toVector(footprint[i]);
        const bool transparent = isTransparent(footprint[i], rule);
        clouds.whole.add(colour, smoothKernel[i]);
        clouds.transparentCount += transparent ? 1 : 0;
        if (centreMask[i] == 0) continue;
        clouds.centre.add(colour, 1);
        clouds.isTransparentInCentre |= transparent;
    }
}

/// Kept: the second generation leaves transparent pixels out of the opaque ones, the first takes them in with their own colour
/// and a substitute alpha. Punch-through candidates of the first generation depend on the colours under transparent pixels.
void gatherOpaque(const Footprint& footprint, std::size_t pixels, TransparencyRule rule, const FootprintKernel& smoothKernel,
                  ColourCloud& opaque) {
    const bool takesTransparent = rule == TransparencyRule::zeroAlpha;
    const float substituteAlpha = takesTransparent ? substituteAlphaOf(footprint, pixels, smoothKernel) : 0;
    for (std::size_t i = 0; i < pixels; ++i) {
        ColourVector colour = toVector(footprint[i]);
        if (isTransparent(footprint[i], rule)) {
            if (!takesTransparent) continue;
            colour[alphaChannel] = substituteAlpha;
        }
        opaque.add(colour, smoothKernel[i]);
    }
}

/// Makes `reps[opaqueRep]` of what is opaque. False if the whole footprint has to stand in for it.
bool makeOpaqueRep(FootprintClouds& clouds, std::size_t pixels, BlockRecord& block) {
    if (clouds.transparentCount == 0 || clouds.transparentCount == pixels) return false;
    ColourCloud& opaque = clouds.opaque;
    // Kept: opaque pixels of one colour keep their sum undivided for a mean. In the second generation, which leaves pixels out,
    // this is darker and more transparent than the colour; candidates that start from this mean depend on it.
    if (!opaque.bounds.isFlat()) {
        if (!(opaque.weight > 0)) return false;
        opaque.divideByWeight();
    }
    MakeRep(opaque.moments, opaque.sum, opaque.bounds, true, block.reps[opaqueRep]);
    return true;
}

void makeReps(FootprintClouds& clouds, std::size_t pixels, BlockRecord& block) {
    const bool isOpaqueRepMade = makeOpaqueRep(clouds, pixels, block);
    // Kept: where the opaque pixels are of one colour and the transparent ones are outside the block, the whole footprint counts
    // as flat, with that colour for its bounds alone: its mean, from which the single-colour candidates of the block start, and
    // its extent are still those of all pixels, the transparent ones too.
    if (isOpaqueRepMade && clouds.opaque.bounds.isFlat() && !clouds.isTransparentInCentre)
        clouds.whole.bounds = clouds.opaque.bounds;
    MakeRep(clouds.whole.moments, clouds.whole.sum, clouds.whole.bounds, true, block.reps[wholeRep]);
    if (!isOpaqueRepMade) block.reps[opaqueRep] = block.reps[wholeRep];
    clouds.centre.divideByWeight();
    MakeRep(clouds.centre.moments, clouds.centre.sum, clouds.centre.bounds, true, block.reps[centreRep]);
}

/// Kept: the opaque pixels' extent is that of the pixels with an alpha above 0, under every rule of transparency and for a copy
/// of the whole footprint's too; with no such pixel it stays empty unless the footprint is flat, and colours held to an empty one
/// collapse to a fixed far point.
void projectPixels(const Footprint& footprint, std::size_t pixels, const FootprintMask& centreMask, BlockRecord& block) {
    for (std::size_t i = 0; i < pixels; ++i) {
        const ColourVector colour = toVector(footprint[i]);
        includeProjection(colour, block.reps[wholeRep]);
        if (channelOf(footprint[i], alphaChannel) != 0) includeProjection(colour, block.reps[opaqueRep]);
        if (centreMask[i] != 0) includeProjection(colour, block.reps[centreRep]);
    }
}

}  // namespace

void AnalyseFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, const FootprintMask& centreMask,
                      const FootprintKernel& /*sharpKernel*/, const FootprintKernel& smoothKernel, BlockRecord& block) {
    const std::size_t pixels = settings.footprintPixels();
    const TransparencyRule rule = transparencyRuleOf(settings);
    FootprintClouds clouds;
    gatherWholeAndCentre(footprint, pixels, rule, centreMask, smoothKernel, clouds);
    if (clouds.transparentCount != 0) gatherOpaque(footprint, pixels, rule, smoothKernel, clouds.opaque);
    makeReps(clouds, pixels, block);
    projectPixels(footprint, pixels, centreMask, block);
    block.transparentInCentre = clouds.isTransparentInCentre ? 1 : 0;
}

}  // namespace moktexture::amtc
