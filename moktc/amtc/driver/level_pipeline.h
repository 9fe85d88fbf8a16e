#pragma once

#include "core/base/instruction_set.h"
#include "core/base/parallel.h"
#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

struct AmtcProgress;

/// How levels are encoded.
struct EncodeOptions {
    BlockVariant variant;                                    ///< the unfinished rate of 1 bit per pixel ends the process
    bool linearBlockOrder;                                   ///< row by row, else twiddled
    std::uint32_t quality;                                   ///< 0 to 4; more counts as 4
    std::uint32_t formatVersion = 4;                         ///< recorded in the settings of a level, without effect
    std::uint32_t threads = availableThreads();              ///< most threads; the bytes do not depend on it
    InstructionSet instructionSet = detectInstructionSet();  ///< nor on this one
};

/// The options that the functions with separate arguments are given. Other bits per pixel than 1, 2 and 4 give Rate{0}.
EncodeOptions makeEncodeOptions(std::uint32_t formatVersion, std::uint32_t bitsPerPixel, std::uint32_t secondGeneration,
                                std::uint32_t linearBlockOrder, std::uint8_t quality);

/// Encodes one image whose sides are multiples of the block's into `destination`, 8 bytes per block. False if memory is short,
/// with a message on the standard error stream.
bool encodeLevel(const AmtcImage& image, const EncodeOptions& options, std::uint8_t* destination);

/// The same; 1 on success and 0 on failure. `progress` is not used.
std::uint32_t CompressLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                            std::uint32_t secondGeneration, std::uint8_t* destination, std::uint32_t linearBlockOrder,
                            std::uint8_t quality, AmtcProgress** progress);

/// Number of sweeps over a level, by quality; here and below a quality above 4 counts as 4.
std::uint32_t sweepCount(std::uint32_t quality);

/// Sets what changes from sweep to sweep, for sweep `sweep` of `sweeps`. `previous` holds the settings of the sweep before and is
/// not read in sweep 0.
void SetSweepSettings(std::uint32_t quality, std::uint32_t sweeps, std::uint32_t sweep, AmtcLevelSettings& settings,
                      const AmtcLevelSettings& previous);

}  // namespace moktexture::amtc
