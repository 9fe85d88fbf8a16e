// Footprint statistics: what the pixels that a block influences look like.
//
// Problem   A block's two colours reach beyond the block: upscaled, they influence a footprint of twice its size plus one pixel
//           each way. The search for the colours needs a summary of these pixels: mean, bounds, principal axes.
// Idea      Three representatives, each a weighted cloud of pixels (representative.cpp explains how
//           axes are computed from a cloud):
//
//               whole    all pixels of the footprint, weighted by the smooth kernel, which falls off with the distance
//               opaque   the same without the transparent pixels, for punch-through blocks
//               centre   the pixels of the block itself, equally weighted, for blocks whose colours are not upscaled
//
// Method    1. one pass: sums of the whole and of the centre; count the transparent pixels
//           2. if some but not all pixels are transparent, a second pass: sums of the opaque pixels
//           3. axes of each cloud; without a cloud of its own, the opaque representative is a copy of the whole
//           4. a last pass: the extent of the pixels along the axes of each representative
//
// Cost      Linear in the pixels of the footprint (81 at 4 bits per pixel, 153 at 2), once per block. Nothing is allocated.

#include <cmath>
#include <numeric>
#include <span>

#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/analysis/representative.h"

namespace moktexture::amtc {

namespace {

// clang-format off
// One axis of a kernel, for block sides of 4 and of 8 pixels. The middle entry is the centre of the footprint. Wider kernels make
// a block's colours follow its neighbours' pixels, narrower ones its own; the bytes depend on every entry.
constexpr std::array<int,  9> sharp4  = {-32, 8, 28, 64, 127, 64, 28, 8, -32};
constexpr std::array<int, 17> sharp8  = {-24, -6, 7, 9, 12, 23, 29, 48, 80, 48, 29, 23, 12, 9, 7, -6, -24};
constexpr std::array<int,  9> smooth4 = {8, 16, 32, 64, 127, 64, 32, 16, 8};
constexpr std::array<int, 17> smooth8 = {1, 1, 2, 4, 8, 16, 32, 64, 127, 64, 32, 16, 8, 4, 2, 1, 1};
// clang-format on

using KernelAxis = std::span<const int>;

FootprintKernel separableKernel(KernelAxis vertical, KernelAxis horizontal) {
    const int sum =
        std::accumulate(vertical.begin(), vertical.end(), 0) * std::accumulate(horizontal.begin(), horizontal.end(), 0);
    FootprintKernel kernel{};
    std::size_t pixel = 0;
    for (const int down : vertical)
        for (const int across : horizontal)
            kernel[pixel++] = static_cast<float>(down * across) / static_cast<float>(sum);
    return kernel;
}

KernelAxis sharpAxis(std::size_t blockSide) {
    return blockSide == 8 ? KernelAxis(sharp8) : KernelAxis(sharp4);
}

KernelAxis smoothAxis(std::size_t blockSide) {
    return blockSide == 8 ? KernelAxis(smooth8) : KernelAxis(smooth4);
}

FootprintMask makeCentreMask(const AmtcLevelSettings& settings) {
    FootprintMask mask{};
    const std::size_t top = settings.blockHeight / 2u, left = settings.blockWidth / 2u;
    for (std::size_t row = top; row < top + settings.blockHeight; ++row)
        for (std::size_t column = left; column < left + settings.blockWidth; ++column)
            mask[row * settings.footprintWidth + column] = 1;
    return mask;
}

/// The rule that decides whether a pixel counts as transparent.
enum class TransparencyRule { never, zeroAlpha, allZero };

/// Kept (transparency-rule-by-variant): at 2 bits per pixel no pixel counts as transparent; at 4 one with alpha 0 does in the
/// first generation, one with all four channels 0 in the second. `makeOpaqueRep` and `startingRegionMode` depend on it: another
/// rule would give cut-out images other punch-through blocks.
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

/// The alpha that replaces that of transparent pixels in the first generation: the rounded weighted mean of the others.
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
    ColourCloud opaque;  ///< empty if no pixel is transparent
    std::size_t transparentCount = 0;
    bool isTransparentInCentre = false;
};

void gatherWholeAndCentre(const Footprint& footprint, std::size_t pixels, TransparencyRule rule, const FootprintKernels& kernels,
                          FootprintClouds& clouds) {
    for (std::size_t i = 0; i < pixels; ++i) {
        const ColourVector colour = toVector(footprint[i]);
        const bool transparent = isTransparent(footprint[i], rule);
        clouds.whole.add(colour, kernels.smooth[i]);
        clouds.transparentCount += transparent ? 1 : 0;
        if (kernels.centre[i] == 0) continue;
        clouds.centre.add(colour, 1);
        clouds.isTransparentInCentre |= transparent;
    }
}

/// Kept (transparent-counted-as-opaque): the second generation leaves transparent pixels out of the opaque cloud; the first one
/// includes them, with their own colour and a substitute alpha. Its decoder shows the colour of a punched pixel under alpha 0, so
/// that the punch-through candidates of a first-generation block follow the hidden colours too.
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

/// Makes `reps[opaqueRep]` from the opaque cloud. False if the whole footprint has to replace it.
bool makeOpaqueRep(FootprintClouds& clouds, std::size_t pixels, BlockRecord& block) {
    if (clouds.transparentCount == 0 || clouds.transparentCount == pixels) return false;
    ColourCloud& opaque = clouds.opaque;
    // Kept (one-opaque-colour-undivided-mean): for opaque pixels of one colour the sum is not divided by the weight. In the
    // second generation, which leaves pixels out, this mean is darker and more transparent than the colour. The single-colour
    // candidates of punch-through blocks start from this mean, so that dividing would change the bytes of every cut-out with a
    // flat colour.
    if (!opaque.bounds.isFlat()) {
        if (!(opaque.weight > 0)) return false;
        opaque.divideByWeight();
    }
    MakeRep(opaque, true, block.reps[opaqueRep]);
    return true;
}

void makeReps(FootprintClouds& clouds, std::size_t pixels, BlockRecord& block) {
    const bool isOpaqueRepMade = makeOpaqueRep(clouds, pixels, block);
    // Kept (one-opaque-colour-flat-whole): if the opaque pixels have one colour and no transparent pixel lies in the block, the
    // whole footprint counts as flat. Its bounds become that colour, while its mean and extent are still those of all pixels, the
    // transparent ones included. The single-colour candidates of the blocks around a cut-out start from this mean.
    if (isOpaqueRepMade && clouds.opaque.bounds.isFlat() && !clouds.isTransparentInCentre)
        clouds.whole.bounds = clouds.opaque.bounds;
    MakeRep(clouds.whole, true, block.reps[wholeRep]);
    if (!isOpaqueRepMade) block.reps[opaqueRep] = block.reps[wholeRep];
    clouds.centre.divideByWeight();
    MakeRep(clouds.centre, true, block.reps[centreRep]);
}

/// Kept (opaque-extent-by-alpha): the extent of the opaque representative is that of the pixels with an alpha above 0, whatever
/// the rule of transparency, and also where the representative is a copy of the whole. Without such a pixel it stays empty unless
/// the footprint is flat, and the refinement, which clamps solved colours to the extent, then moves them all to one far point.
void projectPixels(const Footprint& footprint, std::size_t pixels, const FootprintMask& centreMask, BlockRecord& block) {
    for (std::size_t i = 0; i < pixels; ++i) {
        const ColourVector colour = toVector(footprint[i]);
        includeProjection(colour, block.reps[wholeRep]);
        if (channelOf(footprint[i], alphaChannel) != 0) includeProjection(colour, block.reps[opaqueRep]);
        if (centreMask[i] != 0) includeProjection(colour, block.reps[centreRep]);
    }
}

}  // namespace

FootprintKernels makeFootprintKernels(const AmtcLevelSettings& settings) {
    return {separableKernel(sharpAxis(settings.blockHeight), sharpAxis(settings.blockWidth)),
            separableKernel(smoothAxis(settings.blockHeight), smoothAxis(settings.blockWidth)), makeCentreMask(settings)};
}

void AnalyseFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, const FootprintKernels& kernels,
                      BlockRecord& block) {
    const std::size_t pixels = settings.footprintPixels();
    const TransparencyRule rule = transparencyRuleOf(settings);
    FootprintClouds clouds;
    gatherWholeAndCentre(footprint, pixels, rule, kernels, clouds);
    if (clouds.transparentCount != 0) gatherOpaque(footprint, pixels, rule, kernels.smooth, clouds.opaque);
    makeReps(clouds, pixels, block);
    projectPixels(footprint, pixels, kernels.centre, block);
    block.transparentInCentre = clouds.isTransparentInCentre ? 1 : 0;
}

}  // namespace moktexture::amtc
