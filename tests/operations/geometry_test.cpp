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

TEST(Flip, MirrorsEveryPieceAlongItsAxis) {
    forEachElementType([]<typename T>(T) {
        const CMOKTexture before = randomTexture<T>({7, 6, 5, 3, 2, 2});
        for (const EMOKTAxis axis : {eAxisX, eAxisY, eAxisZ, unknownAxis}) {
            CMOKTexture texture = before;
            EXPECT_TRUE(Flip(texture, axis));
            expectMoved<T>(before, texture, [axis](Position p, Position size) {
                return Position{axis == eAxisX ? size.x - 1 - p.x : p.x, axis == eAxisY ? size.y - 1 - p.y : p.y,
                                axis == eAxisZ ? size.z - 1 - p.z : p.z};
            });
        }
    });
}

TEST(Rotate90, TurnsEveryPieceAboutZ) {
    forEachElementType([]<typename T>(T) {
        const CMOKTexture before = randomTexture<T>({37, 18, 5, 4, 2, 2});
        for (const bool forward : {true, false}) {
            CMOKTexture texture = before;
            ASSERT_TRUE(Rotate90(texture, eAxisZ, forward));
            ASSERT_TRUE(texture.getWidth() == 18 && texture.getHeight() == 37 && texture.getNumMIPLevels() == 4);
            expectMoved<T>(before, texture, [forward](Position p, Position size) {
                return forward ? Position{size.y - 1 - p.y, p.x, p.z} : Position{p.y, size.x - 1 - p.x, p.z};
            });
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
    CMOKTexture wide = randomTexture<std::uint8_t>({16384, 1, 1});
    EXPECT_FALSE(Rotate90(wide, eAxisY, true));
    EXPECT_EQ(wide.getHeight(), 1u);
}

/// A texture of one row, column or stack whose pixels have one number for all elements.
template <typename T>
CMOKTexture line(const Shape& shape, const std::vector<int>& numbers) {
    std::vector<T> elements;
    for (int number : numbers)
        elements.insert(elements.end(), 4, static_cast<T>(number));
    return textureOf<T>(shape, elements);
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
            CMOKTexture texture = line<T>(along(3, 1), {1, 2, 3});
            const Shape margin = along(border, 0);
            ASSERT_TRUE(Border(texture, margin.width, margin.height, margin.depth));
            EXPECT_EQ(elementsOf<T>(texture), elementsOf<T>(line<T>(along(3 + 2 * border, 1), expected)))
                << axis << ' ' << border;
        }
        CMOKTexture volume = line<T>({2, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
        ASSERT_TRUE(Border(volume, 1, 1, 1));
        const std::vector<int> expected = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 2, 2, 1, 1,
                                           2, 2, 3, 3, 4, 4, 3, 3, 4, 4, 5, 5, 6, 6, 5, 5, 6, 6, 7, 7, 8, 8,
                                           7, 7, 8, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
        EXPECT_EQ(elementsOf<T>(volume), elementsOf<T>(line<T>({4, 4, 4}, expected)));
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

TEST(Border, DeclinesNoBorderAndRefusesSizesThatWrap) {
    CMOKTexture texture = randomTexture<std::uint8_t>({4, 3, 2, 2, 1, 1});
    const std::vector<std::uint8_t> before = elementsOf<std::uint8_t>(texture);
    EXPECT_TRUE(Border(texture, 0, 0, 0));
    for (const unsigned int border : {0x10000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_FALSE(Border(texture, border, 0, 0) || Border(texture, 0, border, 0) || Border(texture, 0, 0, border)) << border;
    EXPECT_TRUE(texture.getNumMIPLevels() == 2 && elementsOf<std::uint8_t>(texture) == before);
}

}  // namespace
