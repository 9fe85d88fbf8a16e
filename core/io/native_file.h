#pragma once

#include "core/io/byte_stream.h"
#include "core/io/read_policy.h"
#include "texture_io.h"

/// @file
/// The native file, version 3: the 52-byte header record, the metadata blocks and the pixel data, back to back, little-endian.

namespace moktexture {

/// Reads a native file from the source's start into a default texture.
///
/// On failure the texture holds what the caller of a lenient constructor sees: the default header if the first word or the sizes
/// are refused; the header with the blocks read so far, its data size and no buffer if the metadata is truncated; the header and
/// a buffer whose missing bytes are zero if the pixels are truncated.
ELoadStatus readNativeFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture);

/// Writes a texture as a native file: record, blocks in the map's order, and the whole buffer, all unchanged.
/// Returns false if a write failed, or if the buffer or the payload of a block is empty.
bool writeNativeFile(const CMOKTexture& texture, ByteWriter& target);

/// Allocates the texture's buffer and fills it from the source; bytes that the source lacks are zero. The sizes must fit 32 bits.
ELoadStatus readPixelData(ByteReader& source, CMOKTexture& texture);

/// Writes the texture's whole buffer. Returns false if the write failed or the buffer is null or empty.
bool writePixelData(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
