#pragma once

#include <cstdint>
#include <vector>

#include "moktc/fast/MOKTCCompressor.h"

namespace moktexture::moktc {

class MOKTCCompressorDriver;

/// One worker's job: a range of blocks, upper bounds excluded.
struct RegionTask {
    MOKTCCompressorDriver* driver;
    std::uint32_t x0, x1, y0, y1;
};

/// Runs a compressor's passes in tasks over disjoint ranges of blocks. The result does not depend on the number of threads.
class MOKTCCompressorDriver {
public:
    static constexpr std::uint32_t defaultWorkers = 64;

    /// The compressor outlives the driver and has been initialised when `run` is called. The grid is cut for `workers` tasks (1
    /// to 64), which share at most `threads` threads.
    MOKTCCompressorDriver(MOKTCCompressor& compressor, std::uint32_t threads, std::uint32_t workers = defaultWorkers);

    /// All passes.
    void run();

private:
    /// The ranges that the passes go through, row by row. All are of one size.
    std::vector<RegionTask> partition();

    MOKTCCompressor& m_compressor;
    std::uint32_t m_threads;
    std::uint32_t m_workers;
};

}  // namespace moktexture::moktc
