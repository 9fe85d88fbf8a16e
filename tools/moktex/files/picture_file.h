#pragma once

#include <span>
#include <string>
#include <vector>

#include "MOKTexLib.h"

namespace moktextool {

/// Whether a path ends like a PNG, JPEG, TGA, BMP or HDR file.
bool hasPictureExtension(const std::string& path);
/// Whether `bytes` are such a file, by their header.
bool looksLikePicture(std::span<const unsigned char> bytes);

/// Decodes a picture file: to sRGB RGBA8, a 16-bit PNG to sRGB RGBA16, HDR to linear float RGBA.
/// A Failure that names `file` if it is broken or too large.
moktexture::CMOKTexture decodePicture(std::span<const unsigned char> bytes, const std::string& file);

/// The bytes of a PNG file with level 0 of an RGBA8 texture.
std::vector<unsigned char> encodePNG(const moktexture::CMOKTexture& texture, const std::string& file);

}  // namespace moktextool
