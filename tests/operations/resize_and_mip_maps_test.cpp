#include <array>

#include "operation_textures.h"
#include "operations/resample/resampling.h"
#include "reference/resample_reference.h"

using namespace operationtextures;

namespace {

using Size = std::array<unsigned int, 3>;

/// The resampled pixels, which are also compared with those of the reference.
template <typename T>
std::vector<T> resampled(const std::vector<T>& source, Size from, Size to, EResizeMode mode) {
    std::vector<T> result(std::size_t{4} * to[0] * to[1] * to[2], T{77}), expected = result;
    EXPECT_TRUE(resampleLevel(source.data(), result.data(), from[0], from[1], from[2], to[0], to[1], to[2], mode));
    referenceResampleLevel(LevelView<const T>{source.data(), {from[0], from[1], from[2]}},
                           LevelView<T>{expected.data(), {to[0], to[1], to[2]}}, mode);
    EXPECT_EQ(std::memcmp(result.data(), expected.data(), result.size() * sizeof(T)), 0)
        << testing::PrintToString(from) << " to " << testing::PrintToString(to) << " by filter " << mode;
    return result;
}

/// Resamples a line of pixels with four equal channels that lies along an axis.
template <typename T>
std::vector<T> resampledLine(const std::vector<double>& line, std::size_t newLength, EResizeMode mode, std::size_t axis = 0) {
    Size from = {1, 1, 1}, to = {1, 1, 1};
    from[axis] = static_cast<unsigned int>(line.size());
    to[axis] = static_cast<unsigned int>(newLength);
    return resampled<T>(uniformPixels<T>(line), from, to, mode);
}

TEST(ResampleLevel, FollowsThePositionRuleAlongEveryAxis) {
    // Values of float textures are in units of 1/256.
    // clang-format off
    const struct { EResizeMode mode; std::vector<double> line, integers, floats; } rows[] = {
        // filter, source line, result in integers, result in floats
        {eResizeNearest, {7, 9}, {7, 7, 9, 9}, {7, 7, 9, 9}},
        {eResizeNearest, {1, 2, 3, 4, 5}, {1, 2, 4}, {1, 2, 4}},     // at 0, 1.67, 3.33
        {eResizeLinear, {10, 21, 31, 255}, {15, 142}, {15.5, 143}},  // 5 + 10, 15 + 127: each term truncated
        {eResizeLinear, {10, 21}, {10, 15, 21, 20}, {10, 15.5, 21, 21}},
        {eResizeLinear, {255, 255, 255}, {254, 254}, {255, 255}},   // flat white darkens
        {eResizeLinear, {0, 91, 180}, {60, 179}, {60.66667, 180}},  // starts at 2/3, not at 1/4; 149 + 30
        // Weights at halves are -1/16, 9/16, 9/16, -1/16. Before the first pixel comes the last; after the last, itself.
        {eResizeCubic, {16, 32, 48, 160}, {16, 14, 32, 34, 48, 105, 160, 167}, {16, 14, 32, 34, 48, 105, 160, 167}}};
    // clang-format on
    for (const auto& row : rows)
        forEachElementType([&row]<typename T>(T) {
            constexpr bool isFloat = std::is_same_v<T, float>;
            const double unit = isFloat ? 256 : 1;
            std::vector<double> line = row.line, expected = isFloat ? row.floats : row.integers;
            for (double& value : line)
                value /= unit;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const std::vector<T> result = resampledLine<T>(line, expected.size(), row.mode, axis);
                for (std::size_t i = 0; i < expected.size(); ++i)
                    EXPECT_NEAR(static_cast<double>(result[4 * i]) * unit, expected[i], isFloat ? 1e-4 : 0) << row.mode << i;
            }
        });
}

TEST(ResampleLevel, ClampsOrWrapsWhiteByElementType) {
    forEachElementType([]<typename T>(T) {
        const T white = std::is_same_v<T, float> ? T{1} : static_cast<T>(0xFFFFFFFF);
        const auto w = static_cast<double>(white);
        // 32-bit white is 4294967296 as a float, of which no low bit is left.
        const T top = std::is_same_v<T, std::uint32_t> ? T{0} : white;
        EXPECT_EQ(resampledLine<T>({w, w}, 4, eResizeNearest)[3], white);
        EXPECT_EQ(resampledLine<T>({w, w}, 1, eResizeLinear)[0], sizeof(T) < 4 ? white - 1 : top);
        EXPECT_EQ(resampledLine<T>({w, w}, 4, eResizeLinear)[0], top);
        EXPECT_EQ(resampledLine<T>({w, w}, 4, eResizeCubic)[0], top);
        // Undershoot and overshoot are clamped, and what is between is truncated.
        const std::vector<T> step = resampledLine<T>({0, 0, w, w}, 8, eResizeCubic);
        EXPECT_EQ(step[4], T{0});
        EXPECT_EQ(step[12], static_cast<T>(static_cast<float>(white) / 2.0f));
        EXPECT_EQ(step[20], top);
    });
    EXPECT_EQ(resampledLine<float>({4, -3}, 2, eResizeLinear), uniformPixels<float>({4, -3}));
    EXPECT_EQ(resampledLine<float>({4, -3}, 2, eResizeCubic), uniformPixels<float>({1, 0}));
}

TEST(ResampleLevel, DoesNothingWithAnEmptySource) {
    std::vector<float> source(16), destination(16, 7.0f);
    EXPECT_TRUE(resampleLevel(source.data(), destination.data(), 0, 2, 1, 1, 2, 1, eResizeLinear));
    EXPECT_EQ(destination, std::vector<float>(16, 7.0f));
}

TEST(ResampleLevel, MatchesTheReference) {
    testimages::Random random(3);
    // Several strips of columns, and lengths whose last position rounds up to the end of the axis.
    std::vector<std::pair<Size, Size>> sizes = {
        {{200, 3, 1}, {1100, 5, 1}}, {{1100, 6, 2}, {550, 3, 1}}, {{5, 4200, 1}, {4, 4199, 1}}, {{4200, 2, 1}, {4199, 2, 1}}};
    const auto randomSize = [&random] { return Size{1 + random.below(17), 1 + random.below(17), 1 + random.below(3)}; };
    for (int i = 0; i < 400; ++i)
        sizes.emplace_back(randomSize(), randomSize());
    forEachElementType([&]<typename T>(T) {
        for (const auto& [from, to] : sizes) {
            const auto source = randomElements<T>(std::size_t{4} * from[0] * from[1] * from[2], random, random.below(2) == 0);
            for (EResizeMode mode : {eResizeNearest, eResizeLinear, eResizeCubic})
                resampled<T>(source, from, to, mode);
        }
    });
}

TEST(Resize, ResamplesTheTopLevelOfEverySurfaceAndDropsTheOthers) {
    forEachElementType([]<typename T>(T) {
        CMOKTexture texture = randomTexture<T>({9, 7, 2, 3, 2, 6});
        const std::vector<T> before = elementsOf<T>(texture, 0, 1, 5);
        ASSERT_TRUE(Resize(texture, 5, 8, 3, eResizeLinear));
        EXPECT_EQ(texture.getNumMIPLevels(), 1u);
        EXPECT_EQ(elementsOf<T>(texture, 0, 1, 5), resampled<T>(before, {9, 7, 2}, {5, 8, 3}, eResizeLinear));
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
                    EXPECT_EQ(elementsOf<T>(texture, n), uniformPixels<T>(levels[static_cast<std::size_t>(n)])) << "level " << n;
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
    constexpr auto unknownMode = static_cast<EResizeMode>(3);
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
            EXPECT_EQ(elementsOf<T>(texture, level), repeatedPixel(expected[level], 128u >> level)) << level;
    };
    expectTints.operator()<std::uint8_t>(255, 255, 254, 254);
    expectTints.operator()<std::uint16_t>(65535, 65535, 65535, 65535);
    // A third of the wrapped sum, as a float.
    expectTints.operator()<std::uint32_t>(0x80000000, 0x80000000, 0x80000000, 715827904);
    expectTints(1.0f, 16777216.0f, -16777216.0f, 0.0f);
    expectTints(1.0f, 2.0f, 6.0f, 3.0f);
}

}  // namespace
