// Malformed files of every layout, by every loader.
#include <tuple>

#include "layout_files.h"

using namespace layoutfiles;

namespace {

void expectSafeLoad(const Bytes& image, const std::string& extension, bool isTruncated) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a." + extension, image);
    const CMOKTexture fromFile(path.c_str());
    EXPECT_EQ(TextureInternals::dataSize(fromFile), fromFile.getDataSize());
    fromFile.getDataPtr(0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFF);
    CMOKTexture loaded, loadedFile;
    const LoadLimits limits = {.maxLevels = 255, .maxTotalSize = 1u << 20};
    const ELoadStatus status = load(image, loaded, limits), fileStatus = LoadTextureFile(loadedFile, path.c_str(), limits);
    if (isTruncated) {
        EXPECT_EQ(status, image.empty() ? eLoadUnknown : eLoadTruncated);
    }
    EXPECT_EQ(contentsOf(loaded) == contentsOf(CMOKTexture()), status != eLoadOk);
    if (status != eLoadOk || fileStatus != eLoadOk) return;
    EXPECT_EQ(contentsOf(loaded), contentsOf(loadedFile));
    EXPECT_EQ(contentsOf(loaded), contentsOf(fromFile));
}

// No load may crash, hang or read out of bounds; all loaders that succeed must load the same, and every buffer must have the size
// that its header describes.
TEST(MalformedFiles, LoadSafelyInEveryLayout) {
    CMOKTexture native = random(PixelTypeRGBA8, eVarUByteNorm, 2, 2, 1);
    native.setBorder(1, 2, 3);
    native.setCubeMapOrder("XxYyZz");
    // Image, extension and size of the header.
    const std::tuple<Bytes, std::string, std::uint32_t> files[] = {
        {save(native, "mok"), "mok", 52 + 12 + 12 + 12 + 6},
        {save(random(PixelTypeRGBA8, eVarUByteNorm, 2, 1, 1), "ktx"), "ktx", 96},
        {save(random(eFmtDXT1, eVarUByteNorm, 2, 1, 6), "dds"), "dds", 128},
        {words({52, 2, 3, 1, 18 | 0x1400, 99, 98, 97, 96, 95, 94, 93, 6}) + Bytes(6 * 28, 1), "mok", 52},
        {words({44, 2, 3, 1, 25, 99, 98, 97, 96, 95, 94}) + Bytes(64, 1), "mok", 44}};
    constexpr std::uint32_t extremes[] = {0, 1, 2, 3, 6, 12, 17, 255, 256, 65536, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    testimages::Random dice(8);
    for (const auto& [image, extension, headerSize] : files) {
        SCOPED_TRACE(extension + std::to_string(headerSize));
        for (std::size_t size = 0; size < image.size(); size += size < 16 ? 1 : 5)
            expectSafeLoad(Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size)), extension, true);
        for (int round = 0; round < 150; ++round) {
            Bytes changed = image;
            for (std::uint32_t changes = dice.below(3) + 1; changes > 0; --changes)
                if (dice.below(2) == 0)
                    setWord(changed, 4 * dice.below(headerSize / 4), extremes[dice.below(14)]);
                else
                    changed[dice.below(headerSize)] ^= static_cast<unsigned char>(1u << dice.below(8));
            expectSafeLoad(changed, extension, false);
        }
    }
}

}  // namespace
