#pragma once

#include <string>

#include "MOKTexLib.h"
#include "moktex/files/container.h"

namespace moktextool {

struct Console;

/// A texture and the kind of file that it came from.
struct TextureInput {
    moktexture::CMOKTexture texture;
    bool isPicture;
};

/// Reads a picture or texture from a file or, for "-", from standard input. The content decides which of both it is, then the
/// extension. A Failure that names the file if it cannot be read.
TextureInput readTexture(const std::string& path, Console& console);

enum class OutputKind { texture, picture };

/// The kind of output that a path's extension selects; "-" is a texture. A Failure for other extensions.
OutputKind outputKind(const std::string& path);

/// A Failure if the path exists and `overwrite` is not set, or cannot be a file.
void requireWritable(const std::string& path, bool overwrite);

/// Writes a texture, or the RGBA8 picture in it, to a file or, for "-", to standard output. The file
/// appears under its name only when it is complete.
/// @return the number of bytes written
std::size_t writeTexture(const moktexture::CMOKTexture& texture, const OutputTarget& output, Console& console);

}  // namespace moktextool
