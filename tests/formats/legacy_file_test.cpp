// Legacy native files through every door.
#include "foreign_image.h"

using namespace foreignimage;

namespace {

constexpr std::uint32_t bumpMap = 0x400, cubeMap = 0x1000, hasAlpha = 0x8000, flipped = 0x10000;

/// A record of `size` bytes whose fields that readers ignore hold nonsense; 3 by 2 pixels.
Bytes recordWith(std::uint32_t size, std::uint32_t levelsBelow, std::uint32_t flags, std::uint32_t surfaces) {
    Bytes record = words({size, 2, 3, levelsBelow, flags, 99, 98, 97, 96, 95, 94, 93, surfaces});
    record.resize(size);
    return record;
}

TEST(LegacyFile, RecordsOfBothSizesAreRead) {
    struct Case {
        std::uint32_t size, levelsBelow, flags, surfaces, levels, members, faces;
    };
    const Case cases[] = {
        {52, 0, 18, 0, 1, 1, 1},
        {52, 1, 18 | 0xFFFE0000 | 0xEB00, 3, 2, 3, 1},  // bits without a meaning
        {52, 0, 18 | cubeMap, 12, 1, 2, 6},
        {52, 1, 18 | cubeMap | bumpMap | flipped, 5, 2, 1, 6},
        {44, 1, 18 | cubeMap | flipped, 12, 2, 1, 6},
        {44, 0, 18 | bumpMap, 7, 1, 1, 1},
    };
    const TemporaryFolder folder;
    for (const Case& item : cases) {
        SCOPED_TRACE(&item - cases);
        CMOKTextureHeader header(PixelTypeRGBA8.id, 2, 3, 1, item.levels, item.members, item.faces, eColourSpaceLinear,
                                 eVarUByteNorm, false);
        if ((item.flags & bumpMap) != 0) header.setBumpMap(1.0f, "xyz");
        if ((item.flags & flipped) != 0) header.setOrientation(eOrientUp);
        CMOKTexture expected(header, nullptr);
        const Bytes pixels = testimages::randomBytes(4u * (item.levels == 1 ? 6 : 7) * item.faces, 3);
        // Face by face and, within, level by level; the first member only.
        const unsigned char* next = pixels.data();
        for (unsigned int face = 0; face < item.faces; ++face) {
            for (unsigned int level = 0; level < item.levels; ++level) {
                const std::uint32_t size = header.getDataSize(static_cast<int>(level), false, false);
                std::memcpy(expected.getDataPtr(level, 0, face), next, size);
                next += size;
            }
        }
        const Bytes image = recordWith(item.size, item.levelsBelow, item.flags, item.surfaces) + pixels;
        CMOKTexture loaded;
        ASSERT_EQ(load(image, loaded), eLoadOk);
        EXPECT_EQ(contentsOf(loaded), contentsOf(expected));
        EXPECT_EQ(contentsOf(CMOKTexture(folder.write("a.mok", image).c_str())), contentsOf(expected));
        EXPECT_EQ(contentsOf(CMOKTexture(static_cast<const void*>(image.data()))), contentsOf(expected));
    }
}

TEST(LegacyFile, WhatIsRefusedLeavesNothing) {
    tryHeads(recordWith(52, 0, 18, 1) + Bytes(24, 1), "a.mok",
             {{12, 0xFFFFFFFF, eLoadUnsupported, 0},
              {12, 255, eLoadTooLarge, -1, true},
              {8, 0xFFFFFFFF, eLoadTooLarge, -1, true},
              {16, 255, eLoadUnsupported, 0},
              {16, 14, eLoadUnsupported, 0},
              {8, 0, eLoadOk, 8},
              {8, 4, eLoadTruncated, 32},
              {48, 2049, eLoadTooLarge, 49176}});
    batter(recordWith(52, 1, 18 | bumpMap | cubeMap, 6) + Bytes(6 * 28, 1), "mok", 52);
    batter(recordWith(44, 1, 25, 6) + Bytes(64, 1), "mok", 44);
}

TEST(LegacyFile, IsWrittenByteForByte) {
    const TemporaryFolder folder;
    const std::string path = folder.path("any.name");
    struct Case {
        PixelType format;
        EMOKTVariableType type;
        unsigned int api;
        std::uint32_t number, bits;
    };
    const Case cases[] = {{PixelTypeRGBA8, eVarUByteNorm, 4, 18, 32},  {PixelTypeRGBA8, eVarUByteNorm, 6, 97, 32},
                          {PixelTypeRGBA8, eVarUByteNorm, 7, 145, 32}, {eFmtMOKTC4bppRGB, eVarUByteNorm, 1, 25, 4},
                          {eFmtMOKTC4bppRGBA, eVarFloat, 2, 25, 4},    {eFmtMOKTC2bppRGBA, eVarFloat, 3, 12, 2},
                          {eFmtDXT5, eVarUByteNorm, 5, 36, 8}};
    for (const Case& item : cases) {
        SCOPED_TRACE(&item - cases);
        for (const bool isRich : {false, true}) {
            CMOKTexture texture = isRich ? random(item.format, item.type, 3, 2, 6) : random(item.format, item.type, 1, 1, 1);
            const bool alpha = item.format == eFmtMOKTC4bppRGBA || item.format == eFmtMOKTC2bppRGBA;
            std::uint32_t flags = item.number | (alpha ? hasAlpha : 0);
            if (isRich) {
                texture.setBumpMap(2.0f, "zyx");
                texture.setOrientation(eOrientUp | eOrientLeft);
                flags |= 0x100 | bumpMap | cubeMap | flipped;
            }
            const std::uint32_t size = texture.getDataSize();
            EXPECT_TRUE(texture.saveFileLegacyMOK(path.c_str(), static_cast<ELegacyApi>(item.api)));
            const Bytes image =
                words({52, 5, 9, isRich ? 2u : 0, flags, size, item.bits, 0, 0, 0, alpha, 0x214B4F4D, isRich ? 12u : 1}) +
                pixelsOf(texture);
            EXPECT_EQ(folder.read("any.name"), image);
            // One face without levels below comes back; of the opaque format with alpha.
            CMOKTexture back;
            EXPECT_EQ(load(image, back), eLoadOk);
            if (!isRich) {
                EXPECT_EQ(pixelsOf(back), pixelsOf(texture));
            }
            EXPECT_EQ(back.getPixelType(), item.format == eFmtMOKTC4bppRGB ? PixelType(eFmtMOKTC4bppRGBA) : item.format);
        }
    }
    const auto save = [&](const CMOKTexture& texture, unsigned int api) {
        return texture.saveFileLegacyMOK(path.c_str(), static_cast<ELegacyApi>(api));
    };
    for (const unsigned int api : {0u, 3u, 5u, 8u})
        EXPECT_FALSE(save(random(PixelTypeRGBA8, eVarUByteNorm, 1, 1, 1), api)) << api;
    EXPECT_FALSE(save(random(PixelTypeRGBA8, eVarUByteNorm, 1, 1, 1, 2), 1));
    EXPECT_TRUE(std::filesystem::exists(path) && folder.read("any.name").empty());
    EXPECT_FALSE(save(
        CMOKTexture(CMOKTextureHeader(PixelTypeRGBA8.id, 1, 1, 1, 0, 1, 1, eColourSpaceLinear, eVarUByteNorm, false), nullptr),
        1));
    EXPECT_EQ(folder.read("any.name").size(), 52u);
    EXPECT_FALSE(
        random(eFmtETC1, eVarUByteNorm, 1, 1, 1).saveFileLegacyMOK(folder.path("no/a.mok").c_str(), eLegacyApiGLFamilyA));
}

}  // namespace
