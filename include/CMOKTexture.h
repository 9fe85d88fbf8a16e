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
/// and is the one for data that you do not trust. What a failed load leaves:
///
/// | What is wrong | Header | `getDataPtr()` |
/// | --- | --- | --- |
/// | the file cannot be opened; the image is null; the data or extension is none of the native layout | default | null |
/// | more than 255 MIP levels, sizes that do not fit in 32 bits, more than 65536 metadata blocks | default | null |
/// | the metadata breaks off, or a block in a file is empty | as in the file, with the blocks before | null |
/// | the file ends within the header record or the pixels | as far as it is there, then defaults | not null; zeroes at the end |
///
/// Raises `std::bad_alloc`, and no other exception. Moves allocate as well and are not `noexcept`, so that a growing
/// `std::vector` copies its textures: reserve room, or hold pointers.
///
/// File paths are those of the C library's `fopen`: UTF-8 on Linux, the ANSI code page on Windows.
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
    /// If the true size does not fit in 32 bits, the buffer has the wrapped size `header.getDataSize()`: every operation refuses
    /// the texture, and saveFile() writes that buffer.
    CMOKTexture(const CMOKTextureHeader& header, const void* pixels);
    /// A deep copy; a texture without a buffer stays without one.
    CMOKTexture(const CMOKTexture& other);
    /// Takes over the contents of `other`, which becomes a default texture.
    CMOKTexture(CMOKTexture&& other);
    /// Loads a native file, whatever its extension; but ".ktx" and ".dds", in either case of letters, are refused. May be null.
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

    /// Saves in the format of the path's extension, in either case of letters. A path without '.' is its own extension.
    ///
    /// | Extension | What is done |
    /// | --- | --- |
    /// | "mok" | writes the native layout |
    /// | "ktx", "dds", "h" | gives false and makes no file |
    /// | any other | appends ".mok" to the path and writes the native layout |
    /// @return false also if the file could not be opened or written, or if the texture or a metadata block is empty: an empty
    ///         piece counts as not written, though the file is complete.
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
