// Problem: for nine pairs of colours, how would a decoder reconstruct each pixel of the footprint, which modulation index is
// best, and what does the solver need to know?
//
// A decoder's arithmetic for one pixel and one channel, in integers:
//
//     stored  = the upper 5 bits of R, G, B and the upper 4 of alpha, of A (likewise B) of the 2 by 2 blocks around the pixel
//     sum     = bilinear interpolation with weights of 0 to 8 each way: 64 parts
//     a       = sum >> 6, its upper bits repeated below: + (a >> 5), alpha + (a >> 4)
//     index 1 = (a * level1A + b * level1B) >> 3, index 2 likewise, index 0 = a, index 3 = b
//
// Corner palette pixels take one of the eight colours around them as they are.
//
// 4 bits per pixel, and 2 bits per pixel in two passes:
//
//     for each pixel:               decode its four colours; pick the nearest index; add error and sums
//     for each pixel with a sample: the same; keep the interpolation weight
//     for each other pixel:         weight = mean of the samples around it; decode with it; add error and sums
//
// The error is the sum of squared differences of R, G, B and A, equally weighted. The sums count only inner pixels: the block's
// colours do not reach the outer ring, and its pixels have an influence of 0.
//
// Cost: 81 or 153 pixels decoded with four interpolations each. This is the encoder's inner loop.

#include "moktc/amtc/evaluation/pixel_evaluation.h"

namespace moktexture::amtc {
namespace {

// By channel: the bits that a block stores at most, and the shift at which they repeat.
constexpr std::array<std::uint32_t, channelCount> storedBits = {0xF8, 0xF8, 0xF8, 0xF0};
constexpr std::array<std::uint32_t, channelCount> repeatShift = {5, 5, 5, 4};

/// One colour of a pixel, from A or B of the 2 by 2 blocks around it, row first.
std::uint32_t BilinearEndpoint(const std::uint32_t* corners, std::uint32_t weightX, std::uint32_t weightY) {
    std::uint32_t colour = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const auto stored = [&](std::size_t corner) { return channelOf(corners[corner], channel) & storedBits[channel]; };
        const std::uint32_t upper = (8 - weightX) * stored(0) + weightX * stored(1);
        const std::uint32_t lower = (8 - weightX) * stored(2) + weightX * stored(3);
        const std::uint32_t value = ((8 - weightY) * upper + weightY * lower) >> 6;
        colour |= (value + (value >> repeatShift[channel])) << 8 * channel;
    }
    return colour;
}

/// Adds a pixel whose interpolation weight comes from its neighbours.
void evaluateInterpolated(const DecodedPixel& decoded, std::uint32_t value, RegionError& total, RegressionSums& sums) {
    const std::uint32_t colour = mixColours(decoded.candidates[0], decoded.candidates[3], 8 - value, value);
    const std::uint32_t error = squaredDistance(decoded.pixel, colour);
    if (decoded.entry.isOuterRing != 0) {
        total.outer += error;
    } else {
        total.inner += error;
        sums.addPixel(decoded.entry, value, differenceOf(decoded.pixel, colour));
    }
}

}  // namespace

EightColours eightColoursAt(const NeighbourColours& colours, std::size_t row, std::size_t column, std::size_t blockWidth) {
    const ColourPair* upper = &colours[upperLeftBlockOf(row, column, blockWidth)];
    const ColourPair* lower = upper + 3;
    return {upper[0].a, upper[1].a, lower[0].a, lower[1].a, upper[0].b, upper[1].b, lower[0].b, lower[1].b};
}

void DecodePixelCandidates(const PixelBlendEntry& entry, const EightColours& colours, PixelCandidates& candidates) {
    if (entry.isPaletteTap != 0) {
        for (std::size_t index = 0; index < indexCount; ++index) {
            const std::size_t tap = entry.paletteIndex[index];
            candidates[index] = colours[tap / 2 + tap % 2 * 4];
        }
        return;
    }
    const std::uint32_t a = BilinearEndpoint(&colours[0], entry.weightX, entry.weightY);
    const std::uint32_t b = BilinearEndpoint(&colours[4], entry.weightX, entry.weightY);
    candidates = {a, mixColours(a, b, entry.level1A, entry.level1B),
                  mixColours(a, b, entry.level2A, entry.level2B) & entry.level2Mask, b};
}

std::uint32_t mixColours(std::uint32_t a, std::uint32_t b, std::uint32_t weightA, std::uint32_t weightB) {
    std::uint32_t mixed = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        mixed |= ((channelOf(a, channel) * weightA + channelOf(b, channel) * weightB) >> 3) << 8 * channel;
    return mixed;
}

ColourDifference differenceOf(std::uint32_t pixel, std::uint32_t colour) {
    ColourDifference difference{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        difference[channel] = static_cast<std::int32_t>(channelOf(pixel, channel) - channelOf(colour, channel));
    return difference;
}

std::uint32_t PickLevel(std::uint32_t pixel, const PixelCandidates& candidates, ColourDifference& difference,
                        std::uint32_t& error, bool twoLevelsOnly) {
    std::uint32_t chosen = twoLevelsOnly ? 3 : 2;
    error = squaredDistance(pixel, candidates[chosen]);
    const auto replaceBy = [&](std::uint32_t index) {
        const std::uint32_t indexError = squaredDistance(pixel, candidates[index]);
        if (indexError >= error) return;
        chosen = index;
        error = indexError;
    };
    if (!twoLevelsOnly) replaceBy(1);
    replaceBy(0);
    if (!twoLevelsOnly) replaceBy(3);
    difference = differenceOf(pixel, candidates[chosen]);
    return chosen;
}

DecodedPixel decodePixel(const BlendTable& table, const Footprint& footprint, const NeighbourColours& colours, std::size_t row,
                         std::size_t column, std::size_t blockWidth) {
    const std::size_t index = row * (2 * blockWidth + 1) + column;
    DecodedPixel decoded = {footprint[index], table[index], {}};
    DecodePixelCandidates(decoded.entry, eightColoursAt(colours, row, column, blockWidth), decoded.candidates);
    return decoded;
}

std::uint8_t evaluatePixel(const DecodedPixel& decoded, bool twoLevelsOnly, bool firstPass, RegionError& total,
                           RegressionSums& sums) {
    ColourDifference difference;
    std::uint32_t error = 0;
    const std::uint32_t index = PickLevel(decoded.pixel, decoded.candidates, difference, error, twoLevelsOnly);
    const std::uint8_t value = decoded.entry.levelValue[index];
    if (decoded.entry.isOuterRing != 0) {
        if (firstPass) total.outer += error;
    } else {
        total.inner += error;
        sums.addPixel(decoded.entry, value, difference);
    }
    return value;
}

std::uint32_t meanOfSamples(const SampleValues& samples, ModulationClass modulationClass, std::size_t row, std::size_t column) {
    const std::uint8_t* sample = &samples[row * footprintWidth2bpp + column];
    std::uint32_t sum = 0, count = 0;
    const auto add = [&](bool exists, std::ptrdiff_t offset) {
        if (!exists) return;
        sum += sample[offset];
        ++count;
    };
    if (modulationClass != ModulationClass::vertical) {
        add(column > 0, -1);
        add(column + 1 < footprintWidth2bpp, 1);
    }
    if (modulationClass != ModulationClass::horizontal) {
        constexpr auto nextRow = static_cast<std::ptrdiff_t>(footprintWidth2bpp);
        add(row > 0, -nextRow);
        add(row + 1 < footprintRows, nextRow);
    }
    return (count / 2 + sum) / count;
}

RegionError EvalRegion4bpp(const BlendTable& table, const Footprint& footprint, const NeighbourColours& colours, bool firstPass,
                           RegressionSums& sums) {
    RegionError total;
    for (std::size_t row = 0; row < footprintRows; ++row) {
        for (std::size_t column = 0; column < footprintWidth4bpp; ++column) {
            if (table[row * footprintWidth4bpp + column].isOuterRing != 0 && !firstPass) continue;
            evaluatePixel(decodePixel(table, footprint, colours, row, column, blockWidth4bpp), false, firstPass, total, sums);
        }
    }
    return total;
}

RegionError EvalRegion2bpp(const BlendTable& table, const Footprint& footprint, const NeighbourColours& colours, bool firstPass,
                           RegressionSums& sums) {
    RegionError total;
    SampleValues samples{};
    const auto forEachPixel = [&](bool withSample, auto evaluate) {
        for (std::size_t row = 0; row < footprintRows; ++row) {
            for (std::size_t column = 0; column < footprintWidth2bpp; ++column) {
                const PixelBlendEntry& entry = table[row * footprintWidth2bpp + column];
                const bool hasSample = entry.modulationClass <= ModulationClass::oneBit;
                // The ring's samples are needed in any case, by the pixels next to them.
                if (hasSample != withSample || (!hasSample && entry.isOuterRing != 0 && !firstPass)) continue;
                evaluate(decodePixel(table, footprint, colours, row, column, blockWidth2bpp), row, column);
            }
        }
    };
    forEachPixel(true, [&](const DecodedPixel& decoded, std::size_t row, std::size_t column) {
        const bool twoLevelsOnly = decoded.entry.modulationClass == ModulationClass::oneBit;
        samples[row * footprintWidth2bpp + column] = evaluatePixel(decoded, twoLevelsOnly, firstPass, total, sums);
    });
    forEachPixel(false, [&](const DecodedPixel& decoded, std::size_t row, std::size_t column) {
        evaluateInterpolated(decoded, meanOfSamples(samples, decoded.entry.modulationClass, row, column), total, sums);
    });
    return total;
}

}  // namespace moktexture::amtc
