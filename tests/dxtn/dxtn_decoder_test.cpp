#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "dxtn/dxtn.h"
#include "support/test_images.h"

using namespace moktexture;

namespace {

/// Decodes an image of whole blocks through buffers of exact size.
std::vector<std::uint32_t> decode(const std::vector<std::uint8_t>& blocks, DXTMode mode, std::uint32_t edge) {
    std::vector<std::uint32_t> pixels(edge * edge, 0xDEADBEEF);
    EXPECT_EQ(DecompressDXTn(blocks.data(), pixels.data(), &edge, &edge, &mode), 0u);
    return pixels;
}

std::vector<std::uint32_t> decode(const std::vector<std::uint64_t>& words, DXTMode mode, std::uint32_t edge = 4) {
    std::vector<std::uint8_t> blocks(8 * words.size());
    std::memcpy(blocks.data(), words.data(), blocks.size());
    return decode(blocks, mode, edge);
}

}  // namespace

TEST(DXTnDecoder, BuildsThePaletteOfEachRule) {
    // clang-format off
    const struct { DXTMode mode; std::uint64_t c0, c1; std::uint32_t palette[4]; } cases[] = {
        // Mode, c0, c1, the four colours
        {1, 0xFFFF, 0x0000, {0xFFFFFFFF, 0xFF000000, 0xFFA7A7A7, 0xFF575757}},  // 42 and 22 over 64
        {1, 0xF800, 0x07E0, {0xFF0000FF, 0xFF00FF00, 0xFF0057A7, 0xFF00A757}},
        {1, 0x8410, 0x0821, {0xFF848284, 0xFF080408, 0xFF595659, 0xFF322F32}},  // replicated bits
        {1, 0x0000, 0xFFFF, {0xFF000000, 0xFFFFFFFF, 0xFF7F7F7F, 0x00000000}},  // transparent black
        {1, 0x8410, 0x8410, {0xFF848284, 0xFF848284, 0xFF848284, 0x00000000}},  // equal: three colours
        {1, 0x7FFF, 0x8000, {0xFFFFFF7B, 0xFF000084, 0xFF7F7F7F, 0x00000000}},  // compared as unsigned
        {2, 0xFFFF, 0x0000, {0x55FFFFFF, 0x55000000, 0x55A7A7A7, 0x55575757}},
        {3, 0x0000, 0xFFFF, {0x55000000, 0x55FFFFFF, 0x557F7F7F, 0x55000000}},  // three colours here too
        {5, 0x8410, 0x8410, {0x55848284, 0x55848284, 0x55848284, 0x55000000}}};
    // clang-format on
    for (const auto& row : cases) {
        const std::uint64_t indices0123 = 0xE4E4E4E4, colours = indices0123 << 32 | row.c1 << 16 | row.c0;
        const std::uint64_t alpha = row.mode >= 4 ? 0x5555 : 0x5555555555555555;
        const auto pixels = row.mode == 1 ? decode({colours}, 1) : decode({alpha, colours}, row.mode);
        for (std::size_t pixel = 0; pixel < 16; ++pixel)
            EXPECT_EQ(pixels[pixel], row.palette[pixel % 4]) << std::hex << row.mode << ' ' << row.c0 << ' ' << row.c1;
    }
}

TEST(DXTnDecoder, ExpandsAlpha) {
    const auto explicitAlpha = decode({0xFEDCBA9876543210, 0}, 2);
    for (std::uint32_t pixel = 0; pixel < 16; ++pixel)
        EXPECT_EQ(explicitAlpha[pixel], pixel * 17 << 24);

    constexpr std::uint64_t indices0to7Twice = 0xFAC688FAC688;
    // clang-format off
    const std::uint32_t cases[][8] = {
        // a0,  a1, entries 2 to 7
        {255, 0, 218, 182, 145, 109, 72, 36}, {200, 101, 185, 171, 157, 143, 129, 115}, {0, 255, 51, 102, 153, 204, 0, 255},
        {10, 20, 12, 14, 16, 18, 0, 255}, {9, 9, 9, 9, 9, 9, 0, 255}};  // equal: the shorter table
    // clang-format on
    for (const auto& row : cases) {
        const auto pixels = decode({indices0to7Twice << 16 | row[1] << 8 | row[0], 0xFFFF}, 5);
        for (std::size_t pixel = 0; pixel < 16; ++pixel)
            EXPECT_EQ(pixels[pixel], row[pixel % 8] << 24 | 0xFFFFFF) << row[0] << ' ' << row[1] << ' ' << pixel;
    }
}

/// Digests by an independent implementation; modes 2 and 3 are alike, and 4 and 5.
TEST(DXTnDecoder, DecodesRandomBitsLikeAnIndependentImplementation) {
    const std::uint64_t digests[] = {0xED41C2D894B922E3, 0x8EEB12DA8C78E8A5, 0xB5F669C4E672B075};
    for (const DXTMode mode : {1u, 2u, 3u, 4u, 5u}) {
        const auto blocks = testimages::randomBytes(mode == 1 ? 2048 : 4096, mode | 1);
        const auto pixels = decode(blocks, mode, 64);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(pixels.data());
        EXPECT_EQ(testimages::digest({bytes, 4 * pixels.size()}), digests[mode / 2]) << mode;
    }
}

TEST(DXTnDecoder, ReturnsZeroAfterAFullDecode) {
    EXPECT_EQ(decode({0xFFFF}, 1)[15], 0xFFFFFFFFu);  // `decode` expects the result 0
}
