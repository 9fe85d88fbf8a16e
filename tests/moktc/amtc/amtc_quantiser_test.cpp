#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <tuple>
#include <vector>

#include "moktc/amtc/starts/colour_quantiser.h"
#include "moktc/block/moktc_block.h"
#include "reference/colour_interpolation.h"
#include "support/test_images.h"

using namespace moktexture::amtc;
using namespace moktexture::moktc;
using AmtcPair = moktexture::amtc::ColourPair;

namespace {

constexpr std::uint32_t rgba(std::uint32_t r, std::uint32_t g, std::uint32_t b, std::uint32_t a) {
    return r | g << 8 | b << 16 | a << 24;
}

/// The pair as a decoder reads it from a block.
AmtcPair throughBlock(const AmtcPair& pair, bool secondGeneration) {
    const bool isOpaqueA = pair.a >> 24 == 255 && (!secondGeneration || pair.b >> 24 == 255);
    const bool isOpaqueB = pair.b >> 24 == 255 && (!secondGeneration || pair.a >> 24 == 255);
    moktexture::moktc::ColourPair colours{};
    UnpackColours(packFields(pair.a, isOpaqueA ? opaqueA : translucentA) |
                      packFields(pair.b, isOpaqueB ? opaqueB : translucentB) | (isOpaqueA && !secondGeneration ? opaqueABit : 0) |
                      (isOpaqueB ? opaqueBBit : 0),
                  secondGeneration, colours);
    return {ExpandColour(colours.a), ExpandColour(colours.b)};
}

/// The pair with the alphas that the second generation stores instead of 255 beside a translucent B, or of 0 for B.
AmtcPair asStorable(AmtcPair pair, bool secondGeneration) {
    if (secondGeneration && pair.a >> 24 == 255 && pair.b >> 24 != 255) pair.a = (pair.a & colourMask) | 238u << 24;
    if (secondGeneration && pair.b >> 24 == 0) pair.b |= 17u << 24;
    return pair;
}

std::uint32_t nearestCode(float wanted, std::uint32_t bits, bool preferUpper) {
    const double value = static_cast<double>(std::clamp(wanted, 0.0f, 255.0f));
    std::uint32_t nearest = 0;
    for (std::uint32_t code = 1; code < 1u << bits; ++code) {
        const double gain = std::abs(value - nearest) - std::abs(value - expandToByte(code, bits));
        if (gain > 0 || (gain == 0 && preferUpper)) nearest = expandToByte(code, bits);
    }
    return nearest;
}

TEST(AmtcQuantiser, ChannelsRoundToTheNearestCodeAndTiesToThePreferredOne) {
    std::vector<float> values = {-1e30f, 1e-40f, 1e30f, std::numeric_limits<float>::infinity()};
    for (int half = -2; half <= 514; ++half) {
        const float value = static_cast<float>(half) / 2;
        values.insert(values.end(), {std::nextafter(value, -2.0f), value, std::nextafter(value, 300.0f)});
    }
    for (const std::uint32_t bits : {3, 4, 5}) {
        for (const bool preferUpper : {false, true}) {
            for (const float value : values)
                ASSERT_EQ(QuantiseChannel(value, bits, preferUpper), nearestCode(value, bits, preferUpper))
                    << value << ' ' << bits;
            EXPECT_EQ(QuantiseChannel(std::numeric_limits<float>::quiet_NaN(), bits, preferUpper), 0u);
        }
    }
}

TEST(AmtcQuantiser, SingleColourTablesHoldTheKnownRows) {
    constexpr const SingleColourTables& tables = singleColourTables;
    const struct {
        const SingleColourTable& table;
        std::size_t target;
        std::uint8_t options[8][3];
        // clang-format off
    } rows[] = {
        // Table, target, (error, A, B) of options 0 to 7
        {tables.a5b5,     3, {{  9,   0,   0}, {0,   0,   8}, { 1,   0,   8}, { 4,   0,   8}, {  9,   0,   0}, {  0,   0,   8}, {  1,   0,   8}, { 4,   0,   8}}},
        {tables.a5b5,   128, {{ 16, 132, 132}, {1, 123, 140}, { 1, 123, 132}, { 0, 123, 132}, { 16, 132, 132}, {  4, 123, 132}, {  1, 123, 132}, { 0, 123, 132}}},
        {tables.a5b5,   200, {{  4, 198, 198}, {1, 198, 206}, { 1, 189, 214}, { 1, 189, 206}, {  4, 198, 198}, {  1, 198, 206}, {  4, 198, 198}, { 4, 198, 198}}},
        {tables.a3b4,   120, {{169, 107,  99}, {1, 107, 140}, { 9, 107, 140}, {25,  74, 140}, { 25, 107, 115}, {  1, 107, 140}, {  9, 107, 140}, {49, 107, 140}}},
        {tables.alpha2, 120, {{255, 136, 119}, {1, 102, 153}, {49, 102, 153}, { 1,  68, 153}, {  1, 102, 119}, {144, 102, 119}, {100, 102, 119}, {64, 102, 119}}},
    };
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(std::memcmp(&row.table[row.target], row.options, sizeof row.options), 0) << row.target;
}

TEST(AmtcQuantiser, AnOpaqueBBesideATranslucentAGetsItsOwnDepths) {
    for (const std::uint32_t alpha : {200u, 244u}) {
        Swappable swappable{};
        const AmtcPair pair = SingleColourMatch(rgba(100, 60, 20, alpha), false, Generation::first, false, swappable);
        EXPECT_EQ(pair.b >> 24 == 255, alpha == 244);
        EXPECT_EQ(swappable, alpha == 244 ? Swappable{} : (Swappable{true, true, false, true}));
        EXPECT_EQ(throughBlock(pair, false), pair) << alpha;
    }
    // A opaque as well: blue 181 is of 3 bits and is stored as 189.
    Swappable swappable{};
    const AmtcPair pair = SingleColourMatch(0xf7adffff, true, Generation::first, true, swappable);
    EXPECT_EQ(pair, (AmtcPair{0xffb5ffff, 0xffadffff}));
    EXPECT_EQ(throughBlock(pair, false).a, 0xffbdffffu);
}

TEST(AmtcQuantiser, PairsFitTheBlock) {
    testimages::Random random(2);
    for (int i = 0; i < 60000; ++i) {
        ColourVector a, b;
        const float spread = static_cast<float>(1u << random.below(9));
        for (std::size_t c = 0; c < channelCount; ++c) {
            a[c] = i % 4 == 0 && c == alphaChannel ? 255 : static_cast<float>(random.below(300000)) / 1000 - 20;
            b[c] = a[c] + (static_cast<float>(random.below(2000)) / 1000 - 1) * spread;
        }
        const bool secondGeneration = random.below(2) != 0, isPunchThrough = random.below(2) != 0;
        if (!secondGeneration && roundToByte(a[alphaChannel]) == 247)
            continue;  // an A with a blue of 3 bits, as in the test before
        const AmtcPair pair = QuantiseColourPair(Generation(secondGeneration), isPunchThrough, a, b);
        ASSERT_EQ(throughBlock(pair, secondGeneration), asStorable(pair, secondGeneration)) << std::hex << pair.a;
    }
    // Alphas of 255 for A and 0 for B stay, though the block cannot hold them.
    EXPECT_EQ(QuantiseColourPair(Generation::second, false, {0, 0, 0, 250}, {0, 0, 0, 0}), (AmtcPair{255u << 24, 0}));
}

TEST(AmtcQuantiser, PairsAreQuantisedByTheirDistance) {
    // clang-format off
    const std::tuple<const char*, bool, ColourVector, ColourVector, AmtcPair> cases[] = {
        // Rule, second generation, wanted A, wanted B, expected pair
        {"equal: by the tables",       false, {  128, 128,   0, 255}, {  128, 128,    0, 255}, {rgba(123, 123,   0, 255), rgba(132, 132,   0, 255)}},
        {"equal: exchanged",              false, {128.4f, 128,   0, 255}, {  128, 128,    0, 255}, {rgba(132, 132,   0, 255), rgba(123, 123,   0, 255)}},
        {"blue is not swappable",        false, {128.4f, 128, 128, 255}, {  128, 128,  128, 255}, {rgba(123, 123, 115, 255), rgba(132, 132, 140, 255)}},
        {"alpha is not swappable",       true,  {128.4f, 128,   0, 128}, {  128, 128,    0, 128}, {rgba(115, 115,   0, 136), rgba(140, 140,   0, 153)}},
        {"close: blends 0 and 3/8",     false, {  100,  50, 200, 255}, {  104,  53,  203, 255}, {rgba( 99,  49, 206, 255), rgba(107,  57, 206, 255)}},
        {"close: blends 3/8 and 5/8",   false, {   30,  60,  90, 120}, {   33,  63,   93, 117}, {rgba( 33,  66,  74, 136), rgba( 33,  66,  99, 102)}},
        {"close: blends 5/8 and 1",     true , {  200, 120,  20, 255}, {  196, 124,   17, 255}, {rgba(206, 115,  16, 255), rgba(198, 123,  16, 255)}},
        {"close, only A translucent",  false, {  200, 120,  20, 244}, {  196, 124,   17, 246}, {rgba(206, 115,  33, 238), rgba(198, 123,  16, 255)}},
        {"ties move apart",            true , {28.5f,   4,   8, 253}, {36.5f,  12,    0, 253}, {rgba( 24,   0,  16, 255), rgba( 33,  16,   0, 255)}},
        {"ties, A and B exchanged",  true , {36.5f,  12,   0, 253}, {28.5f,   4, 8.5f, 253}, {rgba( 33,  16,   0, 255), rgba( 24,   0,   8, 255)}},
        {"alphas rounded to 255",    true , {    0,  90,   0, 252}, {   90,   0,    0, 255}, {rgba(  0,  90,   0, 255), rgba( 90,   0,   0, 255)}},
        {"second generation",          true , {    0,  90,   0, 200}, {   90,   0,    0,  40}, {rgba(  0,  82,   0, 204), rgba( 82,   0,   0,  51)}},
        {"first generation, A opaque", false, {    0,  90,   0, 255}, {   90,   0,    0,  40}, {rgba(  0,  90,   0, 255), rgba( 82,   0,   0,  34)}},
    };
    // clang-format on
    for (const auto& [what, secondGeneration, floatA, floatB, expected] : cases) {
        const AmtcPair pair = QuantiseColourPair(Generation(secondGeneration), false, floatA, floatB);
        EXPECT_EQ(pair, expected) << what << std::hex << ' ' << pair.a << ' ' << pair.b;
    }
}

}  // namespace
