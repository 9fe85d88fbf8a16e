#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "MOKTexLib.h"
#include "first_page_loop.h"
#include "support/test_images.h"

// Through the shared library's exported interface alone.
using namespace moktexture;

namespace {

CMOKTexture picture(std::uint32_t width, std::uint32_t height) {
    const CMOKTextureHeader header(PixelTypeRGBA8.id, height, width, 1, 1, 1, 1, eColourSpaceLinear, eVarUByteNorm, false);
    return CMOKTexture(header, testimages::make(testimages::Kind::softAlpha, width, height).data());
}

std::vector<std::uint8_t> bytesOf(const CMOKTexture& texture) {
    const auto* data = static_cast<const std::uint8_t*>(texture.getDataPtr());
    return {data, data + texture.getDataSize()};
}

std::string temporaryPath(const char* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

}  // namespace

TEST(ExportedInterface, TheContainersOfTheInterfaceLink) {
    CMOKTArray<CMOKTMap<unsigned int, MetaDataBlock>> maps;
    CMOKTMap<unsigned int, CMOKTMap<unsigned int, MetaDataBlock>> byOwner;
    byOwner[7][1].key = 5;
    maps.Append(byOwner[7]);
    EXPECT_EQ(maps[0].GetDataAtIndex(0)->key, 5u);
    EXPECT_TRUE((CMOKTString("a") + 'b' + "c" == "abc"));
}

TEST(ExportedInterface, TheFormatTableAgreesWithTheHeader) {
    EXPECT_STREQ(GetFormatInfo(eFmtDXT1).name, "dxt1");
    EXPECT_STREQ(GetFormatInfo(eFmtDXT1).otherName, "bc1");
    EXPECT_EQ(GetFormatInfo(eFmtMOKTC2bppRGB).codecBlock.width, 8u);
    EXPECT_EQ(GetFormatInfo(PixelTypeRGBA8).format, eFmtUnknown);
    EXPECT_EQ(GetFormatInfo(eFmtUnknown + 1).format, eFmtUnknown);
    for (unsigned int id = 0; id <= eFmtUnknown; ++id) {
        const FormatInfo& format = GetFormatInfo(id);
        CMOKTextureHeader header;
        header.setPixelFormat(id);
        EXPECT_EQ(format.bitsPerPixel, header.getBitsPerPixel()) << format.name;
        EXPECT_EQ(format.bitsPerPixel * format.sizeBlock.width * format.sizeBlock.height / 8, header.getDataSize())
            << format.name;
    }
}

TEST(ExportedInterface, TheLoopOnTheFirstPageVisitsEveryPixel) {
    const CMOKTextureHeader header(PixelTypeRGBA8.id, 2, 4, 1, 3, 5, 6, eColourSpaceLinear, eVarUByteNorm, false);
    EXPECT_EQ(sumOfRed(CMOKTexture(header, std::vector<unsigned char>(header.getDataSize(), 1).data())), (8u + 2 + 1) * 5 * 6);
}

TEST(ExportedInterface, TexturesAreProcessedConvertedSavedAndLoaded) {
    CMOKTexture texture = picture(64, 32);
    const std::vector<std::uint8_t> before = bytesOf(texture);
    ASSERT_TRUE(GenerateMIPMaps(texture, eResizeLinear));
    EXPECT_EQ(texture.getNumMIPLevels(), 7u);
    ASSERT_TRUE(Transcode(texture, eFmtDXT5, eVarUByteNorm, eColourSpaceLinear));
    texture.setBorder(1, 2, 0);

    const std::string path = temporaryPath("moktexlib_road_test.mok");
    ASSERT_TRUE(texture.saveFile(path.c_str()));
    CMOKTexture constructed(path.c_str());
    CMOKTexture loaded;
    EXPECT_EQ(LoadTextureFile(loaded, path.c_str()), eLoadOk);
    std::filesystem::remove(path);
    ASSERT_NE(constructed.getDataPtr(), nullptr);
    EXPECT_EQ(bytesOf(constructed), bytesOf(texture));
    EXPECT_EQ(bytesOf(loaded), bytesOf(texture));
    unsigned int x = 0, y = 0, z = 1;
    loaded.getBorder(x, y, z);
    EXPECT_EQ(x + 10 * y + 100 * z, 21u);

    ASSERT_TRUE(Transcode(loaded, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear));
    std::uint64_t error = 0;
    const std::vector<std::uint8_t> after = bytesOf(loaded);
    for (std::size_t i = 0; i < before.size(); ++i)
        error += static_cast<std::uint64_t>((before[i] - after[i]) * (before[i] - after[i]));
    EXPECT_LT(error / before.size(), 20u);
}

TEST(ExportedInterface, EveryLoadStatusHasASentence) {
    for (unsigned int status = 0; status <= eLoadUnsupported + 1u; ++status) {
        EXPECT_GT(std::strlen(describe(static_cast<ELoadStatus>(status))), 8u) << status;
    }
}
