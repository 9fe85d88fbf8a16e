#include "moktc/fast/fast_kernels.h"

#if MOKTEX_X86_KERNELS

#include <emmintrin.h>

#include "core/base/image_view.h"

// Four pixels per vector, split into two vectors of 16-bit lanes with two channels of each pixel side by side. Multiplying and
// adding adjacent lanes then squares both channels and sums them in one instruction.

namespace moktexture::moktc {
namespace {

constexpr std::uint32_t pixelsPerVector = 4;

/// Four pixels or differences of pixels.
struct Channels {
    __m128i rb;  ///< red in the even lanes, blue in the odd
    __m128i ga;  ///< green in the even lanes, alpha in the odd
};

inline Channels split(__m128i pixels) {
    return {_mm_and_si128(pixels, _mm_set1_epi16(255)), _mm_srli_epi16(pixels, 8)};
}
inline __m128i load(const void* address) {
    return _mm_loadu_si128(static_cast<const __m128i*>(address));
}
inline void store(void* address, __m128i values) {
    _mm_storeu_si128(static_cast<__m128i*>(address), values);
}
inline __m128i select(__m128i mask, __m128i ifSet, __m128i ifClear) {
    return _mm_or_si128(_mm_and_si128(mask, ifSet), _mm_andnot_si128(mask, ifClear));
}
inline Channels operator+(const Channels& a, const Channels& b) {
    return {_mm_add_epi16(a.rb, b.rb), _mm_add_epi16(a.ga, b.ga)};
}
inline Channels operator-(const Channels& a, const Channels& b) {
    return {_mm_sub_epi16(a.rb, b.rb), _mm_sub_epi16(a.ga, b.ga)};
}
inline Channels operator*(const Channels& a, __m128i factors) {
    return {_mm_mullo_epi16(a.rb, factors), _mm_mullo_epi16(a.ga, factors)};
}

/// Sums of the squares of the four channels, one 32-bit value per pixel.
inline __m128i squaredSums(const Channels& a) {
    return _mm_add_epi32(_mm_madd_epi16(a.rb, a.rb), _mm_madd_epi16(a.ga, a.ga));
}

inline std::uint32_t sumOfLanes(__m128i values) {
    values = _mm_add_epi32(values, _mm_shuffle_epi32(values, _MM_SHUFFLE(1, 0, 3, 2)));
    values = _mm_add_epi32(values, _mm_shuffle_epi32(values, _MM_SHUFFLE(2, 3, 0, 1)));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(values));
}

// The furthest pair

/// The same pixel four times.
inline Channels broadcast(std::uint32_t pixel) {
    return split(_mm_set1_epi32(static_cast<int>(pixel)));
}

/// The largest value, and the smallest row among the lanes that have it.
inline void reduce(__m128i greatest, __m128i rows, std::uint32_t& value, std::uint32_t& row) {
    std::uint32_t values[pixelsPerVector], rowOf[pixelsPerVector];
    store(values, greatest);
    store(rowOf, rows);
    value = values[0];
    row = rowOf[0];
    for (std::uint32_t lane = 1; lane < pixelsPerVector; ++lane) {
        if (values[lane] < value || (values[lane] == value && rowOf[lane] >= row)) continue;
        value = values[lane];
        row = rowOf[lane];
    }
}

// Row i of the table of distances starts at a whole vector and so repeats some pairs (i, j) with j < i. Row j had them before, so
// the first row with the largest distance is still the right one.
void findFurthest(const std::uint32_t* pixels, std::uint32_t count, std::uint32_t& first, std::uint32_t& second) {
    const std::uint32_t vectors = count / pixelsPerVector;
    Channels split4[largestFootprint / pixelsPerVector];
    for (std::uint32_t v = 0; v < vectors; ++v)
        split4[v] = split(load(pixels + v * pixelsPerVector));
    __m128i greatest = _mm_setzero_si128(), rows = greatest;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Channels pixel = broadcast(pixels[i]);
        const __m128i row = _mm_set1_epi32(static_cast<int>(i));
        for (std::uint32_t v = i / pixelsPerVector; v < vectors; ++v) {
            const __m128i distances = squaredSums(split4[v] - pixel);
            const __m128i isGreater = _mm_cmpgt_epi32(distances, greatest);
            greatest = select(isGreater, distances, greatest);
            rows = select(isGreater, row, rows);
        }
    }
    std::uint32_t distance;
    reduce(greatest, rows, distance, first);
    second = first;
    if (distance == 0) return;
    const Channels end = broadcast(pixels[first]);
    do {
        ++second;
    } while (static_cast<std::uint32_t>(_mm_cvtsi128_si32(squaredSums(broadcast(pixels[second]) - end))) != distance);
}

// Upscale

/// A colour's channels in 16-bit lanes, twice.
inline __m128i spread(std::uint32_t colour) {
    return _mm_unpacklo_epi8(_mm_set1_epi32(static_cast<int>(colour)), _mm_setzero_si128());
}

template <int width>
void fillCell(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell) {
    constexpr int height = static_cast<int>(blockHeight), shift = width == 4 ? 4 : 5;
    __m128i left = _mm_mullo_epi16(spread(p), _mm_set1_epi16(height));
    __m128i right = _mm_mullo_epi16(spread(q), _mm_set1_epi16(height));
    const __m128i leftStep = _mm_sub_epi16(spread(r), spread(p)), rightStep = _mm_sub_epi16(spread(s), spread(q));
    for (int dy = 0; dy < height; ++dy) {
        const __m128i step = _mm_sub_epi16(right, left);
        // The sums of pixels dx and dx + 1 side by side.
        __m128i two =
            _mm_add_epi16(_mm_mullo_epi16(left, _mm_set1_epi16(width)), _mm_and_si128(step, _mm_set_epi32(-1, -1, 0, 0)));
        const __m128i twoSteps = _mm_add_epi16(step, step);
        for (int dx = 0; dx < width; dx += 4) {
            const __m128i next = _mm_add_epi16(two, twoSteps);
            store(cell, _mm_packus_epi16(_mm_srli_epi16(two, shift), _mm_srli_epi16(next, shift)));
            two = _mm_add_epi16(next, twoSteps);
            cell += sizeof(__m128i);
        }
        left = _mm_add_epi16(left, leftStep);
        right = _mm_add_epi16(right, rightStep);
    }
}

// Modulation

/// Four pixels in the source and in both upscaled images.
struct FourPixels {
    Channels source, a, b, difference, a8;

    FourPixels(const BlockImages& images, std::uint32_t x, std::uint32_t y) {
        const std::size_t offset = y * images.rowBytes + x * bytesPerRGBA8Pixel;
        source = split(load(images.source + offset));
        a = split(load(images.a + offset));
        b = split(load(images.b + offset));
        difference = b - a;
        a8 = {_mm_slli_epi16(a.rb, 3), _mm_slli_epi16(a.ga, 3)};
    }

    /// The low byte of the blend in each channel.
    Channels blend(__m128i weights) const {
        const Channels sum = difference * weights + a8;
        const __m128i lowByte = _mm_set1_epi16(255);
        return {_mm_and_si128(_mm_srli_epi16(sum.rb, 3), lowByte), _mm_and_si128(_mm_srli_epi16(sum.ga, 3), lowByte)};
    }
    __m128i errorOf(const Channels& candidate) const { return squaredSums(candidate - source); }
    __m128i errorAt(__m128i weights) const { return errorOf(blend(weights)); }
    __m128i errorAt(short weights) const { return errorAt(_mm_set1_epi16(weights)); }
};

/// The best index so far of each of four pixels.
struct Nearest {
    __m128i error;
    __m128i index = _mm_setzero_si128();

    explicit Nearest(__m128i errorAtZero) : error(errorAtZero) {}
    /// Takes an index where its error is smaller. Returns the mask of the pixels that took it.
    __m128i consider(int candidate, __m128i errors) {
        const __m128i isNearer = _mm_cmpgt_epi32(error, errors);
        error = select(isNearer, errors, error);
        index = select(isNearer, _mm_set1_epi32(candidate), index);
        return isNearer;
    }
};

/// Packs four vectors of four 32-bit values, 0 to 255, to 16 bytes.
inline __m128i packToBytes(const __m128i* values) {
    return _mm_packus_epi16(_mm_packs_epi32(values[0], values[1]), _mm_packs_epi32(values[2], values[3]));
}

// The error of the trial decode is the sum of the errors by which the indices were chosen, except at punch-through pixels: their
// index is chosen by an alpha of 0, and the trial blends it.
void chooseModulation4bpp(const BlockImages& images, ModulationBlock4bpp& block) {
    __m128i normal[blockHeight], punch[blockHeight], normalError = _mm_setzero_si128(), punchError = normalError;
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        const FourPixels four(images, 0, y);
        const __m128i errorOfA = four.errorOf(four.a), errorOfB = four.errorOf(four.b);
        Nearest nearest(errorOfA);
        nearest.consider(1, four.errorAt(short{3}));
        nearest.consider(2, four.errorAt(short{5}));
        nearest.consider(3, errorOfB);
        normal[y] = nearest.index;
        normalError = _mm_add_epi32(normalError, nearest.error);

        Channels half = four.blend(_mm_set1_epi16(4));
        const __m128i errorOfHalf = four.errorOf(half);
        half.ga = _mm_and_si128(half.ga, _mm_set1_epi32(255));
        Nearest punched(errorOfA);
        punched.consider(1, errorOfHalf);
        __m128i trial = punched.error;
        trial = select(punched.consider(2, four.errorOf(half)), errorOfHalf, trial);
        trial = select(punched.consider(3, errorOfB), errorOfB, trial);
        punch[y] = punched.index;
        punchError = _mm_add_epi32(punchError, trial);
    }
    store(block.normalIndices, packToBytes(normal));
    store(block.punchIndices, packToBytes(punch));
    block.mode = block.modeWeights[0] * sumOfLanes(normalError) > block.modeWeights[1] * sumOfLanes(punchError) ? 1 : 0;
}

/// The weights of a 2 bpp block, a vector of eight 16-bit lanes per row.
struct WeightRows {
    __m128i row[blockHeight];
};

/// Weights of indices: 0, 3, 5, 8, that is 3 * index, less 1 if the index is 2 or 3.
inline __m128i toWeights(__m128i indices) {
    return _mm_add_epi16(_mm_add_epi16(indices, _mm_add_epi16(indices, indices)), _mm_cmpgt_epi16(indices, _mm_set1_epi16(1)));
}

/// The lanes of the pixels of row y that have even x + y.
inline __m128i evenPixels(std::uint32_t y) {
    return y % 2 == 0 ? _mm_set1_epi32(0x0000FFFF) : _mm_set1_epi32(static_cast<int>(0xFFFF0000));
}

/// The weights of the four neighbours of a row of pixels; 0 outside the block and where there is no sample.
struct SampleNeighbours {
    __m128i above, below, left, right;

    SampleNeighbours(const WeightRows& samples, std::uint32_t y)
        : above(y > 0 ? samples.row[y - 1] : _mm_setzero_si128()),
          below(y + 1 < blockHeight ? samples.row[y + 1] : _mm_setzero_si128()),
          left(_mm_slli_si128(samples.row[y], 2)),
          right(_mm_srli_si128(samples.row[y], 2)) {}
};

/// Mode 1: (n / 2 + sum) / n for n neighbours inside the block. Division by 2, 3 and 4 is multiplication by 64, 43 and 32 and a
/// shift by 7, which is exact for dividends up to 34.
inline __m128i meanOfNeighbours(const SampleNeighbours& around, std::uint32_t y) {
    const bool isOnRim = y == 0 || y + 1 == blockHeight;
    const __m128i isEnd = _mm_set_epi16(-1, 0, 0, 0, 0, 0, 0, -1);
    const __m128i sum = _mm_add_epi16(_mm_add_epi16(around.above, around.below), _mm_add_epi16(around.left, around.right));
    const __m128i halfCount = isOnRim ? _mm_set1_epi16(1) : select(isEnd, _mm_set1_epi16(1), _mm_set1_epi16(2));
    const __m128i factors =
        isOnRim ? select(isEnd, _mm_set1_epi16(64), _mm_set1_epi16(43)) : select(isEnd, _mm_set1_epi16(43), _mm_set1_epi16(32));
    return _mm_srli_epi16(_mm_mullo_epi16(_mm_add_epi16(sum, halfCount), factors), 7);
}

/// Mode 2: (above + below + 2) / 2, not divided in the first and the last row.
inline __m128i meanOfColumn(const SampleNeighbours& around, std::uint32_t y) {
    const __m128i sum = _mm_add_epi16(_mm_add_epi16(around.above, around.below), _mm_set1_epi16(2));
    return y == 0 || y + 1 == blockHeight ? sum : _mm_srli_epi16(sum, 1);
}

/// Mode 3: (left + right + 1) / 2, not divided in the first and the last column.
inline __m128i meanOfRow(const SampleNeighbours& around) {
    const __m128i sum = _mm_add_epi16(_mm_add_epi16(around.left, around.right), _mm_set1_epi16(1));
    return select(_mm_set_epi16(-1, 0, 0, 0, 0, 0, 0, -1), sum, _mm_srli_epi16(sum, 1));
}

inline WeightRows expandSamples(const WeightRows& samples, int mode) {
    WeightRows expanded;
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        const SampleNeighbours around(samples, y);
        const __m128i between = mode == 1 ? meanOfNeighbours(around, y) : mode == 2 ? meanOfColumn(around, y) : meanOfRow(around);
        expanded.row[y] = select(evenPixels(y), samples.row[y], between);
    }
    return expanded;
}

/// Errors of the trial decode of a row of eight pixels, in four lanes.
inline __m128i trialErrors(const FourPixels& left, const FourPixels& right, __m128i weights) {
    return _mm_add_epi32(left.errorAt(_mm_unpacklo_epi16(weights, weights)), right.errorAt(_mm_unpackhi_epi16(weights, weights)));
}

/// The indices of four pixels at 2 bpp: direct, with their errors, and as samples.
struct DirectAndSamples {
    __m128i direct, directError, sample;

    explicit DirectAndSamples(const FourPixels& four) {
        const __m128i errorOfA = four.errorOf(four.a), errorOfB = four.errorOf(four.b);
        const __m128i isA = _mm_cmpgt_epi32(errorOfB, errorOfA);
        direct = _mm_andnot_si128(isA, _mm_set1_epi32(3));
        directError = select(isA, errorOfA, errorOfB);
        Nearest nearest(errorOfA);
        nearest.consider(1, four.errorAt(short{3}));
        nearest.consider(2, four.errorAt(short{5}));
        nearest.consider(3, errorOfB);
        sample = nearest.index;
    }
};

void chooseModulation2bpp(const BlockImages& images, ModulationBlock2bpp& block) {
    WeightRows samples;
    __m128i errors[4] = {_mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128()};
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        const DirectAndSamples left(FourPixels(images, 0, y)), right(FourPixels(images, pixelsPerVector, y));
        const __m128i direct = _mm_packs_epi32(left.direct, right.direct);
        const __m128i sample = _mm_and_si128(_mm_packs_epi32(left.sample, right.sample), evenPixels(y));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(block.directIndices + 8 * y), _mm_packus_epi16(direct, direct));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(block.sampleIndices + 8 * y), _mm_packus_epi16(sample, sample));
        errors[0] = _mm_add_epi32(errors[0], _mm_add_epi32(left.directError, right.directError));
        samples.row[y] = toWeights(sample);
    }
    const WeightRows expanded[] = {expandSamples(samples, 1), expandSamples(samples, 2), expandSamples(samples, 3)};
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        const FourPixels left(images, 0, y), right(images, pixelsPerVector, y);
        for (int mode = 1; mode <= 3; ++mode)
            errors[mode] = _mm_add_epi32(errors[mode], trialErrors(left, right, expanded[mode - 1].row[y]));
    }
    block.mode = 0;
    std::uint32_t smallest = block.modeWeights[0] * sumOfLanes(errors[0]);
    for (std::uint8_t mode = 1; mode <= 3; ++mode) {
        const std::uint32_t error = block.modeWeights[mode] * sumOfLanes(errors[mode]);
        if (error >= smallest) continue;
        smallest = error;
        block.mode = mode;
    }
}

// Residuals

/// Sums in integers, by channel: 8 * e and 64 * e * t.
struct IntegerSums {
    Channels e = {_mm_setzero_si128(), _mm_setzero_si128()};
    __m128i et[4] = {_mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128()};

    void add(const FourPixels& four, __m128i weights) {
        const __m128i even = _mm_and_si128(weights, _mm_set1_epi32(0x0000FFFF)), odd = _mm_slli_epi32(weights, 16);
        const Channels residual = (four.source - four.a) * _mm_set1_epi16(8) - four.difference * weights;
        e = e + residual;
        et[0] = _mm_add_epi32(et[0], _mm_madd_epi16(residual.rb, even));
        et[1] = _mm_add_epi32(et[1], _mm_madd_epi16(residual.ga, even));
        et[2] = _mm_add_epi32(et[2], _mm_madd_epi16(residual.rb, odd));
        et[3] = _mm_add_epi32(et[3], _mm_madd_epi16(residual.ga, odd));
    }
};

/// The sum of each of four vectors' lanes, multiplied by a power of two.
inline __m128 sumsOfLanes(const __m128i* vectors, float scale) {
    const __m128i even01 = _mm_unpacklo_epi32(vectors[0], vectors[1]), odd01 = _mm_unpackhi_epi32(vectors[0], vectors[1]);
    const __m128i even23 = _mm_unpacklo_epi32(vectors[2], vectors[3]), odd23 = _mm_unpackhi_epi32(vectors[2], vectors[3]);
    const __m128i sum01 = _mm_add_epi32(even01, odd01), sum23 = _mm_add_epi32(even23, odd23);
    const __m128i sums = _mm_add_epi32(_mm_unpacklo_epi64(sum01, sum23), _mm_unpackhi_epi64(sum01, sum23));
    return _mm_mul_ps(_mm_cvtepi32_ps(sums), _mm_set1_ps(scale));
}

void sumResiduals(const BlockImages& images, const std::uint8_t* weights, std::uint32_t width, ResidualSums& sums) {
    IntegerSums integers;
    std::uint32_t t = 0, t2 = 0;
    for (std::uint32_t i = 0; i < width * blockHeight; i += pixelsPerVector) {
        const std::uint32_t a = weights[i], b = weights[i + 1], c = weights[i + 2], d = weights[i + 3];
        t += a + b + c + d;
        t2 += a * a + b * b + c * c + d * d;
        const __m128i four = _mm_set_epi32(static_cast<int>(d), static_cast<int>(c), static_cast<int>(b), static_cast<int>(a));
        integers.add(FourPixels(images, i % width, i / width), _mm_or_si128(four, _mm_slli_epi32(four, 16)));
    }
    const __m128i even = _mm_set1_epi32(0x00000001), odd = _mm_set1_epi32(0x00010000);
    const __m128i e[] = {_mm_madd_epi16(integers.e.rb, even), _mm_madd_epi16(integers.e.ga, even),
                         _mm_madd_epi16(integers.e.rb, odd), _mm_madd_epi16(integers.e.ga, odd)};
    sums.t = static_cast<float>(t) * 0.125f;
    sums.t2 = static_cast<float>(t2) * 0.015625f;
    _mm_storeu_ps(sums.e, sumsOfLanes(e, 0.125f));
    _mm_storeu_ps(sums.et, sumsOfLanes(integers.et, 0.015625f));
}

}  // namespace

const FastKernels sse2FastKernels = {
    "SSE2", findFurthest, fillCell<4>, fillCell<8>, chooseModulation4bpp, chooseModulation2bpp, sumResiduals};

}  // namespace moktexture::moktc

#endif
