#include "etc1/etc1_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "etc1/etc1.h"
#include "support/test_images.h"

namespace {

using namespace moktexture;
using Bytes = std::vector<std::uint8_t>;
using Pixels = std::vector<std::uint32_t>;

constexpr std::uint32_t rgba(std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    return r | g << 8 | b << 16 | 0xFF000000u;
}

Pixels decode(const std::vector<etc1::BlockWords>& blocks, std::uint32_t width, std::uint32_t height) {
    Pixels pixels(std::size_t{width} * height);
    Bytes bytes;
    for (const etc1::BlockWords& words : blocks)
        etc1::writeWords(&*bytes.insert(bytes.end(), etc1::bytesPerBlock, 0), words);
    EXPECT_EQ(DecompressETC1(bytes.data(), pixels.data(), &width, &height), width * height * 4);
    return pixels;
}

}  // namespace

TEST(ETC1Decoder, GivesEachHalfItsColour) {
    struct Case {
        std::uint32_t colours;
        std::uint32_t first, second;
    };
    // All indices are 0 and both tables 2, 8: both colours go up by 2.
    const Case cases[] = {
        {0x12345600, rgba(19, 53, 87), rgba(36, 70, 104)},     // individual
        {0x84A10B02, rgba(134, 167, 10), rgba(101, 175, 35)},  // differential: -4, 1, 3
        {0x84FB0702, rgba(134, 255, 2), rgba(101, 26, 255)},   // green goes to 34 and blue to -1, and both wrap
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.colours);
        const Pixels leftRight = decode({{c.colours, 0}}, 4, 4), topBottom = decode({{c.colours | 1, 0}}, 4, 4);
        for (std::size_t place = 0; place < 16; ++place) {
            EXPECT_EQ(leftRight[place], place % 4 < 2 ? c.first : c.second) << place;
            EXPECT_EQ(topBottom[place], place < 8 ? c.first : c.second) << place;
        }
    }
}

TEST(ETC1Decoder, AddsThePublishedModifierOfEachPixelsIndex) {
    constexpr int small[] = {2, 5, 9, 13, 18, 24, 33, 47}, large[] = {8, 17, 29, 42, 60, 80, 106, 183};
    for (std::uint32_t table = 0; table < 8; ++table) {
        const int expected[] = {small[table], large[table], -small[table], -large[table]};
        for (std::uint32_t pixel = 0; pixel < 16; ++pixel) {
            for (std::uint32_t index = 0; index < 4; ++index) {
                // Red 0, green 136, blue 255 in both halves; every other pixel has index 0.
                const etc1::BlockWords words = {0x0088FF00 | table << 5 | table << 2, (index & 1) << pixel | (index >> 1)
                                                                                                                 << (pixel + 16)};
                const auto channel = [&](int base) {
                    return static_cast<std::uint32_t>(std::clamp(base + expected[index], 0, 255));
                };
                const Pixels pixels = decode({words}, 4, 4);
                EXPECT_EQ(pixels[pixel % 4 * 4 + pixel / 4], rgba(channel(0), channel(136), channel(255)))
                    << table << ' ' << index;
            }
        }
    }
}

TEST(ETC1Decoder, SpillsIntoTheNextRowAndNowhereElse) {
    constexpr std::uint32_t A = rgba(19, 19, 19), B = rgba(53, 53, 53), C = rgba(87, 87, 87), D = rgba(121, 121, 121);
    const etc1::BlockWords a = {0x11111100, 0}, b = {0x33333300, 0}, c = {0x55555500, 0}, d = {0x77777700, 0};
    const etc1::BlockWords abLeftRight = {0x13131300, 0}, abTopBottom = {0x13131301, 0};
    struct Case {
        std::vector<etc1::BlockWords> blocks;
        std::uint32_t width, height;
        Pixels expected;
    };
    // clang-format off
    const Case cases[] = {
        {{a, b}, 5, 4, {A, A, A, A, B,  B, B, B, A, B,  B, B, B, A, B,  B, B, B, A, B}},
        {{a, b, c, d}, 6, 5, {A, A, A, A, B, B,  B, B, A, A, B, B,  B, B, A, A, B, B,  B, B, A, A, B, B,  C, C, C, C, D, D}},
        // Below 4 pixels wide a block covers itself: its second half may hide the first, and spilled pixels wanted ones.
        {{abLeftRight}, 1, 3, {A, A, A}}, {{abLeftRight}, 3, 2, {A, A, B,  A, A, B}}, {{abTopBottom}, 1, 4, {A, A, A, A}},
        {{abTopBottom}, 2, 2, {A, A,  A, A}}, {{abTopBottom}, 2, 4, {A, A,  A, A,  A, A,  B, B}},
        {{abTopBottom}, 3, 4, {A, A, A,  A, A, A,  A, B, B,  B, B, B}},
    };
    // clang-format on
    for (const Case& test : cases)
        EXPECT_EQ(decode(test.blocks, test.width, test.height), test.expected) << test.width << 'x' << test.height;
}

TEST(ETC1Decoder, TakesAnyBitsAtAnySize) {
    for (std::uint32_t width = 0; width <= 13; ++width) {
        for (std::uint32_t height = 0; height <= 9; ++height) {
            // Exactly as large as told, for the address sanitizer.
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

TEST(ETC1Decoder, TellsItsSizeWithoutWorking) {
    const std::uint32_t width = 5, height = 3, wide = 0x10000, high = 0x10001;
    Bytes bytes(64);
    EXPECT_EQ(DecompressETC1(nullptr, bytes.data(), &width, &height), 60u);
    EXPECT_EQ(DecompressETC1(bytes.data(), nullptr, &width, &height), 60u);
    EXPECT_EQ(DecompressETC1(nullptr, nullptr, &wide, &high), 0x40000u);
    EXPECT_EQ(DecompressETC1(bytes.data(), bytes.data(), nullptr, &height), 0u);
    EXPECT_EQ(DecompressETC1(bytes.data(), bytes.data(), &width, nullptr), 0u);
}
