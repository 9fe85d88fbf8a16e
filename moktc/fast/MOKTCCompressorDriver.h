#pragma once

#include <cstdint>
#include <vector>

#include "moktc/fast/MOKTCCompressor.h"

namespace moktexture::moktc {

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
