#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// DDS files with the classic head of 128 bytes. Their pixels lie by member, face and level, other than in a texture's buffer.

namespace moktexture {

/// The first four bytes of a DDS file: "DDS ".
inline constexpr std::uint32_t ddsFirstWord = 0x20534444;

/// Reads a DDS file from the source's start into a default texture; for `limits` see size_judgement.h.
/// The header is default if the head is refused, else has what was read up to a refusal.
ELoadStatus readDDSFile(ByteReader& source, const LoadLimits* limits, CMOKTexture& texture);

/// Writes a texture as a DDS file. Returns false, with nothing written, if Direct3D has no number for its format, or the buffer
/// does not hold what the header tells of; and if a write failed.
bool writeDDSFile(const CMOKTexture& texture, ByteWriter& target);

}  // namespace moktexture
