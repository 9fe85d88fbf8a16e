#include "core/base/instruction_set.h"
#include "transcode/pixels/byte_shuffle.h"

#if MOKTEX_X86_KERNELS

#include <smmintrin.h>

#include <algorithm>

namespace moktexture {

namespace {

constexpr std::size_t vectorBytes = 16;

/// The shuffle of one vector of whole pixels.
struct VectorShuffle {
    alignas(vectorBytes) std::uint8_t order[vectorBytes];
    alignas(vectorBytes) std::uint8_t constants[vectorBytes];
};

VectorShuffle vectorShuffle(const ByteShuffle& shuffle, std::size_t pixels) {
    VectorShuffle vector;
    for (std::size_t i = 0; i < vectorBytes; ++i) {
        const std::size_t pixel = i / shuffle.destinationBytes;
        const std::size_t byte = i % shuffle.destinationBytes;
        const bool hasSource = pixel < pixels && shuffle.source[byte] != ByteShuffle::noSource;
        vector.order[i] =
            hasSource ? static_cast<std::uint8_t>(pixel * shuffle.sourceBytes + shuffle.source[byte]) : ByteShuffle::noSource;
        vector.constants[i] = shuffle.constant[byte];
    }
    return vector;
}

}  // namespace

std::size_t shuffleBytesSSE41(const ByteShuffle& shuffle, const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    const auto [smaller, larger] = std::minmax(shuffle.sourceBytes, shuffle.destinationBytes);
    const std::size_t step = vectorBytes / larger;
    // Vectors are read and written whole, so that the last one must begin at least this many pixels before the end.
    const std::size_t margin = (vectorBytes + smaller - 1) / smaller;

    const VectorShuffle vector = vectorShuffle(shuffle, step);
    const __m128i order = _mm_load_si128(reinterpret_cast<const __m128i*>(vector.order));
    const __m128i constants = _mm_load_si128(reinterpret_cast<const __m128i*>(vector.constants));
    std::size_t done = 0;
    for (; done + margin <= pixels; done += step) {
        const __m128i source = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done * shuffle.sourceBytes));
        const __m128i result = _mm_or_si128(_mm_shuffle_epi8(source, order), constants);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + done * shuffle.destinationBytes), result);
    }
    return done;
}

}  // namespace moktexture

#endif
