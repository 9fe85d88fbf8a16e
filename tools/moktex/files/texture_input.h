#pragma once

#include <string>

#include "MOKTexLib.h"

namespace moktextool {

struct Console;

/// A texture and what it came from.
struct TextureInput {
    moktexture::CMOKTexture texture;
    bool isPicture;
};

/// What stands for standard input or output in place of a path.
inline constexpr const char* standardStream = "-";

/// How messages call a path: standard streams by their name.
std::string displayName(const std::string& path);

/// Reads a picture or texture from a file or, for "-", from standard input. Content decides what it is, then the extension.
/// A Failure that names the file if that is not possible.
TextureInput readTexture(const std::string& path, Console& console);

}  // namespace moktextool
