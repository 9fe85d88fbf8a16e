#pragma once

#include <cstdint>
#include <vector>

namespace moktextool {

/// The bytes of a PNG file of 16 bits a channel, RGBA; the same on every system. Empty if it would be too large.
/// @param pixels  little-endian
std::vector<unsigned char> encodePNG16(const unsigned char* pixels, std::uint32_t width, std::uint32_t height);

}  // namespace moktextool
