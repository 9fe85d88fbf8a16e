#include <gtest/gtest.h>

#include <string>

#include "moktc/block/modulation_grid.h"
#include "moktc_levels.h"

using namespace moktexture::moktc;
using moktclevels::decodeAmongEquals;

namespace {

constexpr std::uint32_t blackAndWhite = 0xFFFF8000;  // A opaque black, B opaque white, without the mode bit, first generation

/// A block's weights as digits, pixels in raster order, read from a blend of black and white.
std::string weightsOf(const Block& block, bool is2bpp) {
    std::string digits;
    for (const std::uint32_t pixel : decodeAmongEquals(block, is2bpp, false))
        digits += static_cast<char>('0' + ((pixel & 255) * 8 + 254) / 255);
    return digits;
}

}  // namespace

TEST(MOKTCBlock, HoldsTheColoursOfBothGenerations) {
    // clang-format off
    // Colours as RGBA8, red in the lowest byte, in the first and in the second generation.
    const struct { std::uint32_t word, a[2], b[2]; } cases[] = {
        {0xFFFFFFFE, {0xFFFFFFFF, 0xFFFFFFFF}, {0xFFFFFFFF, 0xFFFFFFFF}},
        {0x0000FC00, {0xFF0000FF, 0xEE0000CE}, {0x00000000, 0x11000000}},  // bit 15: A is opaque, or the block is flat
        {0x83E07C1E, {0xEEFF10CE, 0xFFFF00FF}, {0xFF00FF00, 0xFF00FF00}},  // bit 31: B is opaque, or both are
        {0x80008002, {0xFF100000, 0xFF100000}, {0xFF000000, 0xFF000000}},  // opaque A has 4 bits of blue
        {0x80008010, {0xFF8C0000, 0xFF8C0000}, {0xFF000000, 0xFF000000}},
        {0x80410000, {0x00000000, 0xFF000000}, {0xFF081000, 0xFF081000}},
        {0x5A5A0000, {0x00000000, 0x00000000}, {0xAAAD52AD, 0xBBAD52AD}},  // low bit of B's alpha
        {0x00005A5A, {0xAAB552AD, 0xAAB552AD}, {0x00000000, 0x11000000}}};  // translucent A has 3 bits of blue
    // clang-format on
    for (const auto& row : cases)
        for (const bool is2bpp : {false, true})
            for (const bool second : {false, true}) {
                const std::uint32_t secondPixelIsB = is2bpp ? 2 : 12;
                const auto pixels = decodeAmongEquals({secondPixelIsB, row.word}, is2bpp, second);
                EXPECT_EQ(pixels[0], row.a[second]) << std::hex << row.word << second;
                EXPECT_EQ(pixels[1], row.b[second]) << std::hex << row.word << second;
            }
}

TEST(MOKTCBlock, WeightsPixelsByTheModulationWord) {
    // clang-format off
    const struct { bool is2bpp, mode; std::uint32_t word; std::string weights; } cases[] = {
        {false, false, 0xE4E41BE4, "0358853003580358"}, {false, true, 0xE4E41BE4, "0448844004480448"},
        {true, false, 0x80FF1001, "80000000" "00008000" "88888888" "00000008"},
        {true, true, 0x00000002, "82000002" "20000000" "00000000" "20000000"},  // average; the first sample is 3, not 2
        {true, true, 0x00000003, "84000004" "00000000" "00000000" "00000000"},  // horizontal
        {true, true, 0x00100003, "80000000" "40000000" "00000000" "40000000"},  // vertical; sample 10 loses its low bit
        {true, true, 0x00300001, "00000000" "00004000" "00008000" "00004000"},
        {true, true, 0x00200001, "00000000" "00000000" "00048400" "00000000"},
        {true, true, 0x00200000, "00000000" "00001000" "00015100" "00001000"},
        {true, true, 0x55555550, "02023332" "23233333" "33333333" "23233333"}};
    // clang-format on
    for (const auto& row : cases)
        EXPECT_EQ(weightsOf({row.word, blackAndWhite | (row.mode ? modeBit : 0)}, row.is2bpp), row.weights)
            << std::hex << row.word;
}

TEST(MOKTCBlockDeathTest, EndsTheProcessAtOneBitPerPixel) {
    ModulationGrid grid;
    EXPECT_DEATH_IF_SUPPORTED(UnpackMods({0, 0}, 1, grid, 0, 0), "EXITING! 1BPP UnpackMods not yet implemented!");
}
