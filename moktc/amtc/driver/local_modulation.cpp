#include "moktc/amtc/driver/local_modulation.h"

#include <cstdio>
#include <cstdlib>

#include "moktc/amtc/evaluation/corner_taps.h"
#include "moktc/block/moktc_block.h"

namespace moktexture::amtc {
namespace {

/// The block itself in its footprint.
constexpr std::size_t firstRow = moktc::blockHeight / 2;
constexpr std::size_t firstColumn(bool is2bpp) {
    return moktc::blockWidth(moktc::rateOf(is2bpp)) / 2;
}
constexpr bool isOfBlock2bpp(std::size_t row, std::size_t column) {
    return row - firstRow < moktc::blockHeight && column - firstColumn(true) < moktc::blockWidth(moktc::Rate::twoBpp);
}

struct LevelChoice {
    std::uint32_t level, error;
};

LevelChoice chooseLevel(const DecodedPixel& decoded, bool twoLevelsOnly) {
    LevelChoice choice{};
    ColourDifference difference;
    choice.level = PickLevel(decoded.pixel, decoded.candidates, difference, choice.error, twoLevelsOnly);
    return choice;
}

DecodedPixel decodePixel2bpp(const LocalPixels& local, std::size_t row, std::size_t column) {
    return decodePixel(local.table, local.footprint, local.colours, row, column, moktc::blockWidth(moktc::Rate::twoBpp));
}

}  // namespace

// Kept: levels and modes that no record of this encoder has end the process here, with messages that front ends know.
void requireOneBitLevel(std::uint32_t level) {
    if (level == 0 || level == moktc::directSetIndex) return;
    std::fprintf(stderr,
                 "ERROR: Unknown modulation result in Eval Cands 2BPP!\n"
                 "Special case T00 expected 0 or 3 (got %u)\n",
                 level);
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

LocalModulation chooseIndices(const LocalPixels& local) {
    constexpr std::size_t blockWidth = moktc::blockWidth(moktc::Rate::fourBpp), pixels = blockWidth * moktc::blockHeight;
    LocalModulation modulation;
    std::array<std::uint8_t, pixels> indices{};
    for (std::size_t i = 0; i < pixels; ++i) {
        const DecodedPixel decoded = decodePixel(local.table, local.footprint, local.colours, firstRow + i / blockWidth,
                                                 firstColumn(false) + i % blockWidth, blockWidth);
        const LevelChoice choice = chooseLevel(decoded, false);
        modulation.error += choice.error;
        indices[i] =
            decoded.entry.isPaletteTap != 0 ? CornerPaletteBits[i][choice.level] : static_cast<std::uint8_t>(choice.level);
    }
    modulation.word = moktc::packIndices(indices.data());
    return modulation;
}

LocalModulation chooseDirectBits(const LocalPixels& local) {
    constexpr std::size_t blockWidth = moktc::blockWidth(moktc::Rate::twoBpp), pixels = blockWidth * moktc::blockHeight;
    LocalModulation modulation;
    std::array<std::uint8_t, pixels> indices{};
    for (std::size_t i = 0; i < pixels; ++i) {
        const LevelChoice choice =
            chooseLevel(decodePixel2bpp(local, firstRow + i / blockWidth, firstColumn(true) + i % blockWidth), true);
        modulation.error += choice.error;
        indices[i] = static_cast<std::uint8_t>(choice.level);
    }
    modulation.word = moktc::packDirect(indices.data());
    return modulation;
}

LocalModulation chooseSamples(const LocalPixels& local, std::uint32_t mode) {
    constexpr std::size_t blockWidth = moktc::blockWidth(moktc::Rate::twoBpp);
    const ModulationClass meanClass = meanClassOf(mode);
    LocalModulation modulation;
    SampleValues samples{};
    std::array<std::uint8_t, blockWidth * moktc::blockHeight> indices{};
    // The neighbours' samples too: the block's outermost pixels take means of both.
    for (std::size_t row = 0; row < footprintRows; ++row) {
        for (std::size_t column = row % 2; column < footprintWidth2bpp; column += 2) {
            const DecodedPixel decoded = decodePixel2bpp(local, row, column);
            const bool isOneBit = decoded.entry.modulationClass == ModulationClass::oneBit;
            const LevelChoice choice = chooseLevel(decoded, isOneBit);
            if (isOneBit) requireOneBitLevel(choice.level);
            samples[row * footprintWidth2bpp + column] = decoded.entry.levelValue[choice.level];
            if (!isOfBlock2bpp(row, column)) continue;
            modulation.error += choice.error;
            indices[(row - firstRow) * blockWidth + column - firstColumn(true)] = static_cast<std::uint8_t>(choice.level);
        }
    }
    for (std::size_t row = firstRow; row < firstRow + moktc::blockHeight; ++row) {
        for (std::size_t column = firstColumn(true) + 1 - row % 2; column < firstColumn(true) + blockWidth; column += 2) {
            const DecodedPixel decoded = decodePixel2bpp(local, row, column);
            const std::uint32_t weight = meanOfSamples(samples, meanClass, row, column);
            const std::uint32_t colour = mixColours(decoded.candidates[0], decoded.candidates[3], 8 - weight, weight);
            modulation.error += squaredDistance(decoded.pixel, colour);
        }
    }
    // The two samples that give up their low bits are 0 or 3 by now.
    const auto subMode = static_cast<moktc::SubMode>(mode & 3);
    modulation.word = moktc::withSubMode(moktc::packSamples(indices.data()), subMode);
    return modulation;
}

}  // namespace moktexture::amtc
