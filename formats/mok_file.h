#pragma once

#include "core/io/byte_stream.h"
#include "core/io/native_file.h"
#include "texture_io.h"

namespace moktexture {

/// Reads a native or a legacy file, whichever its first word makes it, from the source's start into a default texture.
/// @param rules  for a native file
/// @param limits  for a legacy file; null for a constructor
ELoadStatus readMOKFile(ByteReader& source, const NativeReadRules& rules, const LoadLimits* limits, CMOKTexture& texture);

}  // namespace moktexture
