#include <smmintrin.h>

#include <cstddef>
#include <cstdint>

#include "transcode/pixels/byte_shuffle.h"

namespace moktexture {

namespace {

constexpr std::size_t vectorBytes = 16;

/// The moves of one vector of whole pixels.
struct VectorMoves {
    alignas(vectorBytes) std::uint8_t order[vectorBytes];
    alignas(vectorBytes) std::uint8_t constants[vectorBytes];
};

VectorMoves vectorMoves(const ByteShuffle& moves, std::size_t pixels) {
    VectorMoves vector;
    for (std::size_t i = 0; i < vectorBytes; ++i) {
        const std::size_t pixel = i / moves.destinationBytes;
        const std::size_t byte = i % moves.destinationBytes;
        const bool isMoved = pixel < pixels && moves.source[byte] != ByteShuffle::noSource;
        vector.order[i] =
            isMoved ? static_cast<std::uint8_t>(pixel * moves.sourceBytes + moves.source[byte]) : ByteShuffle::noSource;
        vector.constants[i] = moves.constant[byte];
    }
    return vector;
}

}  // namespace

std::size_t moveBytesSSE41(const ByteShuffle& moves, const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    const std::size_t larger = moves.sourceBytes > moves.destinationBytes ? moves.sourceBytes : moves.destinationBytes;
    const std::size_t smaller = moves.sourceBytes > moves.destinationBytes ? moves.destinationBytes : moves.sourceBytes;
    const std::size_t step = vectorBytes / larger;
    // Vectors are read and written whole, so that the last ones must begin this many pixels before the end of the runs.
    const std::size_t margin = (vectorBytes + smaller - 1) / smaller;

    const VectorMoves vector = vectorMoves(moves, step);
    const __m128i order = _mm_load_si128(reinterpret_cast<const __m128i*>(vector.order));
    const __m128i constants = _mm_load_si128(reinterpret_cast<const __m128i*>(vector.constants));
    std::size_t done = 0;
    for (; done + margin <= pixels; done += step) {
        const __m128i source = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done * moves.sourceBytes));
        const __m128i result = _mm_or_si128(_mm_shuffle_epi8(source, order), constants);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + done * moves.destinationBytes), result);
    }
    return done;
}

}  // namespace moktexture
