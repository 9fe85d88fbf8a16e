#pragma once

#include <cstdint>
#include <functional>

/// @file
/// The library's parallel loop. One policy holds for threads that cannot be started, because the system has none left or no
/// memory for their stacks: fewer threads share the tasks, the caller's thread at least. The result is the same, and nothing is
/// reported.

namespace moktexture {

/// Threads that this machine runs at once, at least 1.
std::uint32_t availableThreads();

/// Runs `task(0)` to `task(count - 1)` on at most `threads` threads, at most 64, the caller's among them, and returns when all
/// tasks are done. Each thread takes the next task as soon as it is free. Tasks must not throw and must not depend on each
/// other's order.
void runTasks(std::uint32_t count, std::uint32_t threads, const std::function<void(std::uint32_t)>& task);

}  // namespace moktexture
