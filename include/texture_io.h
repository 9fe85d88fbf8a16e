#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "CMOKTexture.h"

/// @file
/// Loading and saving with a status, for untrusted data: everything is validated before memory is allocated, and on failure the
/// texture is unchanged. Where both succeed, the texture is the same as that of CMOKTexture's constructors.

namespace moktexture {

/// Result of a load.
enum ELoadStatus : unsigned int {
    eLoadOk = 0,
    eLoadUnreadable = 1,   ///< the file cannot be opened or read, or the image is null
    eLoadUnknown = 2,      ///< the data is not a texture file of a known layout
    eLoadTruncated = 3,    ///< the data ends before the header, metadata or pixels that it declares
    eLoadCorrupt = 4,      ///< the data contradicts itself
    eLoadTooLarge = 5,     ///< the texture exceeds the limits, or those of every texture; see LoadLimits
    eLoadUnsupported = 6,  ///< a variant of KTX, DDS or the legacy layout, or a format in one, that this library
                           ///< does not read
    eLoadNoZstandard = 7,  ///< levels compressed with Zstandard, in a library that was built without it
};

/// A sentence in English that describes a status; a static string.
MOKTEX_API const char* describe(ELoadStatus status);

/// Limits of a load. A texture above any of these is refused with eLoadTooLarge. So is, whatever the limits, a texture with more
/// than 255 MIP levels, with 2^32 bytes of pixel data or more, or with 2^32 bits (512 MiB) or more in one face over all levels.
///
/// The limits of metadata apply to the metadata in the file, not to the blocks that a loader makes of it. A legacy file holds the
/// pixels of its first layer only: those of the others are zeroed memory, whose size maxExpansion bounds by the length of the
/// file.
struct LoadLimits {
    std::uint32_t maxEdge = 65536;                              ///< width, height and depth, in pixels
    std::uint32_t maxLevels = 17;                               ///< MIP levels
    std::uint32_t maxMembers = 2048;                            ///< array layers
    std::uint32_t maxMetaDataSize = 16u << 20;                  ///< metadata, in bytes
    std::uint32_t maxMetaDataBlocks = 4096;                     ///< metadata blocks
    std::uint64_t maxTotalSize = (std::uint64_t{1} << 32) - 1;  ///< pixel data, in bytes
    /// Pixel data of a legacy file as a multiple of the file's length, beyond 16 MiB.
    std::uint32_t maxExpansion = 16;
};

/// Loads a texture from a file in memory, which is not kept. The first bytes select the layout: native, legacy, KTX 1.1, KTX 2
/// without supercompression or with Zstandard, or DDS with the classic or the "DX10" header. KTX 1.1 and DDS files are read as
/// they are published and as CMOKTexture::saveFile() writes them; the sizes in the file tell the two apart. In published files a
/// count of 0 means 1; elsewhere it is eLoadUnsupported, and eLoadCorrupt in native files.
///
/// Formats that this library cannot decode load as well. Textures of a few of them, see GetStoredData(), can only be saved again.
/// @param texture  replaced on eLoadOk, else unchanged
/// @param image  `size` bytes; null gives eLoadUnreadable
/// Raises `std::bad_alloc`, with the texture unchanged. Calls on different textures may run at the same time.
MOKTEX_API ELoadStatus LoadTexture(CMOKTexture& texture, const void* image, std::size_t size, const LoadLimits& limits = {});

/// The same from a file. Its extension plays no part.
MOKTEX_API ELoadStatus LoadTextureFile(CMOKTexture& texture, const char* filePath, const LoadLimits& limits = {});

/// Kinds of file that a texture can be written to. KTX 1.1 and KTX 2 are published by the Khronos Group (KTX file format,
/// versions 1.1 and 2.0), DDS by Microsoft (DDS in the documentation of Direct3D).
enum ETextureContainer : unsigned int {
    eContainerMOK = 0,      ///< the native file
    eContainerKTX = 1,      ///< KTX 1.1
    eContainerKTX2 = 2,     ///< KTX 2
    eContainerDDS = 3,      ///< DDS
    eContainerCSource = 4,  ///< C source
};

/// How KTX 1.1 and DDS files are arranged; the other containers have one arrangement only.
enum EContainerLayout : unsigned int {
    eLayoutStandard = 0,  ///< by the published standard, as other tools read it
    eLayoutOwn = 1,       ///< as CMOKTexture::saveFile() writes it
};

/// Why a texture can or cannot be saved.
enum ESaveStatus : unsigned int {
    eSaveOk = 0,
    eSaveNoPixels = 1,         ///< the texture has no buffer, or not the one that its header asks for
    eSaveNoFormat = 2,         ///< the container has no number for the pixel format and channel type
    eSaveNoColourSpace = 3,    ///< the container cannot hold the format in this colour space
    eSaveNoPremultiplied = 4,  ///< the container cannot mark colours as premultiplied by alpha
    eSaveNoShape = 5,          ///< the container cannot hold so many layers, faces or slices
    eSaveNotWritten = 6,       ///< writing failed
    eSaveTooLarge = 7,         ///< the texture's size does not fit in 32 bits
};

/// A sentence in English for a status; a static string.
MOKTEX_API const char* describe(ESaveStatus status);

/// Whether a container can hold a texture of that header such that LoadTexture() gives the same texture back: pixel format,
/// channel type of uncompressed formats, sizes, counts, colour space and premultiplication. DDS files hold no metadata, which
/// does not count here. Touches no pixels and no file.
MOKTEX_API ESaveStatus CheckContainer(const CMOKTextureHeader& header, ETextureContainer container,
                                      EContainerLayout layout = eLayoutStandard);

/// The same for CMOKTexture::saveFileLegacyMOK(). eSaveNoColourSpace and eSaveNoPremultiplied mean that the file has the pixels
/// and does not say so; every other status but eSaveOk that they cannot be read back.
MOKTEX_API ESaveStatus CheckLegacyFile(const CMOKTextureHeader& header, ELegacyApi api);

/// Writes a texture as the image of a file into `image`. C source names its array `texture`.
/// @return CheckContainer()'s status, or eSaveNoPixels, with `image` untouched; else eSaveOk
/// Raises `std::bad_alloc`, with `image` untouched.
MOKTEX_API ESaveStatus SaveTexture(const CMOKTexture& texture, ETextureContainer container, std::vector<unsigned char>& image,
                                   EContainerLayout layout = eLayoutStandard);

/// One layer and face of a level as files store it: blocks of the format's published size, without a gap, and its bytes. For most
/// formats the same as CMOKTexture::getDataPtr(). Textures in formats that getDataSize() counts in another way (BC6, BC7, ETC2
/// and its like, shared exponents, RGBG) come from LoadTexture() with a buffer of this form, which every operation refuses and
/// which SaveTexture() writes unchanged to the standard containers.
/// @param size  receives the bytes; 0 with a null result
/// @return owned by the texture; null if an index is out of range or the buffer has another form
MOKTEX_API const unsigned char* GetStoredData(const CMOKTexture& texture, unsigned int level, unsigned int layer,
                                              unsigned int face, std::size_t& size);

/// Writes a texture as a file into memory, in the layout of an extension, "mok", "ktx", "dds" or "h", as
/// CMOKTexture::saveFile() does. The array of "h" is named `texture`.
/// @param extension  with or without its dot, in either case of letters
/// @param image  replaced by the bytes of the file on success
/// @return false, with `image` unchanged, for any other extension, for a texture without a buffer, and where saveFile() returns
///         false
/// Raises `std::bad_alloc`, with `image` unchanged. Calls with different vectors may run at the same time.
MOKTEX_API bool SaveTexture(const CMOKTexture& texture, const char* extension, std::vector<unsigned char>& image);

}  // namespace moktexture
