#pragma once

#include <cstdint>
#include <thread>

#include "core/base/parallel.h"

namespace moktexture::amtc {

/// Writes that no thread could be created to the standard error stream and aborts.
[[noreturn]] void failToCreateThread();

/// Starts a thread that runs `routine(context)`. If the system cannot provide a thread, it fails as above.
std::thread StartThread(ThreadRoutine routine, void* context);

/// Returns when the first `count` of the threads have ended.
void WaitForThreads(std::thread* handles, std::uint32_t count);

}  // namespace moktexture::amtc
