// Native files by every loader: the constructors from a path and from memory, LoadTexture() and LoadTextureFile().
#include "core/io/native_file.h"

#include <gtest/gtest.h>

#include "core/texture/subresources.h"
#include "native_image.h"
#include "support/temporary_folder.h"
#include "support/test_images.h"

using namespace moktexture;
using namespace nativeimage;

namespace {

constexpr std::uint32_t owner = 0x44434241;
constexpr std::uint32_t huge = 0xFFFFFFFFu;

MOKTextureHeaderV3 smallRecord(std::uint32_t metaDataSize) {
    return {MOKTextureHeaderV3::magic, 0, PixelTypeRGBA8.id, eColourSpaceLinear, eVarUByteNorm, 2, 3, 1, 2, 1, 2, metaDataSize};
}
constexpr std::uint64_t smallSize = 2 * 4 * (6 + 1);

const std::vector<Block> twoBlocks = {{owner, 7, {1, 2, 3, 4, 5}}, {owner, 8, {6}}};
constexpr std::uint32_t twoBlocksSize = 17 + 13;

/// LoadTexture() from memory of exactly the image's size.
ELoadStatus load(const Bytes& image, const LoadLimits& limits = {}, CMOKTexture&& texture = CMOKTexture()) {
    const Bytes exact(image.begin(), image.end());
    return LoadTexture(texture, exact.empty() ? &huge : static_cast<const void*>(exact.data()), exact.size(), limits);
}

/// Content of the texture that a constructor reads.
Contents readBy(ReadMode mode, const Bytes& image, std::size_t size) {
    CMOKTexture texture;
    MemoryReader reader(image.data(), size);
    readNativeFile(reader, ReadPolicy::lenient(mode), texture);
    return contentsOf(texture);
}

/// Expected content of a loaded texture; `pixels` are padded with zeroes, and null stands for no buffer.
Contents expected(MOKTextureHeaderV3 record, const std::vector<Block>& blocks, const Bytes* pixels) {
    const std::uint32_t size = CMOKTextureHeader(record, 0, nullptr).getDataSize();
    record.metaDataSize = static_cast<std::uint32_t>(make({}, blocks, {}).size()) - 52;
    Bytes present = pixels == nullptr ? Bytes() : *pixels;
    if (pixels != nullptr) present.resize(size);
    return {make(record, blocks, present), pixels != nullptr, size};
}

TEST(NativeFile, EveryFormatRoundTripsBitForBit) {
    const TemporaryFolder folder;
    for (std::uint64_t id = 0; id <= eFmtUnknown + 1; ++id) {
        SCOPED_TRACE(id);
        const std::uint64_t format = id > eFmtUnknown ? PixelTypeRGBA16.id : id;
        const CMOKTextureHeader header(format, 13, 21, 3, 4, 2, 6, eColourSpaceSRGB, eVarSShortNorm, true);
        MOKTextureHeaderV3 record = header.getFileHeader();
        record.metaDataSize = twoBlocksSize;
        const Bytes pixels = testimages::randomBytes(header.getDataSize(), id);
        const Bytes image = make(record, twoBlocks, pixels);
        CMOKTexture texture;
        ASSERT_EQ(load(image, {}, std::move(texture)), eLoadOk);
        EXPECT_EQ(contentsOf(texture), expected(record, twoBlocks, &pixels));
        EXPECT_EQ(contentsOf(texture), contentsOf(CMOKTexture(static_cast<const void*>(image.data()))));
        // Without pixels the file is complete, but not "saved".
        Bytes saved = {1};
        EXPECT_EQ(SaveTexture(texture, ".MOK", saved), !pixels.empty());
        EXPECT_EQ(texture.saveFile(folder.path("out.mok").c_str()), !pixels.empty());
        EXPECT_EQ(saved, (pixels.empty() ? Bytes{1} : image));
        EXPECT_EQ(folder.read("out.mok"), image);
    }
}

TEST(NativeFile, EveryTruncationLeavesADefinedState) {
    const TemporaryFolder folder;
    const Bytes image = make(smallRecord(twoBlocksSize), twoBlocks, testimages::randomBytes(smallSize, 3));
    const std::size_t pixelStart = 52 + twoBlocksSize;
    // For files of a length below `end`, from the `end` of the row before: metadata blocks that the constructor from a path
    // reads, and whether there is a buffer. Below 49 bytes the record declares no metadata.
    // clang-format off
    const struct { std::size_t end, blocks; bool hasBuffer; } ranges[] = {
        {4, 0, false}, {49, 0, true}, {52 + 17, 0, false}, {pixelStart, 1, false}, {image.size() + 1, 2, true}};
    // clang-format on
    std::size_t length = 0;
    for (const auto& range : ranges)
        for (; length < range.end; ++length) {
            SCOPED_TRACE(length);
            const Bytes prefix(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length));
            MOKTextureHeaderV3 record;
            if (length >= 4) std::memcpy(static_cast<void*>(&record), image.data(), std::min<std::size_t>(length, 52));
            const std::vector<Block> blocks(twoBlocks.begin(), twoBlocks.begin() + static_cast<std::ptrdiff_t>(range.blocks));
            const Bytes present(prefix.begin() + static_cast<std::ptrdiff_t>(std::min(length, pixelStart)), prefix.end());
            const std::string path = folder.write("cut.mok", prefix);
            EXPECT_EQ(contentsOf(CMOKTexture(path.c_str())), expected(record, blocks, range.hasBuffer ? &present : nullptr));

            CMOKTexture kept(CMOKTextureHeader(eFmtDXT1, 1, 1, 1, 1, 1, 1, eColourSpaceSRGB, eVarUByteNorm, true), nullptr);
            const Contents before = contentsOf(kept);
            const ELoadStatus status = length == image.size() ? eLoadOk : length == 0 ? eLoadUnknown : eLoadTruncated;
            EXPECT_EQ(LoadTextureFile(kept, path.c_str()), status);
            EXPECT_EQ(load(prefix, {}, std::move(kept)), status);
            EXPECT_EQ(contentsOf(kept) == before, status != eLoadOk);
        }
    EXPECT_EQ(load(make(smallRecord(0), {}, Bytes(smallSize + 1))), eLoadOk);
}

TEST(NativeFile, MalformedMetaDataIsReadByEachPolicy) {
    const Block a = twoBlocks[0], b = twoBlocks[1], empty = {owner, 1, {}}, zero = {0, 0, {}};
    // clang-format off
    const struct {
        std::uint32_t declared; std::vector<Block> blocks, inFile, inMemory; bool fileHasBuffer; ELoadStatus status; } cases[] = {
        {twoBlocksSize - 1, {a, b}, {a}, {a, b}, true, eLoadCorrupt},  // the last one overruns
        {5, {a, b}, {}, {a}, true, eLoadCorrupt},  // less than the header of a block
        {twoBlocksSize + 1, {a, b}, {a, b}, {a, b, zero}, false, eLoadTruncated},  // pixels are taken for an empty block
        {13 + 12, {b, empty}, {b}, {b, empty}, false, eLoadCorrupt}};
    // clang-format on
    Bytes pixels(smallSize, 0);
    pixels.back() = 9;
    for (const auto& item : cases) {
        SCOPED_TRACE(&item - cases);
        const Bytes image = make(smallRecord(item.declared), item.blocks, pixels);
        for (const bool isFile : {true, false}) {
            const std::vector<Block>& blocks = isFile ? item.inFile : item.inMemory;
            const Bytes rest(image.begin() + std::ssize(make({}, blocks, {})), image.end());
            EXPECT_EQ(readBy(isFile ? ReadMode::lenientFile : ReadMode::lenientMemory, image, image.size()),
                      expected(smallRecord(0), blocks, isFile && !item.fileHasBuffer ? nullptr : &rest));
        }
        EXPECT_EQ(load(image), item.status);
    }

    // A block that would end beyond 2^32 bytes overruns every declared size.
    std::memset(pixels.data() + 8, 0xFF, 4);
    const Bytes image = make(smallRecord(huge), {}, pixels);
    EXPECT_EQ(readBy(ReadMode::lenientFile, image, MemoryReader::unknownSize), expected(smallRecord(0), {}, &pixels));
    EXPECT_EQ(readBy(ReadMode::lenientMemory, image, MemoryReader::unknownSize), contentsOf(CMOKTexture()));
}

TEST(NativeFile, BlocksAreWrittenUnchanged) {
    CMOKTexture texture(CMOKTextureHeader(eFmtDXT1, 1, 1, 1, 1, 1, 6, eColourSpaceLinear, eVarUByteNorm, false), nullptr);
    texture.setCubeMapOrder("XxYyZz");
    Bytes image;
    ASSERT_TRUE(SaveTexture(texture, "mok", image));
    ASSERT_EQ(load(image, {}, std::move(texture)), eLoadOk);
    EXPECT_EQ(texture.getBumpMapOrder(), "Zz");

    // A block that was replaced is counted twice in the file and written once.
    texture.addMetaData(texture.getMetaData(MOKTextureHeaderV3::magic, 1));
    ASSERT_TRUE(SaveTexture(texture, "mok", image));
    ASSERT_EQ(image.size(), 52u + 18 + texture.getDataSize());
    EXPECT_EQ(image[48], 36u);
    EXPECT_EQ(load(image), eLoadTruncated);

    // An empty one is written, but counts as not written.
    texture.setCubeMapOrder("");
    Bytes written;
    MemoryWriter writer(written);
    EXPECT_FALSE(writeNativeFile(texture, writer));
    EXPECT_FALSE(SaveTexture(texture, "mok", image));
    EXPECT_EQ(written.size(), 52u + 18 + 12 + texture.getDataSize());
}

TEST(NativeFile, RefusalsHaveTheirStatus) {
    using Record = MOKTextureHeaderV3;
    // clang-format off
    const struct { std::uint32_t Record::*field; std::uint32_t value; ELoadStatus status; LoadLimits limits = {}; } cases[] = {
        {&Record::version, 0x4D4F4B03, eLoadUnknown}, {&Record::numMIPLevels, 0, eLoadCorrupt},
        {&Record::numArrayMembers, 0, eLoadCorrupt}, {&Record::numFaces, 0, eLoadCorrupt},
        {&Record::numMIPLevels, 256, eLoadTooLarge, {.maxLevels = huge}},
        {&Record::numMIPLevels, 255, eLoadTruncated, {.maxLevels = huge}}, {&Record::numMIPLevels, 18, eLoadTooLarge},
        {&Record::numArrayMembers, 2049, eLoadTooLarge}, {&Record::depth, 65537, eLoadTooLarge},
        {&Record::numFaces, huge, eLoadTooLarge}, {&Record::metaDataSize, (16u << 20) + 1, eLoadTooLarge},
        {&Record::flags, 0, eLoadOk, {.maxMetaDataBlocks = 2, .maxTotalSize = smallSize}},
        {&Record::flags, 0, eLoadTooLarge, {.maxTotalSize = smallSize - 1}},
        {&Record::flags, 0, eLoadTooLarge, {.maxMetaDataBlocks = 1}}};
    // clang-format on
    for (const auto& item : cases) {
        Record record = smallRecord(twoBlocksSize);
        record.*item.field = item.value;
        EXPECT_EQ(load(make(record, twoBlocks, Bytes(smallSize)), item.limits), item.status) << &item - cases;
    }
    const TemporaryFolder folder;
    CMOKTexture texture;
    EXPECT_EQ(LoadTexture(texture, nullptr, 0), eLoadUnreadable);
    EXPECT_EQ(LoadTextureFile(texture, nullptr), eLoadUnreadable);
    for (const char* name : {"none.mok", ""})
        EXPECT_EQ(LoadTextureFile(texture, folder.path(name).c_str()), eLoadUnreadable);
    EXPECT_EQ(load({'h', 'i'}), eLoadUnknown);
    for (const char* name : {"a.png", "a.ktx", "a.DDS"})
        EXPECT_EQ(LoadTextureFile(texture, folder.write(name, make(smallRecord(0), {}, Bytes(smallSize))).c_str()), eLoadOk);
}

}  // namespace
