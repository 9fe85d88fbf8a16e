#pragma once

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// KTX 1.1 as its published standard has it (KTX 1.1, Khronos Group):
///
///     64 bytes    header: identifier, endianness, OpenGL numbers, sizes and counts
///     n bytes     key-value pairs: size, key, zero byte, value; each padded to 4 bytes
///     per level   imageSize (4 bytes), then for each layer, face and slice the rows
///
/// Rows of uncompressed formats are padded to 4 bytes, and so are faces of cube maps without layers and levels. The size of such
/// a cube map's level is that of one face. All words, and pixels in units of `glTypeSize`, have the byte order of the writer.

namespace moktexture {

/// Whether a KTX 1.1 file is not in the library's own arrangement, which has no level sizes: of that are files whose pixels, by
/// their own reading, are the `ownPixelBytes` that the file has, unless there are level sizes that fill it as well. Leaves the
/// source at its start.
bool isStandardKTX1(ByteReader& source, std::uint64_t ownPixelBytes);

/// Reads a standard file into a default texture. Nothing beside the limits is trusted; on failure the texture is unspecified.
ELoadStatus readStandardKTX1(ByteReader& source, const LoadLimits& limits, CMOKTexture& texture);

/// Whether the header's format has OpenGL numbers, and its shape is a texture's: see hasPublishedShape().
bool fitsStandardKTX1(const CMOKTextureHeader& header);

/// Writes a texture whose format has OpenGL numbers (see findPublished()) and that has its pixels. A header that the OpenGL
/// numbers and the orientation do not say in full is also stored whole, under the key "MOKTexHeader". False if a write failed.
bool writeStandardKTX1(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
