#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "moktc/block/block_packing.h"
#include "moktc/fast/MOKTCCompressor.h"
#include "moktc/fast/colour_fit.h"
#include "moktc/fast/modulation_estimate.h"

using namespace moktexture::moktc;

namespace {

constexpr std::uint32_t grey(std::uint32_t value) {
    return value * 0x01010101u;
}

}  // namespace

TEST(MOKTCColourFit, MovesColoursByTheRuleOfTheBlock) {
    struct Case {
        const char* what;
        float t, t2, e, et;  // means, alike in all four channels
        float goodEnough;
        std::uint32_t oldA, oldB, newA, newB;
    };
    // clang-format off
    const Case cases[] = {
        {"residual below the limit", 0.5f, 0.3f, 2.75f, 1.0f, 32.0f, 10, 20, 10, 20},
        {"residual at the limit", 0.0f, 0.0f, 4.0f, 0.0f, 64.0f, 10, 20, 14, 17},
        {"line", 0.5f, 0.375f, 10.0f, 7.5f, 32.0f, 50, 50, 50, 70},  // slope 2.5 / 0.125
        {"correction limited to 100", 0.5f, 0.3125f, 0.0f, 20.0f, 0.0f, 120, 50, 20, 150},
        {"colours limited to a byte", 0.5f, 0.375f, 40.0f, 20.0f, 0.0f, 250, 230, 255, 255},
        {"equal weights share the residual", 0.5f, 0.25f, 40.0f, 20.0f, 32.0f, 100, 100, 120, 120},
        {"equal weights draw colours together", 0.5f, 0.25f, 8.0f, 4.0f, 32.0f, 100, 140, 114, 134},
        {"equal weights limit first", 0.5f, 0.25f, 100.0f, 50.0f, 32.0f, 240, 100, 228, 176},
        {"equal weights keep a difference below 1", 0.0f, 0.0f, 19.5f, 0.0f, 32.0f, 100, 120, 119, 120}};
    // clang-format on
    for (const Case& c : cases) {
        const ResidualSums sums = {
            c.t * 16, c.t2 * 16, {c.e * 16, c.e * 16, c.e * 16, c.e * 16}, {c.et * 16, c.et * 16, c.et * 16, c.et * 16}};
        std::uint32_t a = grey(c.oldA), b = grey(c.oldB);
        fitColours(sums, 0.0625f, c.goodEnough, a, b);
        EXPECT_EQ(a, grey(c.newA)) << c.what << ": " << (a & 255);
        EXPECT_EQ(b, grey(c.newB)) << c.what << ": " << (b & 255);
    }
}

TEST(MOKTCModulationEstimate, LooksInsideTheBlockOnly) {
    // Eighths of the samples, by row; a dot has no sample.
    //   8 . 3 . 5 . 0 .
    //   . 8 . 0 . 8 . 8
    //   0 . 5 . 3 . 8 .
    //   . 0 . 8 . 5 . 8
    ModulationBlock2bpp block;
    const std::array<std::uint8_t, blockArea2bpp> samples = {3, 0, 1, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, 3, 0, 3,
                                                             0, 0, 2, 0, 1, 0, 3, 0, 0, 0, 0, 3, 0, 2, 0, 3};
    std::ranges::copy(samples, block.sampleIndices);
    // clang-format off
    const std::array<std::uint8_t, blockArea2bpp> expected[] = {
        {8, 6, 3, 3, 5, 4, 0, 4, 5, 8, 4, 0, 4, 8, 6, 8, 0, 3, 5, 4, 3, 6, 8, 8, 0, 0, 4, 8, 5, 5, 7, 8},
        {8, 10, 3, 2, 5, 10, 0, 10, 5, 8, 5, 0, 5, 8, 5, 8, 0, 5, 5, 5, 3, 7, 8, 9, 2, 0, 7, 8, 5, 5, 10, 8},
        {8, 6, 3, 4, 5, 3, 0, 1, 9, 8, 4, 0, 4, 8, 8, 8, 0, 3, 5, 4, 3, 6, 8, 9, 1, 0, 4, 8, 7, 5, 7, 8}};
    // clang-format on
    for (std::uint32_t mode = 1; mode <= 3; ++mode) {
        std::array<std::uint8_t, blockArea2bpp> eighths;
        expandModulation(block, mode, eighths.data());
        EXPECT_EQ(eighths, expected[mode - 1]) << "mode " << mode;
    }
    std::array<std::uint8_t, blockArea2bpp> eighths;
    expandModulation(block, 4, eighths.data());
    EXPECT_EQ(eighths[13], 255);
}

TEST(MOKTCColourWord, KeepsTheHighBitsOfEachColour) {
    // clang-format off
    const struct Case { std::uint32_t a, b, colours; } cases[] = {
        {0xFF000000, 0xFF000000, 0x80008000}, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFE},
        {0xFFF008F7, 0x00000000, 0x0000F83E},  // opaque A: blue keeps 4 bits
        {0xFEFF0F80, 0xFF07F808, 0x87E0780E},  // translucent A: alpha 3, red and green 4, blue 3 bits
        {0x00000000, 0xDFF0801F, 0x618F0000}};  // translucent B: blue keeps 4 bits
    // clang-format on
    for (const Case& c : cases) {
        Block block = {0x12345678, 0};
        packColourA(block, c.a);
        packColourB(block, c.b);
        EXPECT_EQ(block.colours, c.colours) << std::hex << c.a << ' ' << c.b << ' ' << block.colours;
        block.colours = 0xFFFFFFFF;
        packColourB(block, c.b);
        packColourA(block, c.a);
        EXPECT_EQ(block.colours, c.colours | modeBit);
    }
}
