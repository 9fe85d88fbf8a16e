#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// A footprint and its blend table laid out for eight pixels at a time. Plain data only: kernels include this header.
///
/// The pixels of a group have their 2 by 2 blocks in common by halves: lanes 0 to 3 lie in the left half of the footprint,
/// lanes 4 to 7 in the right one, and all in the same half of its rows; but of a group from the last column, lanes 0 to 3 lie in
/// the upper right quadrant and 4 to 7 in the lower right one. Lanes without a pixel are zero, which decodes without error.

namespace moktexture::amtc {

inline constexpr std::size_t laneCount = 8;
/// Groups 0 to 6 are the rows 1 to 7 of a footprint, and all that has an inner pixel.
inline constexpr std::size_t innerGroups = 7;
/// Bits of the level values, in eighths, that samples have: 0 and 8 always, 3 and 5 with two bits.
inline constexpr std::uint32_t endValues = 1u << 0 | 1u << 8, twoBitValues = endValues | 1u << 3 | 1u << 5, allValues = 0x1FF;
/// Counts and influence are summed in one word, influence times this plus count: both rates have fewer inner pixels, and the sum
/// of influence stays below 2^24.
inline constexpr int influenceShift = 7;
inline constexpr std::int32_t influenceUnit = 1 << influenceShift;

struct PixelLanes {
    std::uint32_t pixel[laneCount];         ///< RGBA8
    std::uint32_t upperWeights[laneCount];  ///< bytes: of the upper left and right block, in 64ths, twice; 0 for palette taps
    std::uint32_t lowerWeights[laneCount];  ///< of the lower blocks
    std::uint32_t importance[laneCount];    ///< 16 bits, twice; 0 on the outer ring
    std::int32_t influence[laneCount];      ///< influence * influenceUnit + 1; 0 on the outer ring
};

/// Shares of B, in eighths, are kept shifted by this: the upper 16 bits of a product with twice the step from A to B are then the
/// share of the step.
inline constexpr int shareShift = 16 - 3 - 1;

/// 4 bits per pixel: eight pixels with four levels each. Group i < 7 is columns 0 to 7 of row i + 1.
struct LevelLanes {
    PixelLanes pixels;
    std::uint32_t level1[laneCount];  ///< 16 bits, twice: share of B in level 1, in eighths << shareShift
    std::uint32_t level2[laneCount];  ///< the same of level 2
    std::uint32_t level2Mask[laneCount];
    std::uint32_t levelValue[laneCount];  ///< one byte a level
    std::uint32_t
        paletteIndex[laneCount];  ///< one byte a level: twice the index among A's four colours, then B's; 0x80 if no tap
};

struct EvaluationLanes4bpp {
    static constexpr std::size_t topGroup = 7, bottomGroup = 8;     ///< columns 0 to 7 of rows 0 and 8
    static constexpr std::size_t columnGroup = 9;                   ///< column 8 of rows 0 to 7
    static constexpr std::size_t cornerGroup = 10, cornerLane = 4;  ///< row 8, column 8; quadrants as of a column's group
    static constexpr std::size_t groupCount = 11;

    LevelLanes groups[groupCount];
    std::uint32_t valuesInUse;  ///< a bit for each level value that can occur
    bool hasPaletteTaps, hasPunchThrough;
};

/// 2 bits per pixel, pixels whose x + y is even: each has a sample of its own. Group i < 7 is row i + 1, every other pixel from
/// column 0 or 1.
struct SampleLanes {
    PixelLanes pixels;
    std::uint32_t oneBit[laneCount];  ///< oneBitMark, or 0 for two bits
};

/// 2 bits per pixel, pixels whose x + y is odd: each has the mean of samples around it, or in direct cells one bit of its own.
struct MeanLanes {
    PixelLanes pixels;
    std::uint32_t sampleFactors[laneCount];  ///< 16 bits each: of left plus right (low), and of above plus below, in 256ths
    std::uint32_t rounding[laneCount];       ///< half of the number of samples, in 256ths of their mean
    std::uint32_t oneBit[laneCount];         ///< all ones or 0
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
    std::uint32_t valuesInUse;  ///< a bit for each level value that can occur
    bool hasOneBitInMeans;      ///< a pixel among the means has a bit of its own
};

/// A footprint's segments at 4 bits per pixel. Segment s has the runs 2 * s of its standard and 2 * s + 1 of its punch-through
/// pixels, palette taps left out. A slot is where a kernel keeps a pixel's errors.
struct SegmentLanes {
    static constexpr std::size_t pixelCount = 81, innerPixels = 49, outerPixels = 32;
    static constexpr std::size_t mostSegments = pixelCount;
    /// Pixels by run: from where to where among the inner and the outer slots.
    struct Run {
        std::uint8_t innerBegin, innerEnd, outerBegin, outerEnd;
    };

    Run runs[2 * mostSegments];
    std::uint8_t innerSlots[innerPixels], outerSlots[outerPixels];  ///< run by run
    std::uint8_t single[innerPixels];  ///< runs with inner pixels whose segment has none of the other class
    std::uint8_t pairs[innerPixels];   ///< segments with inner pixels of both classes
    std::uint8_t outer[outerPixels];   ///< segments with outer pixels alone
    std::uint8_t innerSlotCount, outerSlotCount, singleCount, pairCount, outerCount;
    std::uint32_t runOfPixel[innerGroups][laneCount];  ///< of inner pixels that are no palette taps
};

struct PixelBlendEntry;
struct Segments;

/// Lay out a table and the pixels of a footprint. At 4 bits per pixel levels 1 and 2 have shares of at most 7 eighths of B, and
/// of A what is left, but where the mask is 0.
void prepareLanes(const PixelBlendEntry* table, const std::uint32_t* footprint, EvaluationLanes4bpp& lanes);
/// At 2 bits per pixel the levels are 0, 3, 5 and 8 eighths of B, without masks or palette taps; pixels whose x + y is even have
/// one or two bits of their own, and no other pixel has two.
void prepareLanes(const PixelBlendEntry* table, const std::uint32_t* footprint, EvaluationLanes2bpp& lanes);
void prepareLanes(const PixelBlendEntry* table, const Segments& segments, SegmentLanes& lanes);

}  // namespace moktexture::amtc
