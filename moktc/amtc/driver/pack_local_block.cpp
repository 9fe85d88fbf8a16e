// The last step of a level: with all colours and region modes final, choose each block's modulation and pack its two words.
//
// Problem: the indices that a visit chose are stale, as neighbours may have changed after the block's own last visit.
//
//     load the footprint; collect the best colours of the nine blocks; build the blend table with the neighbours' final modes
//     4 bits per pixel:  each of the block's 16 pixels takes the nearest of its four colours
//     2 bits, direct:    each of the 32 pixels takes A or B
//     2 bits, samples:   each pixel whose row + column is even takes the nearest of four colours; one or two of these pixels also
//                        hold the sub-mode and take A or B; the other pixels decode to the mean of the samples around them
//     modulation word = the indices in pixel order, two bits each or one, lowest bits first
//     colour word     = A and B in their stored forms, opacity bits, flat bit, mode bit
//
// With 2 bits the samples of the whole footprint are chosen, not only the block's: the means at its border need them. Each
// neighbour chooses and packs its own samples again.
//
// The sums of squared differences are returned for tests, which compare them with those of the decoder's pixels.

#include <cstdio>
#include <cstdlib>

#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/evaluation/pixel_evaluation.h"
#include "moktc/block/moktc_block.h"

namespace moktexture::amtc {
namespace {

/// Corner palette cells: the modulation index that the word stores for a pixel's entry in its list of four palette colours.
// clang-format off
constexpr std::array<std::array<std::uint8_t, 4>, 16> CornerPaletteBits = {{
    // entry 0, 1, 2, 3 becomes     pixel of the block, row by row
    {0, 3, 2, 1},                   // 0, 0
    {2, 3, 0, 1},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {2, 3, 0, 1},                   // 1, 0
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {2, 3, 0, 1},
    {0, 1, 2, 3},                   // 2, 0
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
    {0, 1, 2, 3},                   // 3, 0
    {2, 3, 0, 1},
    {0, 1, 2, 3},
    {0, 1, 2, 3},
}};
// clang-format on

/// A block's footprint, with the blend table and the colours that it is decoded with.
struct LocalPixels {
    const BlendTable& table;
    const Footprint& footprint;
    const NeighbourColours& colours;
};

/// A modulation word, and the squared error of the block's own pixels when decoded with it.
struct LocalModulation {
    std::uint32_t word = 0;
    std::uint32_t error = 0;
};

/// Where the block's own pixels begin in its footprint.
constexpr std::size_t firstRow = moktc::blockHeight / 2;
constexpr std::size_t firstColumn(Rate rate) {
    return moktc::blockWidth(rate) / 2;
}
constexpr bool isOfBlock2bpp(std::size_t row, std::size_t column) {
    return row - firstRow < moktc::blockHeight && column - firstColumn(Rate::twoBpp) < moktc::blockWidth(Rate::twoBpp);
}

struct IndexChoice {
    std::uint32_t index, error;
};

IndexChoice chooseIndex(const DecodedPixel& decoded, bool isOneBit) {
    IndexChoice choice{};
    ColourDifference difference;
    choice.index = PickLevel(decoded.pixel, decoded.candidates, difference, choice.error, isOneBit);
    return choice;
}

DecodedPixel decodePixel2bpp(const LocalPixels& local, std::size_t row, std::size_t column) {
    return decodePixel(local.table, local.footprint, local.colours, row, column, moktc::blockWidth(Rate::twoBpp));
}

LocalModulation chooseIndices(const LocalPixels& local) {
    constexpr std::size_t blockWidth = moktc::blockWidth(Rate::fourBpp), pixels = blockWidth * moktc::blockHeight;
    LocalModulation modulation;
    std::array<std::uint8_t, pixels> indices{};
    for (std::size_t i = 0; i < pixels; ++i) {
        const DecodedPixel decoded = decodePixel(local.table, local.footprint, local.colours, firstRow + i / blockWidth,
                                                 firstColumn(Rate::fourBpp) + i % blockWidth, blockWidth);
        const IndexChoice choice = chooseIndex(decoded, false);
        modulation.error += choice.error;
        indices[i] =
            decoded.entry.isPaletteTap != 0 ? CornerPaletteBits[i][choice.index] : static_cast<std::uint8_t>(choice.index);
    }
    modulation.word = moktc::packIndices(indices.data());
    return modulation;
}

LocalModulation chooseDirectBits(const LocalPixels& local) {
    constexpr std::size_t blockWidth = moktc::blockWidth(Rate::twoBpp), pixels = blockWidth * moktc::blockHeight;
    LocalModulation modulation;
    std::array<std::uint8_t, pixels> indices{};
    for (std::size_t i = 0; i < pixels; ++i) {
        const IndexChoice choice =
            chooseIndex(decodePixel2bpp(local, firstRow + i / blockWidth, firstColumn(Rate::twoBpp) + i % blockWidth), true);
        modulation.error += choice.error;
        indices[i] = static_cast<std::uint8_t>(choice.index);
    }
    modulation.word = moktc::packDirect(indices.data());
    return modulation;
}

LocalModulation chooseSamples(const LocalPixels& local, std::uint32_t mode) {
    constexpr std::size_t blockWidth = moktc::blockWidth(Rate::twoBpp);
    const ModulationClass meanClass = meanClassOf(mode);
    LocalModulation modulation;
    SampleValues samples{};
    std::array<std::uint8_t, blockWidth * moktc::blockHeight> indices{};
    // The neighbours' samples too: pixels at the block's border take means of both.
    for (std::size_t row = 0; row < footprintRows; ++row) {
        for (std::size_t column = row % 2; column < footprintWidth2bpp; column += 2) {
            const DecodedPixel decoded = decodePixel2bpp(local, row, column);
            const bool isOneBit = decoded.entry.modulationClass == ModulationClass::oneBit;
            const IndexChoice choice = chooseIndex(decoded, isOneBit);
            if (isOneBit) requireOneBitIndex(choice.index);
            samples[row * footprintWidth2bpp + column] = decoded.entry.levelValue[choice.index];
            if (!isOfBlock2bpp(row, column)) continue;
            modulation.error += choice.error;
            indices[(row - firstRow) * blockWidth + column - firstColumn(Rate::twoBpp)] = static_cast<std::uint8_t>(choice.index);
        }
    }
    for (std::size_t row = firstRow; row < firstRow + moktc::blockHeight; ++row) {
        for (std::size_t column = firstColumn(Rate::twoBpp) + 1 - row % 2; column < firstColumn(Rate::twoBpp) + blockWidth;
             column += 2) {
            const DecodedPixel decoded = decodePixel2bpp(local, row, column);
            const std::uint32_t weight = meanOfSamples(samples, meanClass, row, column);
            const std::uint32_t colour = mixColours(decoded.candidates[0], decoded.candidates[3], 8 - weight, weight);
            modulation.error += squaredDistance(decoded.pixel, colour);
        }
    }
    // The samples whose low bits hold the sub-mode are 0 or 3.
    const auto subMode = static_cast<moktc::SubMode>(mode & 3);
    modulation.word = moktc::withSubMode(moktc::packSamples(indices.data()), subMode);
    return modulation;
}

std::uint32_t modeBitsOf(std::uint32_t mode, std::uint32_t bitsPerPixel) {
    if (bitsPerPixel == 1) {
        // Kept (one-bit-packing-aborts): this rate was never finished. Hosts that pass 1 bit per pixel see the process end with
        // this message.
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

/// Both colours, and the bits that say which are opaque.
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

// Kept (unreachable-packing-messages): indices and modes that no block record has end the process here; front ends that run the
// encoder as a child process recognise the messages and the exit status.
void requireOneBitIndex(std::uint32_t index) {
    if (index == 0 || index == moktc::directSetIndex) return;
    std::fprintf(stderr,
                 "ERROR: Unknown modulation result in Eval Cands 2BPP!\n"
                 "Special case T00 expected 0 or 3 (got %u)\n",
                 index);
    std::exit(1);
}

ModulationClass meanClassOf(std::uint32_t mode) {
    switch (mode) {
        case region_mode::average:
        case region_mode::flatAverage:
            return ModulationClass::average;
        case region_mode::horizontal:
        case region_mode::flatHorizontal:
            return ModulationClass::horizontal;
        case region_mode::vertical:
        case region_mode::flatVertical:
            return ModulationClass::vertical;
        default:
            break;
    }
    std::fputs("ERROR: Unexpected Region mode in 2bpp Eval All Cands!\nExiting", stderr);
    std::fflush(stderr);
    std::abort();
}

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
