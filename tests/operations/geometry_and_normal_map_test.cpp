#include <array>

#include "operation_textures.h"

using namespace operationtextures;

namespace {

using Position = std::array<std::uint32_t, 3>;
/// Where a pixel moves, given its position and that position counted from the far ends.
using Motion = Position (*)(Position p, Position mirrored);

/// Compares every pixel with that at its new position, in all subresources that are left.
template <typename T>
void expectMoved(const CMOKTexture& before, const CMOKTexture& after, Motion motion) {
    for (std::uint32_t i = 0; i < after.getNumMIPLevels() * 4; ++i) {
        const std::uint32_t level = i / 4, layer = i / 2 % 2, face = i % 2;
        const std::uint32_t width = before.getWidth(level), height = before.getHeight(level), depth = before.getDepth(level);
        const auto from = elementsOf<T>(before, static_cast<int>(level), layer, face);
        const auto to = elementsOf<T>(after, static_cast<int>(level), layer, face);
        for (std::uint32_t n = 0; n < from.size() / 4; ++n) {
            const Position p = {n % width, n / width % height, n / width / height};
            const auto [x, y, z] = motion(p, {width - 1 - p[0], height - 1 - p[1], depth - 1 - p[2]});
            const T* const moved = &to[((z * after.getHeight(level) + y) * after.getWidth(level) + x) * 4];
            ASSERT_EQ(std::memcmp(&from[n * 4], moved, 4 * sizeof(T)), 0) << "level " << level << " pixel " << n;
        }
    }
}

TEST(FlipAndRotate90, MoveThePixelsOfEverySubresource) {
    // clang-format off
    const std::pair<bool (*)(CMOKTexture& t), Motion> operations[] = {
        // operation                                                      new position
        {[](CMOKTexture& t) { return Flip(t, eAxisX); }, [](Position p, Position m) { return Position{m[0], p[1], p[2]}; }},
        {[](CMOKTexture& t) { return Flip(t, eAxisY); }, [](Position p, Position m) { return Position{p[0], m[1], p[2]}; }},
        {[](CMOKTexture& t) { return Flip(t, eAxisZ); }, [](Position p, Position m) { return Position{p[0], p[1], m[2]}; }},
        {[](CMOKTexture& t) { return Flip(t, static_cast<EMOKTAxis>(3)); }, [](Position p, Position) { return p; }},
        {[](CMOKTexture& t) { return Rotate90(t, eAxisZ, true); }, [](Position p, Position m) { return Position{m[1], p[0], p[2]}; }},
        {[](CMOKTexture& t) { return Rotate90(t, eAxisZ, false); }, [](Position p, Position m) { return Position{p[1], m[0], p[2]}; }}};
    // clang-format on
    forEachElementType([&]<typename T>(T) {
        const CMOKTexture before = randomTexture<T>({37, 18, 5, 4, 2, 2});
        for (const auto& [operate, motion] : operations) {
            CMOKTexture texture = before;
            ASSERT_TRUE(operate(texture));
            ASSERT_EQ(texture.getNumMIPLevels(), 4u);
            expectMoved<T>(before, texture, motion);
        }
    });
}

TEST(Rotate90, AboutOtherAxesChangesTheHeaderAndZeroesThePixels) {
    // clang-format off
    const std::tuple<EMOKTAxis, bool, std::vector<std::uint32_t>> rows[] = {
        // axis, result, new dimensions of 5 by 3 by 2
        {eAxisX, true, {5, 2, 3}}, {eAxisY, true, {5, 5, 2}}, {static_cast<EMOKTAxis>(3), false, {5, 3, 2}}};
    // clang-format on
    for (const auto& [axis, result, size] : rows) {
        CMOKTexture texture = randomTexture<std::uint8_t>({5, 3, 2, 3, 2, 2});
        EXPECT_EQ(Rotate90(texture, axis, true), result);
        EXPECT_EQ((std::vector{texture.getWidth(), texture.getHeight(), texture.getDepth()}), size);
        EXPECT_TRUE(isAllZero(texture));
    }
}

TEST(Border, MirrorsRowsAndColumnsButNotSlices) {
    // clang-format off
    const std::tuple<EMOKTAxis, unsigned int, std::vector<double>> rows[] = {
        // axis, border, result for the pixels 1 2 3 along that axis
        {eAxisX, 1, {1, 1, 2, 3, 3}}, {eAxisX, 2, {2, 1, 1, 2, 3, 3, 2}}, {eAxisX, 4, {0, 3, 2, 1, 1, 2, 3, 3, 2, 1, 1}},
        {eAxisY, 2, {2, 1, 1, 2, 3, 3, 2}}, {eAxisY, 4, {0, 3, 2, 1, 1, 2, 3, 3, 2, 1, 1}}, {eAxisZ, 1, {0, 1, 2, 3, 0}},
        {eAxisZ, 2, {0, 2, 1, 0, 3, 0, 0}}, {eAxisZ, 3, {0, 3, 2, 0, 0, 3, 0, 0, 0}}, {eAxisZ, 4, {0, 0, 3, 0, 0, 0, 3, 0, 0, 0, 0}}};
    // clang-format on
    forEachElementType([&rows]<typename T>(T) {
        for (const auto& [axis, border, expected] : rows) {
            Position size = {1, 1, 1}, margin = {0, 0, 0};
            size[axis] = 3, margin[axis] = border;
            CMOKTexture texture = textureOf<T>({size[0], size[1], size[2]}, uniformPixels<T>({1, 2, 3}));
            ASSERT_TRUE(Border(texture, margin[0], margin[1], margin[2]));
            EXPECT_EQ(elementsOf<T>(texture), uniformPixels<T>(expected)) << axis << ' ' << border;
        }
    });
}

TEST(Border, MirrorsCornersInBothDirections) {
    CMOKTexture texture = textureOf<std::uint8_t>({2, 2, 1}, uniformPixels<std::uint8_t>({1, 2, 3, 4}));
    ASSERT_TRUE(Border(texture, 1, 1, 0));
    EXPECT_EQ(elementsOf<std::uint8_t>(texture), uniformPixels<std::uint8_t>({1, 1, 2, 2, 1, 1, 2, 2, 3, 3, 4, 4, 3, 3, 4, 4}));
}

TEST(Border, KeepsTheTopLevelsAndReplacesAnEarlierBorder) {
    const CMOKTexture before = randomTexture<std::uint16_t>({6, 4, 1, 3, 2, 2});
    CMOKTexture texture = before;
    ASSERT_TRUE(Border(texture, 9, 9, 0));
    ASSERT_TRUE(Border(texture, 1, 2, 0));
    unsigned int x, y, z;
    texture.getBorder(x, y, z);
    EXPECT_EQ((std::vector{x, y, z, texture.getNumMIPLevels(), texture.getWidth()}), (std::vector{1u, 2u, 0u, 1u, 26u}));
    expectMoved<std::uint16_t>(before, texture, [](Position p, Position) { return Position{p[0] + 10, p[1] + 11, p[2]}; });
}

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
            ASSERT_TRUE(GenerateNormalMap(texture, 0.75f * static_cast<float>(sign), "hzyx"));
            const std::vector<float> normals = elementsOf<float>(texture);
            for (std::size_t i = 0; i < expected.size(); ++i)
                ASSERT_FLOAT_EQ(normals[i], expected[i]) << i;
            EXPECT_EQ(normals[expected.size() + 1], 1.0f);  // the next level has heights of its own, all 0
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
    CMOKTexture texture = randomTexture<std::uint16_t>({4, 3, 2, 2, 2, 1});
    EXPECT_FALSE(GenerateNormalMap(texture, 0.0f, "xy"));
    EXPECT_TRUE(isAllZero(texture));
    EXPECT_EQ(texture.getChannelType(), eVarFloat);
    EXPECT_TRUE(texture.getBumpMapOrder() == "xy");
}

}  // namespace
