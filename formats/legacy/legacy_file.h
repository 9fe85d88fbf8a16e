#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "core/io/read_policy.h"
#include "texture_io.h"

/// @file
/// Native files before version 3: a header of 44 or 52 bytes that starts with its own size, then the pixels.

namespace moktexture {

inline constexpr std::uint32_t legacySmallHeaderSize = 44;
inline constexpr std::uint32_t legacyHeaderSize = 52;

/// Whether a file's first word makes it a legacy file.
constexpr bool isLegacyFirstWord(std::uint32_t word) {
    return word == legacySmallHeaderSize || word == legacyHeaderSize;
}

/// Reads a legacy file, whose first word is one of those above, from the source's start into a default texture. The texture stays
/// default if the header is incomplete or its sizes are refused.
ELoadStatus readLegacyFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture);

/// Writes a texture as a legacy file with a header of 52 bytes. Returns false, with nothing written, if its depth is above 1 or
/// the API's family has no number for its format; also if a write failed or the buffer is empty.
bool writeLegacyFile(const CMOKTexture& texture, ELegacyApi api, ByteWriter& target);

}  // namespace moktexture
