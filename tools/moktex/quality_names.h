#pragma once

#include <string>

#include "MOKTexLib.h"

namespace moktextool {

inline constexpr const char* qualityHelp = "0 to 5, or fastest, fast, medium, thorough, verythorough, exhaustive";

/// The encoder effort that a number or a name stands for. A Failure for anything else.
moktexture::ECompressorQuality parseQuality(const std::string& text);

}  // namespace moktextool
