#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace moktextool {

/// The properties of a JPEG file beside its pixels.
struct JPEGSegments {
    std::uint64_t pixels = 0;             ///< of the largest frame
    unsigned int orientation = 1;         ///< EXIF's, 1 to 8
    std::optional<std::string> profile;   ///< set if there is a colour profile other than sRGB
    std::vector<unsigned char> decoding;  ///< a JPEG file of those segments alone that decoding needs
    std::string problem;                  ///< why the file is broken; "" if its segments and Huffman tables are sound
};

/// The most pixels that a byte of a JPEG file can encode: a block takes at least one bit.
inline constexpr std::uint64_t mostJPEGPixelsPerByte = 8 * 64;

/// Whether a file starts as JPEG, maybe with bytes that fill, which not every reader accepts there.
bool isJPEG(std::span<const unsigned char> bytes);

/// Walks the segments of a JPEG file from an untrusted source, up to the first problem.
/// @param copies  whether `decoding` is filled
JPEGSegments readJPEGSegments(std::span<const unsigned char> bytes, bool copies);

}  // namespace moktextool
