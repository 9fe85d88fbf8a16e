#pragma once

#include <optional>
#include <string>

#include "MOKTexLib.h"
#include "moktex/files/container.h"
#include "moktex/formats/Image.h"

namespace moktextool {

struct Console;

/// A texture or picture as its file holds it.
struct TextureInput {
    moktexture::CMOKTexture texture;  ///< of a picture the header alone, whose sizes may wrap, without pixels
    std::optional<Image> picture;     ///< the pixels of a picture file
    bool isPicture() const { return picture.has_value(); }
};

/// Reads a picture or texture from a file or, for "-", from standard input. The content decides which of both it is, then the
/// extension. Throws a Failure that names the file if it cannot be read.
TextureInput readTexture(const std::string& path, Console& console);

enum class OutputKind { texture, picture };

/// The kind of output that a path's extension selects; "-" is a texture. Throws a Failure for other extensions.
OutputKind outputKind(const std::string& path);

/// Throws a Failure if the path exists and `overwrite` is not set, or cannot be a file, or is a terminal.
void requireWritable(const std::string& path, bool overwrite, const Console& console);

/// Writes a texture to a file or, for "-", to standard output. The file appears under its name only when it is complete.
/// @return the number of bytes written
std::size_t writeTexture(const moktexture::CMOKTexture& texture, const OutputTarget& output, Console& console);
/// The same for a picture file with an image in its pictureFormat().
std::size_t writePicture(const Image& image, const OutputTarget& output, Console& console);

}  // namespace moktextool
