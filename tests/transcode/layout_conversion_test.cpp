#include "transcode/pixels/layout_conversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "transcode/convert_layout.h"
#include "transcode_samples.h"

using namespace samples;
using testimages::Random;

namespace {

using Form = LayoutConversion::Form;

struct Layout {
    PixelType type;
    EMOKTVariableType variableType;
    PixelCodec codec() const { return PixelCodec(type, variableType); }
};

constexpr EMOKTColourSpace spaces[][2] = {
    {eColourSpaceLinear, eColourSpaceLinear}, {eColourSpaceSRGB, eColourSpaceLinear}, {eColourSpaceLinear, eColourSpaceSRGB}};

std::string describe(const Layout& from, const Layout& to) {
    std::ostringstream text;
    text << std::hex << from.type.id << " type " << from.variableType << " to " << to.type.id << " type " << to.variableType;
    return text.str();
}

Bytes convertedPlain(const Layout& from, const Layout& to, const EMOKTColourSpace (&space)[2], const Bytes& pixels,
                     std::size_t count) {
    PixelCodec fromCodec = from.codec(), toCodec = to.codec();
    Bytes results(count * toCodec.getBytesPerPixel());
    LayoutConversion::convertPlain(fromCodec, toCodec, space[0], space[1], pixels.data(), results.data(), count);
    return results;
}

/// Runs every form that the pair allows over random pixels and compares with the plain one.
void expectFormsAgree(const Layout& from, const Layout& to, std::size_t count, std::uint64_t seed,
                      std::uint64_t announcedPixels = 1000) {
    const PixelCodec fromCodec = from.codec(), toCodec = to.codec();
    const Bytes pixels = testimages::randomBytes(count * fromCodec.getBytesPerPixel(), seed);
    for (const auto& space : spaces) {
        const Bytes expected = convertedPlain(from, to, space, pixels, count);
        for (const InstructionSet level : {InstructionSet::baseline, detectInstructionSet()}) {
            LayoutConversion conversion(fromCodec, toCodec, space[0], space[1], announcedPixels, level);
            Bytes results(expected.size());
            conversion.convert(pixels.data(), results.data(), count);
            ASSERT_EQ(results, expected) << describe(from, to) << " form " << static_cast<int>(conversion.form());
        }
        if (!areConvertible(fromCodec, toCodec)) continue;
        Bytes results(expected.size());
        ConversionPlan(fromCodec, toCodec, space[0], space[1], announcedPixels).convert(pixels.data(), results.data(), count);
        ASSERT_EQ(results, expected) << describe(from, to) << " settled";
    }
}

/// A layout of one to four channels; some have errors.
Layout randomLayout(Random& random) {
    static constexpr std::uint8_t widths[] = {1, 2, 3, 4, 5, 6, 7, 8, 8, 10, 11, 12, 16, 16, 24, 32, 32, 40};
    std::string letters = "rgbalix";
    const bool isUniform = random.below(2) == 0;
    Layout layout{PixelType(), static_cast<EMOKTVariableType>(random.below(14))};
    const std::uint32_t channels = 1 + random.below(4);
    for (std::uint32_t i = 0; i < channels; ++i) {
        std::swap(letters[i], letters[i + random.below(7 - i)]);
        layout.type.layout.channelName[i] = static_cast<std::uint8_t>(letters[i]);
        layout.type.layout.channelBits[i] =
            isUniform && i > 0 ? layout.type.layout.channelBits[0] : widths[random.below(std::size(widths))];
    }
    // Widens the last channel to whole bytes, so that most layouts are free of errors.
    const unsigned int excess = layout.codec().totalBits % 8u;
    if (excess != 0)
        layout.type.layout.channelBits[channels - 1] =
            static_cast<std::uint8_t>(layout.type.layout.channelBits[channels - 1] + 8 - excess);
    return layout;
}

constexpr PixelType rgb565{'r', 'g', 'b', 0, 5, 6, 5, 0}, rgb8{'r', 'g', 'b', 0, 8, 8, 8, 0}, l8{'l', 0, 0, 0, 8, 0, 0, 0};
constexpr PixelType rgba8 = PixelTypeRGBA8, bgra8{'b', 'g', 'r', 'a', 8, 8, 8, 8};
constexpr EMOKTVariableType u8 = eVarUByteNorm, s8 = eVarSByteNorm, u16 = eVarUShortNorm, real = eVarFloat;

}  // namespace

TEST(LayoutConversionTest, FastFormsEqualThePlainFormForRandomLayouts) {
    Random random(11);
    for (int i = 0; i < 1500 && !HasFatalFailure(); ++i) {
        const Layout from = randomLayout(random);
        const Layout to = randomLayout(random);
        expectFormsAgree(from, to, random.below(90), random.next());
    }
    expectFormsAgree({PixelTypeRGBA16, u16}, {PixelTypeRGBA16, u16}, 500, 9, 1u << 20);
}

TEST(LayoutConversionTest, EveryTailOfTheByteMovesIsConverted) {
    for (const PixelType to : {bgra8, rgb8, l8, PixelTypeRGBA16, PixelType{'r', 'g', 0, 0, 8, 8, 0, 0}})
        for (const PixelType from : {rgba8, rgb8, l8})
            for (std::size_t count = 0; count < 36; ++count)
                expectFormsAgree({from, u8}, {to, to == PixelTypeRGBA16 ? u16 : eVarUByte}, count, count);
}

TEST(LayoutConversionTest, PicksTheFastestFormOfAPairAndItIsExact) {
    const Layout source{rgba8, u8};
    const bool hasVectors = detectInstructionSet() >= InstructionSet::sse41;
    const Form moves = hasVectors ? Form::byteShuffleSSE41 : Form::tables;
    const struct {
        Layout from, to;
        int space;
        Form form;
    } rows[] = {
        // clang-format off
        {source, {bgra8, u8}, 0, moves}, {source, {rgb8, u8}, 0, moves}, {{rgb8, u8}, source, 0, moves},
        {{l8, u8}, source, 0, moves}, {source, {rgba8, eVarUIntNorm}, 0, moves}, {source, {PixelTypeRGBA16, u16}, 0, moves},
        {source, source, 1, Form::tables}, {source, {rgb565, u16}, 0, Form::tables}, {{rgb565, u16}, source, 0, Form::tables},
        {source, {PixelTypeRGBA32, real}, 1, Form::tables}, {{rgba8, s8}, {rgba8, s8}, 0, Form::tables},
        {source, {l8, u8}, 0, Form::settled}, {{PixelTypeRGBA32, real}, source, 0, Form::settled},
        // Layouts with errors give zeroed pixels.
        {source, {{'r', 'q', 0, 0, 8, 8, 0, 0}, u8}, 0, Form::plain},
        {source, {{'r', 'g', 0, 0, 4, 8, 0, 0}, u8}, 0, Form::plain},
        {{{'r', 'g', 'b', 'a', 48, 48, 48, 48}, real}, source, 1, Form::plain},
        {source, {{'r', 'g', 'b', 'a', 32, 32, 64, 16}, real}, 1, Form::plain},
        // clang-format on
    };
    for (const auto& row : rows) {
        const auto& space = spaces[row.space];
        const LayoutConversion conversion(row.from.codec(), row.to.codec(), space[0], space[1], 1000, detectInstructionSet());
        EXPECT_EQ(conversion.form(), row.form) << describe(row.from, row.to);
        expectFormsAgree(row.from, row.to, 700, row.to.type.id);
        if (row.form != Form::plain) continue;
        const Bytes pixels = convertedPlain(row.from, row.to, space, Bytes(row.from.codec().getBytesPerPixel(), 0x5A), 1);
        EXPECT_EQ(pixels, Bytes(pixels.size())) << describe(row.from, row.to);
    }
}

TEST(LayoutConversionTest, ConvertsEveryLevelMemberAndFace) {
    const Layout fromLayout{rgba8, u8}, toLayout{rgb565, u16};
    for (const std::uint32_t width : {2u, 37u}) {
        const CMOKTexture from = textureOf(rgba8, {width, 5, 1, 3, 2, 6});
        CMOKTexture to = textureOf(rgb565, {width, 5, 1, 3, 2, 6}, eColourSpaceLinear, u16);
        PixelCodec fromCodec = fromLayout.codec(), toCodec = toLayout.codec();
        const int bytes = convertLayout(from, to, fromCodec, toCodec, eColourSpaceSRGB, eColourSpaceLinear);
        EXPECT_EQ(bytes, static_cast<int>(to.getDataSize()));
        // Levels, members and faces follow each other in both buffers, so that the whole converts as one run.
        EXPECT_EQ(bytesOf(to), convertedPlain(fromLayout, toLayout, spaces[1], bytesOf(from), from.getTextureSize()));
    }
}

TEST(LayoutConversionTest, StaysInsideBothTexturesWhateverTheCodecsSay) {
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
