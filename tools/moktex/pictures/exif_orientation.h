#pragma once

#include <span>

namespace moktextool {

/// The orientation in EXIF data as EXIF 2.3 defines it: 1 to 8, how the stored rows are to be shown; 1 if there is none.
/// @param exif  a TIFF header and what follows it, from an untrusted file
unsigned int exifOrientation(std::span<const unsigned char> exif);

}  // namespace moktextool
