// Sizes, flags and metadata of CMOKTextureHeader.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <tuple>
#include <vector>

#include "CMOKTextureHeader.h"
#include "core/texture/subresources.h"
#include "metadata_samples.h"

using namespace moktexture;
using namespace metadatasamples;

namespace {

constexpr unsigned int own = MOKTextureHeaderV3::magic;
constexpr std::uint32_t huge = 0xFFFFFFFFu;

CMOKTextureHeader header(PixelType format, std::uint32_t width, std::uint32_t height, std::uint32_t levels = 1,
                         std::uint32_t layers = 1, std::uint32_t faces = 1, std::uint32_t depth = 1) {
    return CMOKTextureHeader(format.id, height, width, depth, levels, layers, faces, eColourSpaceLinear, eVarUByteNorm, false);
}

TEST(TextureHeader, SizesOfEveryFormatFollowTheTable) {
    // Bytes of 1 by 1, of 17 by 9 by 2, and of three levels of 5 by 3, for the numbers 0 to 30.
    // clang-format off
    constexpr std::uint32_t sizes[][3] = {
        {32, 256, 96}, {32, 256, 96}, {32, 384, 96}, {32, 384, 96}, {8, 144, 24}, {8, 240, 32},  // MOKTC
        {8, 240, 32}, {8, 240, 32},  // ETC1, DXT1
        {16, 480, 64}, {16, 480, 64}, {16, 480, 64}, {16, 480, 64}, {8, 240, 32}, {16, 480, 64},  // DXT2 to BC5
        {0, 0, 0}, {0, 0, 0},  // BC6, BC7
        {4, 648, 44}, {4, 648, 44}, {1, 54, 5}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0},  // packed
        {0, 153, 9}, {1, 306, 18}, {0, 153, 9}, {0, 153, 9}, {0, 153, 9}, {1, 306, 18}, {1, 306, 18}, {0, 0, 0}, {0, 0, 0}};
    // clang-format on
    for (std::uint64_t id = 0; id < std::size(sizes); ++id) {
        EXPECT_EQ(header(id, 1, 1).getDataSize(), sizes[id][0]) << id;
        EXPECT_EQ(header(id, 17, 9, 1, 1, 1, 2).getDataSize(), sizes[id][1]) << id;
        EXPECT_EQ(header(id, 5, 3, 3).getDataSize(), sizes[id][2]) << id;
    }
}

TEST(TextureHeader, SizesExistOneLevelPastTheLastAndBitsAreSummedOverLevels) {
    const CMOKTextureHeader texture = header(PixelTypeRGBA8, 40, 20, 33, 1, 1, 6);
    // clang-format off
    const std::uint32_t sizes[][4] = {
        // level, width, height, depth
        {2, 10, 5, 1}, {1, 20, 10, 3}, {5, 1, 1, 1}, {32, 40, 20, 6}, {33, 20, 10, 3}, {34, 0, 0, 0}, {huge, 0, 0, 0}};
    // clang-format on
    for (const auto& [level, width, height, depth] : sizes)
        EXPECT_EQ((std::array{level, texture.getWidth(level), texture.getHeight(level), texture.getDepth(level)}),
                  (std::array{level, width, height, depth}));
    EXPECT_EQ(texture.getDataSize(33, true, true), texture.getDataSize(1, true, true));
    const CMOKTextureHeader nibble = header(PixelType('l', 0, 0, 0, 4, 0, 0, 0), 2, 1, 2, 3, 2);
    EXPECT_EQ(nibble.getDataSize(1, true, true) * 10 + nibble.getDataSize(-1, false, false), 1u);
    EXPECT_EQ(nibble.getDataSize(-1, true, false) * 10 + nibble.getDataSize(-1, false, true), 32u);
    EXPECT_EQ(header(eFmtDXT1, 5, 3, 3).getTextureSize(), 64u);
    EXPECT_EQ(header(PixelType('r', 'g', 'b', 0, 8, 8, 8, 0), 1, 1).getTextureSize(), 1u);
    EXPECT_EQ(header(PixelType('l', 0, 0, 0, 8, 0, 0, 0), 1u << 14, 1u << 14, 1, 3).getTextureSize(), 1u << 28);  // wraps
}

TEST(TextureHeader, SizesThatWrapAreDetected) {
    const PixelType byte('l', 0, 0, 0, 8, 0, 0, 0);
    const PixelType widest('r', 'g', 'b', 'a', 255, 255, 255, 255);
    // Header, size as it wraps, whether that is the true size.
    // clang-format off
    const std::tuple<CMOKTextureHeader, std::uint32_t, bool> cases[] = {
        {header(byte, 1u << 14, (1u << 15) - 1, 1, 8), 0u - (1u << 17), true},
        {header(byte, 1u << 14, 1u << 15), 0, false},  // 2^32 bits
        {header(byte, 1u << 14, 1u << 14, 1, 4, 4), 0, false},  // 2^32 bytes
        {header(eFmtDXT1, huge, 1), 0, false},  // rounded up past 32 bits
        {header(eFmtGRGB8888, huge, huge, 255, huge, huge, huge), 0, true},
        {header(widest, huge, huge, 1, huge, huge, huge), 0x1FFFFF80, false}, {header(byte, 4, 4, 255), 399, true},
        {header(byte, 4, 4, 256), 0, false}};
    // clang-format on
    for (const auto& [texture, size, isTrue] : cases)
        EXPECT_EQ(std::pair(texture.getDataSize(), sizesFit32Bits(texture)), std::pair(size, isTrue)) << texture.getWidth();
}

TEST(TextureHeader, ClearingOneFlagClearsBoth) {
    for (const auto clear : {&CMOKTextureHeader::setIsFileCompressed, &CMOKTextureHeader::setIsPreMultiplied}) {
        CMOKTextureHeader texture;
        texture.setIsFileCompressed(true), texture.setIsPreMultiplied(true);
        EXPECT_EQ(texture.getFileHeader().flags, 3u);
        (texture.*clear)(false);
        EXPECT_EQ(texture.getFileHeader().flags, 0u);
    }
}

TEST(TextureMetaData, TopicsRoundTripAndAreCountedOnce) {
    CMOKTextureHeader texture = header(PixelTypeRGBA8, 2, 2, 1, 1, 6);
    const float atlas[] = {1.5f, 0.0f};
    for (int pass = 0; pass < 2; ++pass) {
        texture.setBorder(1, 2, 3);
        texture.setOrientation(eOrientLeft | eOrientOut);
        texture.setBumpMap(1.5f, "xyzhq");
        texture.setTextureAtlas(pass == 0 ? atlas : texture.getTextureAtlasData(), 2);
        texture.setCubeMapOrder("XxYyZzW");
        EXPECT_EQ(texture.getMetaDataSize(), 5u * 12 + 12 + 3 + 8 + 8 + 6);
    }
    using namespace std::string_literals;
    // Key in the map, key in the block, payload.
    // clang-format off
    const std::tuple<unsigned int, unsigned int, std::string> payloads[] = {
        {0, 0, "\0\0\xC0\x3F\0\0\0\0"s}, {1, 1, "\0\0\xC0\x3Fxyzh"s}, {2, 1, "XxYyZz"}, {3, 3, "\1\0\4"s},
        {4, 4, "\1\0\0\0\2\0\0\0\3\0\0\0"s}};
    // clang-format on
    for (const auto& [key, storedKey, payload] : payloads) {
        const MetaDataBlock block = texture.getMetaData(own, key);
        EXPECT_EQ(std::pair(block.key, payloadOf(block)), std::pair(storedKey, payload));
    }
    EXPECT_TRUE(texture.getCubeMapOrder() == "XxYyZz");
    texture.setNumFaces(1);
    for (const auto& [width, height, depth, atlasMembers] : {std::array{2, 1, 1, 2}, {1, 2, 1, 2}, {1, 1, 2, 2}, {1, 1, 1, 0}}) {
        texture.setWidth(width), texture.setHeight(height), texture.setDepth(depth);
        EXPECT_EQ(texture.getNumTextureAtlasMembers(), atlasMembers) << width << height << depth;
    }
    EXPECT_TRUE(texture.getCubeMapOrder().empty());
}

TEST(TextureMetaData, QueriesInsertTheOuterEntry) {
    const CMOKTextureHeader texture;
    EXPECT_FALSE(texture.isBumpMap());
    EXPECT_EQ(texture.getMetaDataMap().GetSize(), 1u);
    EXPECT_FALSE(texture.hasMetaData(7, 7));
    EXPECT_EQ(texture.getMetaDataMap().GetSize(), 2u);
    EXPECT_EQ(payloadOf(texture.getMetaData(7, 8)), "");
    EXPECT_TRUE(texture.hasMetaData(7, 8));
    EXPECT_EQ(texture.getMetaDataSize(), 0u);
}

TEST(TextureMetaData, GettersReadZeroesBeyondAShortPayload) {
    CMOKTextureHeader texture = header(PixelTypeRGBA8, 4, 4, 1, 1, 6);
    MetaDataBlock withoutPayload;
    withoutPayload.fourCC = own, withoutPayload.dataSize = 8;
    for (const MetaDataBlock& added : {withoutPayload, makeBlock({0, 0, '\xC0', 63, 'x'}, 1, own), makeBlock("ab", 2, own),
                                       makeBlock("\1", 3, own), makeBlock({7, 0, 0, 0, 9}, 4, own)})
        texture.addMetaData(added);
    EXPECT_EQ(texture.getTextureAtlasData(), nullptr);
    EXPECT_EQ(texture.getBumpMapScale(), 1.5f);
    EXPECT_EQ(texture.getBumpMapOrder(), "x");
    EXPECT_EQ(texture.getCubeMapOrder(), "ab");
    EXPECT_EQ(texture.getOrientation(eAxisX), eOrientLeft);
    EXPECT_EQ(texture.getOrientation(eAxisZ), eOrientIn);
    unsigned int x, y, z;
    texture.getBorder(x, y, z);
    EXPECT_EQ((std::array{x, y, z}), (std::array{7u, 9u, 0u}));
    EXPECT_EQ(payloadOf(texture.getMetaData(own, 0)), std::string(8, 0));
}

TEST(TextureMetaData, ReplacingCountsTwiceAndRemovingMayWrap) {
    const MetaDataBlock blocks[] = {makeBlock("12", 1, 5), makeBlock("3", 1, 5), makeBlock("4", 9, 5)};
    MOKTextureHeaderV3 record;
    record.metaDataSize = 100;
    EXPECT_EQ(CMOKTextureHeader(record, 2, nullptr).getMetaDataSize(), 100u);
    CMOKTextureHeader texture(record, 3, blocks), empty;
    EXPECT_EQ(texture.getMetaDataSize(), 100u + 14 + 13 + 13);
    EXPECT_EQ(payloadOf(texture.getMetaData(5, 1)), "3");
    texture.removeMetaData(5, 9), empty.removeMetaData(5, 9);
    EXPECT_EQ(texture.getMetaDataSize(), 127u);
    EXPECT_EQ(empty.getMetaDataSize(), 0u - 12u);

    // Blocks and keys may lie in the map itself.
    CMOKTextureHeader full;
    full.setCubeMapOrder("XxYyZz");
    for (unsigned int key = 10; key < 25; ++key)
        full.addMetaData(makeBlock("1", key, own));
    const auto inMap = [&](unsigned int i) { return full.getMetaDataMap().GetDataAtIndex(0)->GetDataAtIndex(i); };
    full.addMetaData(*inMap(0));  // carries another key than it has in the map, and makes the full array grow
    EXPECT_EQ(lettersOf(full.getMetaDataMap()), "XxYyZz111111111111111XxYyZz|");
    full.removeMetaData(inMap(16)->fourCC, inMap(16)->key);
    EXPECT_FALSE(full.isBumpMap());
}

}  // namespace
