#include <cmath>
#include <cstring>

#include "moktex/operations/colour_curve.h"
#include "moktex/operations/filter_taps.h"
#include "moktex/operations/resample.h"
#include "tool_fixture.h"

using namespace moktexture;
using moktextool::Image;
using moktextool::ResampleSettings;

namespace {

using Bytes = std::vector<std::uint8_t>;

Image imageOf(const Bytes& rgba, std::uint32_t width) {
    Image image(moktextool::rgba8Format, {width, static_cast<std::uint32_t>(rgba.size() / 4 / width), 1});
    std::copy(rgba.begin(), rgba.end(), image.getData());
    return image;
}

Bytes bytesOf(const Image& image) {
    return {image.getData(), image.getData() + image.getDataSize()};
}

/// Opaque grey pixels.
Bytes greys(std::initializer_list<int> values) {
    Bytes rgba;
    for (const int value : values)
        for (const int element : {value, value, value, 255})
            rgba.push_back(static_cast<std::uint8_t>(element));
    return rgba;
}

double linearOf(double stored) {
    const double value = stored / 255;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double storedOf(double linear) {
    return 255 * (linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1 / 2.4) - 0.055);
}

/// The mean of 2 by 2 pixels, colours weighted by alpha.
Bytes halvedByHand(const Bytes& rgba, std::size_t width, std::size_t height) {
    Bytes halved;
    for (std::size_t y = 0; y < height; y += 2) {
        for (std::size_t x = 0; x < width; x += 2) {
            double sums[3] = {}, alpha = 0;
            for (const std::size_t pixel : {y * width + x, y * width + x + 1, (y + 1) * width + x, (y + 1) * width + x + 1}) {
                alpha += rgba[pixel * 4 + 3];
                for (std::size_t c = 0; c < 3; ++c)
                    sums[c] += linearOf(rgba[pixel * 4 + c]) * rgba[pixel * 4 + 3];
            }
            for (const double sum : sums)
                halved.push_back(static_cast<std::uint8_t>(std::floor(storedOf(sum / alpha) + 0.5)));
            halved.push_back(static_cast<std::uint8_t>(std::floor(alpha / 4 + 0.5)));
        }
    }
    return halved;
}

}  // namespace

TEST(FilterTaps, StandAroundTheCentreAndAddUpToOne) {
    // clang-format off
    const struct { EResizeMode mode; std::uint32_t source, target, index, first; std::vector<float> weights; } cases[] = {
        // mode          sizes index first weights
        {eResizeNearest, 5, 2, 0,    1,    {1}},
        {eResizeNearest, 3, 9, 4,    1,    {1}},
        {eResizeLinear,  4, 2, 1,    2,    {0.5F, 0.5F}},
        {eResizeLinear,  5, 2, 0,    0,    {0.4F, 0.4F, 0.2F}},
        {eResizeLinear,  5, 2, 1,    2,    {0.2F, 0.4F, 0.4F}},
        {eResizeLinear,  3, 1, 0,    0,    {1 / 3.0F, 1 / 3.0F, 1 / 3.0F}},
        {eResizeLinear,  2, 4, 0,    0,    {1}},
        {eResizeLinear,  2, 4, 1,    0,    {0.75F, 0.25F}},
        {eResizeCubic,   4, 8, 3,    0,    {-9 / 128.0F, 111 / 128.0F, 29 / 128.0F, -3 / 128.0F}}};
    // clang-format on
    for (const auto& [mode, source, target, index, first, weights] : cases) {
        const moktextool::FilterTaps taps = moktextool::makeTaps(source, target, mode);
        ASSERT_EQ(taps.runs.size(), target);
        std::vector<float> given(&taps.weights[taps.runs[index].weightsAt],
                                 &taps.weights[taps.runs[index].weightsAt] + taps.runs[index].count);
        std::uint32_t start = taps.runs[index].first;
        while (given.front() == 0)
            given.erase(given.begin()), ++start;
        while (given.back() == 0)
            given.pop_back();
        EXPECT_EQ(given, weights) << mode << ' ' << source << ' ' << target;
        EXPECT_EQ(start, first) << mode << ' ' << source << ' ' << target;
    }
}

TEST(ColourCurve, RoundsToTheNearestStoredValue) {
    const moktextool::ColourCurve<std::uint8_t> bytes(true);
    const moktextool::ColourCurve<std::uint16_t> words(true);
    for (int i = 0; i < 65536; ++i) {
        const double linear = i / 65535.0;
        EXPECT_EQ(words.encode(words.decode(static_cast<std::uint16_t>(i))), i);
        EXPECT_EQ(bytes.encode(static_cast<float>(linear)), std::floor(storedOf(linear) + 0.5)) << i;
        EXPECT_NEAR(moktextool::linearOfSRGB(moktextool::sRGBOfLinear(linear * 8)), linear * 8, 1e-12);
    }
}

TEST(Resample, HalvingEqualsTheMeanComputedInDoubles) {
    for (const testimages::Kind kind : {testimages::Kind::gradient, testimages::Kind::softAlpha, testimages::Kind::noise}) {
        Bytes pixels = testimages::make(kind, 64, 48);
        for (std::size_t i = 3; i < pixels.size(); i += 4)
            pixels[i] = std::max<std::uint8_t>(pixels[i], 1);
        const ResampleSettings settings{eResizeLinear, true, true};
        EXPECT_EQ(bytesOf(resample(imageOf(pixels, 64), {32, 24, 1}, settings)), halvedByHand(pixels, 64, 48)) << nameOf(kind);
        const Bytes flattened = bytesOf(resample(imageOf(pixels, 64), {64, 24, 1}, settings));
        EXPECT_EQ(bytesOf(resample(imageOf(flattened, 64), {64, 24, 1}, settings)), flattened) << "an equal size";
    }
}

TEST(Resample, AveragesSlicesAndEveryElementType) {
    Image volume(moktextool::rgba8Format, {1, 1, 2});
    const Bytes slices = greys({10, 21});
    std::copy(slices.begin(), slices.end(), volume.getData());
    EXPECT_EQ(bytesOf(resample(volume, {1, 1, 1}, {eResizeLinear, false, true})), greys({16}));

    const std::uint16_t words[] = {0, 65535, 1, 65535, 65535, 65535, 2, 65535};
    Image deep(moktextool::rgba16Format, {2, 1, 1});
    std::memcpy(deep.getData(), words, sizeof words);
    const Image deepMean = resample(deep, {1, 1, 1}, {eResizeLinear, true, true});
    const auto* mean = reinterpret_cast<const std::uint16_t*>(deepMean.getData());
    EXPECT_EQ(mean[0], std::floor(storedOf(0.5) * 257 + 0.5));
    EXPECT_EQ(mean[1], 65535);

    const float floats[] = {0, 4, -2, 1, 3, 5, 2, 0};
    Image bright(moktextool::rgbaFloatFormat, {2, 1, 1});
    std::memcpy(bright.getData(), floats, sizeof floats);
    const Image brightMean = resample(bright, {1, 1, 1}, {eResizeLinear, false, false});
    const float expected[] = {1.5F, 4.5F, 0, 0.5F};
    EXPECT_EQ(std::memcmp(brightMean.getData(), expected, sizeof expected), 0) << "floats are not clamped";
}

TEST(Resample, IsSymmetric) {
    const Bytes pixels = testimages::make(testimages::Kind::edges, 30, 1);
    Bytes reversed;
    for (std::size_t x = 30; x-- > 0;)
        reversed.insert(reversed.end(), &pixels[x * 4], &pixels[x * 4] + 4);
    for (const EResizeMode mode : {eResizeLinear, eResizeCubic}) {
        for (const std::uint32_t width : {7u, 15u, 29u, 31u, 64u}) {
            const ResampleSettings settings{mode, true, true};
            const Bytes there = bytesOf(resample(imageOf(pixels, 30), {width, 1, 1}, settings));
            const Bytes back = bytesOf(resample(imageOf(reversed, 30), {width, 1, 1}, settings));
            int largest = 0;
            for (std::size_t i = 0; i < there.size(); ++i)
                largest = std::max(largest, std::abs(there[i] - back[(width - 1 - i / 4) * 4 + i % 4]));
            EXPECT_LE(largest, 1) << mode << ' ' << width << ": sums in the other order may round to the other side";
        }
    }
}

TEST_F(ToolTest, LevelsAreAveragedAsAsked) {
    const Bytes board = greys({0, 255, 255, 0});
    const Bytes redAndClear = {200, 0, 0, 255, 0, 100, 0, 0, 200, 0, 0, 255, 0, 100, 0, 0};
    const char* const linear = "in linear light";
    // clang-format off
    const struct { const char* options; const Bytes& pixels; Bytes expected; const char* line; } cases[] = {
        // options                                   pixels       level 1              message
        {"--mips",                                   board,       greys({188}),        linear},
        {"--resize 1x1",                             board,       greys({188}),        linear},
        {"--mips -f rgb888",                         board,       greys({188}),        linear},
        {"--mips --no-linear-light",                 board,       greys({128}),        "as they are stored, not"},
        {"--mips --assign-colour-space linear",      board,       greys({128}),        "not marked as sRGB"},
        {"--mips --mip-filter nearest",              board,       greys({0}),          ""},
        {"--mips",                                   redAndClear, {200, 0, 0, 128},    linear},
        {"--mips --no-alpha-weight --no-linear-light", redAndClear, {100, 50, 0, 128}, "stored"},
        {"--premultiply --mips --no-linear-light",   redAndClear, {100, 0, 0, 128},    "stored"}};
    // clang-format on
    for (const auto& [options, pixels, expected, line] : cases) {
        writePNG("a.png", 2, pixels);
        const std::string told = expectSuccess(std::string("convert @a.png @a.mok -y ") + options).err;
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), *line == '\0' ? 0 : 1) << told;
        EXPECT_NE(told.find(line), std::string::npos) << told;
        const bool isChain = std::string(options).find("--mips") != std::string::npos;
        expectSuccess(std::string("convert @a.mok @level.png -y --level ") + (isChain ? "1" : "0"));
        EXPECT_EQ(pixelsOf("level.png"), expected) << options;
    }
}

TEST_F(ToolTest, AlphaThatAFormatDropsIsTold) {
    const Bytes opaque = greys({1, 2}), cut = {9, 9, 9, 255, 9, 9, 9, 0}, soft = {9, 9, 9, 255, 9, 9, 9, 8};
    // clang-format off
    const struct { const char* options; const Bytes& pixels; const char* line; } cases[] = {
        // options         pixels  message
        {"etc1",           opaque, ""},
        {"etc1",           cut,    "etc1 has no alpha"},
        {"rgb565",         soft,   "rgb565 has no alpha"},
        {"dxt1",           cut,    ""},
        {"dxt1",           soft,   "transparent or opaque"},
        {"dxt5",           soft,   ""},
        {"rgba4444",       soft,   ""}};
    // clang-format on
    for (const auto& [options, pixels, line] : cases) {
        writePNG("a.png", 2, pixels);
        const std::string told = expectSuccess(std::string("convert @a.png @a.mok -y --quiet -f ") + options).err;
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), *line == '\0' ? 0 : 1) << told;
        EXPECT_NE(told.find(line), std::string::npos) << told;
    }
}
