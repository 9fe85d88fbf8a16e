#pragma once

#include <string>

#include "CMOKTexture.h"
#include "core/io/byte_stream.h"

/// @file
/// A texture as C source: an array of the bytes of its native file.

namespace moktexture {

/// The array's name for a path: the path up to its first '.', of that what follows the last '/' or '\'. It may be empty.
std::string arrayNameOf(const std::string& path);

/// Writes the text, whose lines end in "\n". Returns false, with nothing written, if the buffer does not hold the header's data
/// size; a write that fails goes unnoticed.
bool writeCSource(const CMOKTexture& texture, const char* arrayName, ByteWriter& target);

}  // namespace moktexture
