#pragma once

#include <cstdint>
#include <cstdio>

#include "CMOKTextureHeader.h"

namespace moktexture {

struct TextureInternals;

/// A texture: a header and one flat buffer with the pixels of all levels, array members and faces.
///
/// Order of the buffer, from the outermost: MIP level, array member, face; then depth slices, rows and pixels, or the codec's
/// blocks. Nothing lies between the pieces. The texture owns its buffer.
///
/// The header part is a public base, so that metadata can be read and set on the texture. Its setters of sizes and formats do not
/// touch the buffer: a texture whose header asks for more bytes than the buffer holds is refused by every operation.
///
/// Constructors that load report nothing. Test `getDataPtr()` for null afterwards, or use LoadTexture(), which says what is wrong
/// and is the one for data that you do not trust. Raises `std::bad_alloc`, and no other exception.
///
/// Thread safety: one object belongs to one thread at a time.
///
/// @code
/// moktexture::CMOKTexture texture("leaf.mok");
/// if (texture.getDataPtr() == nullptr) return 1;
/// moktexture::Transcode(texture, moktexture::PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear,
///                       moktexture::eCompressorQuality0, false);
/// texture.saveFile("leaf_rgba.mok");
/// @endcode
class MOKTEX_API CMOKTexture : public CMOKTextureHeader {
public:
    /// A default header and no buffer.
    CMOKTexture();
    /// A texture of that header, metadata included.
    /// @param pixels  `header.getDataSize()` bytes in the order above, which are copied; null leaves the buffer zeroed
    /// If the true size does not fit in 32 bits, the buffer has the wrapped size and every operation refuses the texture.
    CMOKTexture(const CMOKTextureHeader& header, const void* pixels);
    /// A deep copy; a texture without a buffer stays without one.
    CMOKTexture(const CMOKTexture& other);
    /// Takes over the contents of `other`, which becomes a default texture.
    CMOKTexture(CMOKTexture&& other);
    /// Loads a file by its extension: so far the native layout, whatever the extension, but ".ktx" and ".dds", which are refused.
    explicit CMOKTexture(const char* filePath);
    /// Loads a native file image of unknown length: the image must be complete, as nothing checks its end. May be null.
    explicit CMOKTexture(const void* memoryImage);
    ~CMOKTexture();
    CMOKTexture& operator=(const CMOKTexture& other);
    CMOKTexture& operator=(CMOKTexture&& other);
    /// Exchanges header and buffer with `other`; never fails.
    void Swap(CMOKTexture& other) noexcept;

    /// Address of one face of one member at a level, `getDataSize(level, false, false)` bytes long, owned by the texture.
    /// Null for level 0xFFFFFFFF and for a texture without a buffer. Nothing else is checked: stay below the header's counts.
    void* getDataPtr(unsigned int mipLevel = 0, unsigned int arrayMember = 0, unsigned int face = 0) const;
    /// The header part.
    const CMOKTextureHeader& getHeader() const;

    /// Saves in the format of the path's extension: "mok" is the native layout. Any other extension gets ".mok" appended.
    /// @return false if the file could not be opened or written, or if the texture or a metadata block is empty.
    bool saveFile(const CMOKTString& filePath) const;

private:
    friend struct TextureInternals;

    bool privateLoadMOKFile(std::FILE* file);
    bool privateSaveMOKFile(std::FILE* file) const;

    std::uint64_t dataSize;
    unsigned char* data;
};

static_assert(sizeof(CMOKTexture) == 128 && sizeof(CMOKTextureHeader) == 112);

}  // namespace moktexture
