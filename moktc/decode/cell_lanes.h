#pragma once

#include <emmintrin.h>

#include <array>
#include <cstdint>

#include "moktc/block/moktc_block.h"

/// @file
/// The arithmetic of a cell in lanes of 16 bits: two colours, or two neighbouring pixels, of four channels each side by side.
/// Nothing here depends on the order of operations, so the results are those of colour_interpolation.h. SSE2, which every x86-64
/// has.

namespace moktexture::moktc {

using Lanes = std::int16_t __attribute__((vector_size(16)));

inline __m128i asBits(Lanes lanes) {
    return reinterpret_cast<__m128i>(lanes);
}
inline Lanes asLanes(__m128i bits) {
    return reinterpret_cast<Lanes>(bits);
}

/// Lanes in a table.
struct alignas(16) LaneValues : std::array<std::int16_t, 8> {};

inline Lanes loadLanes(const LaneValues& values) {
    return asLanes(_mm_load_si128(reinterpret_cast<const __m128i*>(values.data())));
}

/// The low or high four lanes in both halves.
inline Lanes broadcastLow(Lanes lanes) {
    return asLanes(_mm_unpacklo_epi64(asBits(lanes), asBits(lanes)));
}
inline Lanes broadcastHigh(Lanes lanes) {
    return asLanes(_mm_unpackhi_epi64(asBits(lanes), asBits(lanes)));
}
/// The low or high four lanes in the high half, above zeroes.
inline Lanes shiftLowToHigh(Lanes lanes) {
    return asLanes(_mm_slli_si128(asBits(lanes), 8));
}
inline Lanes keepHigh(Lanes lanes) {
    return lanes & Lanes{0, 0, 0, 0, -1, -1, -1, -1};
}

inline Lanes alphaOf(Lanes lanes) {
    return lanes & Lanes{0, 0, 0, -1, 0, 0, 0, -1};
}

/// A sample pair as lanes: A in the low half, B in the high half. Alpha is doubled, so that like the others it has 5 bits.
inline Lanes lanesOf(const ColourPair& pair) {
    const auto half = [](const Colour& colour) {
        const std::uint32_t redGreen = colour.r | std::uint32_t{colour.g} << 16;
        const std::uint32_t blueAlpha = colour.b | std::uint32_t{colour.a} << 17;
        return static_cast<std::int64_t>(redGreen | std::uint64_t{blueAlpha} << 32);
    };
    return asLanes(_mm_set_epi64x(half(pair.b), half(pair.a)));
}

/// Weighted sums of samples, with weights that add up to 16 (32 at 2 bpp), as 8-bit values.
template <bool is2bpp>
Lanes sumsTo8Bits(Lanes sums) {
    // A doubled alpha is shifted by one less, (V >> 4) + V in the terms of an alpha as stored.
    return ((sums + alphaOf(sums)) >> (is2bpp ? 7 : 6)) + (sums >> (is2bpp ? 2 : 1));
}

/// Single samples as 8-bit values.
inline Lanes samplesTo8Bits(Lanes samples) {
    return samples << 3 | (samples + alphaOf(samples)) >> 2;
}

/// Blends 8-bit values by weights in eighths of b.
inline Lanes blendLanes(Lanes a, Lanes b, Lanes weights) {
    return a + (((b - a) * weights) >> 3);
}

/// Stores four pixels, two in each argument, of values from 0 to 255 as RGBA8.
inline void storePixels(std::uint8_t* target, Lanes first, Lanes second) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_packus_epi16(asBits(first), asBits(second)));
}

}  // namespace moktexture::moktc
