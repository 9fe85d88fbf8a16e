// KTX files by every loader.
#include "layout_files.h"

using namespace layoutfiles;

namespace {

constexpr std::uint32_t glUnsignedByte = 0x1401, glRGBA = 0x1908, glRGBA8 = 0x8058;
const Bytes identifier = {0xAB, 0x4B, 0x54, 0x58, 0x20, 0x31, 0x31, 0xBB, 0x0D, 0x0A, 0x1A, 0x0A};
const Bytes pixels = testimages::randomBytes(4 * (3 * 2 + 1), 4);

/// The header of an rgba 8.8.8.8 texture, 3 by 2 pixels, of two levels.
Bytes headerWith(std::uint32_t keyValueSize) {
    return identifier + words({0x04030201, glUnsignedByte, 1, glRGBA, glRGBA8, glRGBA, 3, 2, 0, 1, 1, 2, keyValueSize});
}

/// A pair with `padding` zeroes behind it.
Bytes pair(const std::string& text, std::size_t padding, std::uint32_t sizeOff = 0) {
    Bytes bytes = words({static_cast<std::uint32_t>(text.size()) + sizeOff});
    append(bytes, text.data(), text.size());
    bytes.resize(bytes.size() + padding);
    return bytes;
}

std::string orientation(const std::string& value) {
    return std::string("KTXOrientation") + '\0' + value;
}

TEST(KTXFile, RoundTripsWithTheExpectedBytes) {
    // clang-format off
    const struct {
        PixelType format; EMOKTVariableType type, typeBack; std::uint32_t glType, typeSize, glFormat, internalFormat, base;
    } cases[] = {
        // Format                                     Type           Type when read  glType, glTypeSize, glFormat, internal and base
        {PixelTypeRGBA8,                              eVarUByteNorm, eVarUByteNorm, glUnsignedByte, 4, glRGBA, glRGBA8, glRGBA},
        {PixelType('r', 'g', 'b', 0, 32, 32, 32, 0),  eVarFloat,     eVarFloat,     0x1406,        12, 0x1907, 0x8815,  0x1907},
        {eFmtMOKTC2bppRGB,                            eVarUByteNorm, eVarUIntNorm,  0,              0, 0,      0x8C01,  0x8C01}};
    // clang-format on
    for (const auto& item : cases) {
        CMOKTexture texture = random(item.format, item.type, 3, 2, 6, 2);
        texture.setOrientation(eOrientLeft | eOrientUp | eOrientOut);
        texture.setBorder(1, 2, 3);
        const Bytes header = identifier + words({0x04030201, item.glType, item.typeSize, item.glFormat, item.internalFormat,
                                                 item.base, 9, 5, 2, 2, 6, 3, 32});
        const Bytes image = save(texture, "ktx");
        EXPECT_EQ(image, header + pair(orientation("S=lT=uR=o") + '\0', 3) + pixelsOf(texture));

        CMOKTexture back;
        ASSERT_EQ(load(image, back), eLoadOk);
        CMOKTextureHeader expected(item.format.id, 5, 9, 2, 3, 2, 6, eColourSpaceLinear, item.typeBack, false);
        expected.setOrientation(eOrientUp);
        EXPECT_EQ(contentsOf(back), contentsOf(CMOKTexture(expected, texture.getDataPtr())));
    }
    CMOKTexture plain = random(PixelTypeRGBA8, eVarUByteNorm, 1, 1, 1);
    EXPECT_TRUE(save(random(eFmtETC1, eVarUByteNorm, 1, 1, 1), "ktx").empty());
    const TemporaryFolder folder;
    plain.setNumMIPLevels(0);
    EXPECT_FALSE(CMOKTexture(plain.getHeader(), nullptr).saveFile(folder.path("a.ktx").c_str()));
    EXPECT_EQ(folder.read("a.ktx").size(), 64u + 32);
}

TEST(KTXFile, OnlyTheFirstLetterOfAnOrientationIsRead) {
    const std::string other = "other " + std::string(10, 'x');
    // clang-format off
    const struct { Bytes pairs; unsigned int orientation; ELoadStatus status; } cases[] = {
        {{}, 2, eLoadOk}, {pair(orientation("d"), 0), 0, eLoadOk}, {pair(orientation("l"), 0), 1, eLoadOk},
        {pair(orientation("S=l,T=d"), 2), 2, eLoadOk},
        {pair(orientation(""), 1), 2, eLoadOk},                               // too short for a value
        {pair(orientation("i"), 0) + pair(orientation("l"), 0), 1, eLoadOk},  // the later one replaces
        // Behind a size that is no multiple of 4 the lenient reader skips 4 bytes or none and reads a pair there.
        {pair(other + "x", 4) + pair(orientation("l"), 0), 1, eLoadCorrupt},
        {pair(other + "x", 3) + pair(orientation("l"), 0), 2, eLoadOk},
        {pair(other + "xxxxxx", 2) + pair(orientation("l"), 0), 2, eLoadOk},
        {pair(orientation("l"), 0, 0xFFFFFFEF), 1, eLoadCorrupt},  // ends beyond the file
        {words({0}) + pair(orientation("l"), 0), 2, eLoadCorrupt}};
    // clang-format on
    CMOKTexture texture;
    for (const auto& item : cases) {
        SCOPED_TRACE(&item - cases);
        const Bytes image = headerWith(static_cast<std::uint32_t>(item.pairs.size())) + item.pairs + pixels;
        const CMOKTexture fromFile = loadLeniently(image, "pairs.ktx");
        EXPECT_EQ(fromFile.getOrientation(eAxisX) | fromFile.getOrientation(eAxisY), item.orientation);
        EXPECT_EQ(pixelsOf(fromFile), pixels);
        EXPECT_EQ(load(image, texture), item.status);
    }
    // Of a key-value area that ends beyond the file, the lenient reader uses the pairs present.
    for (const auto& [size, status] : {std::pair{0xF0u, eLoadTruncated}, {0xFFFFFFF0u, eLoadTooLarge}}) {
        const Bytes image = headerWith(size) + pair(orientation("l"), 0) + pixels;
        const CMOKTexture beyond = loadLeniently(image, "a.KTX");
        EXPECT_EQ(beyond.getDataPtr(), nullptr);
        EXPECT_EQ(beyond.getOrientation(eAxisX), eOrientLeft);
        EXPECT_EQ(load(image, texture), status);
    }
    EXPECT_EQ(load(headerWith(16) + pair(std::string(12, 'x'), 0) + pixels, texture, {.maxMetaDataBlocks = 0}), eLoadTooLarge);
}

TEST(KTXFile, MalformedHeadersLoadOnlyLeniently) {
    // A type that no map has, any word for a format, sized internal formats, sizes and counts. LoadTexture() takes what is not in
    // this arrangement for standard KTX, of which it is not either.
    // clang-format off
    checkHeaderFields(headerWith(0) + pixels, "head.ktx", {
        {8, 0x0A1A0A0C, eLoadUnknown, -1, true}, {12, 0x01020304, eLoadUnsupported, -1, true},
        {16, 0x1403, eLoadTruncated, 0}, {20, 77, eLoadOk, 28}, {24, 0, eLoadUnsupported, 0},
        {28, 0, eLoadOk, 28}, {32, glRGBA8, eLoadTruncated, 0}, {36, 65537, eLoadTooLarge, 4 * (65537 * 2 + 32768)},
        {36, 0xFFFFFFFF, eLoadTooLarge, -1}, {44, 2, eLoadTruncated, 52}, {48, 0, eLoadTruncated, 0},
        {52, 0, eLoadCorrupt, 0}, {56, 0, eLoadCorrupt, 0}, {56, 256, eLoadTooLarge, -1}});
    // clang-format on
}

}  // namespace
