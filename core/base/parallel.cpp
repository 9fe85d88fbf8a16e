#include "core/base/parallel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <new>
#include <system_error>

namespace moktexture {
namespace {

/// Threads beside the caller's. More would help only machines with more processors, and cost a larger array here.
constexpr std::uint32_t maxHelpers = 63;

/// The tasks of one call, handed out one by one to free threads.
struct SharedTasks {
    const std::function<void(std::uint32_t)>& task;
    const std::uint32_t count;
    std::atomic<std::uint32_t> next = 0;
};

void runSharedTasks(void* context) {
    auto& tasks = *static_cast<SharedTasks*>(context);
    for (std::uint32_t i = tasks.next++; i < tasks.count; i = tasks.next++)
        tasks.task(i);
}

}  // namespace

std::uint32_t availableThreads() {
    return std::max(std::thread::hardware_concurrency(), 1u);
}

std::thread startThread(ThreadRoutine routine, void* context) {
    try {
        // A lambda's type is local to this file; passing pointers would instantiate visible symbols of std::thread.
        return std::thread([routine, context] { routine(context); });
    } catch (const std::system_error&) {
        return {};
    } catch (const std::bad_alloc&) {
        return {};
    }
}

void joinThreads(std::thread* threads, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i)
        threads[i].join();
}

void runTasks(std::uint32_t count, std::uint32_t threads, const std::function<void(std::uint32_t)>& task,
              const ThreadFunctions& functions) {
    SharedTasks tasks = {task, count};
    std::array<std::thread, maxHelpers> helpers;
    const std::uint32_t wanted = std::min({threads, count, maxHelpers + 1});
    std::uint32_t started = 0;
    while (started + 1 < wanted) {
        helpers[started] = functions.start(runSharedTasks, &tasks);
        if (!helpers[started].joinable()) break;
        ++started;
    }
    runSharedTasks(&tasks);
    functions.wait(helpers.data(), started);
}

}  // namespace moktexture
