#pragma once

#include <cstdint>
#include <functional>
#include <thread>

/// @file
/// The library's parallel loop. One policy holds for threads that cannot be started, because the system has none left or no
/// memory for their stacks: fewer threads share the tasks, the caller's thread at least. The result is the same, and nothing is
/// reported. Only the slow encoder passes thread functions of its own, whose failure ends the process.

namespace moktexture {

/// Threads that this machine runs at once, at least 1.
std::uint32_t availableThreads();

using ThreadRoutine = void (*)(void* context);

/// How runTasks() starts its helper threads and waits for them.
struct ThreadFunctions {
    std::thread (*start)(ThreadRoutine routine, void* context);  ///< not joinable if the system cannot provide a thread
    void (*wait)(std::thread* threads, std::uint32_t count);
};

/// Starts a thread that runs `routine(context)`. Not joinable if the system cannot provide a thread.
std::thread startThread(ThreadRoutine routine, void* context);
/// Returns when the first `count` of the threads have ended.
void joinThreads(std::thread* threads, std::uint32_t count);

/// Runs `task(0)` to `task(count - 1)` on at most `threads` threads, at most 64, the caller's among them, and returns when all
/// tasks are done. Each thread takes the next task as soon as it is free. Tasks must not throw and must not depend on each
/// other's order.
void runTasks(std::uint32_t count, std::uint32_t threads, const std::function<void(std::uint32_t)>& task,
              const ThreadFunctions& functions = {startThread, joinThreads});

}  // namespace moktexture
