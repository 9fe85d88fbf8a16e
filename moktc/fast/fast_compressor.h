#pragma once

#include <cstdint>
#include <vector>

#include "core/base/image_view.h"
#include "moktc/block/block_variant.h"
#include "moktc/fast/MOKTCCompressor.h"

namespace moktexture::moktc {

/// One level to encode in the first generation.
struct FastRequest {
    ConstImageView image;  ///< sides are multiples of the block
    Rate rate;
    bool wideFootprint = true;  ///< 4 bpp: start colours come from twice the block's sides instead of the block alone
    /// More passes: closer fits; the time grows linearly. The encoded bytes depend on it.
    std::uint32_t passes = 8;
    std::uint32_t threads = 1;  ///< at most; the result does not depend on it
};

/// Encodes a level in twiddled order to `blocks`, 8 bytes per block. False, without writing, if the image has no whole block.
bool encodeFast(const FastRequest& request, std::uint8_t* blocks);

/// encodeFast() for `width * height` RGBA8 pixels with `iterations` passes on all processors. Returns the bytes written; 0 if the
/// image has no whole block. `hasAlpha` has no effect.
std::uint32_t CompressMOKTCFast(const void* pixels, void* out, std::uint32_t width, std::uint32_t height, bool hasAlpha,
                                bool wideFootprint, bool is2bpp, std::uint32_t iterations);

class MOKTCCompressorDriver;

/// A range of blocks for one worker, upper bounds excluded.
struct RegionTask {
    MOKTCCompressorDriver* driver;
    std::uint32_t x0, x1, y0, y1;
};

/// Runs a compressor's passes as tasks over disjoint ranges of blocks. The result does not depend on the number of threads.
class MOKTCCompressorDriver {
public:
    /// Tasks that a large grid is cut into, 8 by 8. More tasks divide the work more evenly among threads, but the blocks that the
    /// division leaves over are not refined, so the encoded bytes depend on it.
    static constexpr std::uint32_t defaultWorkers = 64;

    /// The compressor outlives the driver and is initialised before `run`. `workers` is 1 to 64; its tasks share at most
    /// `threads` threads.
    MOKTCCompressorDriver(MOKTCCompressor& compressor, std::uint32_t threads, std::uint32_t workers = defaultWorkers);

    /// All passes.
    void run();

private:
    /// Cuts the grid into tasks of equal size, row by row.
    std::vector<RegionTask> partition();

    MOKTCCompressor& m_compressor;
    std::uint32_t m_threads;
    std::uint32_t m_workers;
};

}  // namespace moktexture::moktc
