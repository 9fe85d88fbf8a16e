#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/base/image_view.h"
#include "moktc/block/moktc_block.h"

/// @file
/// The arithmetic of a cell in vectors of eight 16-bit lanes, written with the compiler's vector types, so that it compiles to
/// SSE2 on x86-64 and to NEON on 64-bit Arm. A vector holds
///
///   - a colour pair: A's red, green, blue, alpha in the low four lanes, B's in the high four, or
///   - a pixel pair: the same four channels of two horizontally adjacent pixels, the left pixel in the low lanes.
///
/// All values fit 16 bits: a channel has 5 bits, the bilinear weights add up to 32 at most, and 31 * 32 < 1024.

namespace moktexture::moktc {

using Lanes = std::int16_t __attribute__((vector_size(16)));

/// Constant lanes in a table.
struct alignas(16) LaneValues : std::array<std::int16_t, 8> {};

inline Lanes loadLanes(const LaneValues& values) {
    Lanes lanes;
    std::memcpy(&lanes, values.data(), sizeof lanes);
    return lanes;
}

/// Copies the low (high) four lanes to both halves.
inline Lanes broadcastLow(Lanes lanes) {
    return __builtin_shufflevector(lanes, lanes, 0, 1, 2, 3, 0, 1, 2, 3);
}
inline Lanes broadcastHigh(Lanes lanes) {
    return __builtin_shufflevector(lanes, lanes, 4, 5, 6, 7, 4, 5, 6, 7);
}
/// Moves the low four lanes to the high half; the low half becomes 0.
inline Lanes shiftLowToHigh(Lanes lanes) {
    return __builtin_shufflevector(Lanes{}, lanes, 0, 1, 2, 3, 8, 9, 10, 11);
}
/// Clears the low four lanes.
inline Lanes keepHigh(Lanes lanes) {
    return lanes & Lanes{0, 0, 0, 0, -1, -1, -1, -1};
}
/// Clears all lanes but the two of alpha.
inline Lanes keepAlpha(Lanes lanes) {
    return lanes & Lanes{0, 0, 0, -1, 0, 0, 0, -1};
}

/// A block's colours as a colour pair. Alpha is doubled, so that it has 5 bits like the other channels.
inline Lanes colourLanes(const ColourPair& pair) {
    using Halves = std::int64_t __attribute__((vector_size(16)));
    const auto half = [](const Colour& colour) {
        const std::uint32_t redGreen = colour.r | std::uint32_t{colour.g} << 16;
        const std::uint32_t blueAlpha = colour.b | std::uint32_t{colour.a} << 17;
        return static_cast<std::int64_t>(redGreen | std::uint64_t{blueAlpha} << 32);
    };
    return reinterpret_cast<Lanes>(Halves{half(pair.a), half(pair.b)});
}

/// Converts bilinear sums V of 5-bit channels, with weights that add up to 16 (32 at 2 bpp), to 8 bits: (V >> 6) + (V >> 1) for
/// colours and (V >> 4) + V for alpha as stored in 4 bits, with one more shift at 2 bpp.
template <Rate rate>
Lanes sumsTo8Bits(Lanes sums) {
    constexpr int extraShift = rate == Rate::twoBpp ? 1 : 0;
    // With doubled alpha both shifts of alpha grow by one: (V >> 5) + (V >> 1), that is (2 * V >> 6) + (V >> 1).
    return ((sums + keepAlpha(sums)) >> (6 + extraShift)) + (sums >> (1 + extraShift));
}

/// Converts single 5-bit channels to 8 bits.
inline Lanes channelsTo8Bits(Lanes channels) {
    return channels << 3 | (channels + keepAlpha(channels)) >> 2;
}

/// Blends 8-bit channels: (a * (8 - weight) + b * weight) / 8, truncated.
inline Lanes blendLanes(Lanes a, Lanes b, Lanes weights) {
    return a + (((b - a) * weights) >> 3);
}

/// Stores two pixel pairs with values from 0 to 255 as four RGBA8 pixels.
inline void storePixels(std::uint8_t* target, Lanes first, Lanes second) {
    using Bytes = std::uint8_t __attribute__((vector_size(16)));
    const Bytes pixels = __builtin_shufflevector(reinterpret_cast<Bytes>(first), reinterpret_cast<Bytes>(second), 0, 2, 4, 6, 8,
                                                 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    std::memcpy(target, &pixels, sizeof pixels);
}

}  // namespace moktexture::moktc
