#include "moktc/fast/MOKTCCompressorDriver.h"

#include <algorithm>
#include <cmath>

#include "core/base/parallel.h"

namespace moktexture::moktc {
namespace {

/// Fewer blocks than this are done sooner than a thread is started.
constexpr std::uint32_t fewestBlocksPerThread = 256;

}  // namespace

MOKTCCompressorDriver::MOKTCCompressorDriver(MOKTCCompressor& compressor, std::uint32_t threads, std::uint32_t workers)
    : m_compressor(compressor), m_threads(threads), m_workers(workers) {}

std::vector<RegionTask> MOKTCCompressorDriver::partition() {
    const std::uint32_t blocksX = m_compressor.blocksX(), blocksY = m_compressor.blocksY();
    std::uint32_t columns = static_cast<std::uint32_t>(std::sqrt(static_cast<double>(m_workers)));
    std::uint32_t rows = m_workers / columns;
    // A grid of fewer columns or rows than the tasks want is not cut in that direction: all of its blocks are refined.
    if (columns > blocksX) columns = 1;
    if (rows > blocksY) rows = 1;
    // Kept: what the divisions leave over is no task's. Blocks beyond the last whole task at the right and at the bottom keep
    // their start colours and first modulation; the bytes of every texture with such sides rest on it.
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
        if (m_compressor.renewsModulation(pass)) runPhase(&MOKTCCompressor::updateModulationRegion);
    }
}

}  // namespace moktexture::moktc
