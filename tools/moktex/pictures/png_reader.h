#pragma once

#include "moktex/pictures/DecodedPicture.h"

namespace moktextool {

/// Whether a file starts as PNG.
bool isPNG(std::span<const unsigned char> bytes);

/// Decodes a PNG file: 16 bits a channel to RGBA16, others to RGBA8, both without loss. Turns it upright if it has EXIF data.
/// Throws a Failure that names `file` if it is broken or too large.
DecodedPicture decodePNG(std::span<const unsigned char> bytes, const std::string& file);

#ifdef MOKTEX_HAS_LIBPNG
/// The pixels by libpng, as they are stored.
DecodedPicture decodePNGByLibpng(std::span<const unsigned char> bytes, const std::string& file);
#endif

}  // namespace moktextool
