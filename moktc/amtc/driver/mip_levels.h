#pragma once

#include <bit>
#include <cstdint>

#include "moktc/amtc/records/work_image.h"

/// @file
/// The next smaller level of a work image, in place: how it is made is a choice of three.

namespace moktexture::amtc {

/// False for 0 and for negative sizes.
inline bool isPowerOfTwo(std::int32_t size) {
    return size > 0 && std::has_single_bit(static_cast<std::uint32_t>(size));
}

/// Levels below a map of that size down to a single pixel: the binary logarithm of the larger side.
/// @param width, height powers of two
std::uint32_t furtherLevelCount(std::int32_t width, std::int32_t height);

/// Puts the map beside itself and below itself along each side that is the smallest to be halved: 16 across (8 at 4 bits per
/// pixel), 8 down (16 at 1 bit per pixel).
void tileSmallestMap(AmtcImage& image, std::uint32_t bitsPerPixel);

/// Each pixel becomes the average of a 2 by 2 cell.
void halveByAveraging(AmtcImage& image);
/// All pixels become the opaque colour that marks level `level`, counted from 1; the seven colours come round again.
void halveToLevelColour(AmtcImage& image, std::uint32_t level);
/// Takes the pixels from `source`, packed. Returns where the next level's begin.
const std::uint8_t* halveByReading(AmtcImage& image, const std::uint8_t* source);

}  // namespace moktexture::amtc
