#include <array>
#include <bit>
#include <limits>
#include <new>

#include "operation_textures.h"
#include "operations/bleed.h"
#include "reference/bleed_reference.h"

using namespace operationtextures;

static bool isMemoryRefused = false;

// The non-throwing allocation of arrays, which Bleed() uses.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return isMemoryRefused ? nullptr : ::operator new[](size);
}

namespace {

const float nan = std::numeric_limits<float>::quiet_NaN();
constexpr EChannelName name8 = static_cast<EChannelName>(8), lastName = static_cast<EChannelName>(0xFFFFFFFF);
EChannelName red[] = {eChannelRed}, green[] = {eChannelGreen}, alpha[] = {eChannelAlpha};

TEST(ChannelOperations, WriteTheNamedElementsAndTheLastEntryWins) {
    const std::vector<std::uint8_t> pixel = {200, 100, 50, 7};
    unsigned int values[] = {17, 18, 19};
    // Rows without sources set the values; the others copy, reading all sources before an element is written.
    // clang-format off
    struct { std::vector<EChannelName> destinations, sources; std::vector<std::uint8_t> expected; } rows[] = {
        // destinations, sources, expected pixel
        {{eChannelGreen, eChannelBlue}, {}, {200, 17, 18, 7}}, {{eChannelRed, eChannelRed}, {}, {18, 100, 50, 7}},
        {{eChannelAlpha, eChannelLuminance, eChannelRed}, {}, {19, 18, 18, 17}},
        {{eChannelUnspecified, eChannelIntensity}, {}, {18, 18, 18, 17}}, {{eChannelNone, name8, lastName}, {}, pixel},
        {{eChannelRed, eChannelGreen, eChannelBlue}, {eChannelBlue, eChannelGreen, eChannelRed}, {50, 100, 200, 7}},
        {{eChannelRed, eChannelAlpha}, {eChannelUnspecified, eChannelRed}, {7, 100, 50, 200}},
        // 0.2126 x 200 + 0.7152 x 100 + 0.0722 x 50 = 117.65, and 350 / 3 = 116.67
        {{eChannelLuminance}, {eChannelLuminance}, {117, 117, 117, 7}},
        {{eChannelIntensity, eChannelUnspecified}, {eChannelBlue, eChannelIntensity}, {50, 50, 50, 116}},
        {{eChannelRed, eChannelRed, eChannelRed}, {eChannelGreen, eChannelNone, lastName}, {100, 100, 50, 7}},
        {{eChannelNone, name8, eChannelGreen}, {eChannelRed, eChannelRed, name8}, pixel}};
    // clang-format on
    for (auto& [destinations, sources, expected] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>({307, 2}, repeatedPixel(pixel, 614));
        const auto count = static_cast<unsigned int>(destinations.size());
        EXPECT_TRUE(sources.empty() ? SetChannels(texture, count, destinations.data(), values)
                                    : CopyChannels(texture, texture, count, destinations.data(), sources.data()));
        EXPECT_EQ(elementsOf<std::uint8_t>(texture), repeatedPixel(expected, 614));
    }
}

TEST(SetChannels, StoresValuesUnscaledWithTheirLowBits) {
    // clang-format off
    const std::pair<float, unsigned int> rows[] = {
        // value, low bits after truncation
        {1.0f, 1}, {0.99f, 0}, {300.7f, 300}, {-1.0f, 0xFFFFFFFF}, {-2.9f, 0xFFFFFFFE}, {4294967296.0f, 0}, {1e30f, 0}, {255.0f, 255},
        {0x1.2345p24f, 0x1234500}, {nan, 0}};
    // clang-format on
    for (auto [value, bits] : rows)
        forEachElementType([bits = bits, value = value]<typename T>(T) mutable {
            CMOKTexture texture = textureOf<T>({}, {1, 2, 3, 4});
            EXPECT_TRUE(SetChannels(texture, 1, green, &bits));
            EXPECT_TRUE(SetChannelsFloat(texture, 1, alpha, &value));
            std::vector<T> expected = {1, static_cast<T>(bits), 3, static_cast<T>(bits)};
            if constexpr (std::is_same_v<T, float>) expected[3] = value;
            EXPECT_EQ(std::memcmp(texture.getDataPtr(), expected.data(), 4 * sizeof(T)), 0) << value;
        });
}

TEST(CopyChannels, WeightsColoursAfterScaling) {
    EChannelName to[] = {eChannelRed, eChannelGreen}, from[] = {eChannelLuminance, eChannelIntensity};
    CMOKTexture texture = textureOf<float>({3}, {1, 0, 0, 9, 0, 1, 0, 9, 0, 0, 1, 9}), narrow = textureOf<std::uint8_t>({}, {});
    EXPECT_TRUE(CopyChannels(texture, texture, 2, to, from));
    EXPECT_TRUE(CopyChannels(narrow, textureOf<std::uint16_t>({}, {40000, 20000, 10000, 0}), 2, to, from));
    const float t = 1.0f / 3.0f;
    EXPECT_EQ(elementsOf<float>(texture), (std::vector<float>{0.2126f, t, 0, 9, 0.7152f, t, 0, 9, 0.0722f, t, 1, 9}));
    // 155.64, 77.82 and 38.91 in 8 bits: luminance 91.56, but 90.77 if they were truncated first.
    EXPECT_EQ(elementsOf<std::uint8_t>(narrow), (std::vector<std::uint8_t>{91, 90, 0, 0}));
}

/// Copies each row's value to an element of every type; the columns are value, 8-bit, 16-bit, 32-bit and float element.
template <typename S>
void expectScaling(std::initializer_list<std::tuple<S, std::uint8_t, std::uint16_t, std::uint32_t, float>> rows) {
    for (const auto& row : rows)
        forEachElementType([&row, source = textureOf<S>({}, {0, std::get<0>(row), 0, 0})]<typename D>(D) {
            CMOKTexture destination = textureOf<D>({}, {});
            EXPECT_TRUE(CopyChannels(destination, source, 1, alpha, green));
            constexpr std::size_t column = std::is_same_v<D, float> ? 4 : std::bit_width(sizeof(D));
            EXPECT_EQ(elementsOf<D>(destination)[3], std::get<column>(row)) << +std::get<0>(row);
        });
}

TEST(CopyChannels, ScalesByTheUnitsTruncatesAndWraps) {
    // clang-format off
    expectScaling<std::uint8_t>({{255, 255, 65535, 0, 1.0f},  // 4294967296 wraps
                                 {128, 128, 32896, 2155905280u, 128.0f / 255.0f}, {1, 1, 257, 16843010u, 1.0f / 255.0f}});
    expectScaling<std::uint16_t>({{65535, 255, 65535, 0, 1.0f}, {32768, 127, 32768, 2147516416u, 32768.0f / 65535.0f},
                                  {259, 1, 258, 16974084u, 259.0f / 65535.0f},  // loses a unit
                                  {256, 0, 256, 16777472u, 256.0f / 65535.0f}});
    expectScaling<std::uint32_t>({{0xFFFFFFFF, 255, 65535, 0, 1.0f}, {0x80000000, 127, 32767, 0x80000000, 0.5f},
                                  {0x00FFFFFF, 0, 255, 0x00FFFFFF, 16777215.0f / 4294967296.0f}});
    expectScaling<float>({{1.0f, 255, 65535, 0, 1.0f}, {2.0f, 254, 65534, 0, 2.0f},
                          {-0.5f, 0x81, 0x8001, 0x80000000, -0.5f}});  // -127 and -32767, low bits kept
    // clang-format on
}

TEST(ChannelOperations, RefuseNullArraysAndUnequalShapesUnlessThereAreNoEntries) {
    const Shape shape = {21, 17, 3, 4, 3, 6};
    const CMOKTexture source = randomTexture<std::uint8_t>(shape, 5);
    CMOKTexture texture = randomTexture<std::uint16_t>(shape, 6);
    std::vector<std::uint16_t> expected = elementsOf<std::uint16_t>(texture);
    for (std::size_t i = 0; i < expected.size(); i += 4)  // every subresource
        expected[i] = static_cast<std::uint16_t>(static_cast<const std::uint8_t*>(source.getDataPtr())[i + 3] * 257);
    EXPECT_TRUE(CopyChannels(texture, source, 1, red, alpha));
    for (unsigned int Shape::*count :
         {&Shape::width, &Shape::height, &Shape::depth, &Shape::levels, &Shape::layers, &Shape::faces}) {
        Shape other = shape;
        --(other.*count);
        EXPECT_FALSE(CopyChannels(texture, textureOf<std::uint8_t>(other, {}), 1, red, alpha));
        EXPECT_TRUE(CopyChannels(texture, textureOf<std::uint8_t>(other, {}), 0, nullptr, nullptr));
    }
    EXPECT_FALSE(SetChannels(texture, 1, red, nullptr));
    EXPECT_FALSE(SetChannelsFloat(texture, 1, nullptr, nullptr));
    EXPECT_FALSE(CopyChannels(texture, texture, 1, red, nullptr));
    EXPECT_FALSE(CopyChannels(texture, texture, 1, nullptr, red));
    EXPECT_EQ(elementsOf<std::uint16_t>(texture), expected);
}

/// Rows of colour, alpha and the resulting colour.
template <typename T>
void expectProducts(std::initializer_list<std::array<T, 3>> rows) {
    for (const auto& [colour, opacity, expected] : rows) {
        CMOKTexture texture = textureOf<T>({1, 1, 1, 2}, repeatedPixel<T>({colour, colour, colour, opacity}, 2));
        EXPECT_TRUE(PreMultiplyAlpha(texture));
        EXPECT_TRUE(texture.isPreMultiplied());
        EXPECT_FALSE(PreMultiplyAlpha(texture));
        EXPECT_EQ(elementsOf<T>(texture), repeatedPixel<T>({expected, expected, expected, opacity}, 2)) << +colour;
    }
}

TEST(PreMultiplyAlpha, KeepsTheLowByteOfEveryProductAndRunsOnce) {
    expectProducts<std::uint8_t>({{200, 128, 100}, {201, 255, 201}, {255, 1, 1}, {254, 1, 0}, {77, 0, 0}});
    expectProducts<std::uint16_t>({{60000, 65535, 96}, {300, 32768, 150}, {600, 32768, 44}, {55303, 1044, 113}});
    expectProducts<std::uint32_t>({{0xFFFFFFFF, 0xFFFFFFFF, 0}, {1000, 0x80000000, 244}, {0x12345678, 0xFFFFFFFF, 0x80}});
    expectProducts<float>({{0.75f, 1, 0}, {3.5f, 0.5f, 1}, {300.5f, 1, 44}, {1.5f, -1, 255}, {1e30f, 1, 0}, {nan, 1, 0}});
}

TEST(Bleed, TakesTheMeanOfVisiblePixelsUpToFourAway) {
    forEachElementType([]<typename T>(T) {
        std::vector<T> line = uniformPixels<T>({10, 7, 7, 21, 7, 7, 7, 7, 7, 7, 7});
        std::vector<T> expected = uniformPixels<T>({10, 15.5, 15.5, 21, 15.5, 21, 21, 21, 7, 7, 7});
        for (std::size_t i = 0; i < 11; ++i)
            line[4 * i + 3] = expected[4 * i + 3] = i == 0 || i == 3;
        for (const Shape& shape : {Shape{11}, Shape{1, 11}, Shape{1, 1, 11}}) {
            CMOKTexture texture = textureOf<T>(shape, line);
            EXPECT_TRUE(Bleed(texture));
            EXPECT_EQ(elementsOf<T>(texture), expected) << shape.width << shape.height;
        }
    });
}

TEST(Bleed, MeansOfWideElementsWrapOrFollowTheOrderOfFloatSums) {
    const auto firstRed = []<typename T>(const Shape& shape, const std::vector<T>& elements) {
        CMOKTexture texture = textureOf<T>(shape, elements);
        return Bleed(texture) ? elementsOf<T>(texture)[0] : T{1};
    };
    EXPECT_EQ((firstRed.operator()<std::uint32_t>({2}, {5, 0, 0, 0, 0xFFFFFFFF, 0, 0, 1})), 0u);
    EXPECT_EQ((firstRed.operator()<float>({2}, {5, 0, 0, -0.0f, 8.5f, 0, 0, nan})), 8.5f);
    EXPECT_EQ((firstRed.operator()<float>({2}, {5, 0, 0, nan, 8.5f, 0, 0, 1})), 5.0f);
    // 1e8, -1e8 and 1 are added in this order: slices, then rows, then columns.
    const std::vector<float> slices = {0, 0, 0, 0, 1e8f, 0, 0, 1, -1e8f, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 1};
    EXPECT_EQ(firstRed.operator()<float>({2, 2, 2}, slices), 1.0f / 3.0f);
}

TEST(Bleed, BothFormsMatchTheReference) {
    testimages::Random random(3);
    forEachElementType([&]<typename T>(T) {
        for (const LevelSize& size :
             {LevelSize{1, 1, 1}, LevelSize{3, 2, 2}, LevelSize{9, 9, 3}, LevelSize{9, 9, 4}, LevelSize{4, 4, 30},
              LevelSize{200, 1, 1}, LevelSize{1, 40, 6}, LevelSize{33, 21, 1}, LevelSize{14, 13, 12}})
            for (std::uint32_t visibleOneIn : {2u, 20u, 200u}) {
                std::vector<T> pixels = randomElements<T>(size.pixelCount() * 4, random, random.below(2) == 0);
                for (std::size_t i = 3; i < pixels.size(); i += 4)
                    if (random.below(visibleOneIn) != 0) pixels[i] = T{0};
                std::vector<T> expected = pixels;
                referenceBleedLevel(LevelView<T>{expected.data(), size});
                ASSERT_TRUE(bleedLevel(pixels.data(), size.width, size.height, size.depth));
                ASSERT_EQ(std::memcmp(pixels.data(), expected.data(), expected.size() * sizeof(T)), 0) << size.width;
            }
    });
    EXPECT_TRUE(bleedsByRunningSums<std::uint8_t>({99, 99, 99}));
    EXPECT_TRUE(bleedsByRunningSums<std::uint16_t>({99, 99, 3}));
    EXPECT_FALSE(bleedsByRunningSums<std::uint16_t>({9, 9, 4}));
}

TEST(Bleed, TreatsTheLastSubresourceAndFailsWithoutMemory) {
    forEachElementType([]<typename T>(T) {
        CMOKTexture texture = randomTexture<T>({24, 18, 4, 2, 2, 2});
        for (std::size_t i = 3; i < 4 * 12 * 9 * 2; i += 8)
            static_cast<T*>(texture.getDataPtr(1, 1, 1))[i] = T{0};
        std::vector<T> before = elementsOf<T>(texture), expected = elementsOf<T>(texture, 1, 1, 1);
        referenceBleedLevel(LevelView<T>{expected.data(), {12, 9, 2}});
        isMemoryRefused = true;
        EXPECT_FALSE(Bleed(texture));
        isMemoryRefused = false;
        EXPECT_EQ(elementsOf<T>(texture), before);
        EXPECT_TRUE(Bleed(texture));
        EXPECT_EQ(elementsOf<T>(texture, 1, 1, 1), expected);
    });
}

}  // namespace
