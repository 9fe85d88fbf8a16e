// Sizes, flags and metadata of CMOKTextureHeader.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "CMOKTextureHeader.h"
#include "core/data_size.h"

using namespace moktexture;

namespace {

constexpr unsigned int own = MOKTextureHeaderV3::magic;
constexpr std::uint32_t huge = 0xFFFFFFFFu;

CMOKTextureHeader header(PixelType format, std::uint32_t width, std::uint32_t height, std::uint32_t levels = 1,
                         std::uint32_t members = 1, std::uint32_t faces = 1, std::uint32_t depth = 1) {
    return CMOKTextureHeader(format.id, height, width, depth, levels, members, faces, eColourSpaceLinear, eVarUByteNorm, false);
}

MetaDataBlock block(unsigned int owner, unsigned int key, const std::string& payload) {
    MetaDataBlock made;
    made.fourCC = owner;
    made.key = key;
    made.dataSize = static_cast<unsigned int>(payload.size());
    made.data = new unsigned char[payload.size()];
    std::copy(payload.begin(), payload.end(), made.data);
    return made;
}

TEST(TextureHeader, SizesOfEveryFormatFollowTheTable) {
    // Bytes of 1 by 1, of 17 by 9 by 2, and of three levels of 5 by 3, for the numbers 0 to 30.
    // clang-format off
    constexpr std::uint32_t sizes[][3] = {
        {32, 256, 96}, {32, 256, 96}, {32, 384, 96}, {32, 384, 96}, {8, 144, 24}, {8, 240, 32},  // MOKTC
        {8, 240, 32}, {8, 240, 32},                                                              // ETC1, DXT1
        {16, 480, 64}, {16, 480, 64}, {16, 480, 64}, {16, 480, 64}, {8, 240, 32}, {16, 480, 64}, // DXT2 to BC5
        {0, 0, 0}, {0, 0, 0},                                                                    // BC6, BC7
        {4, 648, 44}, {4, 648, 44}, {1, 54, 5}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0},                 // packed
        {0, 153, 9}, {1, 306, 18}, {0, 153, 9}, {0, 153, 9}, {0, 153, 9}, {1, 306, 18}, {1, 306, 18},
        {0, 0, 0}, {0, 0, 0}};
    // clang-format on
    for (std::uint64_t id = 0; id < std::size(sizes); ++id) {
        SCOPED_TRACE(id);
        EXPECT_EQ(header(id, 1, 1).getDataSize(), sizes[id][0]);
        EXPECT_EQ(header(id, 17, 9, 1, 1, 1, 2).getDataSize(), sizes[id][1]);
        EXPECT_EQ(header(id, 5, 3, 3).getDataSize(), sizes[id][2]);
        EXPECT_TRUE(sizesAreTrue(header(id, 17, 9, 3)));
        EXPECT_EQ(header(id, 4, 4).getTextureSize() == 0, bitsPerPixel(id) == 0);
    }
}

TEST(TextureHeader, BitsOfLevelsAreSummedBeforeTheyBecomeBytes) {
    const CMOKTextureHeader nibble = header(PixelType('l', 0, 0, 0, 4, 0, 0, 0), 2, 1, 2, 3, 2);
    EXPECT_EQ(nibble.getDataSize(1, false, false), 0u);
    EXPECT_EQ(nibble.getDataSize(-1, false, false), 1u);
    EXPECT_EQ(nibble.getDataSize(-1, true, false), 3u);
    EXPECT_EQ(nibble.getDataSize(-1, false, true), 2u);
    EXPECT_EQ(header(eFmtDXT1, 5, 3, 3).getTextureSize(), 64u);
}

TEST(TextureHeader, LevelsBeyondTheLastAnswerOnceAndShiftModulo32) {
    const CMOKTextureHeader texture = header(PixelTypeRGBA8, 40, 20, 33, 1, 1, 6);
    EXPECT_EQ(texture.getWidth(2), 10u);
    EXPECT_EQ(texture.getHeight(5), 1u);
    EXPECT_EQ(texture.getDepth(1), 3u);
    EXPECT_EQ(texture.getWidth(32), 40u);
    EXPECT_EQ(texture.getWidth(33), 20u);
    EXPECT_EQ(texture.getWidth(34), 0u);
    EXPECT_EQ(texture.getDataSize(33, true, true), texture.getDataSize(1, true, true));
    EXPECT_EQ(header(PixelTypeRGBA8, 0, 0).getWidth(), 1u);
}

TEST(TextureHeader, SizesThatWrapAreToldApart) {
    const PixelType byte('l', 0, 0, 0, 8, 0, 0, 0);
    const PixelType widest('r', 'g', 'b', 'a', 255, 255, 255, 255);
    // Header, size as it wraps, whether that is the true size.
    // clang-format off
    const std::tuple<CMOKTextureHeader, std::uint32_t, bool> cases[] = {
        {header(byte, 1u << 14, (1u << 15) - 1, 1, 8),               0u - (1u << 17),   true},
        {header(byte, 1u << 14, 1u << 15),                           0,                 false},  // 2^32 bits
        {header(byte, 1u << 14, 1u << 14, 1, 4, 4),                  0,                 false},  // 2^32 bytes
        {header(eFmtDXT1, huge, 1),                                  0,                 false},  // rounded up past 32 bits
        {header(eFmtGRGB8888, huge, huge, 255, huge, huge, huge),    0,                 true},
        {header(widest, huge, huge, 1, huge, huge, huge),            0x1FFFFF80,        false},
        {header(byte, 4, 4, 255),                                    399,               true},
        {header(byte, 4, 4, 256),                                    0,                 false},
    };
    // clang-format on
    for (const auto& [texture, size, isTrue] : cases) {
        SCOPED_TRACE(testing::Message() << texture.getWidth() << " by " << texture.getHeight());
        EXPECT_EQ(sizesAreTrue(texture), isTrue);
        EXPECT_EQ(texture.getDataSize(), size);
    }
}

TEST(TextureHeader, ClearingOneFlagClearsBoth) {
    CMOKTextureHeader texture;
    for (const auto clear : {&CMOKTextureHeader::setIsFileCompressed, &CMOKTextureHeader::setIsPreMultiplied}) {
        texture.setIsFileCompressed(true);
        texture.setIsPreMultiplied(true);
        EXPECT_TRUE(texture.isFileCompressed() && texture.isPreMultiplied());
        (texture.*clear)(false);
        EXPECT_EQ(texture.getFileHeader().flags, 0u);
    }
}

unsigned int borderDigits(const CMOKTextureHeader& texture) {
    unsigned int x, y, z;
    texture.getBorder(x, y, z);
    return 100 * x + 10 * y + z;
}

TEST(TextureMetaData, TopicsReadBackAndCountOnce) {
    CMOKTextureHeader texture = header(PixelTypeRGBA8, 2, 2, 1, 1, 6);
    const float atlas[] = {0.25f, -1.0f, 3.0f};
    for (int pass = 0; pass < 2; ++pass) {
        texture.setBorder(1, 2, 3);
        texture.setOrientation(eOrientLeft | eOrientOut);
        texture.setBumpMap(1.5f, "xyzhq");
        texture.setTextureAtlas(pass == 0 ? atlas : texture.getTextureAtlasData(), 3);
        texture.setCubeMapOrder("XxYyZzW");
        EXPECT_EQ(texture.getMetaDataSize(), 5u * 12 + 12 + 3 + 8 + 12 + 6);
    }
    EXPECT_EQ(borderDigits(texture), 123u);
    const unsigned int orientation[] = {eOrientLeft, eOrientDown, eOrientOut, 0, 0};
    for (const unsigned int axis : {0u, 1u, 2u, 3u, 4u})
        EXPECT_EQ(texture.getOrientation(static_cast<EMOKTAxis>(axis)), orientation[axis]);
    EXPECT_EQ(texture.getBumpMapScale(), 1.5f);
    EXPECT_STREQ(texture.getBumpMapOrder().c_str(), "xyzh");
    EXPECT_EQ(texture.getNumTextureAtlasMembers(), 3);
    EXPECT_EQ(texture.getTextureAtlasData()[2], 3.0f);
    EXPECT_STREQ(texture.getCubeMapOrder().c_str(), "XxYyZz");
    EXPECT_EQ(texture.getMetaData(own, 2).key, 1u);
    texture.setNumFaces(1);
    EXPECT_TRUE(texture.getCubeMapOrder().empty());
    texture.setWidth(1);
    texture.setHeight(1);
    EXPECT_EQ(texture.getNumTextureAtlasMembers(), 0);
    texture.setDepth(2);
    EXPECT_EQ(texture.getNumTextureAtlasMembers(), 3);
}

TEST(TextureMetaData, ReadingMakesTheOuterEntryOnly) {
    const CMOKTextureHeader texture;
    EXPECT_FALSE(texture.isBumpMap());
    EXPECT_EQ(texture.getMetaDataMap().GetSize(), 1u);
    EXPECT_FALSE(texture.hasMetaData(7, 7));
    EXPECT_EQ(texture.getMetaDataMap().GetSize(), 2u);
    EXPECT_EQ(texture.getMetaDataMap().GetDataAtIndex(1)->GetSize(), 0u);
    const MetaDataBlock missing = texture.getMetaData(7, 8);
    EXPECT_TRUE(missing.data != nullptr && missing.dataSize == 0 && missing.fourCC == 0);
    EXPECT_TRUE(texture.hasMetaData(7, 8));
    EXPECT_EQ(texture.getMetaDataSize(), 0u);
}

TEST(TextureMetaData, ShortPayloadsReadAsZeroes) {
    CMOKTextureHeader texture = header(PixelTypeRGBA8, 4, 4, 1, 1, 6);
    MetaDataBlock withoutPayload = block(own, 1, "");
    delete[] std::exchange(withoutPayload.data, nullptr);
    withoutPayload.dataSize = 8;
    for (const MetaDataBlock& added : {block(own, 2, "ab"), block(own, 3, "\1"), block(own, 4, {7, 0, 0, 0, 9}), withoutPayload})
        texture.addMetaData(added);
    EXPECT_EQ(borderDigits(texture), 790u);
    EXPECT_STREQ(texture.getCubeMapOrder().c_str(), "ab");
    EXPECT_EQ(texture.getOrientation(eAxisX), eOrientLeft);
    EXPECT_EQ(texture.getOrientation(eAxisZ), eOrientIn);
    EXPECT_EQ(texture.getBumpMapScale(), 0.0f);
    EXPECT_TRUE(texture.getBumpMapOrder().empty());
    EXPECT_EQ(texture.getMetaData(own, 1).data[7], 0);
}

TEST(TextureMetaData, ReplacingCountsTwiceAndRemovingMayWrap) {
    const MetaDataBlock blocks[] = {block(5, 1, "12"), block(5, 1, "3"), block(5, 9, "4")};
    MOKTextureHeaderV3 record;
    record.metaDataSize = 100;
    EXPECT_EQ(CMOKTextureHeader(record, 2, nullptr).getMetaDataSize(), 100u);
    CMOKTextureHeader texture(record, 3, blocks), empty;
    EXPECT_EQ(texture.getMetaDataSize(), 100u + 14 + 13 + 13);
    EXPECT_EQ(texture.getMetaData(5, 1).data[0], '3');
    texture.removeMetaData(5, 9);
    EXPECT_EQ(texture.getMetaDataSize(), 127u);
    EXPECT_FALSE(texture.hasMetaData(5, 9));
    empty.removeMetaData(5, 9);
    EXPECT_EQ(empty.getMetaDataSize(), 0u - 12u);
    EXPECT_FALSE(empty.hasMetaData(5, 9));
}

TEST(TextureMetaData, BlocksMayComeFromTheMapItself) {
    CMOKTextureHeader texture;
    texture.setCubeMapOrder("XxYyZz");
    for (unsigned int key = 10; key < 25; ++key)
        texture.addMetaData(block(own, key, "1"));
    const auto inMap = [&](unsigned int i) { return texture.getMetaDataMap().GetDataAtIndex(0)->GetDataAtIndex(i); };
    texture.addMetaData(*inMap(0));  // carries key 1, and makes the full array grow
    EXPECT_EQ(texture.getMetaData(own, 1).dataSize, 6u);
    texture.removeMetaData(inMap(16)->fourCC, inMap(16)->key);
    EXPECT_FALSE(texture.isBumpMap());
}

}  // namespace
