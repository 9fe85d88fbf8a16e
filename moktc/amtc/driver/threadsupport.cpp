#include "moktc/amtc/driver/threadsupport.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <system_error>

namespace moktexture::amtc {

void failToCreateThread() {
    // Kept: file and line are those that logs of this message have always named.
    std::fprintf(stderr, "%s at \"%s\":%d\n", "Create thread", "threadsupport.cpp", 85);
    std::abort();
}

std::thread StartThread(ThreadRoutine routine, void* context) {
    try {
        // A lambda, as its type is hidden: pointers as arguments would make visible symbols of std::thread.
        return std::thread([routine, context] { routine(context); });
    } catch (const std::system_error&) {
        failToCreateThread();
    } catch (const std::bad_alloc&) {
        failToCreateThread();
    }
}

void WaitForThreads(std::thread* handles, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i)
        handles[i].join();
}

}  // namespace moktexture::amtc
