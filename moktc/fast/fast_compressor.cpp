#include "moktc/fast/fast_compressor.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/base/parallel.h"

// The fast compressor
//
// The format blends two upscaled images of one colour per block, by one weight per pixel. With known weights the best colours are
// a least squares problem, and with known colours the best weight of each pixel is found by trying all of them. The compressor
// alternates the two:
//
//     for each block: colours A, B = the two pixels furthest apart in and around the block     (MOKTCCompressor)
//     upscale A and B to full size
//     for each block: choose the index of each pixel, and the modulation mode                 (fast_kernels)
//     repeat 8 times
//         for each block: move A and B by a least squares fit of the residuals                 (colour_fit)
//         upscale A and B
//         for each block: choose indices and mode again
//     write all blocks, colours truncated to the bits of their fields
//
// There is no search among candidates, no best result is kept, and each pass overwrites the one before, so the loop ends after a
// fixed number of passes. The time is linear in the number of pixels; the memory is 12 bytes per pixel (the source and both
// upscaled images) and the blocks' records. The passes are divided among threads by MOKTCCompressorDriver.
//
// Two approximations make it fast: a fit treats a block's colours as if they reached only its own pixels, and it ignores
// that colours will be quantised to 3 to 5 bits when they are written.

// The passes of MOKTCCompressorDriver
//
// Each pass has two parallel phases, each of which ends before the next begins. Within a phase a task reads the images and writes
// only the records of its own blocks, so nothing is locked:
//
//     for each pass
//         for all tasks in parallel: fit the colours of the task's blocks
//         upscale both colours                                                on the caller's thread
//         for all tasks in parallel: choose the modulation of the task's blocks
//
// The partition is fixed by the grid alone. An 8 by 8 cut of a grid of 20 by 12 blocks has tasks of 2 by 1 blocks and covers the
// upper left 16 by 8 blocks:
//
//     +--+--+--+--+--+--+--+--+----+
//     |  |  |  |  |  |  |  |  |    |      8 rows of tasks
//     :  :  :  :  :  :  :  :  :    :
//     +--+--+--+--+--+--+--+--+    |
//     |                       rest |      blocks of the rest keep their start
//     +----------------------------+

namespace moktexture::moktc {
namespace {

/// Blocks that justify one more thread. A smaller value starts threads whose start costs more than the work they take over.
constexpr std::uint32_t fewestBlocksPerThread = 256;

std::unique_ptr<MOKTCCompressor> createCompressor(const ConstImageView& image, Rate rate) {
    if (rate == Rate::twoBpp) return std::make_unique<MOKTC2bppCompressor>(image, fastKernels());
    return std::make_unique<MOKTC4bppCompressor>(image, fastKernels());
}

}  // namespace

MOKTCCompressorDriver::MOKTCCompressorDriver(MOKTCCompressor& compressor, std::uint32_t threads, std::uint32_t workers)
    : m_compressor(compressor), m_threads(threads), m_workers(workers) {}

std::vector<RegionTask> MOKTCCompressorDriver::partition() {
    const std::uint32_t blocksX = m_compressor.blocksX(), blocksY = m_compressor.blocksY();
    std::uint32_t columns = static_cast<std::uint32_t>(std::sqrt(static_cast<double>(m_workers)));
    std::uint32_t rows = m_workers / columns;
    // A grid with fewer columns (rows) than the tasks is not cut in that direction, and all of its blocks there are refined.
    if (columns > blocksX) columns = 1;
    if (rows > blocksY) rows = 1;
    // Kept (remainder-is-not-refined): blocks that the divisions leave over at the right and at the bottom belong to no task and
    // keep their start colours and first modulation. Every texture encoded at quality 0 whose grid is not a multiple of 8 would
    // get other bytes.
    const std::uint32_t width = blocksX / columns, height = blocksY / rows;
    std::vector<RegionTask> tasks;
    tasks.reserve(std::size_t{columns} * rows);
    for (std::uint32_t row = 0; row < rows; ++row) {
        for (std::uint32_t column = 0; column < columns; ++column)
            tasks.push_back({this, column * width, (column + 1) * width, row * height, (row + 1) * height});
    }
    return tasks;
}

void MOKTCCompressorDriver::run() {
    const std::vector<RegionTask> tasks = partition();
    const std::uint32_t count = static_cast<std::uint32_t>(tasks.size());
    const std::uint32_t blocks = m_compressor.blocksX() * m_compressor.blocksY();
    const std::uint32_t threads = std::min(m_threads, 1 + blocks / fewestBlocksPerThread);
    const auto runPhase = [&](void (MOKTCCompressor::*update)(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t)) {
        runTasks(count, threads, [&](std::uint32_t i) {
            (tasks[i].driver->m_compressor.*update)(tasks[i].x0, tasks[i].x1, tasks[i].y0, tasks[i].y1);
        });
    };
    for (std::uint32_t pass = 0; pass < m_compressor.iterations(); ++pass) {
        runPhase(&MOKTCCompressor::updateColoursRegion);
        m_compressor.upscaleColours();
        if (m_compressor.updatesModulation(pass)) runPhase(&MOKTCCompressor::updateModulationRegion);
    }
}

bool encodeFast(const FastRequest& request, std::uint8_t* blocks) {
    if (request.image.width < blockWidth(request.rate) || request.image.height < blockHeight) return false;
    const std::unique_ptr<MOKTCCompressor> compressor = createCompressor(request.image, request.rate);
    compressor->setIterations(request.passes);
    compressor->initialise(request.wideFootprint);
    MOKTCCompressorDriver(*compressor, request.threads).run();
    compressor->writeBlocks(blocks, true);
    return true;
}

// Kept (fast-encoder-ignores-has-alpha): `hasAlpha` has no effect, so a texture in an RGB format gets translucent blocks where
// its pixels are translucent. Transcode() passes the same pixels to the RGB and the RGBA format, and both give the same bytes.
std::uint32_t CompressMOKTCFast(const void* pixels, void* out, std::uint32_t width, std::uint32_t height, bool /*hasAlpha*/,
                                bool wideFootprint, bool is2bpp, std::uint32_t iterations) {
    const Rate rate = rateOf(is2bpp);
    const FastRequest request = {packedImage(pixels, width, height), rate, wideFootprint, iterations, availableThreads()};
    return encodeFast(request, static_cast<std::uint8_t*>(out)) ? width * height * bitsPerPixel(rate) / 8 : 0;
}

}  // namespace moktexture::moktc
