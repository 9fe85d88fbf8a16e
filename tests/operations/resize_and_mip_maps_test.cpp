#include <tuple>

#include "image_operations.h"
#include "operation_textures.h"
#include "reference/resample_reference.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

constexpr EResizeMode unknownMode = static_cast<EResizeMode>(3);

TEST(Resize, ResamplesTheTopLevelOfEverySurfaceAndDropsTheOthers) {
    forEachElementType([]<typename T>(T) {
        CMOKTexture texture = randomTexture<T>({9, 7, 2, 3, 2, 6});
        texture.setBumpMap(2.0f, CMOKTString("xyz"));
        const std::vector<T> before = elementsAt<T>(texture, 0, 1, 5);
        ASSERT_TRUE(Resize(texture, 5, 8, 3, eResizeLinear));
        EXPECT_EQ(texture.getNumMIPLevels(), 1u);
        EXPECT_EQ(texture.getBumpMapScale(), 2.0f);
        std::vector<T> expected(std::size_t{4} * 5 * 8 * 3);
        referenceResampleLevel(LevelView<const T>{before.data(), {9, 7, 2}}, LevelView<T>{expected.data(), {5, 8, 3}},
                               eResizeLinear);
        EXPECT_EQ(elementsAt<T>(texture, 0, 1, 5), expected);
    });
}

TEST(Resize, ScalesTheBorderAndStoresOneWhereThereIsNone) {
    CMOKTexture texture = randomTexture<std::uint8_t>({4, 2, 3, 1, 1, 1});
    EXPECT_TRUE(Resize(texture, 4, 2, 4, eResizeNearest));
    EXPECT_TRUE(texture.hasMetaData(0x034B4F4D, 4));
    texture.setBorder(2, 1, 3);
    ASSERT_TRUE(Resize(texture, 8, 3, 3, eResizeNearest));
    unsigned int x, y, z;
    texture.getBorder(x, y, z);
    EXPECT_EQ((std::vector{x, y, z}), (std::vector{4u, 1u, 2u}));  // 3 x 1 / 2 and 3 x 3 / 4, truncated
}

TEST(GenerateMIPMaps, MakesEachLevelFromTheOneAboveIt) {
    const std::vector<double> top = {8, 16, 24, 32, 40, 48, 56, 64};
    const std::pair<EResizeMode, std::vector<std::vector<double>>> rows[] = {
        {eResizeNearest, {top, {8, 24, 40, 56}, {8, 40}, {8}}}, {eResizeLinear, {top, {12, 28, 44, 60}, {20, 52}, {36}}}};
    forEachElementType([&]<typename T>(T) {
        for (const auto& [filter, levels] : rows)
            for (const Shape& shape : {Shape{8, 1, 1, 2, 2, 1}, Shape{1, 8}, Shape{1, 1, 8}}) {
                CMOKTexture texture = textureOf<T>(shape, uniformPixels<T>(top));
                ASSERT_TRUE(GenerateMIPMaps(texture, filter));
                for (int n = 0; n < 4; ++n)
                    EXPECT_EQ(elementsAt<T>(texture, n), uniformPixels<T>(levels[static_cast<std::size_t>(n)])) << "level " << n;
            }
    });
}

TEST(GenerateMIPMaps, CountsLevels) {
    // clang-format off
    const std::tuple<Shape, unsigned int, bool, std::uint32_t> rows[] = {
        // shape, levels asked for, result, levels then
        {Shape{256, 64, 1}, allMIPLevels, true, 9}, {Shape{1, 1, 1}, allMIPLevels, true, 1}, {Shape{255, 3, 1}, allMIPLevels, true, 8},
        {Shape{2, 1, 9}, allMIPLevels, true, 4}, {Shape{8, 8, 1}, 1, true, 1}, {Shape{8, 8, 1}, 6, true, 6},
        {Shape{8, 8, 1}, 255, true, 255}, {Shape{8, 8, 1}, 256, false, 1}, {Shape{8, 8, 1}, 0, false, 1},
        {Shape{8, 8, 1}, 0xFFFFFFFE, false, 1}};  // a number, not the full chain
    // clang-format on
    for (const auto& [shape, asked, result, levels] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>(shape, {});
        EXPECT_EQ(GenerateMIPMaps(texture, eResizeLinear, asked), result) << asked;
        EXPECT_EQ(texture.getNumMIPLevels(), levels) << asked;
    }
}

TEST(GenerateMIPMaps, LeavesAChainOfTheWantedLengthAlone) {
    CMOKTexture texture = randomTexture<std::uint16_t>({4, 4, 1, 3, 1, 1});
    const std::vector<std::uint16_t> stale = elementsOf<std::uint16_t>(texture);
    EXPECT_TRUE(GenerateMIPMaps(texture, eResizeCubic));
    EXPECT_TRUE(GenerateMIPMaps(texture, unknownMode, 3));
    EXPECT_TRUE(Resize(texture, 4, 4, 1, eResizeCubic));
    EXPECT_EQ(elementsOf<std::uint16_t>(texture), stale);
    EXPECT_TRUE(Resize(texture, 2, 3, 1, unknownMode));
    EXPECT_TRUE(isAllZero(texture));
}

TEST(ColourMIPMaps, TintsByTheMeanInTheElementsOwnArithmetic) {
    const auto expectTints = []<typename T>(T red, T green, T blue, T g) {
        CMOKTexture texture = textureOf<T>({128, 1, 1, 8}, repeatedPixel<T>({red, green, blue, 7}, 255));
        ASSERT_TRUE(ColourMIPMaps(texture));
        const T o = 0;
        const std::vector<T> expected[8] = {{red, green, blue, 7}, {o, g, o, 7}, {o, o, g, 7}, {o, g, g, 7},
                                            {g, o, g, 7},          {g, g, o, 7}, {g, o, o, 7}, {o, g, o, 7}};
        for (int level = 0; level < 8; ++level)
            EXPECT_EQ(elementsAt<T>(texture, level), repeatedPixel(expected[level], 128u >> level)) << level;
    };
    expectTints.operator()<std::uint8_t>(255, 255, 254, 254);
    expectTints.operator()<std::uint16_t>(65535, 65535, 65535, 65535);
    // A third of the wrapped sum, as a float.
    expectTints.operator()<std::uint32_t>(0x80000000, 0x80000000, 0x80000000, 715827904);
    expectTints(1.0f, 16777216.0f, -16777216.0f, 0.0f);
    expectTints(1.0f, 2.0f, 6.0f, 3.0f);
}

}  // namespace
