#include <gtest/gtest.h>

#include "etc1/etc1.h"
#include "etc1/etc1_block.h"
#include "support/test_images.h"

using namespace moktexture;
using etc1::BlockWords;
using etc1::Split;
using Bytes = std::vector<std::uint8_t>;

namespace {

Bytes encode(const Bytes& pixels, std::uint32_t width, std::uint32_t height, std::uint32_t quality) {
    Bytes blocks(std::size_t{(width + 3) / 4} * ((height + 3) / 4) * etc1::bytesPerBlock);
    EXPECT_EQ(CompressETC1(pixels.data(), blocks.data(), &width, &height, quality), width * height / 2);
    return blocks;
}

/// The pixels of a block of two colours.
Bytes twoSubblocks(std::uint32_t first, std::uint32_t second, Split split) {
    PixelBlock block;
    for (std::size_t n = 0; n < 16; ++n)
        block[etc1::rasterIndex(etc1::pixelNumber(split, n / 8, n % 8))] = n < 8 ? first : second;
    Bytes bytes(sizeof block);
    std::memcpy(bytes.data(), block.data(), bytes.size());
    return bytes;
}

}  // namespace

TEST(ETC1Encoder, WritesTheWordsWorkedByHand) {
    constexpr std::uint32_t black = 0x12000000, white = 0x80FFFFFF, grey = 0xFF646464;  // alpha is dropped
    // clang-format off
    const struct { const char* name; Bytes pixels; std::array<BlockWords, 6> expected; } cases[] = {
        // Colours and indices by quality.
        // Quick: code 12 is 99, up by 2. Search: code 10 is 82, up by 18, exact; ties keep the differential mode and no flip.
        {"flat", twoSubblocks(grey, grey, Split::leftRight),
            {{{0x60606002, 0x00000000}, {0x60606002, 0x00000000}, {0x50505092, 0x00000000},
              {0x50505092, 0x00000000}, {0x50505092, 0x00000000}, {0x50505092, 0x00000000}}}},
        // Code 16 is 132, which 183 takes to black and to white: exact in one split or, weighted, in both. In columns with uniform
        // weights a channel below 0 counts as white, so that the searches make it of 0 less 8 and black of 17 less 17. Otherwise
        // white is 85 and 183.
        {"black and white columns", twoSubblocks(black, white, Split::leftRight),
            {{{0x808080FF, 0x00FFFFFF}, {0x0F0F0F00, 0x00FF00FF}, {0x10101020, 0xFFFFFFFF},
              {0x0505051C, 0x00FFFFFF}, {0x10101020, 0xFFFFFFFF}, {0x0505051C, 0x00FFFFFF}}}},
        {"black and white rows", twoSubblocks(black, white, Split::topBottom),
            {{{0x0F0F0F01, 0x33333333}, {0x808080FE, 0x3333FFFF}, {0x0505051D, 0x3333FFFF},
              {0x686868FE, 0x3333FFFF}, {0x0505051D, 0x3333FFFF}, {0x585858FE, 0x3333FFFF}}}},
    };
    // clang-format on
    for (const auto& c : cases) {
        for (std::uint32_t quality = 0; quality < 6; ++quality) {
            const BlockWords words = etc1::readWords(encode(c.pixels, 4, 4, quality).data());
            EXPECT_EQ(words.colours, c.expected[quality].colours) << c.name << ' ' << quality << std::hex << ' ' << words.colours;
            EXPECT_EQ(words.indices, c.expected[quality].indices) << c.name << ' ' << quality << std::hex << ' ' << words.indices;
        }
    }
}

TEST(ETC1Encoder, KeepsItsBytes) {
    // An independent implementation gave the same. In the small images candidates are compared as they are decoded, spilled
    // pixels included.
    // clang-format off
    const struct { std::uint32_t width, height, quality; std::uint64_t digest; } cases[] = {
        // Width, height, quality, digest
        {32, 32, 0, 0xAAEC40A8D875C0C8}, {32, 32, 1, 0x2191FFF1FDF36159}, {32, 32, 2, 0x6A6A4107171DF495},
        {32, 32, 3, 0xAC4F9880C53C4593}, {16, 16, 4, 0x683E347AB0A9649A}, {16, 16, 5, 0x742F019DB4E94F90},
        { 4,  6, 0, 0x5C3E3D9109A9B06B}, { 4,  6, 1, 0xFC69E5533A75B0F0}, { 6,  5, 0, 0xA28BD6B0E85A0B49},
        { 6,  5, 1, 0x3C66F798A7332FD1}, { 7,  9, 0, 0xBE506A129556F4B5}, { 7,  9, 1, 0xC99F9B239C5AC26F},
        { 5, 33, 0, 0x4CFCC38CCC8C3098}, { 5, 33, 1, 0x0A6B887ADA66B376}, { 3,  7, 0, 0xE0E96BFE2ADA5197},
        { 3,  7, 1, 0x954FE52D40C1867C}, { 1,  5, 0, 0xED2908DEBE5877F5}, { 1,  5, 1, 0xDC0A2A04BFBFA365},
    };
    // clang-format on
    for (const auto& c : cases) {
        Bytes all;
        for (const testimages::Kind kind : testimages::allKinds) {
            const Bytes blocks = encode(testimages::make(kind, c.width, c.height, 5), c.width, c.height, c.quality);
            all.insert(all.end(), blocks.begin(), blocks.end());
        }
        EXPECT_EQ(testimages::digest(all), c.digest) << c.width << 'x' << c.height << ' ' << c.quality;
    }
}

TEST(ETC1Encoder, ReadsOnIntoTheNextRowAndRepeatsTheLastRow) {
    // Pixels count up, so that a block's position shows in its colours.
    for (const auto& [width, height] : {std::pair{6u, 6u}, {5u, 9u}, {7u, 4u}, {4u, 5u}, {3u, 2u}, {1u, 1u}}) {
        Bytes pixels(std::size_t{width} * height * 4), padded;
        for (std::size_t n = 0; n < pixels.size(); ++n)
            pixels[n] = static_cast<std::uint8_t>(n / 4 * 3 + n % 4 * 40);
        const std::uint32_t paddedWidth = (width + 3) / 4 * 4, paddedHeight = (height + 3) / 4 * 4;
        for (std::uint32_t n = 0; n < paddedWidth * paddedHeight; ++n) {
            std::uint32_t index = n / paddedWidth * width + n % paddedWidth;
            while (index >= width * height)
                index -= width;
            padded.insert(padded.end(), pixels.begin() + index * 4, pixels.begin() + index * 4 + 4);
        }
        for (const std::uint32_t quality : {2u, 3u})
            EXPECT_EQ(encode(pixels, width, height, quality), encode(padded, paddedWidth, paddedHeight, quality)) << width;
        for (const std::uint32_t quality : {0u, 1u, 5u})
            encode(pixels, width, height, quality);  // buffers of exactly the stated size, for the address sanitizer
    }
}

TEST(ETC1Encoder, RefusesBadArgumentsAndReturnsTheUnroundedSize) {
    const std::uint32_t four = 4, five = 5, none = 0, wide = 0x10000, high = 0x10001;
    Bytes pixels(5 * 5 * 4), blocks(4 * 8, 7);
    EXPECT_EQ(CompressETC1(pixels.data(), blocks.data(), &four, &four, 6), 0u);
    EXPECT_EQ(CompressETC1(pixels.data(), blocks.data(), &none, &four, 0), 0u);
    EXPECT_EQ(CompressETC1(pixels.data(), blocks.data(), nullptr, &four, 0), 0u);
    EXPECT_EQ(CompressETC1(pixels.data(), blocks.data(), &four, nullptr, 0), 0u);
    EXPECT_EQ(blocks, Bytes(4 * 8, 7));
    EXPECT_EQ(CompressETC1(nullptr, blocks.data(), &five, &five, 6), 12u);
    EXPECT_EQ(CompressETC1(pixels.data(), blocks.data(), &five, &five, 0), 12u);
    EXPECT_EQ(CompressETC1(pixels.data(), nullptr, &wide, &high, 0), 0x8000u);
}
