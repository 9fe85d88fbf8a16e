#include "transcode/convert_layout.h"

#include "transcode_samples.h"

using namespace samples;
using testimages::Random;

namespace {

using Form = ConversionForm;

struct Layout {
    PixelType type;
    EMOKTVariableType variableType;
    PixelCodec codec() const { return PixelCodec(type, variableType); }
};

constexpr EMOKTColourSpace spaces[][2] = {
    {eColourSpaceLinear, eColourSpaceLinear}, {eColourSpaceSRGB, eColourSpaceLinear}, {eColourSpaceLinear, eColourSpaceSRGB}};

testing::Message describe(const Layout& from, const Layout& to) {
    return testing::Message() << std::hex << from.type.id << " type " << from.variableType << " to " << to.type.id << " type "
                              << to.variableType;
}

/// Without announced pixels the conversion goes pixel by pixel.
Bytes converted(const Layout& from, const Layout& to, const EMOKTColourSpace (&space)[2], const Bytes& pixels, std::size_t count,
                std::uint64_t announcedPixels = 0, InstructionSet instructionSet = InstructionSet::baseline) {
    LayoutConversion conversion({from.codec(), to.codec(), space[0], space[1], announcedPixels, instructionSet});
    Bytes results(count * to.codec().getBytesPerPixel());
    conversion.convert(pixels.data(), results.data(), count);
    return results;
}

/// Runs every form that the pair allows over random pixels and compares with the conversion pixel by pixel.
void expectFormsAgree(const Layout& from, const Layout& to, std::size_t count, std::uint64_t seed,
                      std::uint64_t announcedPixels = 1000) {
    const PixelCodec fromCodec = from.codec(), toCodec = to.codec();
    const Bytes pixels = testimages::randomBytes(count * fromCodec.getBytesPerPixel(), seed);
    for (const auto& space : spaces) {
        const Bytes expected = converted(from, to, space, pixels, count);
        for (const InstructionSet set : {InstructionSet::baseline, detectInstructionSet()})
            ASSERT_EQ(converted(from, to, space, pixels, count, announcedPixels, set), expected) << describe(from, to);
        if (!areConvertible(fromCodec, toCodec)) continue;
        Bytes results(expected.size());
        ConversionPlan({fromCodec, toCodec, space[0], space[1], announcedPixels, InstructionSet::baseline})
            .convert(pixels.data(), results.data(), count);
        ASSERT_EQ(results, expected) << describe(from, to) << " channel by channel";
    }
}

/// A layout of one to four channels; some have errors.
Layout randomLayout(Random& random) {
    static constexpr std::uint8_t widths[] = {1, 2, 3, 4, 5, 6, 7, 8, 8, 10, 11, 12, 16, 16, 24, 32, 32, 40};
    std::string letters = "rgbalix";
    const bool isUniform = random.below(2) == 0;
    Layout layout{PixelType(), static_cast<EMOKTVariableType>(random.below(14))};
    auto& [names, bits] = layout.type.layout;
    const std::uint32_t channels = 1 + random.below(4);
    for (std::uint32_t i = 0; i < channels; ++i) {
        std::swap(letters[i], letters[i + random.below(7 - i)]);
        names[i] = static_cast<std::uint8_t>(letters[i]);
        bits[i] = isUniform && i > 0 ? bits[0] : widths[random.below(std::size(widths))];
    }
    // Widens the last channel to whole bytes, so that most layouts are free of errors.
    bits[channels - 1] = static_cast<std::uint8_t>(bits[channels - 1] + (8 - layout.codec().totalBits % 8u) % 8u);
    return layout;
}

constexpr PixelType rgb8{'r', 'g', 'b', 0, 8, 8, 8, 0}, l8{'l', 0, 0, 0, 8, 0, 0, 0};
constexpr PixelType bgra8{'b', 'g', 'r', 'a', 8, 8, 8, 8};

}  // namespace

TEST(ConvertLayout, AllFormsAgreeForRandomLayouts) {
    Random random(11);
    for (int i = 0; i < 1500 && !HasFatalFailure(); ++i)
        expectFormsAgree(randomLayout(random), randomLayout(random), random.below(90), 100 + i);
    expectFormsAgree({PixelTypeRGBA16, u16}, {PixelTypeRGBA16, u16}, 500, 9, 1u << 20);
}

TEST(ConvertLayout, ByteShufflesConvertEveryNumberOfPixels) {
    for (const PixelType to : {bgra8, rgb8, l8, PixelTypeRGBA16, PixelType{'r', 'g', 0, 0, 8, 8, 0, 0}})
        for (const PixelType from : {rgba8, rgb8, l8})
            for (std::size_t count = 0; count < 36; ++count)
                expectFormsAgree({from, u8}, {to, to == PixelTypeRGBA16 ? u16 : eVarUByte}, count, count);
}

TEST(ConvertLayout, ChoosesTheFastestFormOfAPair) {
    const Layout source{rgba8, u8};
    const Form shuffle = detectInstructionSet() >= InstructionSet::sse41 ? Form::byteShuffle : Form::tables;
    // clang-format off
    const struct { Layout from, to; int space; Form form; } rows[] = {
        // from                       to                          space form
        {source,                      {bgra8, u8},                  0, shuffle},
        {source,                      {rgb8, u8},                   0, shuffle},
        {source,                      {rgba8, eVarUIntNorm},        0, shuffle},
        {source,                      {PixelTypeRGBA16, u16},       0, shuffle},
        {source,                      source,                       1, Form::tables},
        {source,                      {rgb565, u16},                0, Form::tables},
        {source,                      {PixelTypeRGBA32, real},      1, Form::tables},
        {source,                      {l8, u8},                     0, Form::perChannel},
        {{PixelTypeRGBA32, real},     source,                       0, Form::perChannel},
        // Layouts with errors give zeroed pixels.
        {source,                      {{'r', 'q', 0, 0, 8, 8, 0, 0}, u8},             0, Form::pixelByPixel},
        {source,                      {{'r', 'g', 0, 0, 4, 8, 0, 0}, u8},             0, Form::pixelByPixel},
        {{{'r', 'g', 'b', 'a', 48, 48, 48, 48}, real},                        source, 1, Form::pixelByPixel},
        {source,                      {{'r', 'g', 'b', 'a', 32, 32, 64, 16}, real},   1, Form::pixelByPixel}};
    // clang-format on
    for (const auto& row : rows) {
        const auto& space = spaces[row.space];
        const LayoutConversion conversion({row.from.codec(), row.to.codec(), space[0], space[1], 1000, detectInstructionSet()});
        EXPECT_EQ(conversion.form(), row.form) << describe(row.from, row.to);
        expectFormsAgree(row.from, row.to, 700, row.to.type.id);
        if (row.form != Form::pixelByPixel) continue;
        const Bytes pixels = converted(row.from, row.to, space, Bytes(row.from.codec().getBytesPerPixel(), 0x5A), 1);
        EXPECT_EQ(pixels, Bytes(pixels.size())) << describe(row.from, row.to);
    }
}

// The pixels of two layers of 8192 by 8192 have 2^32 bits, which the sizes of a header count as 0.
TEST(ConvertLayout, CountsThePixelsOfLargeTexturesIn64Bits) {
    for (const std::uint32_t layers : {1u, 2u, 3u, 500u}) {
        const CMOKTextureHeader from(rgba8.id, 8192, 8192, 1, 1, layers, 1, eColourSpaceLinear, u8, false);
        const CMOKTextureHeader to(rgb565.id, 8192, 8192, 1, 1, layers, 1, eColourSpaceLinear, u16, false);
        EXPECT_EQ(convertiblePixels(from, to, PixelCodec(rgba8, u8), PixelCodec(rgb565, u16)), std::uint64_t{layers} << 26);
    }
}

TEST(ConvertLayout, StaysInsideBothTexturesWhateverTheCodecsAre) {
    for (const Layout& layout : {Layout{rgba8, u8}, {rgb565, u16}, {PixelTypeRGBA32, real}}) {
        const CMOKTexture from = textureOf(rgb8, {20, 20, 1, 3, 2, 6});
        CMOKTexture to = textureOf(rgb565, {7, 20, 1, 3, 2, 6}, eColourSpaceLinear, u16);
        PixelCodec fromCodec = layout.codec(), toCodec = layout.codec();
        convertLayout(from, to, fromCodec, toCodec, eColourSpaceLinear, eColourSpaceLinear);
        CMOKTexture empty;
        EXPECT_EQ(convertLayout(from, empty, fromCodec, toCodec, eColourSpaceLinear, eColourSpaceLinear), 0);
        EXPECT_EQ(convertLayout(empty, to, fromCodec, toCodec, eColourSpaceLinear, eColourSpaceLinear), 0);
    }
}
