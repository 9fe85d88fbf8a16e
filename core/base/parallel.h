#pragma once

#include <cstdint>
#include <functional>

namespace moktexture {

/// Threads that this machine runs at once, at least 1.
std::uint32_t availableThreads();

/// Runs `task(0)` to `task(count - 1)` on at most `threads` threads, the caller's among them, and returns when all are done.
/// Tasks must not throw nor depend on each other's order. Where a thread cannot be started, fewer share the tasks.
void runTasks(std::uint32_t count, std::uint32_t threads, const std::function<void(std::uint32_t)>& task);

}  // namespace moktexture
