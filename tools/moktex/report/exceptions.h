#pragma once

#include <exception>

namespace moktextool {

/// The message on the error stream if memory is short.
inline constexpr const char* noMemoryMessage = "moktex: not enough memory; use smaller pictures or close other programs\n";

/// Prints an exception as one line on standard error. Null stands for an exception that could not be stored for lack of
/// memory. Allocates nothing.
void printException(const std::exception_ptr& exception);

}  // namespace moktextool
