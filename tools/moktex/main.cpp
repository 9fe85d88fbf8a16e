#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

#include "moktex/commands/command_line.h"
#include "moktex/files/interruption.h"
#include "moktex/report/console.h"
#include "moktex/report/exceptions.h"

namespace {

using moktextool::ExitStatus;

bool isTerminal(int descriptor) {
#ifdef _WIN32
    return _isatty(descriptor) != 0;
#else
    return isatty(descriptor) != 0;
#endif
}

ExitStatus run(int argc, char** argv) {
    moktextool::Console console{std::cin, std::cout, std::cerr, false, isTerminal(2)};
    console.outIsTerminal = isTerminal(1);
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const ExitStatus status = moktextool::runMoktex(arguments, console);
    if (std::cout.flush() || status != ExitStatus::success) return status;
    console.warn("standard output: writing failed; check what reads it");
    return ExitStatus::inputOutput;
}

/// For exceptions outside main(): in a thread, before main(), or where there was no memory for the exception itself.
[[noreturn]] void onTerminate() {
    moktextool::printException(std::current_exception());
    moktextool::removeUnfinishedFiles();
    std::_Exit(static_cast<int>(ExitStatus::workFailed));
}

/// Runs before the dynamic initialisation of other files.
[[gnu::constructor(101)]] void installTerminateHandler() {
    std::set_terminate(onTerminate);
}

}  // namespace

int main(int argc, char** argv) {
#ifdef _WIN32
    _setmode(0, _O_BINARY);
    _setmode(1, _O_BINARY);
#endif
    moktextool::handleInterruption();
    try {
        return static_cast<int>(run(argc, argv));
    } catch (...) {
        moktextool::printException(std::current_exception());
        return static_cast<int>(ExitStatus::workFailed);
    }
}
