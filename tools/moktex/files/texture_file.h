#pragma once

#include <string>

#include "MOKTexLib.h"
#include "moktex/files/container.h"

namespace moktextool {

struct Console;

/// A texture and what it came from.
struct TextureInput {
    moktexture::CMOKTexture texture;
    bool isPicture;
};

/// Reads a picture or texture from a file or, for "-", from standard input. Content decides what it is, then the extension.
/// A Failure that names the file if that is not possible.
TextureInput readTexture(const std::string& path, Console& console);

enum class OutputKind { texture, picture };

/// What a path's extension asks for; "-" is a texture. A Failure for extensions that cannot be written.
OutputKind outputKind(const std::string& path);

/// A Failure if the path is taken and may not be overwritten, or cannot be a file.
void requireWritable(const std::string& path, bool overwrite);

/// Writes a texture, or the RGBA8 picture in it, to a file or, for "-", to standard output. A file appears under its name when it
/// is complete, or not at all.
/// @return the number of bytes written
std::size_t writeTexture(const moktexture::CMOKTexture& texture, const OutputTarget& output, Console& console);

}  // namespace moktextool
