#include "moktex/commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "moktex/operations/operation_options.h"
#include "moktex/report/console.h"

namespace moktextool {

namespace {

constexpr const char* exitStatuses =
    "\nExit status: 0 success, 1 command line, 2 reading or writing failed, 3 invalid input file,\n"
    "4 failure while working, 5 not supported, 7 compared and different.\n"
    "'moktex COMMAND --help' explains a command, with examples.";

/// Gives `-m`, `--mips` and `--mipmaps` without a number one of their own, so that they do not swallow the argument behind them.
void settleMipmaps(std::vector<std::string>& arguments) {
    for (std::size_t i = 0; i < arguments.size() && arguments[i] != "--"; ++i) {
        std::string& argument = arguments[i];
        if (argument.starts_with("-m=")) argument = "--mipmaps=" + argument.substr(3);
        if (argument != "-m" && argument != "--mipmaps" && argument != "--mips") continue;
        const std::string next = i + 1 < arguments.size() ? arguments[i + 1] : "";
        const bool hasNumber = !next.empty() && next.find_first_not_of("0123456789") == std::string::npos;
        if (!hasNumber) argument = "--mipmaps=all";
    }
}

std::string oneLine(const CLI::App* app, const CLI::Error& error) {
    const CLI::App* command = app->get_subcommands().empty() ? app : app->get_subcommands().front();
    const std::string name = command == app ? "moktex" : "moktex " + command->get_name();
    return "moktex: " + printable(error.what()) + "; see '" + name + " --help'\n";
}

}  // namespace

ExitStatus runMoktex(std::vector<std::string> arguments, Console& console) {
    ExitStatus status = ExitStatus::success;
    CLI::App app("Makes, inspects and compares GPU textures.", "moktex");
    app.require_subcommand(1);
    app.set_version_flag("--version", "moktex " MOKTEX_VERSION);
    app.footer("Operations of 'moktex convert', in the order in which they are given:\n" + operationHelp() + exitStatuses);
    app.failure_message(oneLine);
    addConvertCommand(app, console, status);
    addInfoCommand(app, console, status);
    addCompareCommand(app, console, status);
    addFormatsCommand(app, console, status);

    settleMipmaps(arguments);
    std::reverse(arguments.begin(), arguments.end());
    return console.guard([&] {
        try {
            app.parse(arguments);
        } catch (const CLI::ParseError& error) {
            return app.exit(error, console.out, console.err) == 0 ? ExitStatus::success : ExitStatus::commandLine;
        }
        return status;
    });
}

}  // namespace moktextool
