#include <tuple>

#include "image_operations.h"
#include "operation_textures.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

struct Position {
    std::uint32_t x, y, z;
};
/// Where a pixel moves, given its position and that position counted from the far ends.
using Motion = Position (*)(Position p, Position mirrored);

/// Compares every pixel with that at its new position, in all subresources that are left.
template <typename T>
void expectMoved(const CMOKTexture& before, const CMOKTexture& after, Motion motion) {
    for (std::uint32_t i = 0; i < after.getNumMIPLevels() * 4; ++i) {
        const std::uint32_t level = i / 4, layer = i / 2 % 2, face = i % 2;
        const std::uint32_t width = before.getWidth(level), height = before.getHeight(level), depth = before.getDepth(level);
        const std::vector<T> from = elementsAt<T>(before, static_cast<int>(level), layer, face);
        const std::vector<T> to = elementsAt<T>(after, static_cast<int>(level), layer, face);
        for (std::uint32_t n = 0; n < from.size() / 4; ++n) {
            const Position p = {n % width, n / width % height, n / width / height};
            const Position target = motion(p, {width - 1 - p.x, height - 1 - p.y, depth - 1 - p.z});
            const std::size_t at = (std::size_t{target.z} * after.getHeight(level) + target.y) * after.getWidth(level) + target.x;
            ASSERT_EQ(std::memcmp(&from[n * 4], &to[at * 4], 4 * sizeof(T)), 0) << "level " << level << " pixel " << n;
        }
    }
}

TEST(FlipAndRotate90, MoveThePixelsOfEverySubresource) {
    // clang-format off
    const std::pair<bool (*)(CMOKTexture& t), Motion> operations[] = {
        // operation                                                      new position
        {[](CMOKTexture& t) { return Flip(t, eAxisX); }, [](Position p, Position m) { return Position{m.x, p.y, p.z}; }},
        {[](CMOKTexture& t) { return Flip(t, eAxisY); }, [](Position p, Position m) { return Position{p.x, m.y, p.z}; }},
        {[](CMOKTexture& t) { return Flip(t, eAxisZ); }, [](Position p, Position m) { return Position{p.x, p.y, m.z}; }},
        {[](CMOKTexture& t) { return Flip(t, static_cast<EMOKTAxis>(3)); }, [](Position p, Position) { return p; }},
        {[](CMOKTexture& t) { return Rotate90(t, eAxisZ, true); }, [](Position p, Position m) { return Position{m.y, p.x, p.z}; }},
        {[](CMOKTexture& t) { return Rotate90(t, eAxisZ, false); }, [](Position p, Position m) { return Position{p.y, m.x, p.z}; }}};
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
    const std::tuple<EMOKTAxis, bool, std::vector<std::uint32_t>> rows[] = {// axis, result, new dimensions of 5 by 3 by 2
                                                                            {eAxisX, true, {5, 2, 3}},
                                                                            {eAxisY, true, {5, 5, 2}},
                                                                            {static_cast<EMOKTAxis>(3), false, {5, 3, 2}}};
    forEachElementType([&rows]<typename T>(T) {
        for (const auto& [axis, result, size] : rows) {
            CMOKTexture texture = randomTexture<T>({5, 3, 2, 3, 2, 2});
            EXPECT_EQ(Rotate90(texture, axis, true), result);
            EXPECT_EQ((std::vector{texture.getWidth(), texture.getHeight(), texture.getDepth()}), size);
            EXPECT_TRUE(isAllZero(texture));
        }
    });
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
            const auto along = [axis = axis](std::uint32_t size, std::uint32_t other) {
                return Shape{axis == eAxisX ? size : other, axis == eAxisY ? size : other, axis == eAxisZ ? size : other};
            };
            CMOKTexture texture = textureOf<T>(along(3, 1), uniformPixels<T>({1, 2, 3}));
            const Shape margin = along(border, 0);
            ASSERT_TRUE(Border(texture, margin.width, margin.height, margin.depth));
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
    expectMoved<std::uint16_t>(before, texture, [](Position p, Position) { return Position{p.x + 10, p.y + 11, p.z}; });
}

}  // namespace
