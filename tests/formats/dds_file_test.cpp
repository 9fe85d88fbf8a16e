// DDS files by every loader.
#include "layout_files.h"

using namespace layoutfiles;

namespace {

struct Format {
    std::uint32_t flags, fourCC, bits, red, green, blue, alpha;
};

constexpr std::uint32_t code(const char (&text)[5]) {
    return static_cast<std::uint32_t>(text[0] | text[1] << 8 | text[2] << 16 | text[3] << 24);
}

Bytes headerWith(const Format& f, std::uint32_t flags, std::uint32_t levels, std::uint32_t caps, std::uint32_t caps2,
                 std::uint32_t width = 9, std::uint32_t height = 5, std::uint32_t depth = 0) {
    return words({code("DDS "), 124, flags, height, width, 0, depth, levels}) + Bytes(44) +
           words({32, f.flags, f.fourCC, f.bits, f.red, f.green, f.blue, f.alpha, caps, caps2, 0, 0, 0});
}

constexpr std::uint32_t rgb = 0x40, fourCC = 4, alphaPixels = 1, alphaOnly = 2, luminance = 1 << 17, bumpL = 1 << 18,
                        dudv = 1 << 19;

// The pixel format that is written for each D3DFORMAT; most are read back as the same.
// clang-format off
const std::pair<std::uint32_t, Format> written[] = {
    {20, {rgb, 0, 24, 0xFF0000, 0xFF00, 0xFF, 0}}, {21, {rgb | alphaPixels, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000}},
    {23, {rgb, 0, 16, 0xF800, 0x7E0, 0x1F, 0}}, {24, {rgb, 0, 16, 0x7C00, 0x3E0, 0x1F, 0}},
    {25, {rgb | alphaPixels, 0, 16, 0x7C00, 0x3E0, 0x1F, 0x8000}}, {26, {rgb | alphaPixels, 0, 16, 0xF00, 0xF0, 0xF, 0xF000}},
    {27, {rgb, 0, 8, 0xE0, 0x1C, 0x3, 0}}, {28, {alphaOnly, 0, 8, 0, 0, 0, 0xFF}},
    {29, {rgb | alphaPixels, 0, 16, 0xE0, 0x1C, 0x3, 0xFF00}},
    {31, {rgb | alphaPixels, 0, 32, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000}}, {34, {rgb, 0, 32, 0xFFFF, 0xFFFF0000, 0, 0}},
    {35, {rgb | alphaPixels, 0, 32, 0x3FF, 0xFFC00, 0x3FF00000, 0xC0000000}}, {50, {luminance, 0, 8, 0xFF, 0, 0, 0}},
    {51, {luminance | alphaPixels, 0, 16, 0xFF, 0, 0, 0xFF00}}, {52, {luminance | alphaPixels, 0, 8, 0xF, 0, 0, 0xF0}},
    {60, {dudv, 0, 16, 0xFF, 0xFF00, 0, 0}}, {61, {bumpL, 0, 16, 0x1F, 0x3E0, 0xFC00, 0}},
    {62, {bumpL, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0}}, {63, {dudv, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}},
    {64, {dudv, 0, 32, 0xFFFF, 0xFFFF0000, 0, 0}}, {67, {dudv | alphaPixels, 0, 32, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000}},
    {81, {luminance, 0, 16, 0xFFFF, 0, 0, 0}}};
// clang-format on

/// The header that a number sets, 9 by 5 pixels.
CMOKTextureHeader headerFor(std::uint32_t number, std::uint32_t levels = 1, std::uint32_t faces = 1) {
    CMOKTextureHeader header(eFmtUnknown, 5, 9, 1, levels, 1, faces, eColourSpaceLinear, eVarNone, false);
    EXPECT_TRUE(header.setD3DFormat(number)) << number;
    return header;
}

CMOKTexture filled(const CMOKTextureHeader& header) {
    return CMOKTexture(header, testimages::randomBytes(header.getDataSize(), 8).data());
}

TEST(DDSFile, EveryFormatRoundTrips) {
    std::vector<std::pair<std::uint32_t, Format>> formats(std::begin(written), std::end(written));
    for (const std::uint32_t number : {code("DXT1"), code("DXT2"), code("DXT3"), code("DXT4"), code("DXT5"), code("YUY2"),
                                       code("UYVY"), 36u, 112u, 113u, 114u, 116u})
        formats.push_back({number, {fourCC, number, 0, 0, 0, 0, 0}});
    for (const auto& [number, format] : formats) {
        SCOPED_TRACE(number);
        const CMOKTexture texture = filled(headerFor(number));
        ASSERT_EQ(texture.getD3DFormat(), number);
        const Bytes image = save(texture, "dds");
        EXPECT_EQ(image, headerWith(format, 0x1007, 1, 0x1000, 0) + pixelsOf(texture));
        CMOKTexture back;
        EXPECT_EQ(load(image, back), eLoadOk);
        EXPECT_EQ(contentsOf(back), contentsOf(texture));
    }
    // MOKTC is written, and read back as a texture without pixels.
    for (const auto& [format, number] : {std::pair{eFmtMOKTC2bppRGBA, code("MTC2")}, {eFmtMOKTC4bppRGB, code("MTC4")}}) {
        const CMOKTexture texture = random(format, eVarUByteNorm, 1, 1, 1);
        const Bytes image = save(texture, "dds");
        EXPECT_EQ(image, headerWith({fourCC, number, 0, 0, 0, 0, 0}, 0x1007, 1, 0x1000, 0) + pixelsOf(texture));
        EXPECT_EQ(loadLeniently(image, "a.dds").getPixelType(), eFmtUnknown);
    }
    // D3DFMT_X8R8G8B8 has a number but no row; rgba 8.8.8.8 has none.
    EXPECT_TRUE(save(filled(headerFor(22)), "dds").empty());
    EXPECT_TRUE(save(random(PixelTypeRGBA8, eVarUByteNorm, 1, 1, 1), "dds").empty());
}

TEST(DDSFile, PixelDataIsOrderedByLayerFaceAndLevel) {
    const Format argb = written[1].second;
    CMOKTexture texture = filled(headerFor(21, 3, 6));
    Bytes expected = headerWith(argb, 0x21007, 3, 0x401008, 0xFE00);
    for (unsigned int face = 0; face < 6; ++face)
        for (unsigned int level = 0; level < 3; ++level)
            append(expected, texture.getDataPtr(level, 0, face), texture.getDataSize(static_cast<int>(level), false, false));
    EXPECT_EQ(save(texture, "dds"), expected);
    EXPECT_EQ(contentsOf(loadLeniently(expected, "a.dds")), contentsOf(texture));
    EXPECT_EQ(save(filled(headerFor(21, 1, 6)), "dds")[108], 8);

    // Layers and depth are written and not declared.
    const CMOKTexture deep = random(PixelType('a', 'r', 'g', 'b', 8, 8, 8, 8), eVarUIntNorm, 2, 2, 1, 2);
    const Bytes image = save(deep, "dds");
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 128), headerWith(argb, 0x21007, 2, 0x401008, 0));
    EXPECT_EQ(std::memcmp(image.data() + image.size() / 2 + 64, deep.getDataPtr(0, 1, 0), 360), 0);
    // A texture with missing pixels is not written; one without pixels is.
    texture.setNumFaces(7);
    EXPECT_TRUE(save(texture, "dds").empty());
    texture.setNumMIPLevels(0), texture.setNumFaces(0xFFFFFFFF), texture.setNumArrayMembers(0xFFFFFFFF);
    EXPECT_EQ(save(texture, "dds").size(), 128u);
}

TEST(DDSFile, PixelFormatsAreReadByFlagsBitsAndMasks) {
    // The number 0 leaves the format unknown; LoadTexture() knows more layouts.
    // clang-format off
    const struct { Format format; std::uint32_t number; bool isRefused = false; ELoadStatus status = eLoadOk; } cases[] = {
        {{rgb | fourCC, 21, 32, 0, 0, 0, 0}, 21}, {{fourCC, 0xFF, 0, 0, 0, 0, 0}, 0, true, eLoadUnsupported},
        {{fourCC, code("DX10"), 0, 0, 0, 0, 0}, 0, false, eLoadUnsupported}, {{fourCC, 111, 0, 0, 0, 0, 0}, 111},
        {{rgb | dudv, 0, 24, 0xFF0000, 0xFF00, 0xFF, 5}, 20}, {{rgb, 0, 16, 0xF00, 0xF0, 0xF, 0xF000}, 0},
        {{rgb, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0}, 0}, {{rgb | alphaPixels, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}, 0},
        {{bumpL | dudv, 0, 16, 0x1F, 0x3E0, 0xFC00, 3}, 61}, {{dudv | luminance, 0, 32, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000}, 67},
        {{luminance | alphaOnly, 0, 16, 0xFF, 0, 0, 0xFF00}, 0}, {{alphaOnly, 0, 8, 1, 2, 3, 0xFF}, 28},
        {{alphaOnly, 0, 8, 0, 0, 0, 0xF}, 0, true}, {{alphaPixels, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000}, 0, true, eLoadUnsupported}};
    // clang-format on
    for (const auto& item : cases) {
        SCOPED_TRACE(&item - cases);
        const Bytes image = headerWith(item.format, 2, 2, 0, 0x200, 1, 1) + Bytes(200, 7);
        const CMOKTexture texture = loadLeniently(image, "b.DdS");
        const CMOKTextureHeader expected = item.number != 0 ? headerFor(item.number) : CMOKTextureHeader();
        EXPECT_EQ(texture.getPixelType(), expected.getPixelType());
        EXPECT_EQ(texture.getChannelType(), expected.getChannelType());
        EXPECT_EQ(texture.getDataPtr() == nullptr, item.isRefused);
        CMOKTexture loaded;
        EXPECT_EQ(load(image, loaded), item.status);
    }
}

TEST(DDSFile, MalformedHeadersLoadOnlyLeniently) {
    // At 8, the flags: none of the four required ones, one of them, a pitch. LoadTexture() believes neither flags nor a depth or
    // levels that no flag announces.
    // clang-format off
    checkHeaderFields(headerWith(written[1].second, 0x1007, 1, 0, 0, 3, 2) + testimages::randomBytes(24, 1), "head.dds", {
        {0, code("DDX "), eLoadUnknown, -1, true}, {4, 123, eLoadCorrupt, -1, true}, {8, 0xEFF8, eLoadOk, -1, true},
        {8, 0x1000, eLoadOk, 24}, {8, 0x100F, eLoadOk, -1}, {12, 0xFFFFFFFF, eLoadTooLarge, -1}, {12, 0, eLoadOk, 12},
        {20, 0xFFFFFFFF, eLoadOk, 24}, {24, 2, eLoadOk, 48}, {28, 0, eLoadOk, 0}, {28, 2, eLoadOk, 28},
        {28, 256, eLoadTooLarge, -1}, {76, 0, eLoadOk, 24}, {112, 0x200, eLoadTruncated, 144}, {112, 0xFC00, eLoadOk, 24}});
    // clang-format on
}

}  // namespace
