#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "dxtn/dxtn.h"
#include "support/test_images.h"

using namespace moktexture;

namespace {

using Pixels = std::array<std::uint32_t, 16>;

/// The alpha block, which mode 1 does not have, and the colour block.
std::vector<std::uint64_t> encode(const Pixels& pixels, DXTMode mode) {
    const std::uint32_t edge = 4;
    std::vector<std::uint64_t> words(mode == 1 ? 1 : 2);
    CompressDXTn(pixels.data(), words.data(), &edge, &edge, &mode);
    return words;
}

constexpr std::uint32_t grey(std::uint32_t level, std::uint32_t alpha = 255) {
    return level * 0x010101u | alpha << 24;
}

Pixels withAlpha(Pixels pixels, std::size_t pixel, std::uint32_t alpha) {
    pixels[pixel] = (pixels[pixel] & 0xFFFFFF) | alpha << 24;
    return pixels;
}

Pixels checked(std::uint32_t even, std::uint32_t odd) {
    return {even, odd, even, odd, even, odd, even, odd, even, odd, even, odd, even, odd, even, odd};
}

/// A grey for each row, evenly spaced on the axis, with no endpoint near a step of 5-6-5.
Pixels greyRows(std::uint32_t lastAlpha = 255) {
    Pixels pixels;
    for (std::uint32_t pixel = 0; pixel < 16; ++pixel)
        pixels[pixel] = grey(38 + 64 * (pixel / 4), pixel < 12 ? 255 : lastAlpha);
    return pixels;
}

/// Colours around (100, 100, 100) whose channels add up to 300: multiplying the start axis (1, 1, 1) gives zero.
Pixels acrossTheStartAxis() {
    constexpr std::uint32_t a = 0xFF644C7C, b = 0xFF4C7C64, c = 0xFF7C644C;
    return {a, b, c, a, b, c, a, b, c, a, b, c, a, b, c, grey(100)};
}

/// Three colours just above a step of 5-6-5 in one channel each; both endpoints fall below all of these steps.
Pixels insideOneStep() {
    constexpr std::uint32_t o = 0xFF070307, r = 0xFF070308, g = 0xFF070407, b = 0xFF080307;
    return {o, o, r, o, o, o, o, g, o, o, o, b, o, o, o, o};
}

constexpr std::uint32_t dark = 0xFF563412, black = 0xFF000000, white = 0xFFFFFFFF;  // dark is 0x11AA in 5-6-5 form

}  // namespace

TEST(DXTnEncoder, EncodesTheColoursOfHandWorkedBlocks) {
    // clang-format off
    const struct { const char* name; Pixels pixels; std::uint64_t inMode1, inOthers; } cases[] = {
        //                                                                  indices  c1  c0     indices  c1  c0
        {"one colour",              checked(dark, dark),                    0x00000000000011AA, 0x00000000000011AA},
        {"one colour after 5-6-5",  checked(dark, 0xFF573517),              0x00000000000011AA, 0x00000000000011AA},
        {"one colour, cut-out",     withAlpha(checked(dark, dark), 5, 0),   0x55555D5511AA0000, 0x00000000000011AA},
        {"black, cut-out",          withAlpha(checked(black, black), 0, 0), 0x5555555700000000, 0x0000000000000000},
        {"two colours",             checked(dark, white),                   0x1111111111AAFFFF, 0x1111111111AAFFFF},
        {"two, last cut out",       withAlpha(checked(white, dark), 15, 0), 0xD1111111FFFF11AA, 0x4444444411AAFFFF},
        {"two, one all cut out",    checked(dark, white & 0xFFFFFF),        0xCCCCCCCCFFFF11AA, 0x1111111111AAFFFF},
        {"along the axis",          greyRows(),                             0x00AAFF552124E73C, 0x00AAFF552124E73C},
        {"transparent row counts",  greyRows(0),                            0xFFAAAA00E73C2124, 0x00AAFF552124E73C},
        {"no axis",                 acrossTheStartAxis(),                   0x00000000632C632C, 0x00000000632C632C},
        // Transparency is lost where both endpoints are equal.
        {"no axis, cut-out",        withAlpha(acrossTheStartAxis(), 3, 0),  0x00000000632C632C, 0x00000000632C632C},
        {"in a step",               insideOneStep(),                        0x0000000000000000, 0x0000000000000000},
        {"in a step, cut-out",      withAlpha(insideOneStep(), 0, 0),       0x0000000000000000, 0x0000000000000000}};
    // clang-format on
    for (const auto& row : cases) {
        EXPECT_EQ(encode(row.pixels, 1)[0], row.inMode1) << row.name;
        for (DXTMode mode = 2; mode <= 5; ++mode)
            EXPECT_EQ(encode(row.pixels, mode)[1], row.inOthers) << row.name << ", mode " << mode;
    }
}

TEST(DXTnEncoder, TruncatesExplicitAlphaAndRoundsHalvesOfInterpolatedAlphaUp) {
    Pixels steps, halves;
    for (std::uint32_t pixel = 0; pixel < 16; ++pixel) {
        steps[pixel] = grey(9, pixel * 16 + (pixel % 2 != 0 ? 15 : 8));
        halves[pixel] = grey(9, 100 + std::min(pixel, 14u));
    }
    for (const DXTMode mode : {2u, 3u})
        EXPECT_EQ(encode(steps, mode)[0], 0xFEDCBA9876543210u) << mode;
    for (const DXTMode mode : {4u, 5u})
        EXPECT_EQ(encode(halves, mode)[0], std::uint64_t{0002233445566771} << 16 | 0x6472) << mode;
}

/// Digests by an independent implementation.
TEST(DXTnEncoder, EncodesImagesLikeAnIndependentImplementation) {
    // clang-format off
    const std::uint64_t digests[][3] = {
        // DXT1,            DXT3,               DXT5
        {0x720AAC781012AFA1, 0xC5B612411841B779, 0xCC104B526F864717},  // gradient
        {0x2318927E4E4B9861, 0x773CAE36C9A3680A, 0xF2F318677048C558},  // noise
        {0x88AC3682BCB4346E, 0xD9C04599A6D08736, 0x05C595992108E9D4},  // edges
        {0xDD40E1DAC4DE2E9C, 0xE6903252EAAC3AA4, 0xCF4E581CA6ED22A2},  // text
        {0xF49AAC81E1C34BEE, 0x0AA1610FC390A45C, 0xAADF50C98EBF174E},  // cutOut
        {0xB40C818AB4A538CA, 0xA7D7134B29F176F8, 0xA505FA4BB61E3B9C}};  // softAlpha
    // clang-format on
    for (const testimages::Kind kind : testimages::allKinds) {
        const std::uint32_t width = 132, height = 60;
        const auto image = testimages::make(kind, width, height);
        for (const DXTMode mode : {1u, 3u, 5u}) {
            std::vector<std::uint8_t> blocks(width * height >> (mode == 1 ? 1 : 0));
            EXPECT_EQ(CompressDXTn(image.data(), blocks.data(), &width, &height, &mode), blocks.size());
            EXPECT_EQ(testimages::digest(blocks), digests[static_cast<int>(kind)][mode / 2]) << nameOf(kind) << mode;
        }
    }
}
