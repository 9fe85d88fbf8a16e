// Legacy native files by every loader, and malformed files of every layout.
#include <tuple>

#include "layout_files.h"

using namespace layoutfiles;

namespace {

constexpr std::uint32_t bumpMap = 0x400, cubeMap = 0x1000, hasAlpha = 0x8000, flipped = 0x10000;

/// A header of `size` bytes for 3 by 2 pixels; the fields that readers ignore hold meaningless values.
Bytes recordWith(std::uint32_t size, std::uint32_t levelsBelow, std::uint32_t flags, std::uint32_t surfaces) {
    Bytes record = words({size, 2, 3, levelsBelow, flags, 99, 98, 97, 96, 95, 94, 93, surfaces});
    record.resize(size);
    return record;
}

TEST(LegacyFile, HeadersOfBothSizesAreRead) {
    // clang-format off
    const struct { std::uint32_t size, levelsBelow, flags, surfaces, levels, layers, faces; } cases[] = {
        {52, 1, 18 | 0xFFFE0000 | 0xEB00, 3, 2, 3, 1},  // bits without a meaning
        {52, 0, 18 | cubeMap, 12, 1, 2, 6}, {52, 1, 18 | cubeMap | bumpMap | flipped, 5, 2, 1, 6},
        {44, 1, 18 | cubeMap | flipped, 12, 2, 1, 6}};
    // clang-format on
    for (const auto& item : cases) {
        SCOPED_TRACE(&item - cases);
        CMOKTextureHeader header(PixelTypeRGBA8.id, 2, 3, 1, item.levels, item.layers, item.faces, eColourSpaceLinear,
                                 eVarUByteNorm, false);
        if ((item.flags & bumpMap) != 0) header.setBumpMap(1.0f, "xyz");
        if ((item.flags & flipped) != 0) header.setOrientation(eOrientUp);
        CMOKTexture expected(header, nullptr);
        const Bytes pixels = testimages::randomBytes(4u * (item.levels == 1 ? 6 : 7) * item.faces, 3);
        // Face by face and, within, level by level (6 pixels and 1); the first layer only.
        for (unsigned int face = 0; face < item.faces; ++face)
            for (unsigned int level = 0; level < item.levels; ++level)
                std::memcpy(expected.getDataPtr(level, 0, face), &pixels[4 * (face * (item.levels == 1 ? 6 : 7) + level * 6)],
                            level == 0 ? 24 : 4);
        const Bytes image = recordWith(item.size, item.levelsBelow, item.flags, item.surfaces) + pixels;
        CMOKTexture loaded;
        ASSERT_EQ(load(image, loaded), eLoadOk);
        EXPECT_EQ(contentsOf(loaded), contentsOf(expected));
        EXPECT_EQ(contentsOf(loadLeniently(image, "a.mok")), contentsOf(expected));
        EXPECT_EQ(contentsOf(CMOKTexture(static_cast<const void*>(image.data()))), contentsOf(expected));
    }
}

TEST(LegacyFile, RefusedFilesLeaveADefaultTexture) {
    // clang-format off
    checkHeaderFields(recordWith(52, 0, 18, 1) + Bytes(24, 1), "a.mok", {
        {12, 0xFFFFFFFF, eLoadUnsupported, 0}, {12, 255, eLoadTooLarge, -1, true}, {8, 0xFFFFFFFF, eLoadTooLarge, -1, true},
        {16, 14, eLoadUnsupported, 0}, {8, 0, eLoadOk, 8}, {8, 4, eLoadTruncated, 32}, {48, 2049, eLoadTooLarge, 49176}});
    // clang-format on
}

TEST(LegacyFile, LayersBeyondTheFileAreLimitedByItsLength) {
    // 512 by 512 pixels of 4 bytes: 1 MiB a layer.
    Bytes image = words({52, 512, 512, 0, 18, 0, 0, 0, 0, 0, 0, 0, 1});
    image.resize(52 + (1u << 20));
    // clang-format off
    const struct { unsigned char layers; std::uint32_t expansion; ELoadStatus status; } cases[] = {
        {16, 0, eLoadOk}, {17, 0, eLoadTooLarge}, {17, 16, eLoadTooLarge}, {17, 17, eLoadOk}, {64, 16, eLoadTooLarge}};
    // clang-format on
    for (const auto& [layers, expansion, status] : cases) {
        image[48] = layers;
        CMOKTexture loaded;
        EXPECT_EQ(load(image, loaded, {.maxExpansion = expansion}), status) << int{layers};
        EXPECT_EQ(CMOKTexture(static_cast<const void*>(image.data())).getNumArrayMembers(), layers);
    }
}

TEST(LegacyFile, IsWrittenByteForByte) {
    const TemporaryFolder folder;
    const std::string path = folder.path("any.name");
    constexpr std::uint32_t allMarks = 0x100 | bumpMap | cubeMap | flipped;
    // clang-format off
    const struct { PixelType format; ELegacyApi api; std::uint32_t flags, bits, levels, layers, faces; } cases[] = {
        {PixelTypeRGBA8, eLegacyApiVGFamily, 145, 32, 1, 1, 1},
        {PixelTypeRGBA8, eLegacyApiGLFamilyC, 18 | allMarks, 32, 3, 2, 6},
        {eFmtMOKTC4bppRGB, eLegacyApiGLFamilyA, 25, 4, 1, 1, 1},
        {eFmtMOKTC2bppRGBA, eLegacyApiD3DFamilyA, 12 | allMarks | hasAlpha, 2, 3, 2, 6}};
    // clang-format on
    for (const auto& [format, api, flags, bits, levels, layers, faces] : cases) {
        CMOKTexture texture = random(format, eVarUByteNorm, levels, layers, faces);
        if ((flags & bumpMap) != 0) texture.setBumpMap(2.0f, "zyx");
        if ((flags & flipped) != 0) texture.setOrientation(eOrientUp | eOrientLeft);
        EXPECT_TRUE(texture.saveFileLegacyMOK(path.c_str(), api));
        const std::uint32_t size = texture.getDataSize(), alpha = (flags & hasAlpha) != 0 ? 1 : 0;
        const Bytes image = words({52, 5, 9, levels - 1, flags, size, bits, 0, 0, 0, alpha, 0x214B4F4D, layers * faces});
        EXPECT_EQ(folder.read("any.name"), image + pixelsOf(texture)) << flags;
    }
    // A format without a number and a depth above 1 are refused; a texture without pixels counts as not written.
    CMOKTexture texture = random(PixelTypeRGBA8, eVarUByteNorm, 1, 1, 1);
    EXPECT_FALSE(texture.saveFileLegacyMOK(path.c_str(), eLegacyApiD3DFamilyA));
    texture.setDepth(2);
    EXPECT_FALSE(texture.saveFileLegacyMOK(path.c_str(), eLegacyApiGLFamilyA));
    EXPECT_TRUE(folder.read("any.name").empty());
    texture.setDepth(1), texture.setNumMIPLevels(0);
    EXPECT_FALSE(CMOKTexture(texture.getHeader(), nullptr).saveFileLegacyMOK(path.c_str(), eLegacyApiGLFamilyA));
    EXPECT_EQ(folder.read("any.name").size(), 52u);
}

// --- Malformed files of every layout

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
    // A changed KTX or DDS file may have become one of another maker, which LoadTexture() alone reads.
    if (extension == "mok") {
        EXPECT_EQ(contentsOf(loaded), contentsOf(fromFile));
    }
}

// No load may crash, hang or read out of bounds; all loaders of native files that succeed must load the same, and every buffer
// must have the size that its header describes.
TEST(MalformedFiles, LoadSafelyInEveryLayout) {
    CMOKTexture native = random(PixelTypeRGBA8, eVarUByteNorm, 2, 2, 1);
    native.setBorder(1, 2, 3);
    native.setCubeMapOrder("XxYyZz");
    // Image, extension and size of the header.
    const std::tuple<Bytes, std::string, std::uint32_t> files[] = {
        {save(native, "mok"), "mok", 52 + 12 + 12 + 12 + 6},
        {save(random(PixelTypeRGBA8, eVarUByteNorm, 2, 1, 1), "ktx"), "ktx", 96},
        {save(random(eFmtDXT1, eVarUByteNorm, 2, 1, 6), "dds"), "dds", 128},
        {recordWith(52, 1, 18 | bumpMap | cubeMap, 6) + Bytes(6 * 28, 1), "mok", 52},
        {recordWith(44, 1, 25, 0) + Bytes(64, 1), "mok", 44}};
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
