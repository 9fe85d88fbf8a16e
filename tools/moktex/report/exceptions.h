#pragma once

#include <exception>

namespace moktextool {

/// What lack of memory is called on the error stream.
inline constexpr const char* noMemoryMessage = "moktex: not enough memory; use smaller pictures or close other programs\n";

/// Prints an exception as one line on standard error, and null as lack of memory for the exception itself. Takes no memory.
void printException(const std::exception_ptr& exception);

}  // namespace moktextool
