#include "image_operations.h"
#include "operation_textures.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

/// The pixel in order "hzyx" of a normal with slopes of -1, 0 or 1 times 0.75, at least one of which is 0. The length of
/// (0.75, 0, 1) is 1.25, of which the slope is 0.6.
std::vector<float> normal(int height, int slopeX, int slopeY) {
    const float z = slopeX == 0 && slopeY == 0 ? 1.0f : 0.9f;
    return {static_cast<float>(height), z, 0.5f + 0.3f * static_cast<float>(slopeY), 0.5f + 0.3f * static_cast<float>(slopeX)};
}

TEST(GenerateNormalMap, UsesTheSlopesOfEachLevelAndWrapsToSliceZero) {
    // Two slices with two rows of three pixels each. Columns wrap within their row. Above the first and below the last row of a
    // slice lies slice 0, whose two rows therefore have no slope in y.
    // clang-format off
    const struct { int heights[3], slopesX[3], slopesY[3]; } rows[] = {
        // heights, slopes in x, slopes in y
        {{1, 0, 0}, {0, 1, -1}, {0, 0, 0}}, {{0, 0, 1}, {1, -1, 0}, {0, 0, 0}},
        {{0, 0, 0}, {0, 0, 0}, {-1, -1, 0}}, {{1, 1, 1}, {0, 0, 0}, {-1, 0, 0}}};
    // clang-format on
    forEachElementType([&rows]<typename T>(T) {
        const T unit = std::is_same_v<T, float> ? T{1} : static_cast<T>(0xFFFFFFFF);
        for (const auto& [sign, width] : {std::pair{1, 3u}, {-1, 3u}, {1, 300u}, {-1, 300u}}) {
            std::vector<T> heights;
            std::vector<float> expected;
            for (std::uint32_t i = 0; i < 4 * width; ++i) {
                const auto& row = rows[i / width];
                const std::uint32_t x = i % width % 3;
                heights.insert(heights.end(), {row.heights[x] == 0 ? T{0} : unit, 5, 6, 7});
                std::ranges::copy(normal(row.heights[x], sign * row.slopesX[x], sign * row.slopesY[x]),
                                  std::back_inserter(expected));
            }
            CMOKTexture texture = textureOf<T>({width, 2, 2, 2}, heights);
            texture.setColourSpace(eColourSpaceSRGB);
            texture.setIsPreMultiplied(true);
            ASSERT_TRUE(GenerateNormalMap(texture, 0.75f * static_cast<float>(sign), "hzyx"));
            EXPECT_TRUE(texture.getPixelType() == PixelTypeRGBA32);
            EXPECT_EQ(texture.getChannelType(), eVarFloat);
            EXPECT_EQ(texture.getColourSpace(), eColourSpaceSRGB);
            EXPECT_TRUE(texture.isPreMultiplied());
            for (std::size_t i = 0; i < expected.size(); ++i)
                ASSERT_FLOAT_EQ(elementsAt<float>(texture)[i], expected[i]) << i;
            const std::vector<float> next = elementsAt<float>(texture, 1);
            EXPECT_EQ(std::vector<float>(next.begin(), next.begin() + 4), normal(0, 0, 0));
        }
    });
}

TEST(GenerateNormalMap, ArrangesChannelsByTheOrder) {
    const std::pair<const char*, std::vector<float>> rows[] = {
        // order, pixel of a flat surface at height 0.2
        {"xyzh", {0.5f, 0.5f, 1.0f, 0.2f}}, {"xzyh", {0.5f, 1.0f, 0.5f, 0.2f}},  {"", {1.0f, 1.0f, 1.0f, 1.0f}},
        {"hh", {1.0f, 0.2f, 1.0f, 1.0f}},   {"qHhxy", {1.0f, 1.0f, 0.2f, 0.5f}}, {"zzzzh", {1.0f, 1.0f, 1.0f, 1.0f}}};
    for (const auto& [order, expected] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>({}, {51, 1, 2, 3});
        EXPECT_TRUE(GenerateNormalMap(texture, 5.0f, order));
        EXPECT_EQ(elementsOf<float>(texture), expected) << order;
        EXPECT_TRUE(texture.getBumpMapOrder() == CMOKTString(order).left(4)) << order;
        EXPECT_EQ(texture.getBumpMapScale(), 5.0f);
    }
}

TEST(GenerateNormalMap, FailsForScaleZeroAndReplacesTheTexture) {
    for (const float scale : {0.0f, -0.0f}) {
        CMOKTexture texture = randomTexture<std::uint16_t>({4, 3, 2, 2, 2, 1});
        EXPECT_FALSE(GenerateNormalMap(texture, scale, "xy"));
        EXPECT_TRUE(isAllZero(texture));
        EXPECT_EQ(texture.getChannelType(), eVarFloat);
        EXPECT_TRUE(texture.getBumpMapOrder() == "xy");
    }
}

}  // namespace
