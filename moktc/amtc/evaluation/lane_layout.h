#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// A footprint and its blend table laid out for eight pixels at a time, and the evaluators over it, for processors with AVX2.
/// Trivial types only: kernel files, compiled for AVX2, include this header.
///
/// A group is eight pixels. Its pixels share the 2 by 2 blocks around them by halves of four lanes, so a kernel decodes a group
/// with two sets of colours, one in each half of a register, and without gathers. A row of a group crosses the footprint's middle
/// column between lanes 3 and 4.
///
/// 4 bits per pixel, 9 by 9 pixels, groups and lanes:
///
///     column  0    1    2    3    4    5    6    7     8
///     row 0   7.0  7.1  7.2  7.3  7.4  7.5  7.6  7.7   9.0     group 7: top        The outer ring is groups 7 to 10 and
///         1   0.0  0.1  0.2  0.3  0.4  0.5  0.6  0.7   9.1     groups 0 to 6:      lane 0 of the groups 0 to 6. All
///         :    :                                        :      one row each        inner pixels are in groups 0 to 6.
///         7   6.0  6.1  6.2  6.3  6.4  6.5  6.6  6.7   9.7     group 9: column
///         8   8.0  8.1  8.2  8.3  8.4  8.5  8.6  8.7  10.4     group 8: bottom
///
/// In groups 9 and 10 lanes 0 to 3 lie in the upper right quadrant and lanes 4 to 7 in the lower right one. Lanes without a pixel
/// are zero, which decodes without error.
///
/// 2 bits per pixel, 17 by 9 pixels: two sets of ten groups, as pixels with a sample of their own (s) and those with a mean of
/// samples (m) alternate. The last column of each set is group 9, in lanes by row:
///
///     column  0    1    2    3     14   15    16         s: row + column is even, m: odd
///     row 0  s7.0 m7.0 s7.1 m7.1 .. s7.7 m7.7  s9.0
///         1  m0.0 s0.0 m0.1 s0.1 .. m0.7 s0.7  m9.0
///         2  s1.0 m1.0 s1.1 m1.1 .. s1.7 m1.7  s9.1
///         :
///         8  s8.0 m8.0 s8.1 m8.1 .. s8.7 m8.7  s9.6
///
/// Within a lane, a colour is one 32-bit word as stored (red in the lowest byte), or two words of two 16-bit channels:
///
///     rg: red in bits 0 to 15, green in bits 16 to 31        ba: blue, alpha

namespace moktexture::amtc {

struct ColourPair;

inline constexpr std::size_t laneCount = 8;
/// Groups 0 to 6 are the rows 1 to 7 of a footprint, and all that have an inner pixel.
inline constexpr std::size_t innerGroups = 7;
/// Bits of the interpolation weights that samples have: 0 and 8 always, 3 and 5 with two bits.
inline constexpr std::uint32_t endValues = 1u << 0 | 1u << 8, twoBitValues = endValues | 1u << 3 | 1u << 5, allValues = 0x1FF;
/// Counts and influence are summed in one word, influence * influenceUnit + count: both rates have fewer inner pixels than that,
/// and the sum of influence stays below 2^24.
inline constexpr int influenceShift = 7;
inline constexpr std::int32_t influenceUnit = 1 << influenceShift;

struct PixelLanes {
    std::uint32_t pixel[laneCount];         ///< RGBA8
    std::uint32_t upperWeights[laneCount];  ///< bytes: of the upper left and right block, 0 to 64, twice; 0 for palette taps
    std::uint32_t lowerWeights[laneCount];  ///< of the lower blocks
    std::uint32_t importance[laneCount];    ///< 16 bits, twice; 0 on the outer ring
    std::int32_t influence[laneCount];      ///< influence * influenceUnit + 1; 0 on the outer ring
};

/// Interpolation weights are kept shifted by this: the upper 16 bits of a product with twice the step from A to B are then the
/// step times the weight, divided by 8.
inline constexpr int weightShift = 16 - 3 - 1;

/// 4 bits per pixel: eight pixels with four modulation indices each.
struct IndexLanes {
    PixelLanes pixels;
    std::uint32_t weight1[laneCount];     ///< 16 bits, twice: weight of index 1 << weightShift
    std::uint32_t weight2[laneCount];     ///< the same of index 2
    std::uint32_t mask2[laneCount];       ///< ANDed with the colour of index 2
    std::uint32_t levelValue[laneCount];  ///< one byte an index: interpolation weight or ignored
    /// One byte a modulation index: twice the position among A's four colours, then B's; 0x80 if no tap.
    std::uint32_t paletteIndex[laneCount];
};

struct EvaluationLanes4bpp {
    static constexpr std::size_t topGroup = 7, bottomGroup = 8;     ///< columns 0 to 7 of rows 0 and 8
    static constexpr std::size_t columnGroup = 9;                   ///< column 8 of rows 0 to 7
    static constexpr std::size_t cornerGroup = 10, cornerLane = 4;  ///< row 8, column 8; quadrants as of a column's group
    static constexpr std::size_t groupCount = 11;

    IndexLanes groups[groupCount];
    std::uint32_t valuesInUse;  ///< a bit for each interpolation weight that can occur
    bool hasPaletteTaps, hasPunchThrough;
};

/// 2 bits per pixel, pixels whose row + column is even: each has a sample of its own.
struct SampleLanes {
    PixelLanes pixels;
    std::uint32_t oneBit[laneCount];  ///< oneBitMark, or 0 for two bits
};

/// 2 bits per pixel, the other pixels: each has the mean of the samples around it, or in direct cells one bit of its own.
struct MeanLanes {
    PixelLanes pixels;
    std::uint32_t
        sampleFactors[laneCount];  ///< 16 bits each: 256 / number of samples, for left plus right (low) and for above plus below
    std::uint32_t rounding[laneCount];  ///< half of the number of samples, times the factor
    std::uint32_t oneBit[laneCount];    ///< all ones or 0
};

struct EvaluationLanes2bpp {
    static constexpr std::uint32_t oneBitMark = 0x40000000;  ///< above every error
    static constexpr std::size_t topGroup = 7, bottomGroup = 8;
    static constexpr std::size_t columnGroup = 9;  ///< the last column
    static constexpr std::size_t groupCount = 10;
    static constexpr std::size_t lastRow = 8;
    /// The lane of the last column's group by row: samples of even rows, means of odd ones.
    static constexpr std::int32_t columnLanes[lastRow + 1] = {0, 0, 1, 1, 4, 4, 5, 5, 6};

    SampleLanes samples[groupCount];
    MeanLanes means[groupCount];
    std::uint32_t valuesInUse;  ///< a bit for each interpolation weight that can occur
    bool hasOneBitInMeans;      ///< a pixel among the means has a bit of its own
};

/// A footprint's segments at 4 bits per pixel. Segment s has the runs 2 * s of its standard and 2 * s + 1 of its punch-through
/// pixels, without palette taps. A slot is where a kernel keeps a pixel's errors.
struct SegmentLanes {
    static constexpr std::size_t pixelCount = 81, innerPixels = 49, outerPixels = 32;
    static constexpr std::size_t maxSegments = pixelCount;
    /// The pixels of a run: ranges of `innerSlots` and `outerSlots`.
    struct Run {
        std::uint8_t innerBegin, innerEnd, outerBegin, outerEnd;
    };

    Run runs[2 * maxSegments];
    std::uint8_t innerSlots[innerPixels], outerSlots[outerPixels];  ///< run by run
    std::uint8_t single[innerPixels];  ///< runs with inner pixels whose segment has none of the other class
    std::uint8_t pairs[innerPixels];   ///< segments with inner pixels of both classes
    std::uint8_t outer[outerPixels];   ///< segments with outer pixels only
    std::uint8_t innerSlotCount, outerSlotCount, singleCount, pairCount, outerCount;
    std::uint32_t runOfPixel[innerGroups][laneCount];  ///< of inner pixels that are no palette taps
};

/// Where the sums by interpolation weight go. Weights that do not occur are left as they are.
struct LaneSums {
    std::int32_t* count;
    std::int32_t* weight;
    void* residual;  ///< four 32-bit integers per weight, one per channel
};

struct LaneError {
    std::uint32_t inner, outer;
};

/// The evaluators. `colours` are those of the 3 by 3 blocks around the footprint, row by row.
LaneError evaluateLanes4bppAVX2(const EvaluationLanes4bpp& lanes, const ColourPair* colours, bool firstPass,
                                const LaneSums& sums);
LaneError evaluateSegmentLanesAVX2(const EvaluationLanes4bpp& lanes, const SegmentLanes& segments, const ColourPair* colours,
                                   bool firstPass, const LaneSums& sums);
LaneError evaluateLanes2bppAVX2(const EvaluationLanes2bpp& lanes, const ColourPair* colours, bool firstPass,
                                const LaneSums& sums);

}  // namespace moktexture::amtc
