#include "moktex/operations/row_bands.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <mutex>
#include <thread>

using namespace moktexture;

namespace moktextool {

namespace {

/// Calls `task` with 0 to `count` - 1, on as many threads as the machine runs at once.
void runTasks(std::uint64_t count, const std::function<void(std::uint64_t)>& task) {
    std::atomic<std::uint64_t> next = 0;
    std::exception_ptr failure;
    std::mutex mutex;
    const auto work = [&] {
        try {
            for (std::uint64_t i = next++; i < count; i = next++)
                task(i);
        } catch (...) {
            next = count;
            const std::scoped_lock lock(mutex);
            if (!failure) failure = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    const std::uint64_t wanted = std::min<std::uint64_t>(count, std::max(1u, std::thread::hardware_concurrency()));
    try {
        threads.reserve(wanted);
        while (threads.size() + 1 < wanted)
            threads.emplace_back(work);
    } catch (const std::exception&) {
        // Without memory or permission for more threads, fewer do the same work.
    }
    work();
    for (std::thread& thread : threads)
        thread.join();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace

void forEachBand(const BandCut& cut, const std::function<void(const RowBand&)>& work) {
    const std::uint64_t steps = std::max<std::uint64_t>(1, cut.bandPixels / std::max(1u, cut.width) / cut.step);
    const std::uint64_t bandRows = std::min(steps * cut.step, (cut.rows + cut.step - 1) / cut.step * cut.step);
    if (bandRows == 0) return;
    runTasks((cut.rows + bandRows - 1) / bandRows, [&](std::uint64_t i) {
        const std::uint64_t first = i * bandRows;
        work({first, static_cast<std::uint32_t>(std::min(bandRows, cut.rows - first))});
    });
}

CMOKTexture makeBand(const TextureFormat& format, std::uint32_t width, std::uint32_t count, EMOKTColourSpace colourSpace,
                     bool isPremultiplied) {
    return {CMOKTextureHeader(format.pixelType.id, count, width, 1, 1, 1, 1, colourSpace, format.channelType, isPremultiplied),
            nullptr};
}

CMOKTexture gatherBand(const Image& image, std::uint32_t count, EMOKTColourSpace colourSpace,
                       const std::function<std::uint64_t(std::uint32_t)>& rowOf) {
    CMOKTexture band = makeBand(image.getFormat(), image.getSize().width, count, colourSpace);
    auto* out = static_cast<unsigned char*>(band.getDataPtr());
    for (std::uint32_t i = 0; i < count; ++i, out += image.getRowSize())
        std::memcpy(out, image.row(rowOf(i)), image.getRowSize());
    return band;
}

CMOKTexture copyBand(const Image& image, const RowBand& band, EMOKTColourSpace colourSpace) {
    return gatherBand(image, band.count, colourSpace, [&](std::uint32_t i) { return band.first + i; });
}

}  // namespace moktextool
