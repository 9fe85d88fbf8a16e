#pragma once

#include <cstdint>
#include <cstdio>

#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/host/amtc_progress.h"
#include "moktc/amtc/records/work_image.h"

/// @file
/// The door of the slow encoder: an image and its MIP levels, one after another. Calls block until all is done; several may run
/// at once, each with a work image of its own.

namespace moktexture::amtc {

/// Where lines on the course of the work go, and the warning that a size has no further levels; null, as it starts, for nowhere.
/// Nothing in the library sets it. A host of the module may, while nothing is being encoded. What goes wrong inside a level, and
/// what ends the process, is told on the standard error stream.
extern std::FILE* diagnosticsStream;

/// Encodes an image of `width * height` pixels, and levels below it, to `destination`, one behind the other without a gap. 0, or
/// 1 for what cannot be encoded: sides beyond 1 to 4096 or of no whole blocks, other rates, null pointers, and where memory is
/// short. If a further level is such, those before it are written.
/// @param source four bytes a pixel: R, G, B, A, or with `isRGBAOrder` 0 A, R, G, B
/// @param rowStride bytes from row to row, 0 for packed rows; negative ones are refused where levels are read from `source`
/// @param destination takes 8 bytes a block, of 8 by 4 pixels at 2 bits per pixel and 4 by 4 at 4. Each side of a further level
///     is half of that before, but no less than 16 by 8 pixels at 2 bits per pixel and 8 by 8 at 4, so a chain down to a nominal
///     single pixel is larger than its nominal levels
/// @param quality from 0 to 4; more counts as 4
/// @param mipMode 0: no further levels. 1: averages of 2 by 2 pixels. Any other: read from `source`, where they begin
///     `height * rowStride` bytes behind its start, in the sizes that `destination` tells, packed, R, G, B, A. Sides that are no
///     powers of two have no further levels
/// @param hasAlpha, reserved play no part
/// @param punchThrough non-zero: PunchThroughPreprocess() for the top level
/// @param formatVersion 4; stands in the settings of a level and plays no part
/// @param bitsPerPixel 2 or 4; the unfinished 1 ends the process
/// @param secondGeneration 0 or 1: the generation whose rules the blocks and the punch-through preprocessing follow
/// @param linearBlockOrder non-zero: row by row; 0: twiddled, where the grid's sides are powers of two
/// @param colourMIPs non-zero: one flat colour a further level
/// @param progress may be null, as may what it points to; the record is reset and not touched again
std::uint32_t CompressImageLevels(const std::uint8_t* source, std::uint32_t isRGBAOrder, std::int32_t width, std::int32_t height,
                                  std::int32_t rowStride, std::uint8_t* destination, std::uint8_t quality, std::int32_t mipMode,
                                  std::uint64_t hasAlpha, std::int32_t punchThrough, std::uint32_t formatVersion,
                                  std::uint32_t bitsPerPixel, std::uint32_t secondGeneration, std::uint64_t reserved,
                                  std::uint32_t linearBlockOrder, std::uint32_t colourMIPs, AmtcProgress** progress,
                                  const LevelResources& resources = LevelResources::ofThisMachine());

/// Encodes the level in `image`. Parameters and result as above; pixels outside `Width` by `Height` and `progress` play no part.
std::uint32_t CompressOneLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                               std::uint32_t secondGeneration, std::uint32_t linearBlockOrder, std::uint8_t quality,
                               std::uint64_t reserved, std::uint8_t* destination, AmtcProgress** progress,
                               const LevelResources& resources = LevelResources::ofThisMachine());

}  // namespace moktexture::amtc
