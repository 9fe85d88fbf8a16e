// The native file through every door: the constructors from a path and from memory, LoadTexture() and LoadTextureFile().
#include <gtest/gtest.h>

#include "core/data_size.h"
#include "native_image.h"
#include "support/test_images.h"
#include "texture_io.h"

using namespace moktexture;
using namespace nativeimage;

namespace {

constexpr std::uint32_t owner = 0x44434241;
constexpr std::uint32_t huge = 0xFFFFFFFFu;

MOKTextureHeaderV3 smallRecord(std::uint32_t metaDataSize) {
    const CMOKTextureHeader header(PixelTypeRGBA8.id, 2, 3, 1, 2, 2, 1, eColourSpaceLinear, eVarUByteNorm, false);
    MOKTextureHeaderV3 record = header.getFileHeader();
    record.metaDataSize = metaDataSize;
    return record;
}
constexpr std::uint64_t smallSize = 2 * 4 * (6 + 1);

const std::vector<Block> twoBlocks = {{owner, 7, {1, 2, 3, 4, 5}}, {owner, 8, {6}}};
constexpr std::uint32_t twoBlocksSize = 17 + 13;

ELoadStatus load(const Bytes& image, CMOKTexture& texture, const LoadLimits& limits = {}) {
    const Bytes exact(image.begin(), image.end());
    static const unsigned char none = 0;
    return LoadTexture(texture, exact.empty() ? &none : exact.data(), exact.size(), limits);
}

ELoadStatus load(const Bytes& image, const LoadLimits& limits = {}) {
    CMOKTexture texture;
    return load(image, texture, limits);
}

/// What the constructor from a path is to find in a file.
Contents expected(MOKTextureHeaderV3 record, const std::vector<Block>& blocks, const Bytes* pixels) {
    record.metaDataSize = 0;
    Bytes metaData = make({}, blocks, {});
    metaData.erase(metaData.begin(), metaData.begin() + 52);
    const std::uint32_t size = CMOKTextureHeader(record, 0, nullptr).getDataSize();
    record.metaDataSize = static_cast<std::uint32_t>(metaData.size());
    Contents contents{make(record, {}, {}), metaData, pixels == nullptr ? Bytes() : *pixels, pixels != nullptr, size};
    if (contents.hasBuffer) contents.pixels.resize(size);
    return contents;
}

TEST(NativeFile, EveryFormatComesBackBitForBit) {
    const TemporaryFolder folder("round_trip");
    for (std::uint64_t id = 0; id <= eFmtUnknown + 1; ++id) {
        SCOPED_TRACE(id);
        const std::uint64_t format = id > eFmtUnknown ? PixelTypeRGBA16.id : id;
        const CMOKTextureHeader header(format, 13, 21, 3, 4, 2, 6, eColourSpaceSRGB, eVarSShortNorm, true);
        const std::uint32_t size = header.getDataSize();
        MOKTextureHeaderV3 record = header.getFileHeader();
        record.metaDataSize = twoBlocksSize;
        const Bytes pixels = testimages::randomBytes(size, id);
        const Bytes image = make(record, twoBlocks, pixels);
        const Contents contents = expected(record, twoBlocks, &pixels);

        CMOKTexture texture, fromFile;
        ASSERT_EQ(load(image, texture), eLoadOk);
        EXPECT_EQ(contentsOf(texture), contents);
        Bytes saved = {1};
        EXPECT_EQ(SaveTexture(texture, ".MOK", saved), size != 0);
        EXPECT_EQ(saved, size != 0 ? image : Bytes{1});
        const std::string path = folder.path("out.mok");
        EXPECT_EQ(texture.saveFile(path.c_str()), size != 0);
        EXPECT_EQ(folder.read("out.mok"), image);
        EXPECT_EQ(contentsOf(CMOKTexture(path.c_str())), contents);
        EXPECT_EQ(contentsOf(CMOKTexture(static_cast<const void*>(image.data()))), contents);
        EXPECT_EQ(LoadTextureFile(fromFile, path.c_str()), eLoadOk);
        EXPECT_EQ(contentsOf(fromFile), contents);
    }
}

TEST(NativeFile, EveryPrefixLeavesAKnownState) {
    const TemporaryFolder folder("prefixes");
    const MOKTextureHeaderV3 record = smallRecord(twoBlocksSize);
    const Bytes pixels = testimages::randomBytes(smallSize, 3);
    const Bytes image = make(record, twoBlocks, pixels);
    const std::size_t pixelStart = 52 + twoBlocksSize;
    for (std::size_t length = 0; length <= image.size(); ++length) {
        SCOPED_TRACE(length);
        const Bytes prefix(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length));
        MOKTextureHeaderV3 found;
        if (length >= 4) std::memcpy(static_cast<void*>(&found), image.data(), std::min<std::size_t>(length, 52));
        std::vector<Block> blocks;
        if (length >= 52 + 17) blocks.push_back(twoBlocks[0]);
        if (length >= pixelStart) blocks.push_back(twoBlocks[1]);
        const Bytes present(prefix.begin() + static_cast<std::ptrdiff_t>(std::min(length, pixelStart)), prefix.end());
        const bool hasBuffer = length >= 4 && (found.metaDataSize == 0 || length >= pixelStart);
        const std::string path = folder.write("cut.mok", prefix);
        EXPECT_EQ(contentsOf(CMOKTexture(path.c_str())), expected(found, blocks, hasBuffer ? &present : nullptr));

        CMOKTexture kept(CMOKTextureHeader(PixelTypeRGBA8.id, 1, 1, 1, 1, 1, 1, eColourSpaceSRGB, eVarUByteNorm, true), "abc");
        const Contents before = contentsOf(kept);
        const ELoadStatus status = length == image.size() ? eLoadOk : length == 0 ? eLoadUnknown : eLoadTruncated;
        EXPECT_EQ(load(prefix, kept), status);
        EXPECT_EQ(contentsOf(kept) == before, status != eLoadOk);
        CMOKTexture fromFile;
        EXPECT_EQ(LoadTextureFile(fromFile, path.c_str()), status);
    }
    Bytes longer = image;
    longer.push_back(0);
    EXPECT_EQ(load(longer), eLoadOk);
}

TEST(NativeFile, OddMetaDataIsReadAsEachDoorDoes) {
    struct Case {
        std::uint32_t declared;
        std::vector<Block> blocks;
        std::size_t acceptedByFile, acceptedByMemory;
        bool fileHasBuffer;
        ELoadStatus status;
    };
    const Block empty = {owner, 1, {}};
    // clang-format off
    const Case cases[] = {
        {twoBlocksSize,     twoBlocks,                    2, 2, true,  eLoadOk},         // ends exactly
        {twoBlocksSize - 1, twoBlocks,                    1, 2, true,  eLoadCorrupt},    // the last one overruns
        {5,                 twoBlocks,                    0, 1, true,  eLoadCorrupt},    // less than a block's head
        {twoBlocksSize + 1, twoBlocks,                    2, 2, false, eLoadTruncated},  // pixels are taken for an empty block
        {12 + 13,           {empty, twoBlocks[1]},        0, 2, false, eLoadCorrupt},
        {13 + 12,           {twoBlocks[1], empty},        1, 2, false, eLoadCorrupt},
        {17 + 17,           {twoBlocks[0], twoBlocks[0]}, 2, 2, true,  eLoadOk},         // one replaces the other
        {0,                 {},                           0, 0, true,  eLoadOk},
    };
    // clang-format on
    const TemporaryFolder folder("odd_metadata");
    for (const Case& item : cases) {
        SCOPED_TRACE(&item - cases);
        Bytes pixels(smallSize, 0);
        pixels.back() = 9;
        const Bytes image = make(smallRecord(item.declared), item.blocks, pixels);
        const CMOKTexture fromFile(folder.write("odd.mok", image).c_str());
        EXPECT_EQ(fromFile.getDataPtr() != nullptr, item.fileHasBuffer);
        EXPECT_EQ(TextureInternals::dataSize(fromFile), smallSize);
        const std::vector<Block> accepted(item.blocks.begin(), item.blocks.begin() + item.acceptedByFile);
        const std::size_t acceptedSize = make({}, accepted, {}).size() - 52;
        EXPECT_EQ(fromFile.getMetaDataSize(), acceptedSize);
        if (item.fileHasBuffer) {
            EXPECT_EQ(std::memcmp(fromFile.getDataPtr(), image.data() + 52 + acceptedSize, smallSize), 0);
        }
        Bytes padded = image;
        padded.resize(image.size() + 64);
        const CMOKTexture fromMemory(static_cast<const void*>(padded.data()));
        for (std::size_t i = 0; i < item.acceptedByMemory; ++i)
            EXPECT_TRUE(fromMemory.hasMetaData(item.blocks[i].fourCC, item.blocks[i].key));
        EXPECT_EQ(load(image), item.status);
    }
}

TEST(NativeFile, BlocksAreWrittenAsTheyAreAndCounted) {
    CMOKTexture texture(CMOKTextureHeader(eFmtDXT1, 1, 1, 1, 1, 1, 6, eColourSpaceLinear, eVarUByteNorm, false), nullptr);
    texture.setCubeMapOrder("XxYyZz");
    Bytes image;
    ASSERT_TRUE(SaveTexture(texture, "mok", image));
    ASSERT_EQ(load(image, texture), eLoadOk);
    EXPECT_TRUE(texture.getCubeMapOrder().empty());
    EXPECT_STREQ(texture.getBumpMapOrder().c_str(), "Zz");

    // A block that was replaced is counted twice in the file and written once.
    texture.addMetaData(texture.getMetaData(MOKTextureHeaderV3::magic, 1));
    ASSERT_TRUE(SaveTexture(texture, "mok", image));
    EXPECT_EQ(image.size(), 52u + 18 + texture.getDataSize());
    EXPECT_EQ(image[48], 36);
    EXPECT_EQ(load(image), eLoadTruncated);
}

TEST(NativeFile, WhatIsRefusedSaysWhy) {
    using Record = MOKTextureHeaderV3;
    struct Case {
        std::uint32_t Record::*field;
        std::uint32_t value;
        ELoadStatus status;
        LoadLimits limits = {};
    };
    // clang-format off
    const Case cases[] = {
        {&Record::version,         Record::magic,   eLoadOk},
        {&Record::version,         0x4D4F4B03,      eLoadUnknown},
        {&Record::version,         52,              eLoadUnsupported},
        {&Record::version,         44,              eLoadUnsupported},
        {&Record::numMIPLevels,    0,               eLoadCorrupt},
        {&Record::numArrayMembers, 0,               eLoadCorrupt},
        {&Record::numFaces,        0,               eLoadCorrupt},
        {&Record::numMIPLevels,    256,             eLoadTooLarge,  {.maxLevels = huge}},
        {&Record::numMIPLevels,    255,             eLoadTruncated, {.maxLevels = huge}},
        {&Record::numMIPLevels,    18,              eLoadTooLarge},
        {&Record::numArrayMembers, 2049,            eLoadTooLarge},
        {&Record::depth,           65537,           eLoadTooLarge},
        {&Record::numFaces,        huge,            eLoadTooLarge},
        {&Record::metaDataSize,    (16u << 20) + 1, eLoadTooLarge},
        {&Record::metaDataSize,    1000,            eLoadTruncated},
        {&Record::flags,           0,               eLoadOk,        {.maxTotalSize = smallSize}},
        {&Record::flags,           0,               eLoadTooLarge,  {.maxTotalSize = smallSize - 1}},
        {&Record::flags,           0,               eLoadOk,        {.maxMetaDataBlocks = 2}},
        {&Record::flags,           0,               eLoadTooLarge,  {.maxMetaDataBlocks = 1}},
    };
    // clang-format on
    for (const Case& item : cases) {
        Record record = smallRecord(twoBlocksSize);
        record.*item.field = item.value;
        EXPECT_EQ(load(make(record, twoBlocks, Bytes(smallSize)), item.limits), item.status) << &item - cases;
    }
    EXPECT_EQ(load({'h', 'i'}), eLoadUnknown);

    const TemporaryFolder folder("refused");
    const Bytes good = make(smallRecord(0), {}, Bytes(smallSize));
    CMOKTexture texture;
    EXPECT_EQ(LoadTexture(texture, nullptr, 0), eLoadUnreadable);
    EXPECT_EQ(LoadTextureFile(texture, nullptr), eLoadUnreadable);
    EXPECT_EQ(LoadTextureFile(texture, folder.path("none.mok").c_str()), eLoadUnreadable);
    EXPECT_EQ(LoadTextureFile(texture, folder.path("").c_str()), eLoadUnreadable);
    EXPECT_EQ(LoadTextureFile(texture, folder.write("a.png", good).c_str()), eLoadOk);
    for (const char* name : {"a.ktx", "a.DDS"}) {
        EXPECT_EQ(LoadTextureFile(texture, folder.write(name, good).c_str()), eLoadUnsupported);
        EXPECT_EQ(contentsOf(CMOKTexture(folder.path(name).c_str())), contentsOf(CMOKTexture()));
    }
}

TEST(NativeFile, RandomHeadersNeitherCrashNorHang) {
    constexpr std::uint32_t extremes[] = {0, 1, 2, 3, 6, 12, 17, 255, 256, 65536, 0x7FFFFFFF, 0x80000000, huge};
    testimages::Random random(11);
    const TemporaryFolder folder("random_headers");
    for (int run = 0; run < 1500; ++run) {
        Bytes image = make(smallRecord(twoBlocksSize), twoBlocks, Bytes(smallSize));
        for (std::uint32_t changes = random.below(4) + 1; changes > 0; --changes) {
            const std::size_t word = 4 * (1 + random.below(20));
            std::memcpy(image.data() + word, &extremes[random.below(std::size(extremes))], 4);
        }
        CMOKTexture loaded;
        load(image, loaded, {.maxLevels = 255, .maxTotalSize = 1u << 20});
        const CMOKTexture fromFile(folder.write("random.mok", image).c_str());
        for (const CMOKTexture* texture : std::initializer_list<const CMOKTexture*>{&loaded, &fromFile}) {
            texture->getTextureSize();
            texture->getDataPtr(0xFFFFFFFE, huge, huge);
            if (TextureInternals::data(*texture) == nullptr) continue;
            EXPECT_TRUE(sizesAreTrue(*texture));
            EXPECT_EQ(texture->getDataSize(), TextureInternals::dataSize(*texture));
        }
    }
}

}  // namespace
