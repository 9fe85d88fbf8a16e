#pragma once

#include <thread>

#include "core/base/instruction_set.h"
#include "core/base/parallel.h"
#include "moktc/amtc/analysis/footprint_analysis.h"
#include "moktc/amtc/evaluation/blend_table.h"
#include "moktc/amtc/records/level_records.h"

/// @file
/// The encoding of one level: its sweeps (level_pipeline.cpp), the passes over its blocks and their threads (block_passes.cpp),
/// and the packing of a block (pack_local_block.cpp).

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

// Passes over the block grid of a level, each spread over threads and joined before it returns

inline constexpr std::uint32_t maxThreads = 32;

/// What the threads of a pass share; they read it only.
struct AmtcThreadContext {
    const AmtcImage& image;
    const AmtcLevelSettings& settings;
    const BlockRows& blockRows;
    std::uint32_t threadLimit;                               ///< most threads by the height of the grid, from 1 to maxThreads
    std::uint32_t threads = availableThreads();              ///< most threads by the machine; the result does not depend on it
    InstructionSet instructionSet = detectInstructionSet();  ///< nor on this one
};

/// The blocks of every second row and column, from `row` and `column` on, each 0 or 1.
struct ParityPhase {
    std::uint32_t row, column;
};

/// Visits all blocks to set them up; pass 1 needs what pass 0 found around each block.
void RunBlockPass(const AmtcThreadContext& context, std::uint32_t pass, const FootprintKernels& kernels);
void RunBlockPass(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, const FootprintMask& centreMask,
                  const FootprintKernel& sharpKernel, const FootprintKernel& smoothKernel, std::uint32_t threadLimit,
                  const BlockRows& blockRows);

/// Visits all blocks to refine them, in four phases. `sweep` counts from 0.
void runSweep(const AmtcThreadContext& context, std::uint32_t sweep);
/// Visits the blocks of a phase to refine them. A grid one block high is not visited.
/// @param step number of the phase, counted from 1 over all sweeps
void RunParityPhase(const AmtcThreadContext& context, const ParityPhase& phase, std::uint32_t step);
void RunParityPhase(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t rowPhase, std::uint32_t columnPhase,
                    std::uint32_t step, std::uint32_t threadLimit, const BlockRows& blockRows);

// Threads of the passes

/// Writes that no thread could be created to the standard error stream and aborts.
[[noreturn]] void failToCreateThread();

/// Starts a thread that runs `routine(context)`. If the system cannot provide a thread, it fails as above.
std::thread StartThread(ThreadRoutine routine, void* context);

/// Returns when the first `count` of the threads have ended.
void WaitForThreads(std::thread* handles, std::uint32_t count);

// Packing

/// Chooses the modulation of one block against the final colours around it and writes its 8 bytes. Returns the block's error, the
/// sum of squared differences over its own pixels. `blendTable` is working space. At 1 bit per pixel it writes a message and
/// aborts.
std::uint32_t PackLocalBlock(const AmtcImage& image, const BlockRows& blockRows, const AmtcLevelSettings& settings,
                             std::uint32_t row, std::uint32_t column, BlendTable& blendTable, std::uint8_t* destination);

/// The colour word of a pair that the format can hold, with the bits of the region mode. At 1 bit per pixel it writes a message
/// and aborts.
std::uint32_t packColourWord(const ColourPair& colours, std::uint32_t mode, const AmtcLevelSettings& settings);

/// Ends the process with a message if a sample of one bit has another modulation index than 0 or 3.
void requireOneBitIndex(std::uint32_t index);
/// How the pixels without samples get their weights in a region mode that has samples; any other mode ends the process with a
/// message.
ModulationClass meanClassOf(std::uint32_t mode);

}  // namespace moktexture::amtc
