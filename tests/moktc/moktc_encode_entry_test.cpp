#include <gtest/gtest.h>

#include "moktc/amtc/amtc_localised.h"
#include "moktc/moktc.h"
#include "support/test_images.h"

using namespace moktexture;
using testimages::Kind;

TEST(MOKTCEncodeEntry, ReturnsTheUnpaddedSizeOrRefuses) {
    // clang-format off
    const struct { std::uint32_t width, height, bytes[4]; } cases[] = {
        // width  height  first 2 bpp, 4 bpp   second 2 bpp, 4 bpp
        {  8,     4,     {8,       16,         8,       16}},
        {  12,    8,     {0,       48,         24,      48}},
        {  9,     6,     {0,       0,          13,      27}},
        {  1,     1,     {}},
        {  4097,  4096,  {}},
        {  4096,  4096,  {4194304, 8388608,    4194304, 8388608}},
        {  4096,  4100,  {}}};
    // clang-format on
    for (const auto& [width, height, bytes] : cases)
        for (std::uint32_t form = 0; form < 4; ++form)
            EXPECT_EQ(CompressMOKTC(nullptr, nullptr, &width, &height, false, form % 2 == 0, form / 2, form / 2 * 3), bytes[form])
                << width << " x " << height;
    const std::uint32_t side = 8;
    EXPECT_EQ(CompressMOKTC(nullptr, nullptr, nullptr, &side, false, false, 0, 0), 0u);
    EXPECT_EQ(CompressMOKTC(nullptr, nullptr, &side, nullptr, false, false, 0, 0), 0u);
}

TEST(MOKTCEncodeEntry, WritesNothingWhereItEncodesNothing) {
    std::vector<std::uint8_t> pixels = testimages::make(Kind::noise, 16, 8), blocks(64, 0xCD);
    const std::vector<std::uint8_t> untouched = blocks;
    const std::uint32_t width = 16, height = 8;
    EXPECT_EQ(CompressMOKTC(nullptr, blocks.data(), &width, &height, true, false, 0, 0), 64u);
    const std::uint32_t refused[][3] = {{12, 0, 0}, {0, 0, 0}, {0, 1, 3}, {16, 2, 3}};  // width, generation, quality
    for (const auto& [side, generation, quality] : refused)
        EXPECT_EQ(CompressMOKTC(pixels.data(), blocks.data(), &side, &height, true, true, generation, quality), 0u) << side;
    EXPECT_EQ(blocks, untouched);
    EXPECT_EQ(CompressMOKTC(pixels.data(), nullptr, &width, &height, true, false, 0, 0), 64u);
}

TEST(MOKTCEncodeEntry, UsesTheSlowEncoderExceptAtQuality0OfTheFirstGeneration) {
    // clang-format off
    const struct { std::uint32_t width, height, secondGeneration, quality; std::uint8_t effort; } cases[] = {
        // width  height  second  quality  effort
        {  16,    8,      0,      1,       0},
        {  16,    8,      0,      3,       2},
        {  8,     8,      0,      257,     4},
        {  8,     8,      1,      5,       4},
        {  9,     6,      1,      2,       2},
        {  1,     1,      1,      0,       0}};
    // clang-format on
    for (const auto& [width, height, secondGeneration, quality, effort] : cases)
        for (const bool is2bpp : {true, false}) {
            const auto pixels = testimages::make(Kind::softAlpha, width, height);
            const std::uint32_t step = is2bpp ? 8 : 4, bits = is2bpp ? 2 : 4, size = width * height * bits / 8;
            const std::uint32_t paddedWidth = (width + step - 1) / step * step, paddedHeight = (height + 3) / 4 * 4;
            const auto padded = moktc::padByRepeating(packedImage(pixels.data(), width, height), paddedWidth, paddedHeight);
            std::vector<std::uint8_t> blocks(paddedWidth * paddedHeight * bits / 8, 0xCD), expected(blocks.size());
            amtc::CompressImageLevels(padded.data(), 1, static_cast<std::int32_t>(paddedWidth),
                                      static_cast<std::int32_t>(paddedHeight), 0, expected.data(), effort, 0, 1, 0, 4, bits,
                                      secondGeneration, 0, secondGeneration, 0, nullptr);
            EXPECT_EQ(CompressMOKTC(pixels.data(), blocks.data(), &width, &height, true, is2bpp, secondGeneration, quality),
                      size);
            EXPECT_EQ(blocks, expected) << width << " x " << height << " at " << quality;
        }
}
