#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// Files with the head and the key-value area of KTX 1.1. Their pixels are the texture's buffer as it stands: this system's own
/// layout, without the words of sizes and the padding that files of other makers have between levels.

namespace moktexture {

/// The first four bytes of every KTX file.
inline constexpr std::uint32_t ktxFirstWord = 0x58544BAB;

/// Reads a KTX file from the source's start into a default texture; for `limits` see size_judgement.h.
/// The header is default if the head is refused, else what the head says, with an orientation.
ELoadStatus readKTXFile(ByteReader& source, const LoadLimits* limits, CMOKTexture& texture);

/// Writes a texture as a KTX file. Returns false, with nothing written, if OpenGL has no internal format for it; and if a write
/// failed or the buffer is empty.
bool writeKTXFile(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
