#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "moktc/amtc/records/colour_vector.h"
#include "moktc/block/block_variant.h"

/// @file
/// What all passes over a level share: its pixels, its settings and one record per block.

namespace moktexture::amtc {

using moktc::BlockVariant;
using moktc::Generation;
using moktc::Rate;

inline constexpr std::int32_t largestSide = 4096;

/// The MIP level being encoded: the top left `Width` by `Height` pixels (RGBA8, red in the lowest byte) of rows with a constant
/// stride. The system commits its pages on first use, so that a small texture uses little of its 64 MiB.
struct AmtcImage {
    std::int32_t Width;
    std::int32_t Height;
    std::uint32_t Pixels[largestSide][largestSide];
};
static_assert(sizeof(AmtcImage) == 0x4000008);

struct FreeWorkImage {
    void operator()(AmtcImage* image) const { std::free(image); }
};
using WorkImage = std::unique_ptr<AmtcImage, FreeWorkImage>;

/// A zeroed work image, null if memory is short.
inline WorkImage makeWorkImage() {
    return WorkImage(static_cast<AmtcImage*>(std::calloc(1, sizeof(AmtcImage))));
}

/// The rate that was never finished: levels can be described and analysed, but listing its region modes aborts.
inline constexpr Rate oneBpp{1};

/// Region modes: whether a block's colours are upscaled, and how the modulation index of a pixel selects its blend.
///
///   4 bits per pixel                             2 bits per pixel
///   0  four blends 0, 3/8, 5/8, 1                8           one bit per pixel
///   1  punch-through: 0, 1/2, transparent, 1     9, 10, 11   two bits on a checkerboard; the other pixels get the mean of all
///   2  flat: colours are not upscaled                        four neighbours (9), left and right (10), above and below (11)
///   3  flat, corner palette                      12 to 15    as 8 to 11, flat
///
/// Modes 2, 3 and 12 to 15 exist in the second generation only.
namespace region_mode {
inline constexpr std::uint32_t standard = 0;
inline constexpr std::uint32_t punchThrough = 1;
inline constexpr std::uint32_t flat4bpp = 2;
inline constexpr std::uint32_t cornerPalette = 3;
inline constexpr std::uint32_t direct = 8;
inline constexpr std::uint32_t average = 9;
inline constexpr std::uint32_t horizontal = 10;
inline constexpr std::uint32_t vertical = 11;
inline constexpr std::uint32_t flatDirect = 12;
inline constexpr std::uint32_t flatAverage = 13;
inline constexpr std::uint32_t flatHorizontal = 14;
inline constexpr std::uint32_t flatVertical = 15;
}  // namespace region_mode
inline constexpr std::size_t maxRegionModes = 8;

/// A footprint consists of the pixels that a block's colours influence and a ring around them: twice the block size plus 1 each
/// way.
inline constexpr std::size_t maxFootprintWidth = 17;
inline constexpr std::size_t maxFootprintPixels = 17 * 17;  ///< at 1 bit per pixel; 81 at 4, 153 at 2

/// RGBA8 pixels in rows of `footprintWidth`, without padding.
using Footprint = std::array<std::uint32_t, maxFootprintPixels>;
/// One weight per pixel of a footprint.
using FootprintKernel = std::array<float, maxFootprintPixels>;
/// One byte per pixel of a footprint.
using FootprintMask = std::array<std::uint8_t, maxFootprintPixels>;

/// The settings of one level. Those from `refineIterations` on change from sweep to sweep.
struct AmtcLevelSettings {
    std::uint8_t formatVersion;  ///< 4
    std::uint8_t bitsPerPixel;   ///< 4 or 2; 1 was never finished
    std::uint8_t blockWidth, blockHeight;
    std::uint8_t footprintWidth, footprintHeight;
    std::uint32_t secondGeneration;          ///< 1 for the second generation
    std::uint32_t blocksDown, blocksAcross;  ///< size of the grid of blocks
    std::uint32_t refineIterations;          ///< evaluations per candidate
    std::uint32_t candidatesKept;            ///< per mode, from one visit to the next
    std::uint32_t forceVisit;                ///< 1: visit every block
    std::uint32_t extendedModes;             ///< 1: also try the region modes of the second generation
    std::uint32_t neighbourModeVariants;     ///< 1: try 8 variants of the neighbours' modes instead of 1
    std::uint32_t clampToBounds;             ///< 1: clamp solved colours to the extent of the representative
    std::uint32_t useSegments;               ///< 1: the pixels of a segment share a modulation index

    std::size_t footprintPixels() const { return std::size_t{footprintWidth} * footprintHeight; }
    Generation generation() const { return secondGeneration != 0 ? Generation::second : Generation::first; }
};

/// The settings that do not change from sweep to sweep; the others are 0. Width and height, in pixels, are multiples of those of
/// a block.
AmtcLevelSettings makeLevelSettings(std::int32_t width, std::int32_t height, BlockVariant variant);

/// A representative: a set of pixels described as a cloud in RGBA space.
struct Rep {
    ColourVector minColour, maxColour;
    std::array<std::uint8_t, channelCount> meanColour;  ///< rounded, R, G, B, A
    std::array<ColourVector, channelCount> axes;        ///< unit vectors, by descending spread of the pixels
    ColourVector projMin, projMax;                      ///< smallest and largest projection of the pixels on each axis
    std::uint32_t isFlat;                               ///< 1 if the minimum and the maximum colour are equal
};

enum RepIndex : std::size_t {
    wholeRep,         ///< the whole footprint
    opaqueRep,        ///< its pixels that do not count as transparent
    centreRep,        ///< the block itself
    detailRep,        ///< the footprint minus the interpolated means of the blocks around
    opaqueDetailRep,  ///< the same, for pixels with an alpha above 0
    repCount
};

inline constexpr std::uint32_t unknownError = 0x3fffffff;  ///< larger than any error of a footprint

/// A pair of colours as a decoder sees them: RGBA8, stored bits expanded.
struct ColourPair {
    std::uint32_t a, b;
    bool operator==(const ColourPair&) const = default;
};

struct Candidate {
    std::uint32_t colourA, colourB;
    std::uint32_t error = unknownError;  ///< sum of squared differences over the footprint, all channels with the same weight
    std::uint32_t spare = 0;

    ColourPair colours() const { return {colourA, colourB}; }
};

inline constexpr std::size_t maxCandidates = 4;

/// The candidates of a block in one region mode, sorted best first after the first visit.
struct RepStart {
    std::uint8_t mode;          ///< a region mode
    std::uint8_t count;         ///< candidates in use
    std::uint32_t isFlatStart;  ///< 1 if the candidates come from a flat representative
    const Rep* axes;            ///< axes and extent to which solved colours are clamped; points into the same record
    std::array<Candidate, maxCandidates> candidates;
};

/// The inputs of a block's refinement beside its pixels and its own candidates.
struct RefinementInputs {
    std::array<ColourPair, 9> neighbourColours;  ///< entry 4, the block itself, is not used and 0
    std::array<std::uint8_t, 9> neighbourModes;  ///< likewise
    std::array<std::uint8_t, 5> rules;           ///< the settings that change from sweep to sweep
    bool operator==(const RefinementInputs&) const = default;
};

struct BlockRecord {
    std::uint32_t segmentable;  ///< 1 if the footprint splits into fewer segments than a quarter of its pixels
    std::array<Rep, repCount> reps;
    std::uint32_t transparentInCentre;               ///< 1 if a pixel of the block itself counts as transparent
    std::uint32_t lastChanged;                       ///< step of the last visit that changed the block
    std::uint32_t lastVisited;                       ///< step of the last visit
    std::array<RepStart, maxRegionModes> repStarts;  ///< in the order of ListRegionModes with extended modes
    std::uint32_t bestMode;                          ///< the current region mode; it also affects how neighbours decode
    RefinementInputs lastInputs;                     ///< of the last visit
    std::uint32_t convergedModes;  ///< bit i: a visit with `lastInputs` left repStarts[i] unchanged, and would again

    /// The best candidate of the current mode.
    const Candidate& best() const;
};

using RegionModeList = std::array<std::uint32_t, maxRegionModes>;

/// Lists the region modes of the format, with those of the second generation only if `extended`, and returns their number. At 1
/// bit per pixel it writes a message and aborts.
std::uint32_t ListRegionModes(const AmtcLevelSettings& settings, bool extended, RegionModeList& list);

/// Pointers to the rows of records. Entries after the last row are null.
using BlockRows = std::array<BlockRecord*, largestSide / 4>;

/// Allocates one array of records per block row. The records are zeroed, so that fields that the passes of a format never set,
/// such as the starts of another generation's modes, are the same in every run. False, with nothing allocated, if memory is
/// short.
bool AllocateBlockRows(std::int32_t width, std::int32_t height, std::uint32_t blockWidth, std::uint32_t blockHeight,
                       BlockRows& blockRows);
void FreeBlockRows(BlockRows& blockRows);

/// Copies the footprint centred on the pixel (centreX, centreY), wrapping at the edges of the image.
void LoadFootprint(const AmtcImage& image, std::uint32_t centreX, std::uint32_t centreY, const AmtcLevelSettings& settings,
                   Footprint& footprint);
/// The same around the centre of the block at `row` and `column`.
void LoadBlockFootprint(const AmtcImage& image, std::uint32_t row, std::uint32_t column, const AmtcLevelSettings& settings,
                        Footprint& footprint);

/// The records of the 3 by 3 blocks around one, row by row, wrapping at the edges of the grid; entry 4 is the block itself.
using Neighbourhood = std::array<const BlockRecord*, 9>;
inline constexpr std::size_t centreOfNeighbourhood = 4;
Neighbourhood gatherNeighbourhood(const BlockRows& blockRows, const AmtcLevelSettings& settings, std::uint32_t row,
                                  std::uint32_t column);

}  // namespace moktexture::amtc
