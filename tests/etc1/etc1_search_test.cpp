#include "etc1/etc1_search.h"

#include <gtest/gtest.h>

#include <iterator>
#include <utility>

#include "etc1/etc1_encoder.h"
#include "etc1_sample_blocks.h"

using namespace moktexture::etc1;
using testimages::Random;

namespace {

constexpr Measure bothMeasures[] = {Measure::plain, Measure::perceptual};

/// The plain form is slow, so that only optimised builds go through many blocks.
#ifdef NDEBUG
constexpr int narrowRounds = 1200, wideRounds = 36;
#else
constexpr int narrowRounds = 40, wideRounds = 8;
#endif

/// A sample block, or one out of a picture.
BlockPixels anyBlock(Random& random) {
    constexpr std::uint32_t side = 64, places = side - blockEdge + 1;
    const std::uint32_t kind = random.below(sampleKinds + std::size(testimages::allKinds));
    if (kind < sampleKinds) return sampleBlock(static_cast<int>(kind), random);
    const auto picture = testimages::make(testimages::allKinds[kind - sampleKinds], side, side);
    return readBlock(picture.data(), {side, side}, random.below(places), random.below(places));
}

}  // namespace

TEST(ETC1Search, GivesTheBitsOfThePlainForm) {
    ASSERT_NE(plainEncoder.search, boundedEncoder.search);
    Random random(11);
    for (const auto& [radius, rounds] : {std::pair{narrowRadius, narrowRounds}, {wideRadius, wideRounds}}) {
        for (int round = 0; round < rounds; ++round) {
            const BlockPixels block = anyBlock(random);
            const Measure measure = bothMeasures[random.below(2)];
            ASSERT_EQ(boundedEncoder.search(block, radius, measure), plainEncoder.search(block, radius, measure)) << round;
        }
    }
    constexpr Level level = {5, 4};
    const auto pixels = testimages::make(testimages::Kind::edges, 5, 4);
    for (const std::uint32_t quality : {0u, 1u, 2u, 5u}) {
        std::array<std::uint8_t, 2 * bytesPerBlock> expected{}, blocks{};
        ASSERT_TRUE(encodeLevel(pixels.data(), expected.data(), level, quality, plainEncoder));
        ASSERT_TRUE(encodeLevel(pixels.data(), blocks.data(), level, quality, boundedEncoder));
        EXPECT_EQ(blocks, expected) << quality;
    }
}

TEST(ETC1Search, NeverTakesTheIndividualCode15) {
    // Only 15 gives these three values exactly, since it alone has modifiers on both sides of white.
    BlockPixels block{};
    constexpr std::uint32_t values[] = {0xFFFFFF, 0xFDFDFD, 0xF7F7F7};
    for (std::size_t place = 0; place < blockArea; ++place)
        block[place] = place % 4 < 2 ? values[place % 3] : 0;
    EXPECT_EQ(BestTablePlain(halvesOf(block, Split::leftRight, Measure::plain)[0], {255, 255, 255}).error, 0);
    for (const int radius : {narrowRadius, wideRadius}) {
        for (const Measure measure : bothMeasures) {
            const BlockWords words = CompressBlockSearchBounded(block, radius, measure);
            ASSERT_EQ(formOf(words), Form::individual);
            EXPECT_LE(std::ranges::max(codesOf(words)[0]), 14);
        }
    }
}

TEST(ETC1Search, TriesTheIndividualFormWhereItIsTold) {
    struct Case {
        Codes delta;  // between the averages of the halves
        int radius;
        bool isSearched;
    };
    const Case cases[] = {{{6, -7, 0}, narrowRadius, true}, {{7, 0, 0}, narrowRadius, false}, {{0, -8, 0}, narrowRadius, false},
                          {{8, -9, 8}, wideRadius, true},   {{0, 0, 9}, wideRadius, false},   {{-10, 0, 0}, wideRadius, false}};
    for (const Case& c : cases) {
        const Codes second = {15 + c.delta[0], 15 + c.delta[1], 15 + c.delta[2]};
        EXPECT_EQ(isDifferentialSearched({Codes{15, 15, 15}, second}, c.radius), c.isSearched) << c.delta[0];
    }
    // Averages 5 codes apart: the narrow search stays with the differential form, the wide one finds the individual form better.
    Random random(14);
    int narrowIndividual = 0, wideIndividual = 0;
    for (int round = 0; round < 20; ++round) {
        BlockPixels block;
        for (std::size_t place = 0; place < blockArea; ++place)
            block[place] = (place % 4 < 2 ? 0x646464 : 0x3C8C3C) + random.below(4) * 0x010101;
        narrowIndividual += formOf(CompressBlockSearchBounded(block, narrowRadius, Measure::plain)) == Form::individual;
        wideIndividual += formOf(CompressBlockSearchBounded(block, wideRadius, Measure::plain)) == Form::individual;
    }
    EXPECT_EQ(narrowIndividual, 0);
    EXPECT_GT(wideIndividual, 0);
}
