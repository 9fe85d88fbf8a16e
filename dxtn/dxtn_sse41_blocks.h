#pragma once

// What the SSE4.1 and the AVX2 encoder share: alpha blocks, and colour blocks of one or two colours. Blocks of more colours are
// searched in batches, as many at once as the kernel that includes this file has lanes.

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "core/base/image_view.h"
#include "dxtn/dxtn_axis_lanes.h"

namespace {

/// One block as rows of four pixels.
struct BlockRows {
    __m128i row[4];
};

inline BlockRows readRows(const std::uint8_t* pixels, std::size_t rowBytes) {
    BlockRows block;
    for (std::size_t row = 0; row < 4; ++row)
        block.row[row] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + row * rowBytes));
    return block;
}

/// 16 values of 16 bits, one per pixel.
struct BlockValues {
    __m128i first, second;
};

inline BlockValues alphasOf(const BlockRows& block) {
    return {_mm_packus_epi32(_mm_srli_epi32(block.row[0], 24), _mm_srli_epi32(block.row[1], 24)),
            _mm_packus_epi32(_mm_srli_epi32(block.row[2], 24), _mm_srli_epi32(block.row[3], 24))};
}

inline __m128i packRGB565(__m128i rgba) {
    const __m128i r = _mm_slli_epi32(_mm_and_si128(rgba, _mm_set1_epi32(0x0000F8)), 8);
    const __m128i g = _mm_srli_epi32(_mm_and_si128(rgba, _mm_set1_epi32(0x00FC00)), 5);
    const __m128i b = _mm_srli_epi32(_mm_and_si128(rgba, _mm_set1_epi32(0xF80000)), 19);
    return _mm_or_si128(_mm_or_si128(r, g), b);
}

inline BlockValues coloursOf(const BlockRows& block) {
    return {_mm_packus_epi32(packRGB565(block.row[0]), packRGB565(block.row[1])),
            _mm_packus_epi32(packRGB565(block.row[2]), packRGB565(block.row[3]))};
}

/// Bit i is set where pixel i has the value.
inline std::uint32_t pixelsEqualTo(const BlockValues& values, std::uint32_t value) {
    const __m128i wanted = _mm_set1_epi16(static_cast<short>(value));
    const __m128i first = _mm_cmpeq_epi16(values.first, wanted), second = _mm_cmpeq_epi16(values.second, wanted);
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(first, second)));
}

/// The 16 values, each below 256, as bytes.
inline __m128i toBytes(const BlockValues& values) {
    return _mm_packus_epi16(values.first, values.second);
}

inline std::uint64_t lowWord(__m128i value) {
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(value));
}

inline std::uint64_t encodeExplicitAlpha(const BlockValues& alphas) {
    const __m128i nibbles = toBytes({_mm_srli_epi16(alphas.first, 4), _mm_srli_epi16(alphas.second, 4)});
    const __m128i pairs = _mm_maddubs_epi16(nibbles, _mm_set1_epi16(0x1001));
    return lowWord(_mm_packus_epi16(pairs, pairs));
}

/// For 8 pixels, 7 less than the step of 0 to 7 that is nearest to 7 * offset / range; halves round up. The quotient is below
/// s + 1/2 where 14 * offset is below (2 * s + 1) * range.
inline __m128i stepsBelowLast(__m128i offsets, __m128i range) {
    const __m128i position = _mm_mullo_epi16(offsets, _mm_set1_epi16(14));
    __m128i steps = _mm_setzero_si128();
    for (short step = 0; step < 7; ++step) {
        const __m128i threshold = _mm_mullo_epi16(range, _mm_set1_epi16(static_cast<short>(2 * step + 1)));
        steps = _mm_add_epi16(steps, _mm_cmpgt_epi16(threshold, position));
    }
    return steps;
}

/// Packs the 3-bit values of 16 bytes to 48 bits.
inline std::uint64_t packThreeBits(__m128i values) {
    const __m128i pairs = _mm_maddubs_epi16(values, _mm_set1_epi16(0x0801));
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00400001));
    const std::uint64_t first = lowWord(fours), second = lowWord(_mm_unpackhi_epi64(fours, fours));
    return (first & 0xFFF) | first >> 32 << 12 | (second & 0xFFF) << 24 | second >> 32 << 36;
}

inline std::uint64_t encodeInterpolatedAlpha(const BlockValues& alphas) {
    const __m128i all = _mm_set1_epi16(255);
    const __m128i minimum = _mm_minpos_epu16(_mm_min_epu16(alphas.first, alphas.second));
    const __m128i inverseMaximum = _mm_minpos_epu16(_mm_sub_epi16(all, _mm_max_epu16(alphas.first, alphas.second)));
    const int smallest = _mm_extract_epi16(minimum, 0), greatest = 255 - _mm_extract_epi16(inverseMaximum, 0);
    const __m128i base = _mm_set1_epi16(static_cast<short>(smallest));
    const __m128i range = _mm_set1_epi16(static_cast<short>(greatest - smallest));
    const __m128i first = stepsBelowLast(_mm_sub_epi16(alphas.first, base), range);
    const __m128i second = stepsBelowLast(_mm_sub_epi16(alphas.second, base), range);
    const __m128i steps = _mm_add_epi8(_mm_packs_epi16(first, second), _mm_set1_epi8(7));
    const __m128i indexOfStep = _mm_setr_epi8(1, 7, 6, 5, 4, 3, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const std::uint64_t indices = packThreeBits(_mm_shuffle_epi8(indexOfStep, steps));
    return static_cast<std::uint64_t>(greatest) | static_cast<std::uint64_t>(smallest) << 8 | indices << 16;
}

/// Writes the colour block of one or two colours: index 3 for `transparent` pixels, 1 for the others in `second`,
/// otherwise 0.
inline void writeFewColours(std::uint8_t* out, std::uint32_t c0, std::uint32_t c1, std::uint32_t second,
                            std::uint32_t transparent) {
    const std::uint32_t words[2] = {c0 | c1 << 16, spreadBits(second | transparent) | spreadBits(transparent) << 1};
    __builtin_memcpy(out, words, sizeof words);
}

/// Adds a block to the batch, and encodes the batch once it is full.
template <class Lanes>
inline void encodeManyColours(Batch<Lanes>& batch, const BlockRows& block, std::uint32_t transparent, std::uint8_t* out) {
    alignas(16) std::uint32_t pixels[pixelCount];
    for (int row = 0; row < 4; ++row)
        _mm_store_si128(reinterpret_cast<__m128i*>(pixels + 4 * row), block.row[row]);
    append<Lanes>(batch, pixels, transparent, out);
    if (batch.filled == Lanes::count) flush<Lanes>(batch);
}

/// The second of a block's colours; `areFirst` has a bit for each pixel of the first.
inline std::uint32_t secondOf(const BlockValues& colours, std::uint32_t areFirst) {
    alignas(16) std::uint16_t values[pixelCount];
    _mm_store_si128(reinterpret_cast<__m128i*>(values), colours.first);
    _mm_store_si128(reinterpret_cast<__m128i*>(values + 8), colours.second);
    return values[__builtin_ctz(~areFirst)];
}

/// Writes the colour block of one or two colours at once, and adds a block of more to the batch.
template <class Lanes>
inline void encodeColours(Batch<Lanes>& batch, const BlockRows& block, std::uint32_t transparent, std::uint8_t* out) {
    constexpr std::uint32_t allPixels = 0xFFFF;
    const BlockValues colours = coloursOf(block);
    const auto firstColour = static_cast<std::uint32_t>(_mm_extract_epi16(colours.first, 0));
    const std::uint32_t areFirst = pixelsEqualTo(colours, firstColour);
    if (areFirst == allPixels) {
        if (transparent == 0) return writeFewColours(out, firstColour, 0, 0, 0);
        return writeFewColours(out, 0, firstColour, allPixels, transparent);
    }
    const std::uint32_t secondColour = secondOf(colours, areFirst);
    const std::uint32_t areSecond = pixelsEqualTo(colours, secondColour);
    if ((areFirst | areSecond) != allPixels) return encodeManyColours<Lanes>(batch, block, transparent, out);
    const bool firstLeads = transparent != 0 ? firstColour < secondColour : firstColour > secondColour;
    if (firstLeads) return writeFewColours(out, firstColour, secondColour, areSecond, transparent);
    writeFewColours(out, secondColour, firstColour, areFirst, transparent);
}

template <class Lanes>
void encodeImage(const moktexture::ConstImageView& image, std::uint8_t* out, std::uint32_t mode) {
    Batch<Lanes> batch;
    const std::uint8_t* pixels = image.pixels;
    for (std::size_t y = 0; y < image.height; y += 4, pixels += 4 * image.rowBytes) {
        for (std::size_t x = 0; x < image.width; x += 4) {
            const BlockRows block = readRows(pixels + 4 * x, image.rowBytes);
            const BlockValues alphas = alphasOf(block);
            if (mode != 1) {
                const std::uint64_t word = mode <= 3 ? encodeExplicitAlpha(alphas) : encodeInterpolatedAlpha(alphas);
                __builtin_memcpy(out, &word, sizeof word);
                out += sizeof word;
            }
            encodeColours<Lanes>(batch, block, mode == 1 ? pixelsEqualTo(alphas, 0) : 0, out);
            out += 8;
        }
    }
    if (batch.filled > 0) flush<Lanes>(batch);
}

}  // namespace
