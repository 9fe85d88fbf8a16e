#include <gtest/gtest.h>

#include <vector>

#include "dxtn/dxtn.h"

using namespace moktexture;

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
    std::vector<std::uint32_t> target = untouched;
    const std::uint32_t edge = 4, mode = 1;
    for (const auto codec : {DecompressDXTn, CompressDXTn}) {
        EXPECT_EQ(codec(source.data(), target.data(), nullptr, &edge, &mode), 0u);
        EXPECT_EQ(codec(source.data(), target.data(), &edge, nullptr, &mode), 0u);
        EXPECT_EQ(codec(nullptr, nullptr, &edge, &edge, nullptr), 0u);
    }
    EXPECT_EQ(target, untouched);
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
