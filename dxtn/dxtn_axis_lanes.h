#pragma once

// The colour blocks of blocks of three colours or more.
//
// The problem: two endpoints such that 16 colours lie near the line between them. The idea: that line is the principal axis of
// the colours, the direction in which they vary most; the endpoints are the extreme projections on it.
//
//   mean       = sum of the 16 colours / 16;  centred = colours - mean
//   covariance = sums of the products of the centred channels, six numbers
//   axis       = (1, 1, 1)
//   repeat at most 100 times:                               power iteration
//       next = covariance * axis, brought to length 1;      0 if it has no length: then end
//       end if next is nearer than 1e-5 to the last axis
//   low, high  = axis * smallest, axis * greatest projection of a centred colour
//   endpoints  = mean + low, mean + high, clamped and truncated to 5-6-5, ordered for four colours or three
//   index      = nearest of the 3 (or 2) steps between both points, before they were clamped and truncated
//
// Multiplying by the covariance stretches the axis most along the principal direction, so that it turns there; how fast depends
// on the ratio of the largest variances. It ends after 100 steps in any case: colours that vary equally in two directions have no
// principal axis to converge to, and any axis between them serves. A block costs a few hundred multiplications, and 9 for each
// step.
//
// Each lane of a vector holds a different block:
//
//                      lane 0        lane 1        lane 2        lane 3
//                   +-------------+-------------+-------------+-------------+
//   pixels[0]       | block A, p0 | block B, p0 | block C, p0 | block D, p0 |     RGBA8
//   pixels[1]       | block A, p1 | block B, p1 | block C, p1 | block D, p1 |
//     ...           |             |             |             |             |
//   pixels[15]      | block A,p15 | block B,p15 | block C,p15 | block D,p15 |
//   transparent     | mask of A   | mask of B   | mask of C   | mask of D   |     bit i: pixel i
//                   +-------------+-------------+-------------+-------------+
//   out             address of each colour block
//
// All lanes iterate until the last one has ended; a lane that has ended keeps its axis. Every lane does the operations of the
// reference form in `reference/` in the same order and in single precision, so that the bits are equal for any number of lanes.
//
// A kernel names the vectors of its instruction set:
//
//   struct Lanes {
//       using Floats = ...;                       // `count` floats, a vector of the compiler
//       using Integers = ...;                     // `count` 32-bit integers, and the masks of comparisons
//       static constexpr int count;
//       static Floats squareRoot(Floats values);
//       static bool any(Integers mask);           // whether any lane is set
//   };
//
// Everything here has internal linkage: code for one instruction set must not be shared with the rest of the library.

#include <cstddef>
#include <cstdint>

#include "core/base/instruction_set.h"
#if MOKTEX_X86_KERNELS
#include <immintrin.h>
#endif

namespace {

constexpr int pixelCount = 16;

/// Most steps of the power iteration, and the change below which it ends. More steps or a smaller change would place endpoints
/// better in blocks without a clear axis, and take more time. Bytes depend on both.
constexpr int maxSteps = 100;
constexpr float smallChange = 1e-5f;

/// Four blocks side by side, which every processor's baseline can do.
struct FourLanes {
    typedef float Floats __attribute__((vector_size(16)));
    typedef std::int32_t Integers __attribute__((vector_size(16)));
    static constexpr int count = 4;
#if MOKTEX_X86_KERNELS
    static Floats squareRoot(Floats values) {
        return _mm_sqrt_ps(values);
    }
    static bool any(Integers mask) {
        return _mm_movemask_ps(reinterpret_cast<__m128>(mask)) != 0;
    }
#else
    static Floats squareRoot(Floats values) {
        return Floats{__builtin_sqrtf(values[0]), __builtin_sqrtf(values[1]), __builtin_sqrtf(values[2]),
                      __builtin_sqrtf(values[3])};
    }
    static bool any(Integers mask) {
        return (mask[0] | mask[1] | mask[2] | mask[3]) != 0;
    }
#endif
};

/// One colour per lane.
template <class Lanes>
struct LaneColours {
    typename Lanes::Floats r, g, b;
};

template <class Lanes>
inline LaneColours<Lanes> operator+(const LaneColours<Lanes>& a, const LaneColours<Lanes>& b) {
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}
template <class Lanes>
inline LaneColours<Lanes> operator-(const LaneColours<Lanes>& a, const LaneColours<Lanes>& b) {
    return {a.r - b.r, a.g - b.g, a.b - b.b};
}
template <class Lanes>
inline LaneColours<Lanes> scaled(const LaneColours<Lanes>& a, typename Lanes::Floats factor) {
    return {factor * a.r, factor * a.g, factor * a.b};
}
template <class Lanes>
inline LaneColours<Lanes> divided(const LaneColours<Lanes>& a, typename Lanes::Floats divisor) {
    return {a.r / divisor, a.g / divisor, a.b / divisor};
}
template <class Lanes>
inline typename Lanes::Floats dot(const LaneColours<Lanes>& a, const LaneColours<Lanes>& b) {
    return a.r * b.r + a.g * b.g + a.b * b.b;
}
template <class Lanes>
inline LaneColours<Lanes> select(typename Lanes::Integers mask, const LaneColours<Lanes>& a, const LaneColours<Lanes>& b) {
    return {mask ? a.r : b.r, mask ? a.g : b.g, mask ? a.b : b.b};
}

/// Blocks that wait for their colour blocks; see the drawing above.
template <class Lanes>
struct Batch {
    typename Lanes::Integers pixels[pixelCount] = {};
    typename Lanes::Integers transparent = {};
    std::uint8_t* out[Lanes::count] = {};
    int filled = 0;
};

template <class Lanes>
struct CentredLanes {
    LaneColours<Lanes> mean;
    LaneColours<Lanes> pixels[pixelCount];
};

template <class Lanes>
struct CovarianceLanes {
    typename Lanes::Floats rr, rg, rb, gg, gb, bb;
};

template <class Lanes>
inline LaneColours<Lanes> toColours(typename Lanes::Integers rgba) {
    using Floats = typename Lanes::Floats;
    return {__builtin_convertvector(rgba & 255, Floats), __builtin_convertvector(rgba >> 8 & 255, Floats),
            __builtin_convertvector(rgba >> 16 & 255, Floats)};
}

/// Kept (dxtn-transparent-in-axis): transparent pixels count in the mean and the axis too, and pull the endpoints. DXT1 blocks
/// with cut-outs that are encoded again would differ from those in stored .dds and .mok files.
template <class Lanes>
inline void centre(const Batch<Lanes>& batch, CentredLanes<Lanes>& block) {
    using Floats = typename Lanes::Floats;
    const Floats zero = {};
    block.mean = {zero, zero, zero};
    for (int pixel = 0; pixel < pixelCount; ++pixel) {
        block.pixels[pixel] = toColours<Lanes>(batch.pixels[pixel]);
        block.mean = block.mean + block.pixels[pixel];
    }
    block.mean = scaled<Lanes>(block.mean, zero + 0.0625f);
    for (LaneColours<Lanes>& pixel : block.pixels)
        pixel = pixel - block.mean;
}

template <class Lanes>
inline CovarianceLanes<Lanes> covarianceOf(const CentredLanes<Lanes>& block) {
    CovarianceLanes<Lanes> sums = {};
    for (const LaneColours<Lanes>& p : block.pixels) {
        sums.rr += p.r * p.r;
        sums.rg += p.r * p.g;
        sums.rb += p.r * p.b;
        sums.gg += p.g * p.g;
        sums.gb += p.g * p.b;
        sums.bb += p.b * p.b;
    }
    return sums;
}

/// The axis of each lane, of length 1, or 0 where the iteration reaches a vector without length.
template <class Lanes>
inline LaneColours<Lanes> principalAxis(const CovarianceLanes<Lanes>& m) {
    using Floats = typename Lanes::Floats;
    using Integers = typename Lanes::Integers;
    const Floats zero = {}, one = zero + 1.0f;
    LaneColours<Lanes> axis = {one, one, one};
    Integers running = ~Integers{};
    for (int step = 0; step < maxSteps && Lanes::any(running); ++step) {
        const LaneColours<Lanes> product = {m.rr * axis.r + m.rg * axis.g + m.rb * axis.b,
                                            m.rg * axis.r + m.gg * axis.g + m.gb * axis.b,
                                            m.rb * axis.r + m.gb * axis.g + m.bb * axis.b};
        const Floats length = Lanes::squareRoot(dot<Lanes>(product, product));
        const Integers hasLength = length > 0.0f;
        const LaneColours<Lanes> next = select<Lanes>(hasLength, divided<Lanes>(product, length), {zero, zero, zero});
        const LaneColours<Lanes> change = next - axis;
        const Integers isClose = Lanes::squareRoot(dot<Lanes>(change, change)) < smallChange;
        axis = select<Lanes>(running, next, axis);
        running = running & hasLength & ~isClose;
    }
    return axis;
}

/// The smallest and the greatest projection on the axis; at most and at least 0.
template <class Lanes>
inline void project(const CentredLanes<Lanes>& block, const LaneColours<Lanes>& axis, typename Lanes::Floats& smallest,
                    typename Lanes::Floats& greatest) {
    smallest = greatest = typename Lanes::Floats{};
    for (const LaneColours<Lanes>& pixel : block.pixels) {
        const typename Lanes::Floats d = dot<Lanes>(axis, pixel);
        smallest = d < smallest ? d : smallest;
        greatest = d > greatest ? d : greatest;
    }
}

/// Clamps to 0 to 255 and truncates.
template <class Lanes>
inline typename Lanes::Integers toByte(typename Lanes::Floats value) {
    using Floats = typename Lanes::Floats;
    value = value > 0.0f ? value : Floats{};
    value = value < 255.0f ? value : Floats{} + 255.0f;
    return __builtin_convertvector(value, typename Lanes::Integers);
}

/// The 5-6-5 form, truncated.
template <class Lanes>
inline typename Lanes::Integers quantise(const LaneColours<Lanes>& colour) {
    return (toByte<Lanes>(colour.r) & 0xF8) << 8 | (toByte<Lanes>(colour.g) & 0xFC) << 3 | toByte<Lanes>(colour.b) >> 3;
}

/// Spreads the low 16 bits of each value to its even bits.
template <class Integer>
inline Integer spreadBits(Integer value) {
    value = (value | value << 8) & 0x00FF00FF;
    value = (value | value << 4) & 0x0F0F0F0F;
    value = (value | value << 2) & 0x33333333;
    return (value | value << 1) & 0x55555555;
}

/// The indices of the pixels between `start`, the point of c0, and `end`, the point of c1; `steps` is 3, or 2 where the lane's
/// block has transparent pixels. Positions that rounding carries beyond the ends get the nearer end.
template <class Lanes>
inline typename Lanes::Integers indicesAlongAxis(const CentredLanes<Lanes>& block, const LaneColours<Lanes>& start,
                                                 const LaneColours<Lanes>& end, typename Lanes::Integers steps) {
    using Floats = typename Lanes::Floats;
    using Integers = typename Lanes::Integers;
    const Floats lastStep = __builtin_convertvector(steps, Floats);
    const LaneColours<Lanes> range = end - start;
    const LaneColours<Lanes> v = divided<Lanes>(range, dot<Lanes>(range, range));
    Integers indices = {};
    for (int pixel = 0; pixel < pixelCount; ++pixel) {
        Floats position = dot<Lanes>(block.pixels[pixel] - start, v) * lastStep + 0.5f;
        position = position > 0.0f ? position : Floats{};
        position = position < lastStep ? position : lastStep;
        const Integers step = __builtin_convertvector(position, Integers);
        // Steps 0, 1, 2, 3 have the indices 0, 2, 3, 1; of two steps the last has 1 as well. A comparison's mask is -1 where it
        // holds.
        const Integers inner = step - (step > 0);
        indices |= (step == steps ? Integers{} + 1 : inner) << 2 * pixel;
    }
    return indices;
}

/// Writes the colour blocks of a batch and empties it. The results of empty lanes are discarded.
template <class Lanes>
void flush(Batch<Lanes>& batch) {
    using Integers = typename Lanes::Integers;
    CentredLanes<Lanes> block;
    centre<Lanes>(batch, block);
    const LaneColours<Lanes> axis = principalAxis<Lanes>(covarianceOf<Lanes>(block));
    typename Lanes::Floats smallest, greatest;
    project<Lanes>(block, axis, smallest, greatest);
    const LaneColours<Lanes> lowPoint = scaled<Lanes>(axis, smallest), highPoint = scaled<Lanes>(axis, greatest);
    const Integers low = quantise<Lanes>(block.mean + lowPoint), high = quantise<Lanes>(block.mean + highPoint);
    const Integers hasTransparency = batch.transparent != 0;
    const Integers highFirst = hasTransparency ? high < low : low < high;
    const LaneColours<Lanes> start = select<Lanes>(highFirst, highPoint, lowPoint);
    const LaneColours<Lanes> end = select<Lanes>(highFirst, lowPoint, highPoint);
    const Integers steps = hasTransparency ? Integers{} + 2 : Integers{} + 3;
    const Integers transparent = spreadBits<Integers>(batch.transparent);
    const Integers indices = indicesAlongAxis<Lanes>(block, start, end, steps) | transparent | transparent << 1;
    // Kept (dxtn-equal-ends-are-opaque): where both endpoints truncate to one 5-6-5 colour all indices are 0, so that transparent
    // pixels become opaque. Such DXT1 blocks would differ from those in stored .dds and .mok files.
    const Integers written = low == high ? Integers{} : indices;
    const Integers c0 = highFirst ? high : low, c1 = highFirst ? low : high;
    const Integers colours = c0 | c1 << 16;
    for (int lane = 0; lane < batch.filled; ++lane) {
        const std::uint32_t words[2] = {static_cast<std::uint32_t>(colours[lane]), static_cast<std::uint32_t>(written[lane])};
        __builtin_memcpy(batch.out[lane], words, sizeof words);
    }
    batch.filled = 0;
}

/// Puts a block of 16 pixels into the batch's next lane.
template <class Lanes>
inline void append(Batch<Lanes>& batch, const std::uint32_t* pixels, std::uint32_t transparent, std::uint8_t* out) {
    for (int pixel = 0; pixel < pixelCount; ++pixel)
        batch.pixels[pixel][batch.filled] = static_cast<std::int32_t>(pixels[pixel]);
    batch.transparent[batch.filled] = static_cast<std::int32_t>(transparent);
    batch.out[batch.filled++] = out;
}

}  // namespace
