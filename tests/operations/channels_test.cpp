#include <limits>
#include <tuple>

#include "image_operations.h"
#include "operation_textures.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

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
        {0x1.2345p24f, 0x1234500}, {std::numeric_limits<float>::quiet_NaN(), 0}};
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
    const auto expectElement = []<typename D>(S value, D expected) {
        CMOKTexture destination = textureOf<D>({}, {});
        EXPECT_TRUE(CopyChannels(destination, textureOf<S>({}, {0, value, 0, 0}), 1, alpha, green));
        EXPECT_EQ(elementsOf<D>(destination)[3], expected) << +value;
    };
    for (const auto& row : rows)
        std::apply([&](S value, auto... expected) { (expectElement(value, expected), ...); }, row);
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
    for (std::size_t i = 0; i < expected.size(); i += 4)
        expected[i] = static_cast<std::uint16_t>(static_cast<const std::uint8_t*>(source.getDataPtr())[i + 3] * 257);
    EXPECT_TRUE(CopyChannels(texture, source, 1, red, alpha));
    for (const Shape& other : {Shape{20, 17, 3, 4, 3, 6}, Shape{21, 16, 3, 4, 3, 6}, Shape{21, 17, 2, 4, 3, 6},
                               Shape{21, 17, 3, 3, 3, 6}, Shape{21, 17, 3, 4, 2, 6}, Shape{21, 17, 3, 4, 3, 1}}) {
        const CMOKTexture otherSource = randomTexture<std::uint8_t>(other);
        EXPECT_FALSE(CopyChannels(texture, otherSource, 1, red, alpha));
        EXPECT_TRUE(CopyChannels(texture, otherSource, 0, nullptr, nullptr));
    }
    EXPECT_FALSE(SetChannels(texture, 1, red, nullptr));
    EXPECT_FALSE(SetChannelsFloat(texture, 1, nullptr, nullptr));
    EXPECT_FALSE(CopyChannels(texture, texture, 1, red, nullptr));
    EXPECT_FALSE(CopyChannels(texture, texture, 1, nullptr, red));
    EXPECT_TRUE(SetChannels(texture, 0, nullptr, nullptr));
    EXPECT_EQ(elementsOf<std::uint16_t>(texture), expected);
}

}  // namespace
