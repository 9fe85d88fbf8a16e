#pragma once

// Blocks of three colours or more side by side, one a lane of a vector. A kernel file defines what its instruction set offers:
//
//   struct Lanes {
//       using Floats = ...;                       // `count` floats, a vector of the compiler
//       using Integers = ...;                     // `count` 32-bit integers, and the masks of comparisons
//       static constexpr int count;
//       static Floats squareRoot(Floats values);
//       static bool any(Integers mask);           // whether a lane is set
//   };
//
// and includes dxtn_encoder_lanes.h. Each lane does the plain form's operations in the plain form's order, so that bits are
// equal. Everything here has internal linkage: code for one instruction set must not be offered to the rest of the library.

#include <cstddef>
#include <cstdint>

namespace {

constexpr int blockArea = 16;

/// One colour a lane.
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

/// Blocks of three colours or more that wait for their colour halves.
template <class Lanes>
struct Batch {
    typename Lanes::Integers pixels[blockArea] = {};
    typename Lanes::Integers transparent = {};  // bit i: pixel i
    std::uint8_t* out[Lanes::count] = {};
    int filled = 0;
};

template <class Lanes>
struct CentredLanes {
    LaneColours<Lanes> mean;
    LaneColours<Lanes> pixels[blockArea];
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

template <class Lanes>
inline void centre(const Batch<Lanes>& batch, CentredLanes<Lanes>& block) {
    using Floats = typename Lanes::Floats;
    const Floats zero = {};
    block.mean = {zero, zero, zero};
    for (int pixel = 0; pixel < blockArea; ++pixel) {
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

/// Power iteration; a lane that has stopped keeps its vector while others go on.
template <class Lanes>
inline LaneColours<Lanes> principalAxis(const CovarianceLanes<Lanes>& m) {
    using Floats = typename Lanes::Floats;
    using Integers = typename Lanes::Integers;
    const Floats zero = {}, one = zero + 1.0f;
    LaneColours<Lanes> axis = {one, one, one};
    Integers running = ~Integers{};
    for (int step = 0; step < 100 && Lanes::any(running); ++step) {
        const LaneColours<Lanes> product = {m.rr * axis.r + m.rg * axis.g + m.rb * axis.b,
                                            m.rg * axis.r + m.gg * axis.g + m.gb * axis.b,
                                            m.rb * axis.r + m.gb * axis.g + m.bb * axis.b};
        const Floats length = Lanes::squareRoot(dot<Lanes>(product, product));
        const Integers hasLength = length > 0.0f;
        const LaneColours<Lanes> next = select<Lanes>(hasLength, divided<Lanes>(product, length), {zero, zero, zero});
        const LaneColours<Lanes> change = next - axis;
        const Integers isClose = Lanes::squareRoot(dot<Lanes>(change, change)) < 1e-5f;
        axis = select<Lanes>(running, next, axis);
        running = running & hasLength & ~isClose;
    }
    return axis;
}

/// The smallest and the greatest projection on the axis.
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

template <class Lanes>
inline typename Lanes::Integers truncateClamped(typename Lanes::Floats value, float limit) {
    value = value > 0.0f ? value : typename Lanes::Floats{};
    value = value < limit ? value : typename Lanes::Floats{} + limit;
    return __builtin_convertvector(value, typename Lanes::Integers);
}

/// 5-6-5 form, each channel clamped to 0 to 255 and truncated.
template <class Lanes>
inline typename Lanes::Integers quantise(const LaneColours<Lanes>& colour) {
    return (truncateClamped<Lanes>(colour.r, 255.0f) & 0xF8) << 8 | (truncateClamped<Lanes>(colour.g, 255.0f) & 0xFC) << 3 |
           truncateClamped<Lanes>(colour.b, 255.0f) >> 3;
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
/// block has transparent pixels.
template <class Lanes>
inline typename Lanes::Integers indicesAlongAxis(const CentredLanes<Lanes>& block, const LaneColours<Lanes>& start,
                                                 const LaneColours<Lanes>& end, typename Lanes::Integers steps) {
    using Floats = typename Lanes::Floats;
    using Integers = typename Lanes::Integers;
    const Floats lastStep = __builtin_convertvector(steps, Floats);
    const LaneColours<Lanes> range = end - start;
    const LaneColours<Lanes> v = divided<Lanes>(range, dot<Lanes>(range, range));
    Integers indices = {};
    for (int pixel = 0; pixel < blockArea; ++pixel) {
        Floats position = dot<Lanes>(block.pixels[pixel] - start, v) * lastStep + 0.5f;
        position = position > 0.0f ? position : Floats{};
        position = position < lastStep ? position : lastStep;
        const Integers step = __builtin_convertvector(position, Integers);
        const Integers inner = step - (step > 0);  // 0, 2, 3: a mask is -1 where it is set
        indices |= (step == steps ? Integers{} + 1 : inner) << 2 * pixel;
    }
    return indices;
}

/// Encodes the waiting blocks and empties the batch. Lanes that are not filled do idle work.
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
    const Integers isCutOut = batch.transparent != 0;
    const Integers highFirst = isCutOut ? high < low : low < high;
    const LaneColours<Lanes> start = select<Lanes>(highFirst, highPoint, lowPoint);
    const LaneColours<Lanes> end = select<Lanes>(highFirst, lowPoint, highPoint);
    const Integers steps = isCutOut ? Integers{} + 2 : Integers{} + 3;
    const Integers transparent = spreadBits<Integers>(batch.transparent);
    const Integers indices = indicesAlongAxis<Lanes>(block, start, end, steps) | transparent | transparent << 1;
    const Integers written = low == high ? Integers{} : indices;
    const Integers c0 = highFirst ? high : low, c1 = highFirst ? low : high;
    const Integers colours = c0 | c1 << 16;
    for (int lane = 0; lane < batch.filled; ++lane) {
        const std::uint32_t words[2] = {static_cast<std::uint32_t>(colours[lane]), static_cast<std::uint32_t>(written[lane])};
        __builtin_memcpy(batch.out[lane], words, sizeof words);
    }
    batch.filled = 0;
}

/// Puts a block into the batch's next lane.
template <class Lanes>
inline void append(Batch<Lanes>& batch, const std::int32_t (&pixels)[blockArea], std::uint32_t transparent, std::uint8_t* out) {
    for (int pixel = 0; pixel < blockArea; ++pixel)
        batch.pixels[pixel][batch.filled] = pixels[pixel];
    batch.transparent[batch.filled] = static_cast<std::int32_t>(transparent);
    batch.out[batch.filled++] = out;
}

}  // namespace
