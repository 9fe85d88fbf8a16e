#pragma once

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// KTX 2 as its published standard has it (KTX 2.0, Khronos Group):
///
///     80 bytes    header: identifier, VkFormat, sizes and counts, and the index of what follows
///     24 a level  level index: offset, length, length when uncompressed; the largest level first
///                 data format descriptor
///                 key-value pairs, sorted by key
///                 levels, the smallest first, each aligned to its block and to 4 bytes: layers, faces, slices, rows without
///                 padding

namespace moktexture {

/// Whether the first bytes are those of KTX 2. Leaves the source at its start.
bool isKTX2(ByteReader& source);

/// Reads a file into a default texture. Nothing beside the limits is trusted; on failure the texture is unspecified.
/// Files with another supercompression than Zstandard, or with an undefined format, are eLoadUnsupported; those with Zstandard
/// eLoadNoZstandard in a build without it.
ELoadStatus readKTX2(ByteReader& source, const LoadLimits& limits, CMOKTexture& texture);

/// Whether the header's format has a VkFormat.
bool fitsKTX2(const CMOKTextureHeader& header);

/// Writes a texture whose format has a VkFormat (see findPublished()) and that has its pixels. A header that the file's own
/// fields do not say in full is also stored whole, under the key "MOKTexHeader". False if a write failed.
bool writeKTX2(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
