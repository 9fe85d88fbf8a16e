#pragma once

#include <cstddef>
#include <cstdint>

namespace moktexture {

/// A conversion in which every byte of the destination pixel is a byte of the source pixel or a constant: reordered, dropped and
/// added 8-bit channels, and 8-bit channels widened to 16.
struct ByteShuffle {
    static constexpr std::uint8_t noSource = 0x80;

    std::size_t sourceBytes;       ///< 1 to 4
    std::size_t destinationBytes;  ///< 1 to 16
    std::uint8_t source[16];       ///< by destination byte: the source byte, or noSource
    std::uint8_t constant[16];     ///< by destination byte: the value where there is no source, else 0
};

/// Converts in whole vectors as many pixels as it can without leaving either run, and returns their number.
std::size_t moveBytesSSE41(const ByteShuffle& moves, const std::uint8_t* from, std::uint8_t* to, std::size_t pixels);

}  // namespace moktexture
