#include <gtest/gtest.h>

#include <algorithm>

#include "etc1/etc1.h"
#include "etc1/etc1_block.h"
#include "support/test_images.h"

namespace {

using namespace moktexture;
using etc1::BlockWords;
using Bytes = std::vector<std::uint8_t>;
using Pixels = std::vector<std::uint32_t>;

constexpr std::uint32_t rgba(std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    return r | g << 8 | b << 16 | 0xFF000000u;
}

Pixels decode(const std::vector<BlockWords>& blocks, std::uint32_t width, std::uint32_t height) {
    Pixels pixels(std::size_t{width} * height);
    Bytes bytes;
    for (const BlockWords& words : blocks)
        etc1::writeWords(&*bytes.insert(bytes.end(), etc1::bytesPerBlock, 0), words);
    EXPECT_EQ(DecompressETC1(bytes.data(), pixels.data(), &width, &height), width * height * 4);
    return pixels;
}

}  // namespace

TEST(ETC1Decoder, GivesEachSubblockItsBaseColour) {
    // clang-format off
    // All indices are 0 and both tables 0, so that both colours go up by 2.
    const struct { std::uint32_t colours, first, second; } cases[] = {
        // Colours   First subblock      Second subblock
        {0x12345600, rgba(19, 53, 87), rgba(36, 70, 104)},     // individual
        {0x84A10B02, rgba(134, 167, 10), rgba(101, 175, 35)},  // differential: -4, 1, 3
        {0x84FB0702, rgba(134, 255, 2), rgba(101, 26, 255)},   // green goes to 34 and blue to -1, and both wrap
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.colours);
        const Pixels leftRight = decode({{c.colours, 0}}, 4, 4), topBottom = decode({{c.colours | 1, 0}}, 4, 4);
        for (std::size_t n = 0; n < 16; ++n) {
            EXPECT_EQ(leftRight[n], n % 4 < 2 ? c.first : c.second) << n;
            EXPECT_EQ(topBottom[n], n < 8 ? c.first : c.second) << n;
        }
    }
}

TEST(ETC1Decoder, AddsThePublishedModifierOfEachPixelsIndex) {
    constexpr int small[] = {2, 5, 9, 13, 18, 24, 33, 47}, large[] = {8, 17, 29, 42, 60, 80, 106, 183};
    for (std::uint32_t table = 0; table < 8; ++table) {
        const int expected[] = {small[table], large[table], -small[table], -large[table]};
        for (std::uint32_t pixel = 0; pixel < 16; ++pixel) {
            for (std::uint32_t index = 0; index < 4; ++index) {
                // Red 0, green 136, blue 255 in both subblocks; every other pixel has index 0.
                const std::uint32_t indices = (index & 1) << pixel | index >> 1 << (pixel + 16);
                const Pixels pixels = decode({{0x0088FF00 | table << 5 | table << 2, indices}}, 4, 4);
                const auto channel = [&](int base) { return std::uint32_t(std::clamp(base + expected[index], 0, 255)); };
                EXPECT_EQ(pixels[pixel % 4 * 4 + pixel / 4], rgba(channel(0), channel(136), channel(255)))
                    << table << ' ' << index;
            }
        }
    }
}

TEST(ETC1Decoder, SpillsPixelsBeyondTheRightEdgeIntoTheNextRow) {
    constexpr std::uint32_t A = rgba(19, 19, 19), B = rgba(53, 53, 53), C = rgba(87, 87, 87), D = rgba(121, 121, 121);
    const BlockWords a = {0x11111100, 0}, b = {0x33333300, 0}, c = {0x55555500, 0}, d = {0x77777700, 0};
    const BlockWords columns = {0x13131300, 0}, rows = {0x13131301, 0};  // subblocks A and B
    // clang-format off
    const struct { std::vector<BlockWords> blocks; std::uint32_t width, height; Pixels expected; } cases[] = {
        // Blocks      Width, height, pixels
        {{a, b},       5, 4, {A, A, A, A, B,  B, B, B, A, B,  B, B, B, A, B,  B, B, B, A, B}},
        {{a, b, c, d}, 6, 5, {A, A, A, A, B, B,  B, B, A, A, B, B,  B, B, A, A, B, B,  B, B, A, A, B, B,  C, C, C, C, D, D}},
        // Below 4 pixels wide a block overlaps itself: its second subblock may hide the first, and spilled pixels wanted ones.
        {{columns},    1, 3, {A, A, A}},
        {{columns},    3, 2, {A, A, B,  A, A, B}},
        {{rows},       1, 4, {A, A, A, A}},
        {{rows},       2, 2, {A, A,  A, A}},
        {{rows},       2, 4, {A, A,  A, A,  A, A,  B, B}},
        {{rows},       3, 4, {A, A, A,  A, A, A,  A, B, B,  B, B, B}},
    };
    // clang-format on
    for (const auto& test : cases)
        EXPECT_EQ(decode(test.blocks, test.width, test.height), test.expected) << test.width << 'x' << test.height;
}

TEST(ETC1Decoder, DecodesAnyBitsAtAnySize) {
    for (std::uint32_t width = 0; width <= 13; ++width) {
        for (std::uint32_t height = 0; height <= 9; ++height) {
            // Buffers of exactly the stated size, for the address sanitizer.
            const std::size_t size = std::size_t{(width + 3) / 4} * ((height + 3) / 4) * etc1::bytesPerBlock;
            const Bytes blocks = testimages::randomBytes(size, width * 16 + height);
            Pixels pixels(std::size_t{width} * height);
            if (pixels.empty()) pixels.reserve(1);
            EXPECT_EQ(DecompressETC1(blocks.data(), pixels.data(), &width, &height), width * height * 4);
            for (const std::uint32_t pixel : pixels)
                EXPECT_EQ(pixel >> 24, 255u) << width << 'x' << height;
        }
    }
}

TEST(ETC1Decoder, ReturnsTheSizeOfThePixelsForNullBuffers) {
    const std::uint32_t width = 5, height = 3, wide = 0x10000, high = 0x10001;
    Bytes bytes(64);
    EXPECT_EQ(DecompressETC1(nullptr, bytes.data(), &width, &height), 60u);
    EXPECT_EQ(DecompressETC1(bytes.data(), nullptr, &width, &height), 60u);
    EXPECT_EQ(DecompressETC1(nullptr, nullptr, &wide, &high), 0x40000u);
    EXPECT_EQ(DecompressETC1(bytes.data(), bytes.data(), nullptr, &height), 0u);
    EXPECT_EQ(DecompressETC1(bytes.data(), bytes.data(), &width, nullptr), 0u);
}
