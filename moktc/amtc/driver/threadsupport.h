#pragma once

#include <cstdint>
#include <thread>

namespace moktexture::amtc {

using ThreadRoutine = void (*)(void* context);

/// Writes that no thread could be created and ends the process.
[[noreturn]] void failToCreateThread();

/// Starts a thread that runs `routine(context)`. If the system has none to give, it fails as above.
std::thread StartThread(ThreadRoutine routine, void* context);

/// Returns when the first `count` of the threads have ended.
void WaitForThreads(std::thread* handles, std::uint32_t count);

}  // namespace moktexture::amtc
