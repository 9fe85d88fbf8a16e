#pragma once

#include <cstddef>
#include <cstdint>

namespace moktexture {

/// A conversion in which every byte of the destination pixel is a byte of the source pixel or a constant: channels of 8 bits are
/// reordered, dropped, added, or widened to 16 bits.
struct ByteShuffle {
    static constexpr std::uint8_t noSource = 0x80;

    std::size_t sourceBytes;       ///< 1 to 4
    std::size_t destinationBytes;  ///< 1 to 16
    std::uint8_t source[16];       ///< by destination byte: the source byte, or noSource
    std::uint8_t constant[16];     ///< by destination byte: the value where there is no source, else 0
};

/// Converts in whole vectors as many pixels as it can without reading or writing beyond them, and returns their number. Built on
/// x86-64 alone; other processors convert by tables.
std::size_t shuffleBytesSSE41(const ByteShuffle& shuffle, const std::uint8_t* from, std::uint8_t* to, std::size_t pixels);

}  // namespace moktexture
