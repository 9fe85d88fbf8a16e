#pragma once

#include "moktex/pictures/DecodedPicture.h"

namespace moktextool {

/// Decodes a JPEG file to RGBA8, rotated and mirrored upright by the orientation in its EXIF data.
/// Throws a Failure that names `file` if it is broken or too large.
DecodedPicture decodeJPEG(std::span<const unsigned char> bytes, const std::string& file);

/// Which library decodeJPEG() uses. Their pixels differ by a few units: see README.md.
const char* nameOfJPEGLibrary();

/// @name The two ways of decoding a JPEG file, before it is turned upright.
/// @{

/// By stb, after all that it does not check itself: the segments and Huffman tables.
DecodedPicture decodeJPEGByStb(std::span<const unsigned char> bytes, const std::string& file);
#ifdef MOKTEX_HAS_LIBJPEG
/// By libjpeg-turbo.
DecodedPicture decodeJPEGByLibjpeg(std::span<const unsigned char> bytes, const std::string& file);
#endif
/// @}

}  // namespace moktextool
