#include <gtest/gtest.h>

#include "moktc/block_padding.h"
#include "moktc/moktc.h"
#include "support/test_images.h"

using namespace moktexture;
using testimages::Kind;

namespace {

std::uint32_t sizeOf(std::uint32_t width, std::uint32_t height, bool is2bpp, std::uint32_t secondGeneration,
                     std::uint32_t quality = 0) {
    return CompressMOKTC(nullptr, nullptr, &width, &height, false, is2bpp, secondGeneration, quality);
}

}  // namespace

TEST(MOKTCEncodeEntry, TellsTheUnpaddedSizeOrRefuses) {
    struct Case {
        std::uint32_t width, height;
        std::uint32_t first2, first4, second2, second4;  // bytes by generation and bits per pixel
    };
    // clang-format off
    const Case cases[] = {
        {   8,    4,       8,      16,       8,      16},
        {  12,    8,       0,      48,      24,      48},
        {   9,    6,       0,       0,      13,      27},
        {   1,    1,       0,       0,       0,       0},
        {4096, 4096, 4194304, 8388608, 4194304, 8388608},
        {4097, 4096,       0,       0,       0,       0},
        {4096, 4100,       0,       0,       0,       0},
        {   0,   16,       0,       0,       0,       0},
    };
    // clang-format on
    for (const Case& c : cases) {
        EXPECT_EQ(sizeOf(c.width, c.height, true, 0), c.first2) << c.width << " x " << c.height;
        EXPECT_EQ(sizeOf(c.width, c.height, false, 0), c.first4) << c.width << " x " << c.height;
        EXPECT_EQ(sizeOf(c.width, c.height, true, 1, 3), c.second2) << c.width << " x " << c.height;
        EXPECT_EQ(sizeOf(c.width, c.height, false, 1, 3), c.second4) << c.width << " x " << c.height;
    }
    const std::uint32_t side = 8;
    EXPECT_EQ(CompressMOKTC(nullptr, nullptr, nullptr, &side, false, false, 0, 0), 0u);
    EXPECT_EQ(CompressMOKTC(nullptr, nullptr, &side, nullptr, false, false, 0, 0), 0u);
}

TEST(MOKTCEncodeEntry, WritesNothingWhereItEncodesNothing) {
    std::vector<std::uint8_t> pixels = testimages::make(Kind::noise, 16, 8), blocks(64, 0xCD);
    const std::vector<std::uint8_t> untouched = blocks;
    const std::uint32_t width = 16, odd = 12, none = 0, height = 8;
    EXPECT_EQ(CompressMOKTC(nullptr, blocks.data(), &width, &height, true, false, 0, 0), 64u);
    EXPECT_EQ(CompressMOKTC(pixels.data(), blocks.data(), &odd, &height, true, true, 0, 0), 0u);
    EXPECT_EQ(CompressMOKTC(pixels.data(), blocks.data(), &none, &height, true, true, 0, 0), 0u);
    EXPECT_EQ(blocks, untouched);
    EXPECT_EQ(CompressMOKTC(pixels.data(), nullptr, &width, &height, true, false, 0, 0), 64u);
}

TEST(MOKTCBlockPadding, RepeatsTheLastColumnsAndRows) {
    struct Case {
        std::uint32_t width, height, paddedWidth, paddedHeight;
        std::vector<std::uint32_t> columns, rows;  // where each comes from
    };
    const Case cases[] = {
        {12, 6, 16, 8, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 8, 9, 10, 11}, {0, 1, 2, 3, 4, 5, 4, 5}},
        {5, 3, 8, 4, {0, 1, 2, 3, 4, 2, 3, 4}, {0, 1, 2, 2}},
        {4, 2, 8, 4, {0, 1, 2, 3, 0, 1, 2, 3}, {0, 1, 0, 1}},
        {3, 1, 8, 4, {0, 1, 2, 0, 1, 2, 0, 1}, {0, 0, 0, 0}},  // smaller than their padding
    };
    for (const Case& c : cases) {
        const auto image = testimages::randomBytes(std::size_t{4} * c.width * c.height, 1);
        std::vector<std::uint8_t> expected;
        for (const std::uint32_t y : c.rows) {
            for (const std::uint32_t x : c.columns) {
                const auto pixel = image.begin() + (y * c.width + x) * 4;
                expected.insert(expected.end(), pixel, pixel + 4);
            }
        }
        EXPECT_EQ(moktc::padByRepeating(image.data(), c.width, c.height, c.paddedWidth, c.paddedHeight), expected)
            << c.width << " x " << c.height;
    }
}
