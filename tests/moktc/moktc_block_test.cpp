#include <gtest/gtest.h>

#include <string>

#include "moktc_levels.h"
#include "reference/modulation_grid.h"

using namespace moktexture::moktc;
using moktclevels::decodeAmongEquals;

namespace {

constexpr std::uint32_t blackAndWhite = 0xFFFF8000;  // A opaque black, B opaque white, mode bit 0, first generation

/// A block's weights as digits, in raster order, read from a blend of black and white.
std::string weightsOf(const Block& block, Rate rate) {
    std::string digits;
    for (const std::uint32_t pixel : decodeAmongEquals(block, {rate, Generation::first}))
        digits += static_cast<char>('0' + ((pixel & 255) * 8 + 254) / 255);
    return digits;
}

}  // namespace

TEST(MOKTCBlock, HoldsTheColoursOfBothGenerations) {
    // clang-format off
    // Colours are RGBA8, red in the lowest byte.
    const struct { std::uint32_t word, a[2], b[2]; } cases[] = {
        // colour word  A first     A second      B first     B second
        {  0xFFFFFFFE, {0xFFFFFFFF, 0xFFFFFFFF}, {0xFFFFFFFF, 0xFFFFFFFF}},
        {  0x0000FC00, {0xFF0000FF, 0xEE0000CE}, {0x00000000, 0x11000000}},  // bit 15: A is opaque, or the block is flat
        {  0x83E07C1E, {0xEEFF10CE, 0xFFFF00FF}, {0xFF00FF00, 0xFF00FF00}},  // bit 31: B is opaque, or both are
        {  0x80008002, {0xFF100000, 0xFF100000}, {0xFF000000, 0xFF000000}},  // opaque A has 4 bits of blue
        {  0x80008010, {0xFF8C0000, 0xFF8C0000}, {0xFF000000, 0xFF000000}},
        {  0x80410000, {0x00000000, 0xFF000000}, {0xFF081000, 0xFF081000}},
        {  0x5A5A0000, {0x00000000, 0x00000000}, {0xAAAD52AD, 0xBBAD52AD}},  // low bit of B's alpha
        {  0x00005A5A, {0xAAB552AD, 0xAAB552AD}, {0x00000000, 0x11000000}}}; // translucent A has 3 bits of blue
    // clang-format on
    for (const auto& row : cases)
        for (const BlockVariant& variant : allVariants) {
            const std::uint32_t secondPixelIsB = variant.is2bpp() ? 2 : 12;
            const auto pixels = decodeAmongEquals({secondPixelIsB, row.word}, variant);
            EXPECT_EQ(pixels[0], row.a[variant.isSecondGeneration()]) << std::hex << row.word << ' ' << variant;
            EXPECT_EQ(pixels[1], row.b[variant.isSecondGeneration()]) << std::hex << row.word << ' ' << variant;
        }
}

TEST(MOKTCBlock, ModulationWordGivesTheWeights) {
    // clang-format off
    const struct { Rate rate; bool mode; std::uint32_t word; std::string weights; } cases[] = {
        // rate            mode   word        weights of rows 0 to 3
        {  Rate::fourBpp,  false, 0xE4E41BE4, "0358" "8530" "0358" "0358"},
        {  Rate::fourBpp,  true,  0xE4E41BE4, "0448" "8440" "0448" "0448"},
        {  Rate::twoBpp,   false, 0x80FF1001, "80000000" "00008000" "88888888" "00000008"},
        {  Rate::twoBpp,   true,  0x00000002, "82000002" "20000000" "00000000" "20000000"},  // average; sample 0 is 3, not 2
        {  Rate::twoBpp,   true,  0x00000003, "84000004" "00000000" "00000000" "00000000"},  // horizontal
        {  Rate::twoBpp,   true,  0x00100003, "80000000" "40000000" "00000000" "40000000"},  // vertical; sample 10 loses its low bit
        {  Rate::twoBpp,   true,  0x00300001, "00000000" "00004000" "00008000" "00004000"},
        {  Rate::twoBpp,   true,  0x00200001, "00000000" "00000000" "00048400" "00000000"},
        {  Rate::twoBpp,   true,  0x00200000, "00000000" "00001000" "00015100" "00001000"},
        {  Rate::twoBpp,   true,  0x55555550, "02023332" "23233333" "33333333" "23233333"}};
    // clang-format on
    for (const auto& row : cases)
        EXPECT_EQ(weightsOf({row.word, blackAndWhite | (row.mode ? modeBit : 0)}, row.rate), row.weights) << std::hex << row.word;
}

TEST(MOKTCBlock, PackedColourKeepsTheHighBitsOfEachChannel) {
    // clang-format off
    const struct { std::uint32_t a, b, colours; } cases[] = {
        // A          B           colour word
        {  0xFF000000, 0xFF000000, 0x80008000},
        {  0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFE},
        {  0xFFF008F7, 0x00000000, 0x0000F83E},   // opaque A: blue keeps 4 bits
        {  0xFEFF0F80, 0xFF07F808, 0x87E0780E},   // translucent A: alpha 3, red and green 4, blue 3 bits
        {  0x00000000, 0xDFF0801F, 0x618F0000}};  // translucent B: blue keeps 4 bits
    // clang-format on
    for (const auto& row : cases) {
        Block block = {0x12345678, 0};
        packColourA(block, row.a);
        packColourB(block, row.b);
        EXPECT_EQ(block.colours, row.colours) << std::hex << row.a << ' ' << row.b;
        block.colours = 0xFFFFFFFF;
        packColourB(block, row.b);
        packColourA(block, row.a);
        EXPECT_EQ(block.colours, row.colours | modeBit) << std::hex << row.a << ' ' << row.b;
    }
}

TEST(MOKTCBlockDeathTest, UnpackModsAbortsAtOneBitPerPixel) {
    ModulationGrid grid;
    EXPECT_DEATH_IF_SUPPORTED(UnpackMods({0, 0}, 1, grid, 0, 0), "EXITING! 1BPP UnpackMods not yet implemented!");
}
