#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "etc1/etc1_block.h"
#include "etc1/etc1_encoder.h"
#include "reference/etc1_reference_search.h"
#include "support/test_images.h"

using namespace moktexture::etc1;
using moktexture::blockArea;
using moktexture::PixelBlock;
using testimages::Random;

namespace {

constexpr ErrorMetric bothMetrics[] = {ErrorMetric::uniform, ErrorMetric::perceptual};

/// The reference form is slow, so that only optimised builds test many blocks.
#ifdef NDEBUG
constexpr int narrowRounds = 1200, wideRounds = 36;
#else
constexpr int narrowRounds = 40, wideRounds = 8;
#endif

/// Kinds of blocks that strain the search in different ways: noise, one colour, dark, bright, two colours, a ramp, subblocks far
/// apart, extremes.
constexpr int blockKinds = 8;

PixelBlock makeBlock(int kind, Random& random) {
    const auto below = [&](std::uint32_t limit) { return static_cast<int>(random.below(limit)); };
    const int base[] = {below(256), below(256), below(256)}, other[] = {below(256), below(256), below(256)};
    const int slope[] = {below(61) - 30, below(61) - 30, below(61) - 30};
    const bool isVertical = below(2) == 1;
    PixelBlock block{};
    for (std::size_t n = 0; n < block.size(); ++n) {
        const int along = static_cast<int>(isVertical ? n / 4 : n % 4);
        const bool isOther = below(2) == 1;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const int b = base[channel], step = slope[channel], noise = below(256);
            // clang-format off
            const int values[] = {
                noise, b, noise / 12, 255 - noise / 12, isOther ? b : other[channel], b + step * along / 2,
                b + (along < 2 ? 0 : 3 * step) + noise / 28, noise < 128 ? 0 : 255};
            // clang-format on
            block[n] |= static_cast<std::uint32_t>(std::clamp(values[kind], 0, 255)) << 8 * channel;
        }
    }
    return block;
}

/// A block of one of the kinds, or one of a test image.
PixelBlock anyBlock(Random& random) {
    constexpr std::uint32_t side = 64, offsets = side - 3;
    const std::uint32_t kind = random.below(blockKinds + std::size(testimages::allKinds));
    if (kind < blockKinds) return makeBlock(static_cast<int>(kind), random);
    const auto image = testimages::make(testimages::allKinds[kind - blockKinds], side, side);
    const std::uint32_t x = random.below(offsets), y = random.below(offsets);
    return readBlock(moktexture::packedImage(image.data(), side, side), x, y);
}

}  // namespace

TEST(ETC1BestTable, EqualsTheReference) {
    Random random(3);
    for (int round = 0; round < 3000; ++round) {
        const Split split = static_cast<Split>(round & 1);
        const PixelBlock block = makeBlock(round % blockKinds, random);
        const Subblock subblock = subblocksOf(block, split, bothMetrics[random.below(2)])[0];
        Colour base = subblock.pixels[0];
        for (std::uint8_t& channel : base)
            channel = static_cast<std::uint8_t>(channel + random.below(64));
        ASSERT_EQ(BestTable(subblock, base), BestTableReference(subblock, base)) << round;
    }
}

TEST(ETC1Quantiser, PrefersEqualErrorsInAllChannels) {
    // clang-format off
    const struct { const char* name; Codes (*quantise)(const FloatColour&); FloatColour colour; Codes expected; } cases[] = {
        // Name                          Quantiser                    Average          Codes
        {"-7 of 10: all low",            QuantiseColour444,           {24, 41, 58},    {1, 2, 3}},
        {"-9, or 243: all high",         QuantiseColour444,           {26, 43, 60},    {2, 3, 4}},
        {"-8, or 192, is not large",     QuantiseColour444,           {25, 42, 59},    {1, 2, 3}},
        {"-1, +1, -7: a mixed corner",   QuantiseColour444,           {18, 33, 58},    {1, 2, 3}},
        {"-9, weighted: all low",        QuantiseColour444Perceptual, {26, 43, 60},    {1, 2, 3}},
        {"-7 in 5 bits: all low",        QuantiseColour555,           {7, 15, 23},     {0, 1, 2}},
        {"white in 5 bits",              QuantiseColour555,           {255, 255, 255}, {31, 31, 31}},
        {"white in 4 bits",              QuantiseColour444,           {255, 255, 255}, {15, 15, 15}},
        {"one high",                     QuantiseColour555,           {0, 7, 0},       {0, 1, 0}},
        {"0, +2, -3 by equal weights",   QuantiseColour555,           {0, 6, 3},       {0, 1, 0}},
        {"0, +2, +5 by unequal weights", QuantiseColour555Perceptual, {0, 6, 3},       {0, 1, 1}},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(c.quantise(c.colour), c.expected) << c.name;
}

TEST(ETC1Search, EqualsTheExhaustiveReference) {
    Random random(11);
    for (const auto& [radius, rounds] : {std::pair{narrowRadius, narrowRounds}, {wideRadius, wideRounds}}) {
        for (int round = 0; round < rounds; ++round) {
            const PixelBlock block = anyBlock(random);
            const ErrorMetric metric = bothMetrics[random.below(2)];
            ASSERT_EQ(CompressBlockSearch(block, radius, metric), CompressBlockSearchReference(block, radius, metric)) << round;
        }
    }
}

TEST(ETC1Search, NeverUsesTheIndividualCode15) {
    // Only 15 gives these three values exactly, since it alone has modifiers on both sides of white.
    PixelBlock block{};
    constexpr std::uint32_t values[] = {0xFFFFFF, 0xFDFDFD, 0xF7F7F7};
    for (std::size_t n = 0; n < blockArea; ++n)
        block[n] = n % 4 < 2 ? values[n % 3] : 0;
    EXPECT_EQ(BestTable(subblocksOf(block, Split::leftRight, ErrorMetric::uniform)[0], {255, 255, 255}).error, 0);
    for (const int radius : {narrowRadius, wideRadius}) {
        for (const ErrorMetric metric : bothMetrics) {
            const BlockWords words = CompressBlockSearch(block, radius, metric);
            ASSERT_EQ(colourModeOf(words), ColourMode::individual);
            EXPECT_LE(std::ranges::max(codesOf(words)[0]), 14);
        }
    }
}

TEST(ETC1Search, TriesTheIndividualModeOnlyWhereTheRadiusSays) {
    // clang-format off
    const struct { Codes delta; int radius; bool isSearched; } cases[] = {
        // Difference between the averages of the subblocks
        {{6, -7, 0}, narrowRadius, true}, {{7, 0, 0}, narrowRadius, false}, {{0, -8, 0}, narrowRadius, false},
        {{8, -9, 8}, wideRadius, true},   {{0, 0, 9}, wideRadius, false},   {{-10, 0, 0}, wideRadius, false}};
    // clang-format on
    for (const auto& c : cases) {
        const Codes second = {15 + c.delta[0], 15 + c.delta[1], 15 + c.delta[2]};
        EXPECT_EQ(isDifferentialSearched({Codes{15, 15, 15}, second}, c.radius), c.isSearched) << c.delta[0];
    }
    // Averages 5 codes apart: the narrow search uses the differential mode, the wide one finds the individual mode better.
    Random random(14);
    int narrowIndividual = 0, wideIndividual = 0;
    for (int round = 0; round < 20; ++round) {
        PixelBlock block;
        for (std::size_t n = 0; n < blockArea; ++n)
            block[n] = (n % 4 < 2 ? 0x646464 : 0x3C8C3C) + random.below(4) * 0x010101;
        for (const auto& [radius, count] : {std::pair{narrowRadius, &narrowIndividual}, {wideRadius, &wideIndividual}})
            *count += colourModeOf(CompressBlockSearch(block, radius, ErrorMetric::uniform)) == ColourMode::individual;
    }
    EXPECT_EQ(narrowIndividual, 0);
    EXPECT_GT(wideIndividual, 0);
}
