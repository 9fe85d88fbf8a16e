#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "moktc/fast/colour_fit.h"
#include "moktc/fast/fast_kernels.h"

using namespace moktexture::moktc;

namespace {

constexpr std::uint32_t grey(std::uint32_t value) {
    return value * 0x01010101u;
}

}  // namespace

TEST(MOKTCColourFit, MovesColoursByTheRuleOfTheBlock) {
    // Means over the block, and colours before and after, are alike in all four channels.
    // clang-format off
    const struct { float t, t2, e, et, threshold; std::uint32_t oldA, oldB, newA, newB; const char* what; } cases[] = {
        // t     t*t      e       e*t    threshold  old A, B    new A, B
        {  0.5f, 0.3f,    2.75f,  1.0f,  32.0f,     10,  20,    10,  20,  "residual below the threshold"},
        {  0.0f, 0.0f,    4.0f,   0.0f,  64.0f,     10,  20,    14,  17,  "residual at the threshold"},
        {  0.5f, 0.375f,  10.0f,  7.5f,  32.0f,     50,  50,    50,  70,  "line with slope 2.5 / 0.125"},
        {  0.5f, 0.3125f, 0.0f,   20.0f, 0.0f,      120, 50,    20,  150, "correction limited to 100"},
        {  0.5f, 0.375f,  40.0f,  20.0f, 0.0f,      250, 230,   255, 255, "colours limited to 255"},
        {  0.5f, 0.25f,   40.0f,  20.0f, 32.0f,     100, 100,   120, 120, "equal weights share the residual"},
        {  0.5f, 0.25f,   8.0f,   4.0f,  32.0f,     100, 140,   114, 134, "equal weights draw the colours together"},
        {  0.5f, 0.25f,   100.0f, 50.0f, 32.0f,     240, 100,   228, 176, "equal weights limit first"},
        {  0.0f, 0.0f,    19.5f,  0.0f,  32.0f,     100, 120,   119, 120, "equal weights keep a difference below 1"}};
    // clang-format on
    for (const auto& c : cases) {
        const float e = c.e * 16, et = c.et * 16;
        const ResidualSums sums = {c.t * 16, c.t2 * 16, {e, e, e, e}, {et, et, et, et}};
        const RGBAPair fitted = fitColours(sums, {16, c.threshold}, {grey(c.oldA), grey(c.oldB)});
        EXPECT_EQ(fitted.a, grey(c.newA)) << c.what;
        EXPECT_EQ(fitted.b, grey(c.newB)) << c.what;
    }
}

TEST(MOKTCModulationEstimate, UsesNeighboursInsideTheBlockOnly) {
    // Weights of the samples; a dot has no sample.
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
        {8, 6, 3, 3, 5, 4, 0, 4,    // mode 1
         5, 8, 4, 0, 4, 8, 6, 8,
         0, 3, 5, 4, 3, 6, 8, 8,
         0, 0, 4, 8, 5, 5, 7, 8},
        {8, 10, 3, 2, 5, 10, 0, 10, // mode 2
         5, 8, 5, 0, 5, 8, 5, 8,
         0, 5, 5, 5, 3, 7, 8, 9,
         2, 0, 7, 8, 5, 5, 10, 8},
        {8, 6, 3, 4, 5, 3, 0, 1,    // mode 3
         9, 8, 4, 0, 4, 8, 8, 8,
         0, 3, 5, 4, 3, 6, 8, 9,
         1, 0, 4, 8, 7, 5, 7, 8}};
    // clang-format on
    for (std::uint32_t mode = 1; mode <= 3; ++mode) {
        std::array<std::uint8_t, blockArea2bpp> weights;
        expandModulation(block, mode, weights.data());
        EXPECT_EQ(weights, expected[mode - 1]) << "mode " << mode;
    }
    std::array<std::uint8_t, blockArea2bpp> weights;
    expandModulation(block, 4, weights.data());
    EXPECT_EQ(weights[13], 255);
}
