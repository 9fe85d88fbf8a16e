// CMOKTexture as an object: constructors, copies, addresses, paths.
#include <gtest/gtest.h>

#include <tuple>

#include "CMOKTexture.h"
#include "core/texture/TextureInternals.h"
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
    moved = std::move(assigned);
    EXPECT_EQ(contentsOf(assigned), contentsOf(CMOKTexture()));
    EXPECT_EQ(contentsOf(CMOKTexture(std::move(moved))), contents);
}

TEST(Texture, WithMissingPixelsIsCopiedAndNotSaved) {
    CMOKTexture halfLoaded = sample(), wrapped = sample();
    TextureInternals::release(halfLoaded);
    TextureInternals::setDataSize(halfLoaded, 4);
    EXPECT_EQ(contentsOf(CMOKTexture(halfLoaded)), contentsOf(halfLoaded));
    wrapped.setNumMIPLevels(1), wrapped.setWidth(89478488);  // to 192 bytes
    Bytes image = {9};
    EXPECT_FALSE(SaveTexture(halfLoaded, "mok", image));
    EXPECT_FALSE(SaveTexture(wrapped, "dds", image));
    EXPECT_EQ(image, Bytes{9});
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
#if defined(__linux__)
    std::filesystem::create_symlink("/dev/full", folder.path("full.mok"));
    EXPECT_FALSE(texture.saveFile(folder.path("full.mok").c_str()));
#endif
}

}  // namespace
