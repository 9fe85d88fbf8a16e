#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "core/io/read_policy.h"
#include "texture_io.h"

/// @file
/// DDS files with the classic header of 128 bytes. Their pixel data is ordered by layer, face and level, unlike a texture's
/// buffer.

namespace moktexture {

/// The first four bytes of a DDS file: "DDS ".
inline constexpr std::uint32_t ddsFirstWord = 0x20534444;

/// Reads a DDS file from the source's start into a default texture. On failure the texture's header is the default one if the
/// file's header is refused, else what was applied up to the refusal.
ELoadStatus readDDSFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture);

/// Writes a texture as a DDS file. Returns false, with nothing written, if Direct3D has no number for its format or the buffer is
/// smaller than its header describes; also if a write failed.
bool writeDDSFile(const CMOKTexture& texture, ByteWriter& target);

/// The header that a reader makes of the file of a texture with that header; false if there is no such file.
bool readBackDDSHeader(const CMOKTextureHeader& header, CMOKTextureHeader& readBack);

/// Whether writeDDSFile() could have written the file: its header is, bit by bit, the one that this library writes for what it
/// reads there, and the pixels are those of whole layers without padding. The source is rewound.
bool isOwnDDS(ByteReader& source);

}  // namespace moktexture
