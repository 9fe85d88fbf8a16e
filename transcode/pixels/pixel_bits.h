#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "transcode/pixels/PixelCodec.h"

namespace moktexture {

/// The bytes of PixelCodec::pixelBuffer as two little-endian words, of which the first is the pixel word.
using PixelBits = std::array<std::uint64_t, 2>;

inline PixelBits bitsOf(const PixelCodec& codec) {
    PixelBits bits;
    static_assert(sizeof bits == sizeof codec.pixelBuffer);
    std::memcpy(bits.data(), codec.pixelBuffer, sizeof bits);
    return bits;
}

/// Reads pixels of a size that is known when compiling. `rest` holds the bits beyond them.
template <std::size_t bytes>
void unpackPixels(const std::uint8_t* from, std::size_t pixels, const PixelBits& rest, PixelBits* to) {
    for (std::size_t i = 0; i < pixels; ++i) {
        PixelBits bits{};
        std::memcpy(bits.data(), from + i * bytes, bytes);
        to[i] = {bits[0] | rest[0], bits[1] | rest[1]};
    }
}

template <std::size_t bytes>
void packPixels(const PixelBits* from, std::size_t pixels, std::uint8_t* to) {
    for (std::size_t i = 0; i < pixels; ++i)
        std::memcpy(to + i * bytes, from[i].data(), bytes);
}

}  // namespace moktexture
