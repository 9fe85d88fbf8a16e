#include "moktc/amtc/driver/threadsupport.h"

#include <cstdio>
#include <cstdlib>

namespace moktexture::amtc {

void failToCreateThread() {
    // Kept (thread-message-names-fixed-line): scripts that search encoder logs match the whole line, with this file and number.
    std::fprintf(stderr, "%s at \"%s\":%d\n", "Create thread", "threadsupport.cpp", 85);
    std::abort();
}

std::thread StartThread(ThreadRoutine routine, void* context) {
    std::thread thread = startThread(routine, context);
    if (!thread.joinable()) failToCreateThread();
    return thread;
}

void WaitForThreads(std::thread* handles, std::uint32_t count) {
    joinThreads(handles, count);
}

}  // namespace moktexture::amtc
