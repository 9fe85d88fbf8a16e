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
    /// Pixel data as a multiple of the file's length, beyond 16 MiB. Only legacy files can have more than their length.
    std::uint32_t maxExpansion = 16;
};

/// Loads a texture from a file in memory, which is not kept. The first bytes select the layout: native, legacy, KTX or DDS. A
/// count of 0, for which the constructors give a texture without pixels, is eLoadUnsupported in KTX, DDS and legacy files and
/// eLoadCorrupt in native ones.
/// @param texture  replaced on eLoadOk, else unchanged
/// @param image  `size` bytes; null gives eLoadUnreadable
/// Raises `std::bad_alloc`, with the texture unchanged. Calls on different textures may run at the same time.
MOKTEX_API ELoadStatus LoadTexture(CMOKTexture& texture, const void* image, std::size_t size, const LoadLimits& limits = {});

/// Loads a texture from a file. The extension selects the layout, as for CMOKTexture's constructor from a path.
/// @param texture  replaced on eLoadOk, else unchanged
/// Raises `std::bad_alloc`, with the texture unchanged. Calls on different textures may run at the same time.
MOKTEX_API ELoadStatus LoadTextureFile(CMOKTexture& texture, const char* filePath, const LoadLimits& limits = {});

/// Writes a texture as a file into memory, in the layout of an extension, "mok", "ktx", "dds" or "h", as
/// CMOKTexture::saveFile() does. The array of "h" is named `texture`.
/// @param extension  with or without its dot, in either case of letters
/// @param image  replaced by the bytes of the file on success
/// @return false, with `image` unchanged, for any other extension, for a texture without a buffer, and where saveFile() returns
///         false
/// Raises `std::bad_alloc`, with `image` unchanged. Calls with different vectors may run at the same time.
MOKTEX_API bool SaveTexture(const CMOKTexture& texture, const char* extension, std::vector<unsigned char>& image);

}  // namespace moktexture
