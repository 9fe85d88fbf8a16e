#include "transcode/pixels/PixelCodec.h"
#include "transcode/pixels/transfer_curve.h"
#include "transcode_samples.h"

using namespace samples;

namespace {

constexpr PixelType rgFloats{'r', 'g', 'b', 0, 11, 11, 10, 0};
constexpr auto one8 = [](std::uint8_t letter) { return PixelType{letter, 0, 0, 0, 8, 0, 0, 0}; };
constexpr auto red = [](std::uint8_t bits) { return PixelType{'r', 0, 0, 0, bits, 0, 0, 0}; };
constexpr float inf = std::numeric_limits<float>::infinity(), notANumber = std::numeric_limits<float>::quiet_NaN();

constexpr EChannelName R = eChannelRed, G = eChannelGreen, B = eChannelBlue, A = eChannelAlpha;

PixelCodec codecWith(PixelType type, EMOKTVariableType variableType, const Bytes& pixel) {
    PixelCodec codec(type, variableType);
    EXPECT_TRUE(codec.loadPixel(pixel.data()));
    return codec;
}

Bytes bytesOf(const PixelCodec& codec, std::size_t count) {
    return Bytes(codec.pixelBytes(), codec.pixelBytes() + count);
}

}  // namespace

TEST(PixelCodecTest, FlagsEveryErrorOfALayout) {
    // clang-format off
    const struct { PixelType type; std::uint32_t flags; } rows[] = {
        // layout, flags
        {rgb565, 0}, {PixelType(std::uint64_t{0x61626772}), 0}, {{'r', 'g', 'r', 0, 8, 8, 8, 0}, 1},
        {{'r', 'g', 0, 0, 8, 0, 0, 0}, 2}, {{'r', 'q', 0, 0, 8, 8, 0, 0}, 4}, {{'r', 0, 'b', 0, 8, 0, 8, 0}, 8},
        {{'r', 'g', 'b', 0, 4, 4, 4, 0}, 16}, {{'r', 'g', 'b', 'a', 64, 64, 64, 64}, 32},
        {{'r', 'q', 'r', 0, 0, 4, 5, 0}, 1 | 2 | 4 | 8 | 16}};
    // clang-format on
    for (const auto& row : rows)
        EXPECT_EQ(PixelCodec(row.type, u8).errorFlags, row.flags) << std::hex << row.type.id;
    EXPECT_FALSE(PixelCodec(rgba8, u8).loadPixel(nullptr));
}

TEST(PixelCodecTest, ReadsChannelsOfEveryKind) {
    const float small = std::bit_cast<float>(0x000000FFu), smaller = std::bit_cast<float>(0x000020FFu);
    // clang-format off
    const struct { PixelType type; EMOKTVariableType variableType; Bytes pixel; EChannelName name; float value; } rows[] = {
        // layout, channel type, bytes of the pixel, channel read, value
        {rgba8, u8, {1, 128, 2, 3}, G, 128.0f / 255.0f}, {rgba8, u32, {1, 2, 3, 51}, R, 0.2f},
        {rgb565, u16, {0xE0, 0x0F}, R, 1.0f / 31.0f}, {red(32), u32, {0xFF, 0xFF, 0xFF, 0xFF}, R, 1.0f},
        {red(32), u32, {0, 0, 0, 0x80}, R, 0.5f}, {red(8), s8, {0x7F}, R, 1.0f}, {red(8), s8, {0x80}, R, -0.0f},
        {red(8), eVarSByte, {0xFF}, R, -(127.0f / 126.0f)}, {red(16), s16, {0x01, 0x80}, R, -(1.0f / 32766.0f)},
        {red(40), s32, {0, 0, 0, 0x80, 0}, R, 0x1p-8f}, {red(64), s32, {0xFF, 0xFF, 0xFF, 0x7F, 0, 0, 0, 0}, R, 0x1p-32f},
        {red(8), s16, {0xFF}, R, -(127.0f / 128.0f)}, {rgb565, s16, {0, 0xF8}, R, -(15.0f / 16.0f)},
        {{'a', 'b', 'g', 'r', 1, 5, 5, 5}, s16, {0, 0x80}, A, -0.0f}, {{'a', 'b', 'g', 'r', 1, 5, 5, 5}, s16, {0, 0}, A, 0.0f},
        {red(16), real, {0x00, 0x3C}, R, 1.0f}, {red(16), real, {0x00, 0x00}, R, 0x1p-15f},
        {red(16), real, {0x00, 0xC0}, R, -2.0f}, {red(16), real, {0x00, 0x7C}, R, small},
        {red(16), real, {0x01, 0x7C}, R, smaller}, {rgFloats, real, {0, 0, 0, 0x78}, R, 1.0f},
        {red(32), real, {0, 0, 0x80, 0xFF}, R, -inf}, {red(8), real, {0x3C}, R, 0.0f}, {rgb565, u16, {0, 0}, A, 1.0f},
        {rgb565, eVarNone, {0, 0}, eChannelUnspecified, 1.0f}, {rgb565, u16, {0xFF, 0xFF}, eChannelLuminance, 0.0f},
        {rgb565, eVarNone, {0xFF, 0xFF}, R, 0.0f}, {{'r', 'g', 0, 0, 24, 8, 0, 0}, u8, {0xFF, 0, 0, 0}, G, 1.0f / 255.0f},
        {{'r', 'g', 0, 0, 4, 12, 0, 0}, u8, {0xFF, 0xFF}, G, 0.0f},
        {{'r', 'g', 0, 0, 32, 64, 0, 0}, u8, Bytes(12, 0xFF), R, 0.0f}};
    // clang-format on
    for (const auto& row : rows) {
        const float value = codecWith(row.type, row.variableType, row.pixel).readChannel(row.name);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(row.value))
            << &row - rows << ": " << value << " for " << row.value;
    }
}

TEST(PixelCodecTest, WritesChannelsOfEveryKind) {
    // clang-format off
    const struct { PixelType type; EMOKTVariableType variableType; EChannelName name; float value; std::uint64_t word;
                   } rows[] = {
        // layout, channel type, channel written, value, pixel word
        {rgba8, u8, G, 1.0f, 0xFF00}, {rgba8, u8, G, 0.5f, 0x8000}, {rgba8, u8, G, 1.1f, 0x1900}, {rgba8, u8, G, -1.0f, 0},
        {rgba8, u8, G, notANumber, 0}, {rgba8, u8, G, inf, 0}, {red(32), u32, R, 1.0f, 0},
        {red(32), u32, R, 0.5f, 0x80000000}, {red(8), s8, R, 1.0f, 0x7F}, {red(8), s8, R, -0.5f, 0xC0},
        {red(8), s8, R, -1.0f, 0x80}, {red(8), s8, R, -2.0f, 0x80}, {rgb565, u16, G, 1.0f, 0x07E0},
        {rgb565, u16, B, 2.0f, 0x003E}, {rgb565, u16, R, 2.0f, 0x1F000}, {rgb565, s16, R, -1.0f, 0x8000},
        {red(16), real, R, -1.0f, 0xBC00}, {red(16), real, R, 1.9999f, 0x3FFF}, {red(16), real, R, 131072.0f, 0x8000},
        {red(16), real, R, 0x1p-20f, 0xEC00}, {red(16), real, R, 0.0f, 0}, {rgFloats, real, G, 1.0f, 0x3C0u << 10},
        {rgFloats, real, G, -1.0f, (0x3C0u | 1u << 11) << 10}, {rgFloats, real, B, -1.0f, 0x1E0u | 1u << 10},
        {red(32), real, R, -2.0f, 0xC0000000}, {red(8), real, R, 1.0f, 0}, {{'r', 'g', 0, 0, 32, 64, 0, 0}, u8, R, 1.0f, 0}};
    // clang-format on
    for (const auto& row : rows) {
        PixelCodec codec(row.type, row.variableType);
        codec.writeChannel(row.name, row.value);
        std::uint64_t word;
        std::memcpy(&word, codec.pixelBytes(), sizeof word);
        EXPECT_EQ(word, row.word) << &row - rows << ": " << row.value;
    }
    PixelCodec full = codecWith(rgb565, u16, {0xFF, 0xFF});
    full.writeChannel(G, 0.0f);
    EXPECT_EQ(bytesOf(full, 2), (Bytes{0x1F, 0xF8})) << "writing clears the field's own bits alone";
}

TEST(PixelCodecTest, ChoosesTheSourceOfGreyAlphaAndUnspecified) {
    constexpr PixelType li{'l', 'i', 0, 0, 8, 8, 0, 0}, la{'l', 'a', 0, 0, 8, 8, 0, 0}, ri{'r', 'i', 0, 0, 8, 8, 0, 0};
    constexpr PixelType ax{'a', 'x', 0, 0, 8, 8, 0, 0}, rgbx{'r', 'g', 'b', 'x', 8, 8, 8, 8}, rg{'r', 'g', 0, 0, 8, 8, 0, 0};
    // clang-format off
    const struct { PixelType from; Bytes pixel; PixelType to; Bytes expected; } rows[] = {
        // from, pixel, to, expected pixel
        {rgba8, {10, 20, 30, 40}, {'b', 'g', 'r', 'a', 8, 8, 8, 8}, {30, 20, 10, 40}},
        {one8('l'), {77}, rgba8, {77, 77, 77, 255}}, {one8('i'), {77}, rgba8, {77, 77, 77, 255}},
        {one8('a'), {77}, rgba8, {0, 0, 0, 77}}, {one8('r'), {77}, rgba8, {77, 0, 0, 255}}, {la, {77, 9}, ri, {77, 77}},
        {ri, {5, 77}, rgba8, {5, 77, 77, 255}}, {one8('l'), {77}, li, {77, 0}}, {one8('i'), {77}, li, {0, 77}},
        {li, {70, 80}, li, {70, 0}}, {li, {70, 80}, rgba8, {80, 80, 80, 255}}, {li, {70, 80}, one8('i'), {80}},
        {rgba8, {100, 150, 50, 9}, one8('l'), {132}}, {rgba8, {100, 150, 50, 9}, one8('i'), {100}},
        {rgba8, {100, 150, 50, 9}, li, {132, 0}}, {rg, {100, 151}, one8('i'), {126}}, {rg, {100, 0}, one8('l'), {21}},
        {one8('a'), {77}, one8('l'), {0}}, {one8('a'), {77}, one8('i'), {0}}, {rgbx, {1, 2, 3, 4}, rgba8, {1, 2, 3, 4}},
        {rgba8, {1, 2, 3, 4}, rgbx, {1, 2, 3, 4}}, {ax, {8, 9}, one8('a'), {8}}, {ax, {8, 9}, one8('x'), {9}},
        {one8('r'), {1}, one8('x'), {255}}};
    // clang-format on
    for (const auto& row : rows) {
        PixelCodec destination(row.to, u8);
        destination.convertFrom(codecWith(row.from, u8, row.pixel));
        EXPECT_EQ(bytesOf(destination, row.expected.size()), row.expected) << "row " << &row - rows;
    }
}

TEST(PixelCodecTest, CurvesColourChannelsAfterQuantising) {
    PixelCodec codec = codecWith(rgba8, u8, {0, 55, 255, 55});
    codec.convertColourSpace(eColourSpaceSRGB, eColourSpaceSRGB);
    codec.convertColourSpace(static_cast<EMOKTColourSpace>(2), eColourSpaceLinear);
    EXPECT_EQ(bytesOf(codec, 4), (Bytes{0, 55, 255, 55}));
    codec.convertColourSpace(eColourSpaceSRGB, eColourSpaceLinear);
    EXPECT_EQ(bytesOf(codec, 4), (Bytes{0, 128, 255, 55}));

    PixelCodec coarse(red(8), u8);
    coarse.convertFrom(codecWith(red(32), real, {0x42, 0x60, 0xE5, 0x3A}));  // 0.00175, which a curve alone takes to 6
    coarse.convertColourSpace(eColourSpaceSRGB, eColourSpaceLinear);
    EXPECT_EQ(bytesOf(coarse, 1), Bytes{0});
}

TEST(TransferCurveTest, PowerIsRoundedOnce) {
    testimages::Random random(5);
    for (const float exponent : {0.41666666f, 2.4f})
        for (int i = 0; i < 200000; ++i) {
            // All positive floats in turn with those from 0 to 2.
            const float base = i % 2 == 0 ? std::bit_cast<float>(1 + random.below(0x7F7FFFFF))
                                          : static_cast<float>(random.next()) * 0x1p-31f + 0x1p-30f;
            const double exact = std::pow(static_cast<double>(base), static_cast<double>(exponent));
            const auto rounded = static_cast<double>(fixedPower(base, exponent));
            const bool isHuge = exact > static_cast<double>(std::numeric_limits<float>::max());
            if (exact < static_cast<double>(std::numeric_limits<float>::min())) continue;
            ASSERT_TRUE(isHuge ? std::isinf(rounded) : std::abs(rounded - exact) <= exact * 0x1p-24 * (1.0 + 1e-6)) << base;
        }
    EXPECT_TRUE(std::isnan(fixedPower(notANumber, 2.4f)));
    EXPECT_TRUE(std::isinf(fixedPower(inf, 0.41666666f)));
    EXPECT_EQ(fixedPower(1.0f, 2.4f), 1.0f);
}

TEST(TransferCurveTest, SegmentsMeetAtTheThresholds) {
    EXPECT_EQ(linearToSRGB(0.00304f), 0.00304f * 12.92f);
    EXPECT_EQ(sRGBToLinear(0.03928f), 0.03928f / 12.92f);
    EXPECT_NEAR(linearToSRGB(std::nextafter(0.00304f, 1.0f)), 0.03874f, 1e-5f);
    EXPECT_NEAR(sRGBToLinear(std::nextafter(0.03928f, 1.0f)), 0.00308f, 1e-5f);
    EXPECT_EQ(linearToSRGB(-2.0f), -2.0f * 12.92f);
}

TEST(TransferCurveTest, GivesTheSameBitsEverywhere) {
    Bytes bytes;
    for (const TransferCurve curve : {linearToSRGB, sRGBToLinear})
        for (int i = 0; i <= 65535; ++i) {
            const auto bits = std::bit_cast<std::uint32_t>(curve(static_cast<float>(i) / 65535.0f));
            for (int shift = 0; shift < 32; shift += 8)
                bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
        }
    EXPECT_EQ(testimages::digest(bytes), 12474420253858761967u);
}
