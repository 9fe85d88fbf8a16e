// Files as other tools write and read them: KTX 1.1, KTX 2 and DDS by their published standards.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "formats/standard/key_values.h"
#include "formats/standard/zstandard.h"
#include "sample_textures.h"

using namespace moktexture;
using namespace sampletextures;

namespace {

constexpr ETextureContainer containers[] = {eContainerKTX, eContainerKTX2, eContainerDDS};

/// Loads from memory that is exactly as large as the image.
ELoadStatus load(const Bytes& image, CMOKTexture& texture, const LoadLimits& limits = {}) {
    const Bytes exact(image.begin(), image.end());
    static const unsigned char none = 0;
    return LoadTexture(texture, exact.empty() ? &none : exact.data(), exact.size(), limits);
}

void setWord(Bytes& bytes, std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

void appendWords(Bytes& bytes, std::initializer_list<std::uint32_t> words) {
    const std::size_t start = bytes.size();
    bytes.resize(start + words.size() * 4);
    std::memcpy(bytes.data() + start, words.begin(), words.size() * 4);
}

std::uint32_t wordAt(const Bytes& bytes, std::size_t offset) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + offset, sizeof(word));
    return word;
}

/// The file as another tool would have written it: no fields of this writer in DDS, no header under a key of KTX.
Bytes withoutOwnFields(Bytes image, ETextureContainer container) {
    const std::string key = headerKey;
    const auto found = std::search(image.begin(), image.end(), key.begin(), key.end());
    if (found != image.end()) *found = 'X';
    if (container == eContainerDDS) std::fill(image.begin() + 32, image.begin() + 76, static_cast<unsigned char>(0));
    return image;
}

void reverseElements(Bytes& bytes, std::size_t start, std::size_t end, std::size_t size) {
    for (std::size_t i = start; i + size <= end; i += size)
        std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(i), bytes.begin() + static_cast<std::ptrdiff_t>(i + size));
}

/// A KTX 1.1 file in the byte order of the other kind of machine.
Bytes inOtherByteOrder(Bytes image) {
    const std::uint32_t typeSize = wordAt(image, 20), levels = wordAt(image, 56), keyValueEnd = 64 + wordAt(image, 60);
    const bool isSingleCube = wordAt(image, 52) == 6 && wordAt(image, 48) == 0;
    for (std::size_t pair = 64; pair < keyValueEnd;) {
        const std::size_t size = wordAt(image, pair);
        reverseElements(image, pair, pair + 4, 4);
        pair += 4 + (size + 3) / 4 * 4;
    }
    std::size_t position = keyValueEnd;
    for (std::uint32_t level = 0; level < levels; ++level) {
        const std::size_t imageSize = (wordAt(image, position) + 3) / 4 * 4, bytes = isSingleCube ? 6 * imageSize : imageSize;
        reverseElements(image, position, position + 4, 4);
        reverseElements(image, position + 4, position + 4 + bytes, typeSize);
        position += 4 + bytes;
    }
    EXPECT_EQ(position, image.size());
    reverseElements(image, 12, 64, 4);
    return image;
}

}  // namespace

TEST(StandardContainers, GiveBackWhatTheyHoldOfEveryFormatAndShape) {
    std::size_t saved = 0;
    for (const PublishedFormat& format : publishedFormats()) {
        for (const Shape& shape : shapes) {
            for (const EMOKTColourSpace space : {eColourSpaceLinear, eColourSpaceSRGB}) {
                const CMOKTexture texture = makeTexture(format, shape, space);
                for (const ETextureContainer container : containers) {
                    SCOPED_TRACE(std::to_string(format.pixelFormat.id) + " type " + std::to_string(format.channelType) + ", " +
                                 shape.name + ", container " + std::to_string(container) + ", space " + std::to_string(space));
                    Bytes image;
                    const ESaveStatus status = SaveTexture(texture, container, image);
                    ASSERT_EQ(status, CheckContainer(texture, container));
                    if (status != eSaveOk) continue;
                    ++saved;
                    CMOKTexture loaded;
                    ASSERT_EQ(load(image, loaded), eLoadOk);
                    EXPECT_TRUE(describeSameImage(texture, loaded));
                    EXPECT_EQ(pixelsOf(texture), pixelsOf(loaded));
                    // Without what this library alone reads.
                    CMOKTexture asOthersRead;
                    ASSERT_EQ(load(withoutOwnFields(image, container), asOthersRead), eLoadOk);
                    if (format.pixelFormat.layout.channelName[3] != 'x') {
                        EXPECT_EQ(pixelsOf(texture), pixelsOf(asOthersRead));
                    }
                    EXPECT_EQ(asOthersRead.getNumMIPLevels(), shape.levels);
                    EXPECT_EQ(asOthersRead.getNumArrayMembers() * asOthersRead.getNumFaces(), shape.layers * shape.faces);
                }
            }
        }
    }
    EXPECT_GT(saved, 1500u);
}

// Whatever a container is said to hold loads as the same texture, in both arrangements; so do the native file's.
TEST(StandardContainers, WhatTheyAreSaidToHoldReadsBack) {
    const PixelType formats[] = {{'a', 'r', 'g', 'b', 8, 8, 8, 8},
                                 {'r', 'g', 'b', 'a', 8, 8, 8, 8},
                                 {'r', 'g', 'b', 0, 8, 8, 8, 0},
                                 {'b', 'g', 'r', 0, 8, 8, 8, 0},
                                 {'r', 'g', 'b', 0, 5, 6, 5, 0},
                                 {'r', 'g', 'b', 'a', 5, 5, 5, 1},
                                 {'x', 'r', 'g', 'b', 1, 5, 5, 5},
                                 {'i', 0, 0, 0, 8, 0, 0, 0},
                                 {'a', 'l', 0, 0, 8, 8, 0, 0},
                                 {'r', 0, 0, 0, 16, 0, 0, 0},
                                 {'g', 'r', 0, 0, 16, 16, 0, 0},
                                 {'l', 'g', 'r', 0, 6, 5, 5, 0},
                                 {'r', 'g', 'b', 'x', 8, 8, 8, 8},
                                 {'a', 'b', 'g', 'r', 2, 10, 10, 10},
                                 {'r', 'g', 0, 0, 32, 32, 0, 0},
                                 eFmtMOKTC4bppRGB,
                                 eFmtMOKTC4bppRGBA,
                                 eFmtMOKTCII4bpp,
                                 eFmtDXT1,
                                 eFmtDXT2,
                                 eFmtUYVY,
                                 eFmtBW1bpp,
                                 eFmtETC1};
    std::size_t saved = 0;
    for (const PixelType format : formats) {
        for (unsigned int kind = 0; kind < 4 * (eVarFloat + 1); ++kind) {
            const CMOKTextureHeader header(format.id, 8, 8, 1, 2, 1, 1, (kind & 1) != 0 ? eColourSpaceSRGB : eColourSpaceLinear,
                                           static_cast<EMOKTVariableType>(kind / 4), (kind & 2) != 0);
            const CMOKTexture texture(header, testimages::randomBytes(header.getDataSize(), kind).data());
            for (const ETextureContainer container : {eContainerMOK, eContainerKTX, eContainerKTX2, eContainerDDS}) {
                for (const EContainerLayout layout : {eLayoutStandard, eLayoutOwn}) {
                    SCOPED_TRACE(std::to_string(format.id) + " kind " + std::to_string(kind) + ", container " +
                                 std::to_string(container) + ", layout " + std::to_string(layout));
                    Bytes image;
                    if (SaveTexture(texture, container, image, layout) != eSaveOk) continue;
                    ++saved;
                    CMOKTexture loaded;
                    ASSERT_EQ(load(image, loaded), eLoadOk);
                    EXPECT_TRUE(describeSameImage(texture, loaded));
                    EXPECT_EQ(pixelsOf(texture), pixelsOf(loaded));
                }
            }
        }
    }
    EXPECT_GT(saved, 3000u);
}

TEST(StandardContainers, KeepAllMetadataInKTX) {
    CMOKTexture texture = makeTexture(publishedFormats()[4], shapes[0]);
    texture.setIsPreMultiplied(true);
    texture.setBumpMap(2.5f, "xyz");
    texture.setOrientation(eOrientLeft | eOrientUp);
    for (const ETextureContainer container : {eContainerKTX, eContainerKTX2}) {
        Bytes image;
        ASSERT_EQ(SaveTexture(texture, container, image), eSaveOk);
        CMOKTexture loaded;
        ASSERT_EQ(load(image, loaded), eLoadOk);
        EXPECT_TRUE(describeTheSame(texture, loaded)) << container;
    }
}

TEST(StandardContainers, RefuseWhatTheyCannotHold) {
    // clang-format off
    const struct {
        PixelType format; EMOKTVariableType type; EMOKTColourSpace space; bool isPremultiplied; std::uint32_t layers;
        ETextureContainer container; EContainerLayout layout; ESaveStatus status;
    } cases[] = {
        // Format           Type            Space               Premultiplied  Layers  Container       Layout           Status
        {eFmtMOKTCII4bpp,   eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerKTX2, eLayoutStandard, eSaveNoFormat},
        {eFmtMOKTCII4bpp,   eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerDDS,  eLayoutStandard, eSaveNoFormat},
        {eFmtMOKTC4bppRGBA, eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerDDS,  eLayoutStandard, eSaveOk},
        {eFmtMOKTC4bppRGBA, eVarUByteNorm,  eColourSpaceSRGB,   true,          1,      eContainerDDS,  eLayoutStandard, eSaveOk},
        {eFmtMOKTC4bppRGBA, eVarUByteNorm,  eColourSpaceLinear, false,         2,      eContainerDDS,  eLayoutStandard, eSaveNoShape},
        {eFmtMOKTC4bppRGBA, eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerDDS,  eLayoutOwn,      eSaveNoFormat},
        {eFmtETC1,          eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerDDS,  eLayoutStandard, eSaveNoFormat},
        {eFmtETC1,          eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerKTX2, eLayoutStandard, eSaveOk},
        {eFmtDXT1,          eVarUByteNorm,  eColourSpaceSRGB,   false,         3,      eContainerDDS,  eLayoutStandard, eSaveOk},
        {eFmtDXT1,          eVarUByteNorm,  eColourSpaceSRGB,   false,         1,      eContainerDDS,  eLayoutOwn,      eSaveNoColourSpace},
        {eFmtBC7,           eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerMOK,  eLayoutStandard, eSaveNoFormat},
        {eFmtBC7,           eVarUByteNorm,  eColourSpaceLinear, false,         1,      eContainerDDS,  eLayoutStandard, eSaveOk},
    };
    // clang-format on
    for (const auto& item : cases) {
        CMOKTextureHeader header(item.format.id, 8, 8, 1, 1, item.layers, 1, item.space, item.type, item.isPremultiplied);
        EXPECT_EQ(CheckContainer(header, item.container, item.layout), item.status) << &item - cases;
    }
}

TEST(StandardContainers, EveryPrefixIsRefused) {
    const CMOKTexture texture = makeTexture(publishedFormats()[2], shapes[1]);
    for (const ETextureContainer container : containers) {
        Bytes image;
        if (SaveTexture(texture, container, image) != eSaveOk) continue;
        for (std::size_t length = 0; length < image.size(); ++length) {
            CMOKTexture loaded;
            const Bytes prefix(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length));
            // Padding at the end of KTX 1.1 may be missing.
            if (container == eContainerKTX && length + 3 >= image.size()) continue;
            ASSERT_NE(load(prefix, loaded), eLoadOk) << container << ", " << length;
        }
    }
}

TEST(StandardKTX1, PadsRowsAndReadsBothByteOrders) {
    for (const bool isSwapped : {false, true}) {
        const auto order = [&](std::uint32_t word) { return isSwapped ? __builtin_bswap32(word) : word; };
        Bytes image = {0xAB, 'K', 'T', 'X', ' ', '1', '1', 0xBB, '\r', '\n', 0x1A, '\n'};
        // GL_UNSIGNED_SHORT_5_6_5, 3 by 2 pixels, no array, one level: rows of 6 bytes are padded to 8.
        for (const std::uint32_t word : {0x04030201u, 0x8363u, 2u, 0x1907u, 0x1907u, 0x1907u, 3u, 2u, 0u, 0u, 1u, 0u, 0u, 16u})
            appendWords(image, {order(word)});
        for (const int value : {0x1234, 0x5678, 0x9ABC, 0, 0x0102, 0x0304, 0x0506, 0}) {
            image.push_back(static_cast<unsigned char>(isSwapped ? value >> 8 : value));
            image.push_back(static_cast<unsigned char>(isSwapped ? value : value >> 8));
        }
        CMOKTexture texture;
        ASSERT_EQ(load(image, texture), eLoadOk) << isSwapped;
        EXPECT_EQ(texture.getPixelType(), PixelType('r', 'g', 'b', 0, 5, 6, 5, 0));
        EXPECT_EQ(pixelsOf(texture), (Bytes{0x34, 0x12, 0x78, 0x56, 0xBC, 0x9A, 0x02, 0x01, 0x04, 0x03, 0x06, 0x05}));
    }
}

TEST(StandardKTX1, BothByteOrdersGiveTheSameTexture) {
    for (const PublishedFormat& format : publishedFormats()) {
        for (const Shape& shape : shapes) {
            SCOPED_TRACE(std::to_string(format.pixelFormat.id) + " type " + std::to_string(format.channelType) + ", " +
                         shape.name);
            const CMOKTexture texture = makeTexture(format, shape);
            Bytes image;
            if (SaveTexture(texture, eContainerKTX, image) != eSaveOk) continue;
            CMOKTexture loaded;
            ASSERT_EQ(load(inOtherByteOrder(image), loaded), eLoadOk);
            EXPECT_TRUE(describeSameImage(texture, loaded));
            EXPECT_EQ(pixelsOf(texture), pixelsOf(loaded));
        }
    }
}

TEST(StandardKTX1, ReadsUnsizedFormatsAndCountsOfZeroAndOrientations) {
    CMOKTexture texture = makeTexture(*findPublished(PixelTypeRGBA8, eVarUByteNorm), shapes[0]);
    texture.setOrientation(eOrientLeft | eOrientUp | eOrientOut);
    Bytes image;
    ASSERT_EQ(SaveTexture(texture, eContainerKTX, image), eSaveOk);
    image = withoutOwnFields(image, eContainerKTX);
    setWord(image, 28, 0x1908);
    setWord(image, 56, 0);
    CMOKTexture loaded;
    ASSERT_EQ(load(image, loaded), eLoadOk);
    EXPECT_EQ(pixelsOf(loaded), pixelsOf(texture));
    for (const EMOKTAxis axis : {eAxisX, eAxisY, eAxisZ})
        EXPECT_EQ(loaded.getOrientation(axis), texture.getOrientation(axis)) << axis;
    EXPECT_EQ(loaded.getColourSpace(), eColourSpaceLinear);
    setWord(image, 28, 0x8C42);  // GL_SRGB_ALPHA
    ASSERT_EQ(load(image, loaded), eLoadOk);
    EXPECT_EQ(loaded.getColourSpace(), eColourSpaceSRGB);
}

TEST(StandardKTX2, ReadsZstandardWhereItWasBuiltIn) {
    const CMOKTexture texture = makeTexture(*findPublished(eFmtDXT1, eVarUByteNorm), shapes[0]);
    Bytes image;
    ASSERT_EQ(SaveTexture(texture, eContainerKTX2, image), eSaveOk);
    const Bytes pixels = pixelsOf(texture);
    ASSERT_EQ(pixels.size(), 32u);
    // A frame that gives its size, with one raw block: 32 bytes.
    Bytes frame = {0x28, 0xB5, 0x2F, 0xFD, 0x20, 32, 0x01, 0x01, 0x00};
    frame.insert(frame.end(), pixels.begin(), pixels.end());
    image.resize(image.size() - pixels.size());
    image.insert(image.end(), frame.begin(), frame.end());
    setWord(image, 44, 2);
    setWord(image, 80 + 8, static_cast<std::uint32_t>(frame.size()));
    CMOKTexture loaded;
    if (!hasZstandard()) {
        EXPECT_EQ(load(image, loaded), eLoadNoZstandard);
        return;
    }
    ASSERT_EQ(load(image, loaded), eLoadOk);
    EXPECT_EQ(pixelsOf(loaded), pixels);
    // Offset, value, status: no such scheme, a frame without its end, a frame of another size, bytes that no frame can give.
    Bytes tooShort = image, tooLarge = image, otherScheme = image;
    setWord(otherScheme, 44, 1);
    setWord(tooShort, 80 + 8, static_cast<std::uint32_t>(frame.size() - 1));
    setWord(tooLarge, 20, 8192), setWord(tooLarge, 24, 8192), setWord(tooLarge, 80 + 16, 8192 * 8192 / 2);
    EXPECT_EQ(load(otherScheme, loaded), eLoadUnsupported);
    EXPECT_EQ(load(tooShort, loaded), eLoadCorrupt);
    EXPECT_EQ(load(tooLarge, loaded), eLoadCorrupt);
}

TEST(StandardDDS, ReadsTheHeadersOfOtherTools) {
    enum : std::uint32_t { alphaPixels = 1, fourCC = 4, rgb = 0x40, luminance = 0x20000, pitch = 8, mipCount = 0x20000 };
    // clang-format off
    const struct {
        const char* what; std::uint32_t flags, pitchOrSize, mips, pixelFlags, code, bits, r, g, b, a; PixelType format; EMOKTVariableType type;
    } cases[] = {
        // What                       Flags     Pitch  Mips  Pixel flags         Code        Bits  R           G           B           A           Format                                  Type
        {"X8R8G8B8 with a pitch",     pitch,    16,    1,    rgb,                0,          32,   0xFF0000,   0xFF00,     0xFF,       0,          {'b', 'g', 'r', 'x', 8, 8, 8, 8},       eVarUByteNorm},
        {"A8R8G8B8, mip count 0",     pitch,    16,    0,    rgb | alphaPixels,  0,          32,   0xFF0000,   0xFF00,     0xFF,       0xFF000000, {'b', 'g', 'r', 'a', 8, 8, 8, 8},       eVarUByteNorm},
        {"A8B8G8R8",                  pitch,    16,    1,    rgb | alphaPixels,  0,          32,   0xFF,       0xFF00,     0xFF0000,   0xFF000000, {'r', 'g', 'b', 'a', 8, 8, 8, 8},       eVarUByteNorm},
        {"mask of alpha, no flag",    pitch,    16,    1,    rgb,                0,          32,   0xFF,       0xFF00,     0xFF0000,   0xFF000000, {'r', 'g', 'b', 'x', 8, 8, 8, 8},       eVarUByteNorm},
        {"R8G8B8",                    pitch,    12,    1,    rgb,                0,          24,   0xFF0000,   0xFF00,     0xFF,       0,          {'b', 'g', 'r', 0, 8, 8, 8, 0},         eVarUByteNorm},
        {"R5G6B5",                    pitch,    8,     1,    rgb,                0,          16,   0xF800,     0x7E0,      0x1F,       0,          {'r', 'g', 'b', 0, 5, 6, 5, 0},         eVarUShortNorm},
        {"X1R5G5B5",                  pitch,    8,     1,    rgb,                0,          16,   0x7C00,     0x3E0,      0x1F,       0,          {'x', 'r', 'g', 'b', 1, 5, 5, 5},       eVarUShortNorm},
        {"A2B10G10R10",               pitch,    16,    1,    rgb | alphaPixels,  0,          32,   0x3FF,      0xFFC00,    0x3FF00000, 0xC0000000, {'a', 'b', 'g', 'r', 2, 10, 10, 10},    eVarUIntNorm},
        {"G16R16",                    pitch,    16,    1,    rgb,                0,          32,   0xFFFF,     0xFFFF0000, 0,          0,          {'r', 'g', 0, 0, 16, 16, 0, 0},         eVarUShortNorm},
        {"L8",                        pitch,    4,     1,    luminance,          0,          8,    0xFF,       0,          0,          0,          {'l', 0, 0, 0, 8, 0, 0, 0},             eVarUByteNorm},
        {"A8L8",                      pitch,    8,     1,    luminance | 1,      0,          16,   0xFF,       0,          0,          0xFF00,     {'l', 'a', 0, 0, 8, 8, 0, 0},           eVarUByteNorm},
        {"DXT1 with a size",          0x80000,  8,     0,    fourCC,             0x31545844, 0,    0,          0,          0,          0,          eFmtDXT1,                               eVarUByteNorm},
        {"ATI2",                      0x80000,  16,    1,    fourCC,             0x32495441, 0,    0,          0,          0,          0,          eFmtBC5,                                eVarUByteNorm},
        {"R16F without a pitch",      0,        0,     1,    fourCC,             111,        0,    0,          0,          0,          0,          {'r', 0, 0, 0, 16, 0, 0, 0},           eVarFloat},
        {"A16B16G16R16F",             pitch,    32,    1,    fourCC,             113,        0,    0,          0,          0,          0,          {'r', 'g', 'b', 'a', 16, 16, 16, 16},   eVarFloat},
    };
    // clang-format on
    for (const auto& item : cases) {
        SCOPED_TRACE(item.what);
        Bytes image;
        appendWords(image, {0x20534444, 124, 0x1007 | item.flags, 4, 4, item.pitchOrSize, 0, item.mips});
        image.resize(76);
        appendWords(image, {32, item.pixelFlags, item.code, item.bits, item.r, item.g, item.b, item.a, 0x1000, 0, 0, 0, 0});
        ASSERT_EQ(image.size(), 128u);
        CMOKTextureHeader header(item.format.id, 4, 4, 1, 1, 1, 1, eColourSpaceLinear, item.type, false);
        image.resize(128 + StoredLayout(header).totalBytes(), 7);
        CMOKTexture texture;
        ASSERT_EQ(load(image, texture), eLoadOk);
        EXPECT_TRUE(describeSameImage(texture, header));
        image.pop_back();
        EXPECT_EQ(load(image, texture), eLoadTruncated);
    }
}

TEST(StandardDDS, BitsWithoutAMeaningAreSet) {
    Bytes image;
    appendWords(image, {0x20534444, 124, 0x100F, 1, 2, 8, 0, 1});
    image.resize(76);
    appendWords(image, {32, 0x40, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0, 0x1000, 0, 0, 0, 0, 0x00112233, 0x80445566});
    CMOKTexture texture;
    ASSERT_EQ(load(image, texture), eLoadOk);
    EXPECT_EQ(pixelsOf(texture), (Bytes{0x33, 0x22, 0x11, 0xFF, 0x66, 0x55, 0x44, 0xFF}));
}

/// With a pitch, and without: then the header is the one that the library's own arrangement has.
class StandardDDSRows : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(WithAndWithoutPitch, StandardDDSRows, testing::Bool());

TEST_P(StandardDDSRows, MayBePaddedToFourBytes) {
    Bytes image;
    appendWords(image, {0x20534444, 124, GetParam() ? 0x100Fu : 0x1007u, 2, 3, GetParam() ? 12u : 0u, 0, 1});
    image.resize(76);
    appendWords(image, {32, 0x40, 0, 24, 0xFF0000, 0xFF00, 0xFF, 0, 0x1000, 0, 0, 0, 0});
    for (const unsigned char row : {1, 2}) {
        image.insert(image.end(), 9, row);
        image.insert(image.end(), 3, 0);
    }
    CMOKTexture texture;
    ASSERT_EQ(load(image, texture), eLoadOk);
    Bytes expected(9, 1);
    expected.insert(expected.end(), 9, 2);
    EXPECT_EQ(pixelsOf(texture), expected);
}

TEST(StandardContainers, OwnArrangementsAreRecognised) {
    const PixelType format('r', 'g', 'b', 'a', 8, 8, 8, 8);
    const CMOKTextureHeader header(format.id, 5, 9, 1, 3, 1, 1, eColourSpaceLinear, eVarUByteNorm, false);
    const CMOKTexture texture(header, testimages::randomBytes(header.getDataSize(), 3).data());
    Bytes image;
    ASSERT_EQ(SaveTexture(texture, eContainerKTX, image, eLayoutOwn), eSaveOk);
    CMOKTexture loaded;
    ASSERT_EQ(load(image, loaded), eLoadOk);
    EXPECT_EQ(pixelsOf(loaded), pixelsOf(texture));
}

TEST(StandardContainers, LimitsHold) {
    const CMOKTexture texture = makeTexture(publishedFormats()[4], shapes[1]);
    for (const ETextureContainer container : containers) {
        Bytes image;
        ASSERT_EQ(SaveTexture(texture, container, image), eSaveOk);
        CMOKTexture loaded;
        LoadLimits limits;
        limits.maxEdge = 12;
        EXPECT_EQ(load(image, loaded, limits), eLoadTooLarge) << container;
        limits = {};
        limits.maxLevels = 3;
        EXPECT_EQ(load(image, loaded, limits), eLoadTooLarge) << container;
        limits = {};
        limits.maxTotalSize = 400;
        EXPECT_EQ(load(image, loaded, limits), eLoadTooLarge) << container;
        // A header that promises much does not make a reader take memory.
        setWord(image, container == eContainerDDS ? 12 : container == eContainerKTX2 ? 24 : 40, 60000);
        EXPECT_NE(load(image, loaded), eLoadOk) << container;
    }
}

// No file may crash a reader or make one take much memory; what loads can be saved and loads again.
TEST(StandardContainers, ChangedFilesLoadSafely) {
    constexpr std::uint32_t extremes[] = {0, 1, 2, 6, 7, 255, 65536, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF8, 0xFFFFFFFF};
    testimages::Random dice(12);
    const PublishedFormat* const formats[] = {findPublished(PixelTypeRGBA8, eVarUByteNorm),
                                              findPublished(eFmtDXT5, eVarUByteNorm), findPublished(eFmtBC7, eVarUByteNorm)};
    const LoadLimits limits = {.maxTotalSize = 1u << 20};
    for (const PublishedFormat* format : formats) {
        for (const Shape& shape : shapes) {
            for (const ETextureContainer container : containers) {
                Bytes image;
                ASSERT_EQ(SaveTexture(makeTexture(*format, shape), container, image), eSaveOk);
                for (int round = 0; round < 60; ++round) {
                    Bytes changed = image;
                    const auto end = static_cast<std::uint32_t>(std::min<std::size_t>(changed.size(), 400));
                    for (std::uint32_t changes = dice.below(3) + 1; changes > 0; --changes) {
                        if (dice.below(2) == 0)
                            setWord(changed, 4 * dice.below(end / 4), extremes[dice.below(std::size(extremes))]);
                        else
                            changed[dice.below(end)] ^= static_cast<unsigned char>(1u << dice.below(8));
                    }
                    if (dice.below(4) == 0) changed.resize(dice.below(static_cast<std::uint32_t>(changed.size())));
                    CMOKTexture loaded;
                    if (load(changed, loaded, limits) != eLoadOk || CheckContainer(loaded, container) != eSaveOk) continue;
                    Bytes again;
                    CMOKTexture reloaded;
                    ASSERT_EQ(SaveTexture(loaded, container, again), eSaveOk);
                    ASSERT_EQ(load(again, reloaded), eLoadOk);
                    EXPECT_EQ(pixelsOf(reloaded), pixelsOf(loaded));
                }
            }
        }
    }
}
