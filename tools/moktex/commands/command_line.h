#pragma once

#include <string>
#include <vector>

#include "moktex/report/exit_status.h"

namespace CLI {
class App;
}

namespace moktextool {

struct Console;

/// Runs the tool with the arguments behind its name. Nothing is thrown.
ExitStatus runMoktex(std::vector<std::string> arguments, Console& console);

/// @name Each adds a subcommand that, when it is called, does its work and leaves its status in `status`.
/// @{
void addConvertCommand(CLI::App& app, Console& console, ExitStatus& status);
void addInfoCommand(CLI::App& app, Console& console, ExitStatus& status);
void addCompareCommand(CLI::App& app, Console& console, ExitStatus& status);
void addFormatsCommand(CLI::App& app, Console& console, ExitStatus& status);
/// @}

}  // namespace moktextool
