#include "core/base/parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>

namespace moktexture {
namespace {

/// Threads beside the caller's. More would help only machines with more processors, and cost a larger array here.
constexpr std::uint32_t mostHelpers = 63;

/// False if the thread cannot be started.
template <class Work>
bool start(std::jthread& helper, const Work& work) {
    try {
        helper = std::jthread(std::ref(work));
        return true;
    } catch (const std::system_error&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace

std::uint32_t availableThreads() {
    return std::max(std::thread::hardware_concurrency(), 1u);
}

void runTasks(std::uint32_t count, std::uint32_t threads, const std::function<void(std::uint32_t)>& task) {
    std::atomic<std::uint32_t> next = 0;
    const auto work = [&] {
        for (std::uint32_t i = next++; i < count; i = next++)
            task(i);
    };
    std::array<std::jthread, mostHelpers> helpers;  // joined on the way out
    const std::uint32_t wanted = std::min({threads, count, mostHelpers + 1});
    for (std::uint32_t i = 1; i < wanted; ++i) {
        if (!start(helpers[i - 1], work)) break;
    }
    work();
}

}  // namespace moktexture
