#include <tuple>

#include "image_operations.h"
#include "operation_textures.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

constexpr EMOKTAxis unknownAxis = static_cast<EMOKTAxis>(3);
struct Position {
    std::uint32_t x, y, z;
};

/// Compares every pixel with that at the place where `place(position, size)` puts it, in all pieces that are left.
template <typename T, typename Place>
void expectMoved(const CMOKTexture& before, const CMOKTexture& after, Place place) {
    for (std::uint32_t i = 0; i < after.getNumMIPLevels() * 4; ++i) {
        const std::uint32_t level = i / 4, member = i / 2 % 2, face = i % 2;
        const Position size = {before.getWidth(level), before.getHeight(level), before.getDepth(level)};
        const std::vector<T> from = piece<T>(before, level, member, face), to = piece<T>(after, level, member, face);
        for (std::uint32_t n = 0; n < from.size() / 4; ++n) {
            const Position target = place(Position{n % size.x, n / size.x % size.y, n / size.x / size.y}, size);
            const std::size_t at = (std::size_t{target.z} * after.getHeight(level) + target.y) * after.getWidth(level) + target.x;
            ASSERT_EQ(std::memcmp(&from[n * 4], &to[at * 4], 4 * sizeof(T)), 0) << "level " << level << " pixel " << n;
        }
    }
}

/// The first four are Flip()'s axes, the others Rotate90() about Z, forward and back.
enum Motion : unsigned int { flipX, flipY, flipZ, flipUnknown, turnForward, turnBack };

Position moved(Motion motion, Position p, Position size) {
    const Position mirrored = {size.x - 1 - p.x, size.y - 1 - p.y, size.z - 1 - p.z};
    const Position places[] = {{mirrored.x, p.y, p.z}, {p.x, mirrored.y, p.z}, {p.x, p.y, mirrored.z}, p,
                               {mirrored.y, p.x, p.z}, {p.y, mirrored.x, p.z}};
    return places[motion];
}

TEST(FlipAndRotate90, MoveThePixelsOfEveryPiece) {
    forEachElementType([]<typename T>(T) {
        const CMOKTexture before = randomTexture<T>({37, 18, 5, 4, 2, 2});
        for (const Motion motion : {flipX, flipY, flipZ, flipUnknown, turnForward, turnBack}) {
            CMOKTexture texture = before;
            ASSERT_TRUE(motion < turnForward ? Flip(texture, static_cast<EMOKTAxis>(motion))
                                             : Rotate90(texture, eAxisZ, motion == turnForward));
            ASSERT_EQ(texture.getNumMIPLevels(), 4u);
            expectMoved<T>(before, texture, [motion](Position p, Position size) { return moved(motion, p, size); });
        }
    });
}

TEST(Rotate90, AboutOtherAxesChangesTheHeaderAndZeroesThePixels) {
    const std::tuple<EMOKTAxis, bool, Position> rows[] = {
        {eAxisX, true, {5, 2, 3}}, {eAxisY, true, {5, 5, 2}}, {unknownAxis, false, {5, 3, 2}}};
    forEachElementType([&rows]<typename T>(T) {
        for (const auto& [axis, result, size] : rows) {
            CMOKTexture texture = randomTexture<T>({5, 3, 2, 3, 2, 2});
            EXPECT_EQ(Rotate90(texture, axis, true), result);
            const std::vector<std::uint32_t> sizes = {texture.getWidth(), texture.getHeight(), texture.getDepth()};
            EXPECT_EQ(sizes, (std::vector{size.x, size.y, size.z}));
            const std::vector<T> pixels = elementsOf<T>(texture);
            EXPECT_EQ(pixels, std::vector<T>(pixels.size(), T{0}));
        }
    });
}

TEST(Border, MirrorsRowsAndColumnsButNotSlices) {
    // Axis, border, and what becomes of pixels 1 2 3 along that axis.
    const std::tuple<EMOKTAxis, unsigned int, std::vector<int>> rows[] = {
        {eAxisX, 1, {1, 1, 2, 3, 3}},
        {eAxisX, 2, {2, 1, 1, 2, 3, 3, 2}},
        {eAxisX, 4, {0, 3, 2, 1, 1, 2, 3, 3, 2, 1, 1}},
        {eAxisY, 2, {2, 1, 1, 2, 3, 3, 2}},
        {eAxisY, 4, {0, 3, 2, 1, 1, 2, 3, 3, 2, 1, 1}},
        {eAxisZ, 1, {0, 1, 2, 3, 0}},
        {eAxisZ, 2, {0, 2, 1, 0, 3, 0, 0}},
        {eAxisZ, 3, {0, 3, 2, 0, 0, 3, 0, 0, 0}},
        {eAxisZ, 4, {0, 0, 3, 0, 0, 0, 3, 0, 0, 0, 0}},
    };
    forEachElementType([&rows]<typename T>(T) {
        for (const auto& [axis, border, expected] : rows) {
            const auto along = [axis = axis](std::uint32_t size, std::uint32_t other) {
                return Shape{axis == eAxisX ? size : other, axis == eAxisY ? size : other, axis == eAxisZ ? size : other};
            };
            CMOKTexture texture = textureOf<T>(along(3, 1), alikePixels<T>(std::vector{1, 2, 3}));
            const Shape margin = along(border, 0);
            ASSERT_TRUE(Border(texture, margin.width, margin.height, margin.depth));
            EXPECT_EQ(elementsOf<T>(texture), alikePixels<T>(expected)) << axis << ' ' << border;
        }
        CMOKTexture volume = textureOf<T>({2, 2, 2}, alikePixels<T>(std::vector{1, 2, 3, 4, 5, 6, 7, 8}));
        ASSERT_TRUE(Border(volume, 1, 1, 1));
        const std::vector<int> expected = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 2, 2, 1, 1,
                                           2, 2, 3, 3, 4, 4, 3, 3, 4, 4, 5, 5, 6, 6, 5, 5, 6, 6, 7, 7, 8, 8,
                                           7, 7, 8, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
        EXPECT_EQ(elementsOf<T>(volume), alikePixels<T>(expected));
    });
}

TEST(Border, TakesTheTopLevelsAndReplacesAnEarlierBorder) {
    const CMOKTexture before = randomTexture<std::uint16_t>({6, 4, 1, 3, 2, 2});
    CMOKTexture texture = before;
    ASSERT_TRUE(Border(texture, 9, 9, 0) && Border(texture, 1, 2, 0));
    unsigned int x, y, z;
    texture.getBorder(x, y, z);
    EXPECT_EQ((std::vector{x, y, z, texture.getNumMIPLevels(), texture.getWidth()}), (std::vector{1u, 2u, 0u, 1u, 26u}));
    expectMoved<std::uint16_t>(before, texture, [](Position p, Position) { return Position{p.x + 10, p.y + 11, p.z}; });
}

}  // namespace
