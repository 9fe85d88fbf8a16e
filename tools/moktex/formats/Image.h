#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "MOKTexLib.h"
#include "moktex/formats/texture_format.h"
#include "moktex/formats/texture_size.h"

namespace moktextool {

/// Uncompressed pixels of one level of one face and layer, all slices in turn. Unlike a CMOKTexture it can be of any size that
/// fits the memory.
class Image {
public:
    Image() = default;
    /// Allocates pixels and leaves their values unset. Raises `std::bad_alloc`.
    Image(const TextureFormat& imageFormat, const ImageSize& imageSize);
    /// Takes ownership of pixels from std::malloc().
    Image(const TextureFormat& imageFormat, const ImageSize& imageSize, unsigned char* imagePixels);

    const TextureFormat& getFormat() const { return format; }
    const ImageSize& getSize() const { return size; }
    std::uint64_t getDataSize() const;
    unsigned char* getData() { return pixels.get(); }
    const unsigned char* getData() const { return pixels.get(); }

    /// Rows of all slices together.
    std::uint64_t countRows() const { return std::uint64_t{size.height} * size.depth; }
    /// Bytes of a row. The pixels of formats that can be converted have whole bytes.
    std::uint64_t getRowSize() const;
    /// A row, counted through all slices.
    unsigned char* row(std::uint64_t index) { return pixels.get() + index * getRowSize(); }
    const unsigned char* row(std::uint64_t index) const { return pixels.get() + index * getRowSize(); }

private:
    struct Release {
        void operator()(unsigned char* memory) const { std::free(memory); }
    };

    TextureFormat format = rgba8Format;
    ImageSize size;
    std::unique_ptr<unsigned char[], Release> pixels;
};

/// One face of one layer: its MIP levels.
using Surface = std::vector<Image>;

/// The images of an uncompressed texture.
struct ImageSet {
    /// Everything but the pixels. Use textureSize() for its size, because getDataSize() may wrap.
    moktexture::CMOKTextureHeader header;
    std::vector<Surface> surfaces;  ///< layer by layer, in each face by face

    Surface& surface(std::uint32_t layer, std::uint32_t face) { return surfaces[layer * header.getNumFaces() + face]; }
};

}  // namespace moktextool
