#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
#include "texture_io.h"

/// @file
/// Native files of before version 3: a record of 44 or 52 bytes that starts with its own size, then the pixels.

namespace moktexture {

/// Whether a file's first word makes it a legacy file.
constexpr bool isLegacyFirstWord(std::uint32_t word) {
    return word == 44 || word == 52;
}

/// Reads a legacy file, whose first word is one of those above, from the source's start into a default texture; for `limits` see
/// size_judgement.h. The texture stays default if the record is not complete or its sizes are refused.
ELoadStatus readLegacyFile(ByteReader& source, const LoadLimits* limits, CMOKTexture& texture);

/// Writes a texture as a legacy file with a record of 52 bytes. Returns false, with nothing written, if its depth is above 1 or
/// the API's family has no number for its format; and if a write failed or the buffer is empty.
bool writeLegacyFile(const CMOKTexture& texture, ELegacyApi api, ByteWriter& target);

}  // namespace moktexture
