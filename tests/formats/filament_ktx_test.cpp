// KTX 1.1 files against KtxBundle of Filament, an independent reader and writer: each layer and face of each level holds the same
// bytes, whoever writes them.
#include <gtest/gtest.h>
#include <image/KtxBundle.h>

#include <cstring>
#include <vector>

#include "sample_textures.h"

using namespace moktexture;
using namespace sampletextures;

namespace {

/// The stored rows of a layer and face, each padded to 4 bytes where the format is not compressed.
Bytes paddedRows(const CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face) {
    const StoredLayout layout(texture);
    const unsigned char* row = storedSubresource(texture, level, layer, face);
    const bool isPadded = texture.getPixelType().part.high != 0 || texture.getPixelType() == eFmtRGB9E5;
    Bytes bytes;
    for (std::uint64_t i = 0; i < layout.rows(level) * layout.slices(level); ++i, row += layout.rowBytes(level)) {
        bytes.insert(bytes.end(), row, row + layout.rowBytes(level));
        while (isPadded && bytes.size() % 4 != 0)
            bytes.push_back(0);
    }
    return bytes;
}

/// What Filament reads must be the texture; returns the file that it writes of it.
Bytes passThroughFilament(const Bytes& image, const CMOKTexture& texture) {
    const image::KtxBundle read(image.data(), static_cast<std::uint32_t>(image.size()));
    EXPECT_EQ(read.getNumMipLevels(), texture.getNumMIPLevels());
    EXPECT_EQ(read.getArrayLength(), texture.getNumArrayMembers());
    EXPECT_EQ(read.isCubemap(), texture.getNumFaces() == 6);
    EXPECT_EQ(read.getInfo().pixelWidth, texture.getWidth());
    image::KtxBundle written(read.getNumMipLevels(), read.getArrayLength(), read.isCubemap());
    written.info() = read.getInfo();
    for (std::uint32_t level = 0; level < texture.getNumMIPLevels(); ++level) {
        for (std::uint32_t layer = 0; layer < texture.getNumArrayMembers(); ++layer) {
            for (std::uint32_t face = 0; face < texture.getNumFaces(); ++face) {
                std::uint8_t* data = nullptr;
                std::uint32_t size = 0;
                EXPECT_TRUE(read.getBlob({level, layer, face}, &data, &size));
                EXPECT_EQ(Bytes(data, data + size), paddedRows(texture, level, layer, face))
                    << level << ' ' << layer << ' ' << face;
                written.setBlob({level, layer, face}, data, size);
            }
        }
    }
    Bytes file(written.getSerializedLength());
    EXPECT_TRUE(written.serialize(file.data(), static_cast<std::uint32_t>(file.size())));
    return file;
}

TEST(FilamentKTX, ReadsOurFilesAndWritesOnesThatWeRead) {
    for (const PublishedFormat& format : publishedFormats()) {
        for (const Shape& shape : shapes) {
            const CMOKTexture texture = makeTexture(format, shape);
            Bytes image;
            if (SaveTexture(texture, eContainerKTX, image) != eSaveOk) continue;
            SCOPED_TRACE(std::to_string(format.pixelFormat.id) + " type " + std::to_string(format.channelType) + ", " +
                         shape.name);
            const Bytes theirs = passThroughFilament(image, texture);
            CMOKTexture loaded;
            ASSERT_EQ(LoadTexture(loaded, theirs.data(), theirs.size()), eLoadOk);
            EXPECT_EQ(pixelsOf(loaded), pixelsOf(texture));
        }
    }
}

}  // namespace
