#pragma once

#include <string>
#include <vector>

namespace moktextool {

struct Console;

/// Reads a file or, for "-", standard input. Looks at the first bytes and the length before the rest, so that a stream without
/// end, or a file that is far longer than its header says, is refused at once.
/// Throws a Failure that names the file if it cannot be read, is empty, or cannot be a texture or picture.
std::vector<unsigned char> readInput(const std::string& path, Console& console);

}  // namespace moktextool
