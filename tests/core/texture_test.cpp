// CMOKTexture as an object: constructors, copies, addresses, paths.
#include <gtest/gtest.h>

#include <tuple>

#include "CMOKTexture.h"
#include "core/texture/TextureInternals.h"
#include "formats/file_layout.h"
#include "native_image.h"
#include "support/temporary_folder.h"
#include "support/test_images.h"
#include "texture_io.h"

using namespace moktexture;
using namespace nativeimage;

namespace {

CMOKTexture sample() {
    const CMOKTextureHeader header(eFmtDXT1, 9, 12, 1, 3, 2, 6, eColourSpaceSRGB, eVarUByteNorm, true);
    CMOKTexture texture(header, testimages::randomBytes(header.getDataSize(), 5).data());
    texture.setBorder(1, 2, 3);
    return texture;
}

TEST(Texture, BufferIsOrderedByLevelLayerAndFace) {
    const CMOKTexture texture = sample();
    const auto* next = static_cast<const unsigned char*>(texture.getDataPtr());
    const unsigned char* const start = next;
    for (unsigned int level = 0; level < 3; ++level)
        for (unsigned int layer = 0; layer < 2; ++layer)
            for (unsigned int face = 0; face < 6; ++face) {
                EXPECT_EQ(texture.getDataPtr(level, layer, face), next);
                next += texture.getDataSize(static_cast<int>(level), false, false);
            }
    EXPECT_EQ(texture.getDataPtr(3, 0, 0), next);
    EXPECT_EQ(next - start, 8 * (9 + 2 + 1) * 12);
    EXPECT_EQ(texture.getDataPtr(0xFFFFFFFF, 0, 0), nullptr);
    EXPECT_EQ(CMOKTexture().getDataPtr(1, 1, 1), nullptr);
    // Beyond the last level the sizes repeat every 32 levels.
    std::uint32_t offset = 0;
    for (int level = 0; level < 50; ++level)
        offset += texture.getDataSize(level, true, true);
    EXPECT_EQ(texture.getDataPtr(50, 0, 0), start + offset);
}

TEST(Texture, CopiesAreDeepAndMovesLeaveADefaultTexture) {
    CMOKTexture assigned, moved, copy = sample();
    const CMOKTexture original(copy);
    const Contents contents = contentsOf(copy);
    assigned = copy;
    static_cast<unsigned char*>(copy.getDataPtr())[0] ^= 1;
    EXPECT_EQ(contentsOf(original), contents);
    EXPECT_EQ(contentsOf(assigned), contents);
    EXPECT_NE(contentsOf(copy), contents);
    moved = std::move(assigned);
    EXPECT_EQ(contentsOf(moved), contents);
    EXPECT_EQ(contentsOf(assigned), contentsOf(CMOKTexture()));
    EXPECT_EQ(contentsOf(CMOKTexture(std::move(moved))), contents);
}

TEST(Texture, CopiesOfATextureWithoutBufferHaveNone) {
    CMOKTexture halfLoaded = sample(), assigned = sample();
    TextureInternals::release(halfLoaded);
    TextureInternals::setDataSize(halfLoaded, 4);
    const CMOKTexture copy(halfLoaded);
    assigned = copy;
    Bytes image = {9};
    EXPECT_EQ(contentsOf(assigned), contentsOf(halfLoaded));
    EXPECT_FALSE(SaveTexture(copy, "mok", image));
    EXPECT_EQ(image, Bytes{9});
    EXPECT_FALSE(copy.saveFile(TemporaryFolder().path("copy.mok").c_str()));
}

TEST(Texture, HasValidPixelDataOnlyWithAllItsPixels) {
    CMOKTexture texture = sample();
    // Levels and width of the header over a buffer of 3 levels and width 12; the last wraps to 192 bytes.
    for (const auto& [levels, width, hasValidPixelData] : {std::tuple{3u, 12u, true},
                                                           {2u, 12u, true},
                                                           {4u, 12u, false},
                                                           {0u, 12u, false},
                                                           {3u, 13u, false},
                                                           {1u, 89478488u, false}}) {
        texture.setNumMIPLevels(levels), texture.setWidth(width);
        EXPECT_EQ(TextureInternals::hasValidPixelData(texture), hasValidPixelData) << levels << ' ' << width;
    }
    const CMOKTexture empty(CMOKTextureHeader(), nullptr);
    EXPECT_NE(empty.getDataPtr(), nullptr);
    EXPECT_FALSE(TextureInternals::hasValidPixelData(empty));
}

TEST(Texture, TheExtensionSelectsTheLayout) {
    const TemporaryFolder folder;
    const CMOKTexture texture = sample();
    Bytes image;
    // Path, file that is written, layout.
    // clang-format off
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"a.mok", "a.mok", "mok"}, {"b.x.MoK", "b.x.MoK", "mok"}, {"c.tga", "c.tga.mok", "mok"}, {"d", "d.mok", "mok"},
        {"i.mok.", "i.mok..mok", "mok"}, {"f.DDS", "f.DDS", ".dds"}, {"texture.H", "texture.H", ".h"}};
    // clang-format on
    for (const auto& [path, written, layout] : cases) {
        EXPECT_TRUE(texture.saveFile(folder.path(path).c_str())) << path;
        EXPECT_TRUE(SaveTexture(texture, layout, image)) << path;
        EXPECT_EQ(folder.read(written), image) << path;
    }
    // A format without a KTX number: the refused save leaves an empty file.
    EXPECT_FALSE(texture.saveFile(folder.path("f.ktx").c_str()));
    EXPECT_FALSE(texture.saveFile(folder.path("none/a.mok").c_str()));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path("f.ktx")));
    for (const char* extension : {"ktx", "tga", "", ".", "a.mok", "mo"})
        EXPECT_FALSE(SaveTexture(texture, extension, image)) << extension;
    EXPECT_FALSE(SaveTexture(texture, nullptr, image));
    EXPECT_EQ(fileLayoutForLoading("ktx"), FileLayout::mok);
    EXPECT_EQ(fileLayoutForLoading(".ktx"), FileLayout::ktx);
#if defined(__linux__)
    std::filesystem::create_symlink("/dev/full", folder.path("full.mok"));
    EXPECT_FALSE(texture.saveFile(folder.path("full.mok").c_str()));
#endif
}

}  // namespace
