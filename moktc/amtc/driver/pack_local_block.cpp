#include "moktc/amtc/driver/pack_local_block.h"

#include <cstdio>
#include <cstdlib>

#include "moktc/amtc/driver/local_modulation.h"
#include "moktc/block/moktc_block.h"

namespace moktexture::amtc {
namespace {

std::uint32_t modeBitsOf(std::uint32_t mode, std::uint32_t bitsPerPixel) {
    if (bitsPerPixel == 1) {
        // Kept: this rate was never built, and asking for it ends the process with this message; no format leads here.
        std::fputs("Exiting! 1BPP mode not yet implemented (PackLocalBlock)\n", stderr);
        std::abort();
    }
    const std::uint32_t flatBit = bitsPerPixel == 2 ? 4 : 2;
    const bool isFlat = (mode & flatBit) != 0, hasModeBit = (mode & (flatBit - 1)) != 0;
    return (isFlat ? moktc::flatBit : 0) | (hasModeBit ? moktc::modeBit : 0);
}

bool isOpaque(std::uint32_t rgba) {
    return channelOf(rgba, alphaChannel) == 255;
}

/// Both colours, and the bits that tell which are opaque.
std::uint32_t colourBitsOf(const ColourPair& colours, bool secondGeneration) {
    if (!secondGeneration) {
        moktc::Block block{};
        moktc::packColourA(block, colours.a);
        moktc::packColourB(block, colours.b);
        return block.colours;
    }
    if (isOpaque(colours.a) && isOpaque(colours.b))
        return moktc::packFields(colours.a, moktc::opaqueA) | moktc::packFields(colours.b, moktc::opaqueB) | moktc::opaqueBothBit;
    return moktc::packFields(colours.a, moktc::translucentA) | moktc::packFields(colours.b, moktc::translucentB);
}

LocalModulation chooseModulation(const LocalPixels& local, std::uint32_t mode, bool is2bpp) {
    if (!is2bpp) return chooseIndices(local);
    const bool isDirect = mode == region_mode::direct || mode == region_mode::flatDirect;
    return isDirect ? chooseDirectBits(local) : chooseSamples(local, mode);
}

}  // namespace

std::uint32_t packColourWord(const ColourPair& colours, std::uint32_t mode, const AmtcLevelSettings& settings) {
    return colourBitsOf(colours, settings.secondGeneration != 0) | modeBitsOf(mode, settings.bitsPerPixel);
}

std::uint32_t PackLocalBlock(const AmtcImage& image, const BlockRows& blockRows, const AmtcLevelSettings& settings,
                             std::uint32_t row, std::uint32_t column, BlendTable& blendTable, std::uint8_t* destination) {
    Footprint footprint;
    LoadBlockFootprint(image, row, column, settings, footprint);
    const Neighbourhood neighbours = gatherNeighbourhood(blockRows, settings, row, column);
    NeighbourColours colours{};
    for (std::size_t i = 0; i < colours.size(); ++i)
        colours[i] = neighbours[i]->best().colours();
    const BlockRecord& block = *neighbours[centreOfNeighbourhood];
    CreateBlendingAndUpdateWeights(block.bestMode, neighbours, 0, settings, blendTable);
    const LocalModulation modulation =
        chooseModulation({blendTable, footprint, colours}, block.bestMode, settings.bitsPerPixel == 2);
    moktc::writeBlock(destination, {modulation.word, packColourWord(block.best().colours(), block.bestMode, settings)});
    return modulation.error;
}

}  // namespace moktexture::amtc
