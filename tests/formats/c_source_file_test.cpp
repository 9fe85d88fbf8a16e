// C source of textures, and the names of its arrays.
#include "formats/c_source/c_source_file.h"

#include "layout_files.h"

using namespace layoutfiles;

namespace {

const std::string banner =
    "/********************************************************** \n * MOKTexLib v 4.4 \n"
    " **********************************************************/\n\n"
    "#ifndef A8BIT \n #define A8BIT static const unsigned char\n#endif\n\n";

/// A texture of one row of single bytes.
CMOKTexture row(std::uint32_t width) {
    const PixelType byte('l', 0, 0, 0, 8, 0, 0, 0);
    return CMOKTexture({byte.id, 1, width, 1, 1, 1, 1, eColourSpaceLinear, eVarUByteNorm, false}, Bytes(width, 0xAB).data());
}

std::string record(const std::string& width, const std::string& metaDataSize) {
    const std::string one = "0x01,0x00,0x00,0x00,\n", zero = "0x00,0x00,0x00,0x00,\n";
    return "\n/* Header */\n0x4d,0x4f,0x4b,0x03,\n" + zero + "0x6c,0x00,0x00,0x00,\n0x08,0x00,0x00,0x00,\n" + zero + zero + one +
           width + "0x00,0x00,0x00,\n" + one + one + one + one + metaDataSize + "0x00,0x00,0x00,\n";
}

/// The text that is written, prefixed by '!' if saveFile() returned false.
std::string textOf(const CMOKTexture& texture) {
    const TemporaryFolder folder;
    const bool isSaved = texture.saveFile(folder.path("a.h").c_str());
    const Bytes bytes = folder.read("a.h");
    return (isSaved ? "" : "!") + std::string(bytes.begin(), bytes.end());
}

TEST(CSourceFile, IsWrittenByteForByte) {
    const std::string start = banner + "A8BIT a[] = {\n", data = "\n/* Data */\n", end = "};\n";
    const std::string eight = "0xab,0xab,0xab,0xab,0xab,0xab,0xab,0xab,", line = eight + eight + eight + eight + "\n";
    EXPECT_EQ(textOf(row(33)), start + record("0x21,", "0x00,") + data + line + "0xab," + end);

    CMOKTexture texture = row(2);
    MetaDataBlock block;
    block.fourCC = 0x34333231, block.key = 0x201, block.dataSize = 4, block.data = new unsigned char[4]{9, 8, 0x7F, 0xFF};
    texture.addMetaData(block);
    const std::string metaData = "0x31,0x32,0x33,0x34,\n0x01,0x02,0x00,0x00,\n0x04,0x00,0x00,0x00,\n0x09,0x08,0x7f,0xff,\n";
    EXPECT_EQ(textOf(texture), start + record("0x02,", "0x10,") + "\n/* Meta Data */\n" + metaData + data + "0xab,0xab," + end);
    // Blocks are written regardless of the record's metaDataSize; those of every 32nd FourCC have a line for each byte.
    MOKTextureHeaderV3 uncounted = row(2).getFileHeader();
    uncounted.metaDataSize = 0u - 16;
    CMOKTextureHeader header(uncounted, 1, &block);
    EXPECT_EQ(textOf(CMOKTexture(header, "\xAB\xAB")), start + record("0x02,", "0x00,") + metaData + data + "0xab,0xab," + end);
    for (unsigned int owner = 0; owner < 31; ++owner)
        header.hasMetaData(owner, 0);
    block.fourCC = 30;
    header.addMetaData(block);
    EXPECT_NE(textOf(CMOKTexture(header, nullptr)).find("\n0x09,\n0x08,\n0x7f,\n0xff,\n\n\n/* Data"), std::string::npos);
}

TEST(CSourceFile, ArrayNameEndsAtTheFirstDotOfThePath) {
    for (const auto& [path, name] :
         {std::pair{"out/logo.h", "logo"}, {"./out/logo.h", ""}, {"a.b/logo.h", "a"}, {"x\\y\\logo.x.h", "logo"}, {"h", "h"}})
        EXPECT_EQ(arrayNameOf(path), name) << path;
}

TEST(CSourceFile, OnlyTexturesWithMissingPixelsAreRefused) {
    CMOKTexture texture = row(2);
    texture.setWidth(3);
    EXPECT_EQ(textOf(texture), "!");
    const std::string text = textOf(CMOKTexture());
    EXPECT_EQ(text.substr(text.size() - 16), "\n\n/* Data */\n};\n");
#if defined(__linux__)
    // A full disk is not reported.
    const TemporaryFolder folder;
    std::filesystem::create_symlink("/dev/full", folder.path("full.h"));
    EXPECT_TRUE(row(2).saveFile(folder.path("full.h").c_str()));
#endif
}

}  // namespace
