// Damaged files of every layout, at every door.
#include <tuple>

#include "foreign_image.h"

using namespace foreignimage;

namespace {

void expectHarmless(const Bytes& image, const std::string& extension, bool isCut) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a." + extension, image);
    const CMOKTexture fromFile(path.c_str());
    EXPECT_EQ(TextureInternals::dataSize(fromFile), fromFile.getDataSize());
    fromFile.getDataPtr(0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFF);
    CMOKTexture loaded, loadedFile;
    const LoadLimits limits = {.maxLevels = 255, .maxTotalSize = 1u << 20};
    const ELoadStatus status = load(image, loaded, limits), fileStatus = LoadTextureFile(loadedFile, path.c_str(), limits);
    EXPECT_TRUE(!isCut || status == (image.empty() ? eLoadUnknown : eLoadTruncated));
    EXPECT_EQ(contentsOf(loaded) == contentsOf(CMOKTexture()), status != eLoadOk);
    EXPECT_TRUE(status != eLoadOk || fileStatus != eLoadOk ||
                (contentsOf(loaded) == contentsOf(loadedFile) && contentsOf(loaded) == contentsOf(fromFile)));
}

// Nothing may crash, hang or read outside; what both doors load must be the same, and every buffer as large as its header says.
TEST(FilesOfEveryLayout, DoNoHarmWhereTheyAreDamaged) {
    CMOKTexture native = random(PixelTypeRGBA8, eVarUByteNorm, 2, 2, 1);
    native.setBorder(1, 2, 3);
    native.setCubeMapOrder("XxYyZz");
    // Image, extension and size of the head.
    const std::tuple<Bytes, std::string, std::uint32_t> files[] = {
        {save(native, "mok"), "mok", 52 + 12 + 12 + 12 + 6},
        {save(random(PixelTypeRGBA8, eVarUByteNorm, 2, 1, 1), "ktx"), "ktx", 96},
        {save(random(eFmtDXT1, eVarUByteNorm, 2, 1, 6), "dds"), "dds", 128},
        {words({52, 2, 3, 1, 18 | 0x1400, 99, 98, 97, 96, 95, 94, 93, 6}) + Bytes(6 * 28, 1), "mok", 52},
        {words({44, 2, 3, 1, 25, 99, 98, 97, 96, 95, 94}) + Bytes(64, 1), "mok", 44}};
    constexpr std::uint32_t extremes[] = {0, 1, 2, 3, 6, 12, 17, 255, 256, 65536, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    testimages::Random dice(8);
    for (const auto& [image, extension, headSize] : files) {
        SCOPED_TRACE(extension + std::to_string(headSize));
        for (std::size_t size = 0; size < image.size(); size += size < 16 ? 1 : 5)
            expectHarmless(Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size)), extension, true);
        for (int round = 0; round < 150; ++round) {
            Bytes changed = image;
            for (std::uint32_t changes = dice.below(3) + 1; changes > 0; --changes)
                if (dice.below(2) == 0)
                    setWord(changed, 4 * dice.below(headSize / 4), extremes[dice.below(14)]);
                else
                    changed[dice.below(headSize)] ^= static_cast<unsigned char>(1u << dice.below(8));
            expectHarmless(changed, extension, false);
        }
    }
}

}  // namespace
