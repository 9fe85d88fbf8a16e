#pragma once

#include <cstdint>
#include <vector>

#include "moktex/pictures/DecodedPicture.h"

/// @file
/// The pictures that stb reads and writes. It is not made for hostile PNG and JPEG files: other libraries read these where they
/// are there, and files are checked before it where they are not.

namespace moktextool {

/// The pixels of a TGA, BMP, HDR or PNG picture by its header; 0 if stb finds none. Nothing that may be JPEG is looked at,
/// because stb reads Huffman tables before the header.
std::uint64_t countPixelsByStb(std::span<const unsigned char> bytes);

/// Decodes such a file: HDR to rgbaFloatFormat, a PNG of 16 bits to rgba16Format, others to rgba8Format.
/// Throws a Failure that names `file` if it is broken or too large.
DecodedPicture decodeByStb(std::span<const unsigned char> bytes, const std::string& file);

/// Compresses bytes as zlib does, the same on every system. Empty if there are too many.
std::vector<unsigned char> deflate(std::span<const unsigned char> bytes);

/// The bytes of a PNG file of 8 bits a channel, RGBA; empty if it would be too large.
std::vector<unsigned char> encodePNG8(const unsigned char* pixels, std::uint32_t width, std::uint32_t height);

}  // namespace moktextool
