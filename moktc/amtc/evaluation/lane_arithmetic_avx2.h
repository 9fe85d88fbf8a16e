#pragma once

// What the evaluators over lanes have in common. Included only by kernel files, which are compiled for AVX2.
//
// The decoder's arithmetic in 16-bit lanes:
//
//     sum    = maddubs(upper bytes, weights) + maddubs(lower bytes, weights)      left and right block in one instruction
//     colour = (sum >> 6) + (sum >> 11), alpha + (sum >> 10)                       expands the stored bits
//     blend  = A - B's share: mulhi(2 * (A - B), weight << 12) = ((A - B) * weight) >> 3, rounded down like the decoder's
//
// All of it runs on differences from the pixel, as errors and residuals need these and not the colours.

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "moktc/amtc/evaluation/lane_layout.h"

namespace {

using moktexture::amtc::ColourPair;
using moktexture::amtc::LaneSums;
using moktexture::amtc::PixelLanes;

#define MOKTEX_LANE_FUNCTION [[gnu::always_inline]] inline

MOKTEX_LANE_FUNCTION __m256i load(const void* from) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

MOKTEX_LANE_FUNCTION void store(void* to, __m256i lanes) {
    _mm256_storeu_si256(static_cast<__m256i*>(to), lanes);
}

MOKTEX_LANE_FUNCTION std::int32_t sumOf(__m256i lanes) {
    __m128i sum = _mm_add_epi32(_mm256_castsi256_si128(lanes), _mm256_extracti128_si256(lanes, 1));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0x4E));
    return _mm_cvtsi128_si32(_mm_add_epi32(sum, _mm_shuffle_epi32(sum, 0xB1)));
}

/// Eight pixels, 16 bits per channel: red and green, blue and alpha. Copied field by field: g++ copies trivial structures by
/// eight bytes at a time, through memory.
struct ChannelLanes {
    MOKTEX_LANE_FUNCTION ChannelLanes(__m256i redGreen, __m256i blueAlpha) : rg(redGreen), ba(blueAlpha) {}
    MOKTEX_LANE_FUNCTION ChannelLanes(const ChannelLanes& other) : rg(other.rg), ba(other.ba) {}
    MOKTEX_LANE_FUNCTION ChannelLanes& operator=(const ChannelLanes& other) {
        rg = other.rg;
        ba = other.ba;
        return *this;
    }
    __m256i rg, ba;
};

MOKTEX_LANE_FUNCTION ChannelLanes operator+(const ChannelLanes& a, const ChannelLanes& b) {
    return {_mm256_add_epi16(a.rg, b.rg), _mm256_add_epi16(a.ba, b.ba)};
}

MOKTEX_LANE_FUNCTION ChannelLanes operator-(const ChannelLanes& a, const ChannelLanes& b) {
    return {_mm256_sub_epi16(a.rg, b.rg), _mm256_sub_epi16(a.ba, b.ba)};
}

/// `b` where a pixel's mask is set.
MOKTEX_LANE_FUNCTION __m256i blend(__m256i a, __m256i b, __m256i mask) {
    return _mm256_castps_si256(_mm256_blendv_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _mm256_castsi256_ps(mask)));
}

MOKTEX_LANE_FUNCTION ChannelLanes blend(const ChannelLanes& a, const ChannelLanes& b, __m256i mask) {
    return {blend(a.rg, b.rg, mask), blend(a.ba, b.ba, mask)};
}

/// RGBA8 pixels, widened.
MOKTEX_LANE_FUNCTION ChannelLanes widen(__m256i rgba) {
    const __m256i rg = _mm256_set1_epi64x(static_cast<long long>(0x8005'8004'8001'8000)),
                  ba = _mm256_set1_epi64x(static_cast<long long>(0x8007'8006'8003'8002)),
                  upper = _mm256_setr_epi32(0, 0, 0x00080008, 0x00080008, 0, 0, 0x00080008, 0x00080008);
    return {_mm256_shuffle_epi8(rgba, _mm256_add_epi8(rg, upper)), _mm256_shuffle_epi8(rgba, _mm256_add_epi8(ba, upper))};
}

/// Sums of squares over a pixel's channels.
MOKTEX_LANE_FUNCTION __m256i squaredLength(const ChannelLanes& d) {
    return _mm256_add_epi32(_mm256_madd_epi16(d.rg, d.rg), _mm256_madd_epi16(d.ba, d.ba));
}

/// The stored bits of one row of blocks, as each pixel of a half sees them: bytes left, right by channel.
struct BlockRow {
    __m256i aRG, aBA, bRG, bBA;
};

/// The 3 by 3 blocks' pairs, row by row, as bytes: a pair is 8 and a row of blocks three pairs.
using ColourBytes = const std::byte*;
constexpr std::size_t pairBytes = 8, blockRowBytes = 3 * pairBytes;

MOKTEX_LANE_FUNCTION ColourBytes bytesOf(const ColourPair* colours) {
    return reinterpret_cast<ColourBytes>(colours);
}

/// Two pairs, A, B, A, B.
MOKTEX_LANE_FUNCTION __m128i loadPairs(ColourBytes pairs) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pairs));
}

MOKTEX_LANE_FUNCTION BlockRow loadBlockRow(ColourBytes row) {
    const __m128i stored = _mm_set1_epi32(static_cast<int>(0xF0F8F8F8));
    const __m128i first = _mm_and_si128(loadPairs(row), stored);
    const __m128i second = _mm_and_si128(loadPairs(row + pairBytes), stored);
    const __m256i pairs = _mm256_set_m128i(_mm_unpackhi_epi8(first, second), _mm_unpacklo_epi8(first, second));
    return {_mm256_shuffle_epi32(pairs, 0x00), _mm256_shuffle_epi32(pairs, 0x55), _mm256_shuffle_epi32(pairs, 0xAA),
            _mm256_shuffle_epi32(pairs, 0xFF)};
}

/// For the last column: the right half of `low` in lanes 0 to 3, that of `high` in lanes 4 to 7.
MOKTEX_LANE_FUNCTION BlockRow rightHalves(const BlockRow& low, const BlockRow& high) {
    return {_mm256_permute2x128_si256(low.aRG, high.aRG, 0x31), _mm256_permute2x128_si256(low.aBA, high.aBA, 0x31),
            _mm256_permute2x128_si256(low.bRG, high.bRG, 0x31), _mm256_permute2x128_si256(low.bBA, high.bBA, 0x31)};
}

/// The eight colours that palette taps choose from, by half of a group: bytes of red and green, of blue and alpha.
struct Palette {
    __m256i rg, ba;
};

MOKTEX_LANE_FUNCTION Palette loadPalette(ColourBytes upperRow) {
    const auto row = [](ColourBytes pairs) {
        const __m256i leftAndRight = _mm256_set_m128i(loadPairs(pairs + pairBytes), loadPairs(pairs));
        return _mm256_shuffle_epi32(leftAndRight, 0xD8);  // A, A, B, B
    };
    const __m256i upper = row(upperRow), lower = row(upperRow + blockRowBytes);
    const __m256i split = _mm256_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15,  //
                                           0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    const __m256i a = _mm256_shuffle_epi8(_mm256_unpacklo_epi64(upper, lower), split);
    const __m256i b = _mm256_shuffle_epi8(_mm256_unpackhi_epi64(upper, lower), split);
    return {_mm256_unpacklo_epi64(a, b), _mm256_unpackhi_epi64(a, b)};
}

MOKTEX_LANE_FUNCTION Palette rightHalves(const Palette& low, const Palette& high) {
    return {_mm256_permute2x128_si256(low.rg, high.rg, 0x31), _mm256_permute2x128_si256(low.ba, high.ba, 0x31)};
}

/// Sums of 64 parts to 8 bits: the stored bits with the upper ones repeated below.
MOKTEX_LANE_FUNCTION ChannelLanes expand(const ChannelLanes& sums) {
    const __m256i repeatBA = _mm256_set1_epi32(0x0040'0020);
    return {_mm256_add_epi16(_mm256_srli_epi16(sums.rg, 6), _mm256_srli_epi16(sums.rg, 11)),
            _mm256_add_epi16(_mm256_srli_epi16(sums.ba, 6), _mm256_mulhi_epu16(sums.ba, repeatBA))};
}

/// Differences of pixels from the colours that A and B decode to.
struct EndDifferences {
    ChannelLanes a, b;
};

MOKTEX_LANE_FUNCTION EndDifferences decodeEnds(const PixelLanes& lanes, const BlockRow& upper, const BlockRow& lower) {
    const __m256i upperWeights = load(lanes.upperWeights), lowerWeights = load(lanes.lowerWeights);
    const auto sum = [&](__m256i upperColours, __m256i lowerColours) {
        return _mm256_add_epi16(_mm256_maddubs_epi16(upperColours, upperWeights),
                                _mm256_maddubs_epi16(lowerColours, lowerWeights));
    };
    const ChannelLanes pixel = widen(load(lanes.pixel));
    return {pixel - expand({sum(upper.aRG, lower.aRG), sum(upper.aBA, lower.aBA)}),
            pixel - expand({sum(upper.bRG, lower.bRG), sum(upper.bBA, lower.bBA)})};
}

/// The differences at a point between A and B. `weight` is m << weightShift, m at most 7, 16 bits twice: the upper half of
/// 2 * step * (m << 12) is step * m / 8 rounded down, as a decoder rounds the blended colours.
class Blend {
public:
    MOKTEX_LANE_FUNCTION explicit Blend(const EndDifferences& ends)
        : a(ends.a), doubledStep((ends.a - ends.b) + (ends.a - ends.b)) {}
    MOKTEX_LANE_FUNCTION ChannelLanes at(__m256i weight) const {
        return a - ChannelLanes(_mm256_mulhi_epi16(doubledStep.rg, weight), _mm256_mulhi_epi16(doubledStep.ba, weight));
    }

private:
    ChannelLanes a, doubledStep;
};

/// The choice of eight inner pixels: differences with a channel of two pixels side by side, and interpolation weights.
struct ChosenLanes {
    __m256i rg, ba, value;
};

MOKTEX_LANE_FUNCTION __m256i pairPixels(__m256i lanes) {
    const __m256i order = _mm256_setr_epi32(0x05040100, 0x07060302, 0x0D0C0908, 0x0F0E0B0A,  //
                                            0x05040100, 0x07060302, 0x0D0C0908, 0x0F0E0B0A);
    return _mm256_shuffle_epi8(lanes, order);
}

MOKTEX_LANE_FUNCTION ChosenLanes chosen(const ChannelLanes& difference, __m256i value) {
    return {pairPixels(difference.rg), pairPixels(difference.ba), value};
}

/// Sums over the pixels of one interpolation weight.
class WeightAccumulator {
public:
    explicit WeightAccumulator(std::uint32_t weight) : value(weight), values(_mm256_set1_epi32(static_cast<int>(weight))) {}

    MOKTEX_LANE_FUNCTION void add(const PixelLanes& lanes, const ChosenLanes& choice) {
        const __m256i mask = _mm256_cmpeq_epi32(choice.value, values);
        influence = _mm256_add_epi32(influence, _mm256_and_si256(mask, load(lanes.influence)));
        const __m256i importance = pairPixels(_mm256_and_si256(mask, load(lanes.importance)));
        rg = _mm256_add_epi32(rg, _mm256_madd_epi16(choice.rg, importance));
        ba = _mm256_add_epi32(ba, _mm256_madd_epi16(choice.ba, importance));
    }

    MOKTEX_LANE_FUNCTION void finish(const LaneSums& sums) const {
        const std::int32_t sum = sumOf(influence);
        sums.count[value] = sum & (moktexture::amtc::influenceUnit - 1);
        sums.weight[value] = sum >> moktexture::amtc::influenceShift;
        const __m128i rgSum = _mm_add_epi32(_mm256_castsi256_si128(rg), _mm256_extracti128_si256(rg, 1));
        const __m128i baSum = _mm_add_epi32(_mm256_castsi256_si128(ba), _mm256_extracti128_si256(ba, 1));
        const __m128i residual = _mm_add_epi32(_mm_unpacklo_epi64(rgSum, baSum), _mm_unpackhi_epi64(rgSum, baSum));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(static_cast<std::byte*>(sums.residual) + value * sizeof residual), residual);
    }

private:
    std::uint32_t value;
    __m256i values;
    __m256i rg = _mm256_setzero_si256(), ba = rg, influence = rg;
};

}  // namespace
