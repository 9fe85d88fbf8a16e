#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "moktc/amtc/records/level_records.h"
#include "moktc/block/block_variant.h"

/// @file
/// The pixels of each MIP level in the work image: the top one copied from the caller, the further ones made in place.

namespace moktexture::amtc {

/// The caller's top MIP level, four bytes per pixel.
struct SourceImage {
    const std::uint8_t* pixels;
    std::int32_t width, height;  ///< in pixels
    std::ptrdiff_t rowBytes;     ///< from row to row; negative for rows from bottom to top
    bool isRGBAOrder;            ///< bytes R, G, B, A; else A, R, G, B
};

inline bool isValidSide(std::int32_t size) {
    return size >= 1 && size <= largestSide;
}

/// False for 0 and for negative sizes.
inline bool isPowerOfTwo(std::int32_t size) {
    return size > 0 && std::has_single_bit(static_cast<std::uint32_t>(size));
}

/// A work image with the source's pixels. Null for null pixels, for sides that are not valid and where memory is short.
WorkImage loadWorkImage(const SourceImage& source);

/// Prepares pixels with an alpha below 4 for punch-through: in the second generation they become 0, 0, 0, 0; in the first they
/// get an alpha of 0 and the mean colour around them, weighted by distance and alpha, wrapping around the image's edges.
void PunchThroughPreprocess(AmtcImage& image, std::uint32_t secondGeneration);

/// MIP levels below an image of that size down to a single pixel: the binary logarithm of the larger side.
/// @param width, height powers of two
std::uint32_t furtherMIPLevelCount(std::int32_t width, std::int32_t height);

/// Repeats the image beside itself and below itself along each side that is the smallest that can be halved: 16 across (8 at 4
/// bits per pixel), 8 down (16 at 1 bit per pixel).
void tileSmallestImage(AmtcImage& image, moktc::Rate rate);

/// Halves the image: each pixel becomes the average of a 2 by 2 cell.
void halveByAveraging(AmtcImage& image);
/// Halves the image: all pixels become the opaque colour that marks MIP level `mipLevel`, counted from 1, one of seven in turn.
void halveToDebugColour(AmtcImage& image, std::uint32_t mipLevel);
/// Halves the image: the pixels are read from `source`, packed. Returns the start of the next MIP level.
const std::uint8_t* halveByReading(AmtcImage& image, const std::uint8_t* source);

}  // namespace moktexture::amtc
