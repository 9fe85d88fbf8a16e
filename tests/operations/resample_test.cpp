#include <array>

#include "operation_textures.h"
#include "operations/resample/resample_level.h"
#include "reference/resample_reference.h"

using namespace moktexture;
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
    const std::vector<T> result = resampled<T>(uniformPixels<T>(line), from, to, mode);
    std::vector<T> resultLine;
    for (std::size_t i = 0; i < result.size(); i += 4)
        resultLine.push_back(result[i]);
    EXPECT_EQ(result, uniformPixels<T>({resultLine.begin(), resultLine.end()}));
    return resultLine;
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
            constexpr double unit = isFloat ? 256 : 1;
            std::vector<double> line = row.line;
            for (double& value : line)
                value /= unit;
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const std::vector<T> result = resampledLine<T>(line, row.integers.size(), row.mode, axis);
                for (std::size_t i = 0; i < result.size(); ++i)
                    EXPECT_NEAR(static_cast<double>(result[i]) * unit, isFloat ? row.floats[i] : row.integers[i],
                                isFloat ? 1e-4 : 0)
                        << row.mode << " " << i;
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
        EXPECT_EQ(step[1], T{0});
        EXPECT_EQ(step[3], static_cast<T>(static_cast<float>(white) / 2.0f));
        EXPECT_EQ(step[5], top);
    });
    EXPECT_EQ(resampledLine<float>({4, -3}, 2, eResizeLinear), (std::vector<float>{4, -3}));
    EXPECT_EQ(resampledLine<float>({4, -3}, 2, eResizeCubic), (std::vector<float>{1, 0}));
}

TEST(ResampleLevel, RefusesNullAndDoesNothingWithAnEmptySource) {
    const std::vector<float> source(16, 1.0f), untouched(16, 7.0f);
    std::vector<float> destination = untouched;
    EXPECT_TRUE(resampleLevel(source.data(), destination.data(), 0, 2, 1, 1, 2, 1, eResizeLinear));
    EXPECT_EQ(destination, untouched);
    EXPECT_FALSE(resampleLevel<float>(nullptr, destination.data(), 2, 2, 1, 1, 2, 1, eResizeLinear));
    EXPECT_FALSE(resampleLevel<float>(source.data(), nullptr, 2, 2, 1, 1, 2, 1, eResizeLinear));
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

}  // namespace
