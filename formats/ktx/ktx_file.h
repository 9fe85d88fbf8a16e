#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "core/io/read_policy.h"
#include "texture_io.h"

/// @file
/// Files with the header and the key-value pairs of KTX 1.1, whose pixel data is the texture's buffer as it is: without the size
/// words and the padding that KTX files have between levels.

namespace moktexture {

/// The first four bytes of every KTX file.
inline constexpr std::uint32_t ktxFirstWord = 0x58544BAB;

/// Reads a KTX file from the source's start into a default texture. On failure the texture's header is the default one if the
/// file's header is refused, else what the file describes, with an orientation.
ELoadStatus readKTXFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture);

/// Writes a texture as a KTX file. Returns false, with nothing written, if OpenGL has no internal format for it; also if a write
/// failed or the buffer is empty.
bool writeKTXFile(const CMOKTexture& texture, ByteWriter& target);

/// Bytes of the pixels that the header asks for in this arrangement; 0 if there are none. Leaves the source at its start.
std::uint64_t ownKTXPixelBytes(ByteReader& source);

/// The header that a reader makes of the file of a texture with that header; false if there is no such file.
bool readBackKTXHeader(const CMOKTextureHeader& header, CMOKTextureHeader& readBack);

}  // namespace moktexture
