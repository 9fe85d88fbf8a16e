#pragma once

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// The published KTX 1.1 format (Khronos Group):
///
///     64 bytes    header: identifier, endianness, OpenGL numbers, sizes and counts
///     n bytes     key-value pairs: size, key, zero byte, value; each padded to 4 bytes
///     per level   imageSize (4 bytes), then for each layer, face and slice the rows
///
/// The rows of uncompressed formats, the faces of cube maps without layers, and the levels are padded to 4 bytes. `imageSize` is
/// the size of a level; for a cube map without layers it is the size of one face. All words, and pixels in units of `glTypeSize`,
/// have the byte order of the writer.

namespace moktexture {

/// Whether a KTX 1.1 file is not in the library's own arrangement, which stores no `imageSize`. A file is in that arrangement if
/// it has this machine's byte order, counts of layers and levels above 0, and exactly `ownPixelBytes` of pixels after the keys
/// (the size that the reader of that arrangement computes), unless its levels start with their sizes and fill it too. Leaves the
/// source at its start.
bool isStandardKTX1(ByteReader& source, std::uint64_t ownPixelBytes);

/// Reads a standard file into a default texture. All fields are checked against the file and the limits. On failure the texture
/// is unspecified.
ELoadStatus readStandardKTX1(ByteReader& source, const LoadLimits& limits, CMOKTexture& texture);

/// Whether the header's format has OpenGL numbers, and its shape is a texture's: see hasPublishedShape().
bool fitsStandardKTX1(const CMOKTextureHeader& header);

/// Writes a texture whose format has OpenGL numbers (see findPublished()) and that has its pixels. A header that the OpenGL
/// numbers and the orientation do not describe completely is also stored under the key "MOKTexHeader". False if a write failed.
bool writeStandardKTX1(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
