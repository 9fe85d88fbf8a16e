#include "etc1/etc1_best_table.h"

#include <gtest/gtest.h>

#include "etc1/etc1_quantiser.h"
#include "etc1_sample_blocks.h"

using namespace moktexture::etc1;

TEST(ETC1BestTable, TakesTheFirstLeastErrorByTheRulesOfTheMeasure) {
    struct Case {
        const char* what;
        Colour pixel, base;
        Measure measure;
        Split split;
        int error;
        std::uint32_t table, index;
    };
    constexpr Measure plain = Measure::plain, perceptual = Measure::perceptual;
    constexpr Split columns = Split::leftRight, rows = Split::topBottom;
    // clang-format off
    const Case cases[] = {
        {"grey 18 off",             {118, 118, 118}, {100, 100, 100}, plain,      columns, 0,      4, 0},
        {"midway: lower modifier",  {100, 100, 100}, {100, 100, 100}, plain,      rows,    8 * 12, 0, 2},
        {"black, below 0 as 255",   {0, 0, 0},       {0, 0, 0},       plain,      columns, 8 * 12, 0, 0},
        {"black, below 0 as 0",     {0, 0, 0},       {0, 0, 0},       plain,      rows,    0,      0, 3},
        {"black, weighted",         {0, 0, 0},       {0, 0, 0},       perceptual, columns, 0,      0, 3},
        {"white from below 0",      {255, 255, 255}, {1, 1, 1},       plain,      columns, 0,      0, 3},
        {"white from above",        {255, 255, 255}, {250, 250, 250}, plain,      rows,    0,      0, 1},
        // A difference of 1 in one channel, weighted and truncated: 8 * 0.299, 8 * 0.587, 8 * 0.114.
        {"red", {103, 102, 102}, {100, 100, 100}, perceptual, rows, 2, 0, 0},
        {"green", {102, 103, 102}, {100, 100, 100}, perceptual, rows, 4, 0, 0},
        {"blue", {102, 102, 103}, {100, 100, 100}, perceptual, rows, 0, 0, 0},
    };
    // clang-format on
    for (const Case& c : cases) {
        TableFit expected{c.error, c.table, {}};
        expected.indices.fill(c.index);
        Half half = halvesOf({}, c.split, c.measure)[0];
        half.pixels.fill(c.pixel);
        for (const BestTable bestTable : {BestTablePlain, BestTableLanes})
            EXPECT_EQ(bestTable(half, c.base), expected) << c.what;
    }
}

TEST(ETC1BestTable, GivesTheSameWithTablesSideBySide) {
    testimages::Random random(3);
    for (int round = 0; round < 3000; ++round) {
        const Split split = static_cast<Split>(round & 1);
        const Half half = halvesOf(sampleBlock(round % sampleKinds, random), split, static_cast<Measure>(random.below(2)))[0];
        Colour base = half.pixels[0];
        for (std::uint8_t& channel : base)
            channel = static_cast<std::uint8_t>(channel + random.below(64));
        ASSERT_EQ(BestTableLanes(half, base), BestTablePlain(half, base)) << round;
    }
}

TEST(ETC1Quantiser, RoundsToTheNearestCode) {
    struct Case {
        float value;
        int fiveBits, fourBits;
    };
    // clang-format off
    const Case cases[] = {{0.0f, 0, 0}, {4.0f, 0, 0}, {4.125f, 1, 0}, {8.375f, 1, 0}, {8.499f, 1, 1}, {8.5f, 1, 1},
        {127.5f, 16, 8}, {127.375f, 15, 7}, {246.75f, 30, 15}, {250.75f, 30, 15}, {255.0f, 31, 15}};
    // clang-format on
    for (const Case& c : cases) {
        EXPECT_EQ(RoundToFiveBits(c.value), c.fiveBits) << c.value;
        EXPECT_EQ(RoundToFourBits(c.value), c.fourBits) << c.value;
    }
}

TEST(ETC1Quantiser, KeepsTheHue) {
    struct Case {
        const char* what;
        Quantise quantise;
        FloatColour colour;
        Codes expected;
    };
    // Errors of low and high codes stand behind the colours.
    const Case cases[] = {
        // clang-format off
        {"equal errors: all low", QuantiseColour444, {24, 41, 58}, {1, 2, 3}},         // -7 of 10
        {"large equal errors: all high", QuantiseColour444, {26, 43, 60}, {2, 3, 4}},  // -9: 243
        {"192 is not large", QuantiseColour444, {25, 42, 59}, {1, 2, 3}},              // -8: 192
        // Mixed corner: -1, +1, -7. Large but weighted, or in 5 bits (-7, -7, -7): all low.
        {"mixed", QuantiseColour444, {18, 33, 58}, {1, 2, 3}}, {"weighted", QuantiseColour444Perceptual, {26, 43, 60}, {1, 2, 3}},
        {"large in 5 bits", QuantiseColour555, {7, 15, 23}, {0, 1, 2}},
        {"capped", QuantiseColour555, {255, 255, 255}, {31, 31, 31}},
        {"capped", QuantiseColour444, {255, 255, 255}, {15, 15, 15}}, {"one high", QuantiseColour555, {0, 7, 0}, {0, 1, 0}},
        // 0, +2 and -3 or, with unequal weights, +5.
        {"equal weights", QuantiseColour555, {0, 6, 3}, {0, 1, 0}},
        {"unequal weights", QuantiseColour555Perceptual, {0, 6, 3}, {0, 1, 1}},
        // clang-format on
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.quantise(c.colour), c.expected) << c.what;
}
