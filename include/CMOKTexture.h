#pragma once

#include <cstdint>
#include <cstdio>

#include "CMOKTextureHeader.h"

namespace moktexture {

struct TextureInternals;

/// A texture: a header and one buffer with the pixels of all MIP levels, array layers and faces, in the order that MOKTexLib.h
/// shows. The texture owns its buffer.
///
/// The header is a public base, so that its getters and setters work on the texture. Setters of sizes and formats do not change
/// the buffer: every operation refuses a texture whose header describes more bytes than the buffer has.
///
/// The loading constructors report no failure. Test `getDataPtr()` for null afterwards, or use LoadTexture(), which returns a
/// status and is the function for untrusted data. After a failed load the texture holds:
///
/// | Failure | Header | `getDataPtr()` |
/// | --- | --- | --- |
/// | the file cannot be opened; the image is null; the layout is unknown | default | null |
/// | more than 255 MIP levels, sizes above 32 bits, more than 65536 metadata blocks | default; of KTX and DDS as read | null |
/// | a DDS file declares a pitch or a refused layout; a KTX file ends before its pixels | as read | null |
/// | the metadata is truncated, or a block in a file is empty | as in the file, with the blocks read so far | null |
/// | a native file ends within the header record | the fields present, defaults for the others | not null; zeroes |
/// | a legacy, KTX or DDS file ends within its header | default | null |
/// | the file ends within the pixels | as read | not null; missing bytes are 0 |
/// | a legacy, KTX or DDS file has an unknown format, or a count of 0 | as read | not null; 0 bytes |
///
/// Raises `std::bad_alloc`, and no other exception. Moves allocate as well and are not `noexcept`, so that a growing
/// `std::vector` copies its textures: reserve capacity, or hold pointers.
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
    /// @param pixels  `header.getDataSize()` bytes in the order of the buffer, which are copied; null leaves the buffer zeroed
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
    /// A KTX file must hold the buffer as saveFile() writes it: the size words that other writers put in front of each level are
    /// read as pixels. A DDS file with the extended header ("DX10") has an unknown format; one that declares a pitch is refused.
    explicit CMOKTexture(const char* filePath);
    /// Loads a native file of either layout from memory. The image must be complete: its length is unknown and reads are not
    /// bounded. May be null.
    explicit CMOKTexture(const void* memoryImage);
    ~CMOKTexture();
    CMOKTexture& operator=(const CMOKTexture& other);
    CMOKTexture& operator=(CMOKTexture&& other);
    /// Exchanges header and buffer with `other`; never fails.
    void Swap(CMOKTexture& other) noexcept;

    /// Address of one face of one layer at a level, `getDataSize(level, false, false)` bytes long, owned by the texture.
    /// Null for level 0xFFFFFFFF and for a texture without a buffer. Nothing else is checked: stay below the header's counts.
    void* getDataPtr(unsigned int mipLevel = 0, unsigned int arrayMember = 0, unsigned int face = 0) const;
    /// The header base.
    const CMOKTextureHeader& getHeader() const;

    /// Saves in the layout of the path's extension, in either case of letters. A path without '.' is its own extension.
    ///
    /// | Extension | Layout |
    /// | --- | --- |
    /// | "mok" | native |
    /// | "ktx" | KTX: formats of getOGLFormat(); of the metadata only the orientation, which does not read back |
    /// | "dds" | DDS: formats of getD3DFormat() except D3DFMT_X8R8G8B8; depth, layers and metadata are not declared |
    /// | "h" | C source: an array of the native file's bytes, named for the path up to its first '.', without folders |
    /// | any other | ".mok" is appended to the path, and the native layout written |
    ///
    /// MOKTC formats can be saved as DDS, but do not read back.
    /// @return false if the file could not be opened or written (not detected for "h"), or if the layout cannot hold the format,
    ///         which leaves an empty file. Also false, though the file is complete, for "mok" if the texture or a metadata block
    ///         is empty, and for "ktx" if the texture is empty.
    bool saveFile(const CMOKTString& filePath) const;
    /// Saves in the legacy native layout to exactly that path.
    /// @param api  selects the family of legacy numbers that names the pixel format
    /// @return false as saveFile(); also for a depth above 1 and for a format that has no number in that family
    ///
    /// The pixels of several layers, or of several faces with several levels, read back in another order.
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
