#include <gtest/gtest.h>

#include <vector>

#include "dxtn/dxtn.h"
#include "support/test_images.h"

using namespace moktexture;

namespace {

/// Decodes an image of whole blocks through buffers of exact size.
template <class Element = std::uint64_t>
std::vector<std::uint32_t> decode(const std::vector<Element>& blocks, DXTMode mode, std::uint32_t edge = 4) {
    std::vector<std::uint32_t> pixels(edge * edge, 0xDEADBEEF);
    EXPECT_EQ(DecompressDXTn(blocks.data(), pixels.data(), &edge, &edge, &mode), 0u);
    return pixels;
}

}  // namespace

// `decode` expects the result 0.
TEST(DXTnDecoder, BuildsThePaletteOfEachRuleAndReturnsZero) {
    // clang-format off
    const struct { DXTMode mode; std::uint64_t c0, c1; std::uint32_t palette[4]; } cases[] = {
        // Mode, c0, c1, the four colours
        {1, 0xFFFF, 0x0000, {0xFFFFFFFF, 0xFF000000, 0xFFA7A7A7, 0xFF575757}},  // 42 and 22 over 64
        {1, 0x8410, 0x0821, {0xFF848284, 0xFF080408, 0xFF595659, 0xFF322F32}},  // replicated bits
        {1, 0x0000, 0xFFFF, {0xFF000000, 0xFFFFFFFF, 0xFF7F7F7F, 0x00000000}},  // transparent black
        {1, 0x8410, 0x8410, {0xFF848284, 0xFF848284, 0xFF848284, 0x00000000}},  // equal: three colours
        {1, 0x7FFF, 0x8000, {0xFFFFFF7B, 0xFF000084, 0xFF7F7F7F, 0x00000000}},  // compared as unsigned
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
    // Equal endpoints of interpolated alpha leave indices 6 and 7 for the alphas 0 and 255.
    const auto pixels = decode({0xFAC688FAC6880909, 0xFFFF}, 5);
    EXPECT_EQ(pixels[6], 0x00FFFFFFu);
    EXPECT_EQ(pixels[7], 0xFFFFFFFFu);
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

TEST(DXTnSizes, RefusedSizesAndModesWriteNothing) {
    const std::vector<std::uint32_t> source(64, 0xFFFFFFFF), untouched(64, 7);
    const std::uint32_t refused[][3] = {// Width, height, mode
                                        {6, 4, 1}, {4, 2, 5}, {2, 2, 3}, {0, 4, 1}, {4, 0, 1}, {4, 4, 0}, {4, 4, 6}, {4, 4, ~0u}};
    for (const auto& [width, height, mode] : refused) {
        std::vector<std::uint32_t> target = untouched;
        EXPECT_EQ(DecompressDXTn(source.data(), target.data(), &width, &height, &mode), 0u);
        EXPECT_EQ(CompressDXTn(source.data(), target.data(), &width, &height, &mode), 0u);
        EXPECT_EQ(target, untouched) << width << ' ' << height << ' ' << mode;
    }
    const std::uint32_t edge = 4, mode = 1;
    std::uint32_t target = 7;
    for (const auto codec : {DecompressDXTn, CompressDXTn}) {
        EXPECT_EQ(codec(source.data(), &target, nullptr, &edge, &mode), 0u);
        EXPECT_EQ(codec(source.data(), &target, &edge, nullptr, &mode), 0u);
        EXPECT_EQ(codec(nullptr, nullptr, &edge, &edge, nullptr), 0u);
    }
    EXPECT_EQ(target, 7u);
}

TEST(DXTnSizes, NullBuffersGiveTheSizeModulo32Bits) {
    // clang-format off
    const struct { std::uint32_t width, height, mode, pixelBytes, blockBytes; } cases[] = {
        // Width, height, mode, bytes of pixels, bytes of blocks
        {4, 8, 1, 128, 16}, {4, 8, 5, 128, 32}, {4, 6, 2, 96, 24},  // answered, though it would not be encoded
        {65536, 65536, 3, 0, 0}, {65532, 65540, 5, 0xFFFFFFC0, 0xFFFFFFF0},
        {65540, 65540, 1, 0x00200040, 0x00040008}};  // wraps, then halves
    // clang-format on
    std::uint32_t buffer = 7, *const null = nullptr;
    for (const auto& row : cases)
        for (const auto& [source, target] : {std::pair(null, &buffer), {&buffer, null}}) {
            EXPECT_EQ(DecompressDXTn(source, target, &row.width, &row.height, &row.mode), row.pixelBytes);
            EXPECT_EQ(CompressDXTn(source, target, &row.width, &row.height, &row.mode), row.blockBytes);
        }
    EXPECT_EQ(buffer, 7u);
}
