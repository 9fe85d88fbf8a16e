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

}  // namespace moktexture
