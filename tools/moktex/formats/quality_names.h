#pragma once

#include <optional>
#include <string>

#include "MOKTexLib.h"

namespace moktextool {

inline constexpr const char* qualityHelp = "0 to 5, or fastest, fast, medium, thorough, verythorough, exhaustive";

/// An encoder effort as the user asks for it.
struct Quality {
    unsigned int step;  ///< 0 to 5
    bool isNamed;
};

/// The effort that a number or a name stands for. A Failure for anything else.
Quality parseQuality(const std::string& text);

/// The effort that a format's encoder is told: numbers pass as they are, names and no wish are settled by format.
moktexture::ECompressorQuality encoderQuality(const std::optional<Quality>& quality, moktexture::PixelType format);

}  // namespace moktextool
