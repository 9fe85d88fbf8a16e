#pragma once

#include <string>
#include <vector>

#include "moktex/report/console.h"

namespace moktextool {

/// Runs the tool with the arguments that follow its name. Never throws.
ExitStatus runMoktex(const std::vector<std::string>& arguments, Console& console);

}  // namespace moktextool
