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
/// | the file cannot be opened; the image is null; the data is none of a known layout | default | null |
/// | above 255 MIP levels, sizes above 32 bits, above 65536 metadata blocks | default; of KTX and DDS as read | null |
/// | a DDS file tells a pitch or a refused layout; a KTX file ends before its pixels | as read | null |
/// | the metadata breaks off, or a block in a file is empty | as in the file, with the blocks before | null |
/// | a native file ends within the header record | as far as it is there, then defaults | not null; zeroes |
/// | a legacy, KTX or DDS file ends within its head | default | null |
/// | the file ends within the pixels | as read | not null; zeroes at the end |
/// | a legacy, KTX or DDS file has an unknown format, or a count of 0 | as read | not null; 0 bytes |
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
    /// Loads a file: ".ktx" and ".dds", in either case of letters, as KTX and DDS, every other extension as a native file of
    /// version 3 or of the legacy layout, by its first word. May be null.
    ///
    /// A KTX file holds the texture's buffer as saveFile() writes it; the sizes between the levels of other makers' files are
    /// taken for pixels. A DDS file has no extended head ("DX10"); one that tells its pitch is refused.
    explicit CMOKTexture(const char* filePath);
    /// Loads the image of a native file, of either layout and of unknown length: the image must be complete, as nothing checks
    /// its end. May be null.
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
    /// | Extension | What is written |
    /// | --- | --- |
    /// | "mok" | the native layout |
    /// | "ktx" | KTX: formats of getOGLFormat(); of the metadata only the orientation, which does not read back |
    /// | "dds" | DDS: formats of getD3DFormat(), but not D3DFMT_X8R8G8B8; depth, array members and metadata are not told |
    /// | "h" | C source: an array of the native file's bytes, named for the path up to its first '.', without folders |
    /// | any other | ".mok" is appended to the path, and the native layout written |
    ///
    /// MOKTC formats can be saved as DDS, but do not read back.
    /// @return false if the file could not be opened or written, which goes unnoticed for "h"; if the layout cannot hold the
    ///         format, which leaves an empty file; and, as an empty piece counts as not written though the file is complete, for
    ///         "mok" if the texture or a metadata block is empty, and for "ktx" if the texture is empty
    bool saveFile(const CMOKTString& filePath) const;
    /// Saves in the legacy native layout to exactly that path.
    /// @param api  the part of the legacy numbering that is to name the pixel format
    /// @return false as saveFile(); also for a depth above 1 and for a format that has no number in that part
    ///
    /// Of several array members, or of faces with several levels, the pixels do not read back in their places.
    bool saveFileLegacyMOK(const CMOKTString& filePath, ELegacyApi api) const;

private:
    friend struct TextureInternals;

    bool privateLoadMOKFile(std::FILE* file);
    bool privateLoadKTXFile(std::FILE* file);
    bool privateLoadDDSFile(std::FILE* file);
    bool privateSaveMOKFile(std::FILE* file) const;
    bool privateSaveKTXFile(std::FILE* file) const;
    bool privateSaveDDSFile(std::FILE* file) const;
    bool privateSaveLegacyMOKFile(std::FILE* file, ELegacyApi api) const;
    bool privateSaveCHeaderFile(std::FILE* file, CMOKTString name) const;

    std::uint64_t dataSize;
    unsigned char* data;
};

static_assert(sizeof(CMOKTexture) == 128 && sizeof(CMOKTextureHeader) == 112);

}  // namespace moktexture
