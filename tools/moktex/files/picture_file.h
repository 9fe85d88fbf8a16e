#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "moktex/formats/Image.h"

namespace moktextool {

struct Console;

/// Whether a path ends like a PNG, JPEG, TGA, BMP or HDR file.
bool hasPictureExtension(const std::string& path);
/// Whether `bytes` are such a file, by their header.
bool looksLikePicture(std::span<const unsigned char> bytes);

/// The number of pixels of a picture file whose beginning is known; the most that a picture may have if the header is longer.
/// Nothing if it is no picture.
std::optional<std::uint64_t> picturePixels(std::span<const unsigned char> head);

/// A decoded picture file.
struct Picture {
    Image image;
    EMOKTColourSpace colourSpace;
};

/// Decodes a picture file: to sRGB RGBA8, a 16-bit PNG to sRGB RGBA16, HDR to linear float RGBA; turned upright by its EXIF
/// orientation. Throws a Failure that names `file` if it is broken or too large.
/// @param console  prints notes on what was done and on what is ignored in the file; may be null
Picture decodePicture(std::span<const unsigned char> bytes, const std::string& file, Console* console = nullptr);

/// The format of the PNG file for an image of that format: rgba16Format for integers above 8 bits, else rgba8Format.
TextureFormat pictureFormat(const TextureFormat& format);

/// Whether encodePNG() takes an image of that format and size.
bool fitsPNG(const TextureFormat& format, const ImageSize& size);

/// The bytes of a PNG file with an image of either of these formats.
std::vector<unsigned char> encodePNG(const Image& image, const std::string& file);

}  // namespace moktextool
