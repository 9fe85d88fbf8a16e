#include "transcode/pixels/transfer_curve.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "support/test_images.h"

using namespace moktexture;

TEST(TransferCurveTest, PowerIsRoundedOnce) {
    testimages::Random random(5);
    for (const float exponent : {0.41666666f, 2.4f}) {
        for (int i = 0; i < 200000; ++i) {
            // All positive floats in turn with those from 0 to 2.
            const float base = i % 2 == 0 ? std::bit_cast<float>(1 + random.below(0x7F7FFFFF))
                                          : static_cast<float>(random.next()) * 0x1p-31f + 0x1p-30f;
            const double exact = std::pow(static_cast<double>(base), static_cast<double>(exponent));
            const auto rounded = static_cast<double>(fixedPower(base, exponent));
            const bool isHuge = exact > static_cast<double>(std::numeric_limits<float>::max());
            if (exact < static_cast<double>(std::numeric_limits<float>::min())) continue;
            ASSERT_TRUE(isHuge ? std::isinf(rounded) : std::abs(rounded - exact) <= exact * 0x1p-24 * (1.0 + 1e-6)) << base;
        }
    }
    EXPECT_TRUE(std::isnan(fixedPower(std::numeric_limits<float>::quiet_NaN(), 2.4f)));
    EXPECT_TRUE(std::isinf(fixedPower(std::numeric_limits<float>::infinity(), 0.41666666f)));
    EXPECT_EQ(fixedPower(1.0f, 2.4f), 1.0f);
}

TEST(TransferCurveTest, SegmentsMeetAtTheThresholds) {
    EXPECT_EQ(linearToSRGB(0.00304f), 0.00304f * 12.92f);
    EXPECT_EQ(sRGBToLinear(0.03928f), 0.03928f / 12.92f);
    EXPECT_NEAR(linearToSRGB(std::nextafter(0.00304f, 1.0f)), 0.03874f, 1e-5f);
    EXPECT_NEAR(sRGBToLinear(std::nextafter(0.03928f, 1.0f)), 0.00308f, 1e-5f);
    EXPECT_EQ(linearToSRGB(-2.0f), -2.0f * 12.92f);
}

TEST(TransferCurveTest, GivesTheSameBitsEverywhere) {
    std::vector<std::uint8_t> bytes;
    for (const TransferCurve curve : {linearToSRGB, sRGBToLinear}) {
        for (int i = 0; i <= 65535; ++i) {
            const auto bits = std::bit_cast<std::uint32_t>(curve(static_cast<float>(i) / 65535.0f));
            for (int shift = 0; shift < 32; shift += 8)
                bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
        }
    }
    EXPECT_EQ(testimages::digest(bytes), 12474420253858761967u);
}
