#include <map>

#include "reference/dither_reference.h"
#include "transcode/pixels/dither.h"
#include "transcode/pixels/packed_codecs.h"
#include "transcode_samples.h"

using namespace samples;

namespace {

/// Opaque pixels of three bytes each, as RGBA.
Bytes rgba(const Bytes& rgb) {
    Bytes pixels;
    for (std::size_t i = 0; i < rgb.size(); i += 3)
        pixels.insert(pixels.end(), {rgb[i], rgb[i + 1], rgb[i + 2], 255});
    return pixels;
}

Bytes decodedYUV(const Bytes& groups, std::uint32_t width, std::uint32_t height, std::uint32_t format) {
    Bytes pixels(std::size_t{width} * height * 4);
    EXPECT_EQ(decodeYUV(groups.data(), pixels.data(), &width, &height, &format), static_cast<int>(width * height * 4));
    return pixels;
}

}  // namespace

TEST(PackedYUV, TakesEachChromaFromOnePixelOfThePair) {
    const std::pair<Bytes, Bytes> pairs[] = {// even and odd pixel, UYVY group
                                             {{0, 0, 0, 0, 0, 0}, {128, 16, 128, 16}},
                                             {{255, 255, 255, 255, 255, 255}, {128, 235, 128, 235}},
                                             {{255, 0, 0, 0, 0, 255}, {90, 82, 110, 41}},    // U of red, V of blue
                                             {{0, 0, 255, 255, 0, 0}, {240, 41, 240, 82}}};  // U of blue, V of red
    const std::uint32_t two = 2, one = 1, formats[] = {eFmtUYVY, eFmtYUY2};
    for (const auto& [pixels, uyvy] : pairs) {
        Bytes groups[] = {Bytes(4), Bytes(4)};
        for (const int i : {0, 1})
            EXPECT_EQ(encodeYUV(rgba(pixels).data(), groups[i].data(), &two, &one, &formats[i]), 4);
        EXPECT_EQ(groups[0], uyvy);
        EXPECT_EQ(groups[1], (Bytes{uyvy[1], uyvy[0], uyvy[3], uyvy[2]}));
    }
}

TEST(PackedYUV, DecodesWithItsOwnFactorsAndClamps) {
    EXPECT_EQ(decodedYUV({128, 16, 128, 235}, 2, 1, eFmtUYVY), rgba({0, 0, 0, 255, 255, 255}));
    EXPECT_EQ(decodedYUV({81, 90, 145, 240}, 2, 1, eFmtYUY2), rgba({255, 0, 0, 255, 74, 73}));
    // 298 * 34 + 517 * 100 + 128 is 242 * 256 + 8: a factor of 516 would give 241.
    EXPECT_EQ(decodedYUV({50, 228, 50, 128}, 2, 1, eFmtYUY2), rgba({40, 1, 242, 40, 1, 242}));
    const std::uint32_t two = 2, one = 1, other = eFmtBW1bpp;
    Bytes untouched(8, 7);
    EXPECT_EQ(decodeYUV(untouched.data(), untouched.data(), &two, &one, &other), 0);
    EXPECT_EQ(encodeYUV(untouched.data(), untouched.data(), &two, &one, &other), 0);
    EXPECT_EQ(untouched, Bytes(8, 7));
}

TEST(PackedYUV, OddWidthsOverwriteTheNextRowAndStayInsideTheLevel) {
    // Luma 16 + 12 n gives grey 14 n, near enough to recognise the groups: a row of 3 reads its own group and the next one.
    const Bytes groups = {16, 128, 28, 128, 40, 128, 52, 128, 64, 128, 76, 128, 88, 128, 100, 128};
    const Bytes pixels = decodedYUV(groups, 3, 3, eFmtYUY2), greys = {0, 14, 28, 28, 42, 56, 56, 70, 84};
    for (std::size_t i = 0; i < greys.size(); ++i)
        EXPECT_NEAR(pixels[i * 4], greys[i], 1) << i;
}

TEST(PackedYUV, ReturnsMoreBytesThanItWritesAtOddWidths) {
    const std::uint32_t three = 3, format = eFmtYUY2;
    Bytes groups(18, 7);
    EXPECT_EQ(encodeYUV(rgba(Bytes(27, 0)).data(), groups.data(), &three, &three, &format), 18);
    // The third pixel of a row is dropped.
    EXPECT_EQ(groups, (Bytes{16, 128, 16, 128, 16, 128, 16, 128, 16, 128, 16, 128, 7, 7, 7, 7, 7, 7}));
}

TEST(OneBit, ThresholdsTheMeanColourInMemoryOrder) {
    const Bytes pixels = rgba({127, 127, 127, 128, 128, 128, 255, 255, 0,   128, 128, 127, 0, 0, 0, 255, 129, 0,
                               255, 255, 255, 0,   0,   255, 255, 255, 255, 9,   9,   9,   9, 9, 9, 9,   9,   9});
    const std::uint32_t width = 6, height = 2;
    Bytes bits(2, 7);
    EXPECT_EQ(encode1bpp(pixels.data(), bits.data(), &width, &height), 1) << "12 pixels: four are dropped";
    EXPECT_EQ(bits, (Bytes{0b01100110, 7}));
    EXPECT_EQ(encode1bpp(nullptr, bits.data(), &width, &height), 1);

    Bytes decoded(48);
    EXPECT_EQ(decode1bpp(Bytes{0b01100110, 0b1001}.data(), decoded.data(), &width, &height), 48);
    for (std::size_t i = 0; i < 12; ++i)
        EXPECT_EQ(Bytes(&decoded[i * 4], &decoded[i * 4] + 4), rgba(Bytes(3, 0b100101100110 >> i & 1 ? 255 : 0))) << i;
}

TEST(Dither, ErrorGoesRightBelowAndLowerRight) {
    // clang-format off
    const struct { const char* what; std::uint8_t bits; unsigned int width, height, depth; Bytes before, after; } cases[] = {
        // what, bits, width, height, depth, before, after
        {"half goes right, truncated; the sum is clamped at 255", 5, 3, 1, 1, {10, 20, 255}, {8, 16, 255}},
        {"one bit is the top bit plus half of the value", 1, 2, 1, 1, {100, 200}, {50, 240}},
        {"a negative error is truncated toward zero", 1, 2, 1, 1, {201, 100}, {228, 43}},
        {"clamped at 0", 1, 2, 1, 1, {200, 7}, {228, 0}},
        {"in a single column a quarter goes below and the half is lost", 1, 1, 2, 1, {100, 100}, {50, 56}},
        {"all three shares", 1, 2, 2, 1, {100, 100, 100, 100}, {50, 62, 56, 205}},
        {"no error leaves a slice", 1, 1, 1, 2, {100, 100}, {50, 50}},
        {"each share is clamped before the next is added", 1, 2, 2, 1, {127, 0, 184, 250}, {63, 16, 228, 250}},
        {"no bits", 0, 2, 1, 1, {100, 200}, {100, 200}}, {"8 bits", 8, 2, 1, 1, {101, 203}, {101, 203}}};
    // clang-format on
    for (const auto& c : cases) {
        Bytes pixels, expected;
        for (std::size_t i = 0; i < c.before.size(); ++i) {
            pixels.insert(pixels.end(), {c.before[i], 77, 78, 79});
            expected.insert(expected.end(), {c.after[i], 77, 78, 79});
        }
        ditherLevel(pixels.data(), PixelType('r', 0, 0, 0, c.bits, 0, 0, 0), c.width, c.height, c.depth);
        EXPECT_EQ(pixels, expected) << c.what;
    }
}

TEST(Dither, RatesFollowTheLayoutOrTheFormatTable) {
    // clang-format off
    const std::map<std::uint64_t, DitherRates> cases = {
        {PixelType('a', 'b', 'g', 'r', 2, 10, 3, 4).id, {4, 3, 10, 2}}, {PixelType('l', 'a', 0, 0, 4, 3, 0, 0).id, {4, 4, 4, 3}},
        // The later position counts, also without bits; unknown letters count nowhere.
        {PixelType('r', 'i', 'x', 0, 5, 2, 3, 0).id, {2, 2, 2, 3}}, {PixelType('l', 'r', 'r', 0, 2, 5, 0, 0).id, {0, 2, 2, 0}},
        {PixelType('x', 'a', 'q', 'g', 3, 4, 5, 6).id, {0, 6, 0, 4}}, {eFmtETC1, {4, 4, 4, 4}}, {eFmtUnknown, {0, 0, 0, 0}},
        {0xFFFFFFFFu, {0, 0, 0, 0}}};
    // clang-format on
    for (const auto& [target, rates] : cases)
        EXPECT_EQ(ditherRates(PixelType(target)), rates) << std::hex << target;

    Bytes allRates;
    for (std::uint64_t number = 0; number < eFmtUnknown; ++number) {
        const DitherRates rates = ditherRates(PixelType(number));
        allRates.insert(allRates.end(), rates.begin(), rates.end());
    }
    EXPECT_EQ(testimages::digest(allRates), 10752368646626115781u);
}

TEST(Dither, EqualsTheReferenceForm) {
    const PixelType targets[] = {PixelType('r', 'g', 'b', 'a', 1, 2, 3, 4), PixelType('r', 'g', 'b', 'a', 5, 6, 7, 8),
                                 PixelType('a', 'l', 0, 0, 7, 1, 0, 0), eFmtDXT1, eFmtBW1bpp};
    testimages::Random random(7);
    for (int round = 0; round < 200; ++round) {
        const std::uint32_t width = 1 + random.below(33), height = 1 + random.below(17), depth = 1 + random.below(3);
        Bytes fast(std::size_t{width} * height * depth * 4);
        random.fill(fast);
        for (std::size_t i = 0; round % 2 == 0 && i < fast.size(); ++i)  // extremes, where the order of clamped sums shows
            fast[i] = static_cast<std::uint8_t>(fast[i] < 128 ? fast[i] % 8 : 255 - fast[i] % 8);
        Bytes expected = fast;
        const PixelType target = targets[static_cast<std::size_t>(round) % std::size(targets)];
        ditherLevel(fast.data(), target, width, height, depth);
        ditherLevelReference(expected.data(), target, width, height, depth);
        ASSERT_EQ(fast, expected) << width << " by " << height << " by " << depth;
    }
}
