#include <iostream>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#else
#include <unistd.h>
#endif

#include "moktex/commands/command_line.h"
#include "moktex/report/console.h"

namespace {

bool isErrorStreamATerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

}  // namespace

int main(int argc, char** argv) {
#ifdef _WIN32
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    moktextool::Console console{std::cin, std::cout, std::cerr, false, isErrorStreamATerminal()};
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    moktextool::ExitStatus status = moktextool::runMoktex(arguments, console);
    if (!std::cout.flush() && status == moktextool::ExitStatus::success) {
        console.warn("standard output: writing failed; check what reads it");
        status = moktextool::ExitStatus::inputOutput;
    }
    return static_cast<int>(status);
}
