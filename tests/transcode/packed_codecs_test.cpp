#include "transcode/pixels/packed_codecs.h"

#include <gtest/gtest.h>

#include <vector>

#include "compressed_format_id.h"

using namespace moktexture;

namespace {

using Bytes = std::vector<std::uint8_t>;

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
    const std::pair<Bytes, Bytes> pairs[] = {
        // clang-format off
        // even and odd pixel, UYVY group
        {{0, 0, 0, 0, 0, 0}, {128, 16, 128, 16}}, {{255, 255, 255, 255, 255, 255}, {128, 235, 128, 235}},
        {{255, 0, 0, 0, 0, 255}, {90, 82, 110, 41}},   // U of red, V of blue
        {{0, 0, 255, 255, 0, 0}, {240, 41, 240, 82}},  // U of blue, V of red
        // clang-format on
    };
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
    const Bytes pixels = decodedYUV(groups, 3, 3, eFmtYUY2);
    const Bytes greys = {0, 14, 28, 28, 42, 56, 56, 70, 84};
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

    const Bytes twelveBits = {0b01100110, 0b1001};
    Bytes decoded(48);
    EXPECT_EQ(decode1bpp(twelveBits.data(), decoded.data(), &width, &height), 48);
    constexpr int W = 255;
    EXPECT_EQ(decoded,
              rgba({0, 0, 0, W, W, W, W, W, W, 0, 0, 0, 0, 0, 0, W, W, W, W, W, W, 0, 0, 0, W, W, W, 0, 0, 0, 0, 0, 0, W, W, W}));
}
