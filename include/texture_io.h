#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "CMOKTexture.h"

/// @file
/// Loading and saving with an answer. These are the functions to use for data that you do not trust: everything is checked before
/// memory is taken, and a texture stays untouched on failure. Where both succeed, they give the same texture as the constructors.

namespace moktexture {

/// How a load ended.
enum ELoadStatus : unsigned int {
    eLoadOk = 0,
    eLoadUnreadable = 1,   ///< the file cannot be opened or read, or the image is null
    eLoadUnknown = 2,      ///< the data is no texture file that this library knows
    eLoadTruncated = 3,    ///< the data ends before the header, metadata or pixels that it announces
    eLoadCorrupt = 4,      ///< the data contradicts itself
    eLoadTooLarge = 5,     ///< the texture exceeds the limits, or what a texture can be at all; see LoadLimits
    eLoadUnsupported = 6,  ///< a variant of KTX, DDS or the legacy layout, or a format in one, that this library
                           ///< does not read
};

/// A sentence in English for a status; a static string.
MOKTEX_API const char* describe(ELoadStatus status);

/// What a load may take. A texture above any of these is refused with eLoadTooLarge. So is, whatever the limits, one with more
/// than 255 MIP levels, one whose pixel data reaches 2^32 bytes, and one of which a single face over all its levels reaches 2^32
/// bits (512 MiB).
///
/// The limits of metadata are those of the metadata that the file itself holds, not of the blocks that are made of it. A legacy
/// file holds the pixels of its first array member only: those of the others are zeroed memory, which the limits alone bound.
struct LoadLimits {
    std::uint32_t maxEdge = 65536;                              ///< width, height and depth, in pixels
    std::uint32_t maxLevels = 17;                               ///< MIP levels
    std::uint32_t maxMembers = 2048;                            ///< array members
    std::uint32_t maxMetaDataSize = 16u << 20;                  ///< metadata, in bytes
    std::uint32_t maxMetaDataBlocks = 4096;                     ///< metadata blocks
    std::uint64_t maxTotalSize = (std::uint64_t{1} << 32) - 1;  ///< pixel data, in bytes
};

/// Loads a texture from `size` bytes of a file's image, which is not kept. Its first bytes tell its layout: native, legacy, KTX
/// or DDS. A count of 0, with which the constructors leave a texture without pixels, is eLoadUnsupported in KTX, DDS and legacy
/// files and eLoadCorrupt in native ones.
/// @param texture  replaced on eLoadOk, else untouched
/// Raises `std::bad_alloc`, with the texture untouched.
MOKTEX_API ELoadStatus LoadTexture(CMOKTexture& texture, const void* image, std::size_t size, const LoadLimits& limits = {});

/// Loads a texture from a file, whose extension chooses the layout and whose path is taken as for the constructor.
/// @param texture  replaced on eLoadOk, else untouched
/// Raises `std::bad_alloc`, with the texture untouched.
MOKTEX_API ELoadStatus LoadTextureFile(CMOKTexture& texture, const char* filePath, const LoadLimits& limits = {});

/// Writes a texture as the image of a file into `image`, in the format of an extension: "mok", "ktx", "dds" or "h", as
/// CMOKTexture::saveFile() does. The array of "h" is named `texture`.
/// @param extension  with or without its dot, in either case of letters
/// @return false, with `image` untouched, for any other extension, for a texture without a buffer, and where saveFile() gives
///         false
/// Raises `std::bad_alloc`, with `image` untouched.
MOKTEX_API bool SaveTexture(const CMOKTexture& texture, const char* extension, std::vector<unsigned char>& image);

}  // namespace moktexture
