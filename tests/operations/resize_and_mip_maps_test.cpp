#include <tuple>

#include "image_operations.h"
#include "operation_textures.h"
#include "operations/resample_level.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

constexpr EResizeMode unknownMode = static_cast<EResizeMode>(3);

TEST(Resize, ResamplesTheTopLevelOfEveryMemberAndFaceAndDropsTheOthers) {
    forEachElementType([]<typename T>(T) {
        CMOKTexture texture = randomTexture<T>({9, 7, 2, 3, 2, 6});
        texture.setBumpMap(2.0f, CMOKTString("xyz"));
        const CMOKTexture before = texture;
        ASSERT_TRUE(Resize(texture, 5, 8, 3, eResizeLinear));
        EXPECT_TRUE(texture.getNumMIPLevels() == 1 && texture.getBumpMapScale() == 2.0f);
        for (std::uint32_t surface = 0; surface < 12; ++surface) {
            std::vector<T> expected(std::size_t{4} * 5 * 8 * 3);
            resampleLevelPlain(piece<T>(before, 0, surface / 6, surface % 6).data(), expected.data(), 9, 7, 2, 5, 8, 3,
                               eResizeLinear);
            EXPECT_EQ(piece<T>(texture, 0, surface / 6, surface % 6), expected);
        }
    });
}

TEST(Resize, ScalesTheBorderAndMakesOneWhereThereIsNone) {
    CMOKTexture texture = randomTexture<std::uint8_t>({4, 2, 3, 1, 1, 1});
    ASSERT_TRUE(Resize(texture, 4, 2, 4, eResizeNearest));
    EXPECT_TRUE(texture.hasMetaData(0x034B4F4D, 4));
    texture.setBorder(2, 1, 3);
    ASSERT_TRUE(Resize(texture, 8, 3, 3, eResizeNearest));
    unsigned int x, y, z;
    texture.getBorder(x, y, z);
    EXPECT_EQ((std::vector{x, y, z}), (std::vector{4u, 1u, 2u}));  // 3 x 1 / 2 and 3 x 3 / 4, truncated
}

TEST(Resize, DeclinesEqualSizesRefusesBadOnesAndZeroesForUnknownModes) {
    CMOKTexture texture = randomTexture<std::uint16_t>({4, 4, 1, 3, 1, 1});
    const std::vector<std::uint16_t> before = elementsOf<std::uint16_t>(texture);
    EXPECT_TRUE(Resize(texture, 4, 4, 1, eResizeCubic));
    EXPECT_FALSE(Resize(texture, 0, 4, 1, eResizeCubic) || Resize(texture, 4, 0, 1, eResizeCubic) ||
                 Resize(texture, 4, 4, 0, eResizeCubic) || Resize(texture, 0x10000, 0x10000, 1, eResizeCubic));
    EXPECT_EQ(elementsOf<std::uint16_t>(texture), before);
    EXPECT_TRUE(Resize(texture, 2, 3, 1, unknownMode));
    EXPECT_EQ(elementsOf<std::uint16_t>(texture), std::vector<std::uint16_t>(2 * 3 * 4, 0));
}

TEST(GenerateMIPMaps, MakesEachLevelFromTheOneAboveIt) {
    const unsigned int sizes[5][3] = {{13, 6, 3}, {6, 3, 1}, {3, 1, 1}, {1, 1, 1}, {1, 1, 1}};
    forEachElementType([&sizes]<typename T>(T) {
        for (EResizeMode filter : {eResizeNearest, eResizeLinear, eResizeCubic}) {
            CMOKTexture texture = randomTexture<T>({13, 6, 3, 2, 2, 6});
            const CMOKTexture before = texture;
            ASSERT_TRUE(GenerateMIPMaps(texture, filter, 5));
            ASSERT_EQ(texture.getNumMIPLevels(), 5u);
            for (std::uint32_t surface = 0; surface < 12; ++surface) {
                std::vector<T> expected = piece<T>(before, 0, surface / 6, surface % 6);
                for (std::uint32_t n = 0; n < 4; ++n) {
                    const auto &from = sizes[n], &to = sizes[n + 1];
                    std::vector<T> next(std::size_t{4} * to[0] * to[1] * to[2]);
                    resampleLevelPlain(expected.data(), next.data(), from[0], from[1], from[2], to[0], to[1], to[2], filter);
                    EXPECT_EQ(piece<T>(texture, n, surface / 6, surface % 6), expected) << "level " << n;
                    expected = next;
                }
                EXPECT_EQ(piece<T>(texture, 4, surface / 6, surface % 6), expected);
            }
        }
    });
}

TEST(GenerateMIPMaps, CountsLevels) {
    // Shape, levels asked for, result, levels then.
    const std::tuple<Shape, unsigned int, bool, std::uint32_t> rows[] = {
        {Shape{256, 64, 1}, allMIPLevels, true, 9},
        {Shape{1, 1, 1}, allMIPLevels, true, 1},
        {Shape{255, 3, 1}, allMIPLevels, true, 8},
        {Shape{2, 1, 9}, allMIPLevels, true, 4},
        {Shape{8, 8, 1}, 1, true, 1},
        {Shape{8, 8, 1}, 6, true, 6},
        {Shape{8, 8, 1}, 255, true, 255},
        {Shape{8, 8, 1}, 256, false, 1},
        {Shape{8, 8, 1}, 0, false, 1},
        {Shape{8, 8, 1}, 0xFFFFFFFE, false, 1},
        {Shape{1, 1, 1, 1, 4210753}, 255, false, 1},  // 4 bytes too many for 32 bits
    };
    for (const auto& [shape, asked, result, levels] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>(shape, {});
        EXPECT_EQ(GenerateMIPMaps(texture, eResizeLinear, asked), result) << asked;
        EXPECT_EQ(texture.getNumMIPLevels(), levels) << asked;
    }
}

TEST(GenerateMIPMaps, LeavesAChainOfTheWantedLengthAlone) {
    CMOKTexture texture = randomTexture<std::uint8_t>({4, 4, 1, 3, 1, 1});
    const std::vector<std::uint8_t> stale = elementsOf<std::uint8_t>(texture);
    EXPECT_TRUE(GenerateMIPMaps(texture, eResizeCubic, allMIPLevels));
    EXPECT_EQ(elementsOf<std::uint8_t>(texture), stale);
    EXPECT_TRUE(GenerateMIPMaps(texture, unknownMode, 2));
    EXPECT_EQ(piece<std::uint8_t>(texture, 1), std::vector<std::uint8_t>(16, 0));
}

TEST(ColourMIPMaps, TintsLevelsInTurnOfSix) {
    forEachElementType([]<typename T>(T) {
        CMOKTexture texture = randomTexture<T>({128, 2, 1, 8, 2, 2});
        EChannelName channels[] = {eChannelRed, eChannelGreen, eChannelBlue, eChannelAlpha};
        unsigned int values[] = {30, 60, 94, 200};
        ASSERT_TRUE(SetChannels(texture, 4, channels, values) && ColourMIPMaps(texture));
        const T g = static_cast<T>(184.0f / 3.0f), o = 0;
        const std::vector<T> expected[8] = {{30, 60, 94, 200}, {o, g, o, 200}, {o, o, g, 200}, {o, g, g, 200},
                                            {g, o, g, 200},    {g, g, o, 200}, {g, o, o, 200}, {o, g, o, 200}};
        for (std::uint32_t level = 0; level < 8; ++level) {
            const std::vector<T> elements = piece<T>(texture, level, 1, 1);
            for (std::size_t i = 0; i < elements.size(); ++i)
                ASSERT_EQ(elements[i], expected[level][i % 4]) << level;
        }
    });
}

TEST(ColourMIPMaps, TakesTheMeanInTheElementsOwnArithmetic) {
    const auto meanOf = []<typename T>(T red, T green, T blue) {
        CMOKTexture texture = textureOf<T>({2, 1, 1, 2}, {0, 0, 0, 0, 0, 0, 0, 0, red, green, blue, 0});
        return ColourMIPMaps(texture) ? piece<T>(texture, 1)[1] : T{1};
    };
    EXPECT_EQ(meanOf.operator()<std::uint8_t>(255, 255, 254), 254);
    EXPECT_EQ(meanOf.operator()<std::uint16_t>(65535, 65535, 65535), 65535);
    EXPECT_EQ(meanOf(0x80000000u, 0x80000000u, 0x80000000u), 715827904u);  // a third of the wrapped sum, as a float
    EXPECT_EQ(meanOf(1.0f, 16777216.0f, -16777216.0f), 0.0f);
}

}  // namespace
