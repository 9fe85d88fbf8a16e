#pragma once

#include <cstdint>
#include <cstdio>

#include "moktc/amtc/driver/level_images.h"
#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/host/front_end.h"

/// @file
/// The entry point of the slow encoder: an image and its MIP levels, one after another. Calls block until all is done; several
/// may run at once, each with a work image of its own.

namespace moktexture::amtc {

/// Where lines on the progress of an encoding go, and the warning that a size has no MIP levels; null, as it starts, for nowhere.
/// Nothing in the library sets it. A host of the module may, while nothing is being encoded. Failures inside a level, and what
/// ends the process, are written to the standard error stream.
extern std::FILE* diagnosticsStream;

/// Where the MIP levels below the top one come from.
enum class MIPSource {
    none,      ///< there are none
    averaged,  ///< averages of 2 by 2 pixels of the level before
    stored     ///< packed after the top level (height * rowBytes past its start), R, G, B, A; `rowBytes` is not negative
};

/// An image to encode.
struct EncodeRequest {
    SourceImage source;
    std::uint8_t* destination;  ///< takes all MIP levels without a gap, see CompressImageLevels()
    EncodeOptions options;
    MIPSource mipSource = MIPSource::none;
    bool punchThrough = false;         ///< PunchThroughPreprocess() for the top level
    bool colourMIPs = false;           ///< one flat colour per further MIP level
    AmtcProgress* progress = nullptr;  ///< may be null; reset and not touched again
};

/// Encodes an image and its MIP levels. False, with nothing more written, at the first one that cannot be encoded: sides beyond 1
/// to 4096 or not of whole blocks, other rates, null pointers, and where memory is short.
bool encodeImage(const EncodeRequest& request);

/// The same with separate arguments: 0, or 1 on failure. A side that is no power of two leaves no further MIP levels.
/// @param source four bytes per pixel: R, G, B, A, or with `isRGBAOrder` 0 A, R, G, B
/// @param rowStride bytes from row to row, 0 for packed rows; negative ones are refused where MIP levels are read from `source`
/// @param destination takes 8 bytes per block, of 8 by 4 pixels at 2 bits per pixel and 4 by 4 at 4. Each side of a further MIP
///     level is half of that before, but no less than 16 by 8 pixels at 2 bits per pixel and 8 by 8 at 4, so a chain down to a
///     nominal single pixel is larger than its nominal levels
/// @param quality from 0 to 4; more counts as 4
/// @param mipMode 0: MIPSource::none, 1: averaged, any other: stored
/// @param hasAlpha, reserved have no effect
/// @param bitsPerPixel 2 or 4; the unfinished 1 ends the process
/// @param secondGeneration 0 or 1: the generation whose rules the blocks and the punch-through preprocessing follow
/// @param linearBlockOrder non-zero: row by row; 0: twiddled, where the grid's sides are powers of two
/// @param progress may be null, as may what it points to
std::uint32_t CompressImageLevels(const std::uint8_t* source, std::uint32_t isRGBAOrder, std::int32_t width, std::int32_t height,
                                  std::int32_t rowStride, std::uint8_t* destination, std::uint8_t quality, std::int32_t mipMode,
                                  std::uint64_t hasAlpha, std::int32_t punchThrough, std::uint32_t formatVersion,
                                  std::uint32_t bitsPerPixel, std::uint32_t secondGeneration, std::uint64_t reserved,
                                  std::uint32_t linearBlockOrder, std::uint32_t colourMIPs, AmtcProgress** progress);

/// Encodes the `Width` by `Height` pixels of `image` alone. Parameters and result as above; `progress` is not used.
std::uint32_t CompressOneLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                               std::uint32_t secondGeneration, std::uint32_t linearBlockOrder, std::uint8_t quality,
                               std::uint64_t reserved, std::uint8_t* destination, AmtcProgress** progress);

}  // namespace moktexture::amtc
