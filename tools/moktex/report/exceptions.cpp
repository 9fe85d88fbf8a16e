#include "moktex/report/exceptions.h"

#include <cstdio>
#include <new>

namespace moktextool {

void printException(const std::exception_ptr& exception) {
    // Standard error has no buffer, so that this takes no memory.
    if (!exception) {
        std::fputs(noMemoryMessage, stderr);
        return;
    }
    try {
        std::rethrow_exception(exception);
    } catch (const std::bad_alloc&) {
        std::fputs(noMemoryMessage, stderr);
    } catch (const std::exception& error) {
        std::fputs("moktex: unexpected error: ", stderr);
        std::fputs(error.what(), stderr);
        std::fputs("; please report it\n", stderr);
    } catch (...) {
        std::fputs("moktex: unexpected error; please report it\n", stderr);
    }
}

}  // namespace moktextool
