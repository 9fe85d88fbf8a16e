#pragma once

#include <string>

#include "CMOKTexture.h"
#include "core/io/byte_stream.h"

/// @file
/// A texture as C source: an array of the bytes of its native file.

namespace moktexture {

/// The array's name for a path: the part up to the first '.', without folders ('/' or '\'). It may be empty.
std::string arrayNameOf(const std::string& path);

/// Writes the text, with lines that end in "\n". Returns false, with nothing written, if the buffer is smaller than the header's
/// data size; a failed write is not reported.
bool writeCSource(const CMOKTexture& texture, const char* arrayName, ByteWriter& target);

}  // namespace moktexture
