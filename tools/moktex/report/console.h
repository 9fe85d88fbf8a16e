#pragma once

#include <functional>
#include <iosfwd>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>

namespace moktextool {

enum class ExitStatus {
    success = 0,
    commandLine = 1,   ///< wrong arguments
    inputOutput = 2,   ///< reading or writing failed
    invalidInput = 3,  ///< an input file is broken or of an unknown kind
    workFailed = 4,    ///< processing failed, for example for lack of memory
    notSupported = 5,  ///< outside what the tool, a format or a file layout can hold
    different = 7,     ///< compared, and more different than allowed
};

/// Ends the work on one file. The message is one line that names the file, the problem and the remedy.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus exitStatus, const std::string& message) : std::runtime_error(message), status(exitStatus) {}
    Failure(ExitStatus exitStatus, const std::string& file, const std::string& message)
        : Failure(exitStatus, file + ": " + message) {}

    ExitStatus status;
};

/// The streams of one run. Results go to `out`, everything else to `err`.
struct Console {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    bool quiet = false;          ///< suppresses the results of `convert`, notes and the progress line
    bool isTerminal = false;     ///< `err` is a terminal, so that a progress line can be drawn
    bool outIsTerminal = false;  ///< `out` is a terminal, which textures would only garble

    /// One line on `err`, also where `quiet` is set: what is wrong, or differs from what was asked for, so that the user must see
    /// it. A line is printed once.
    void warn(const std::string& message);
    /// One line on `err`, unless `quiet` is set: what helps, but is as it was asked for. A line is printed once.
    void note(const std::string& message);

    /// Runs `work`; a Failure or lack of memory becomes a line on `err` and a status.
    ExitStatus guard(const std::function<ExitStatus()>& work);

    std::set<std::string> printed = {};  ///< the lines of warn() and note()
};

/// The system's words for an error, without the full stop that some systems add.
std::string systemReason(const std::error_code& error);

/// `text` with control characters replaced by '?', so that it is one line and cannot control a terminal.
std::string printable(const std::string& text);

/// A help text in lines of at most 110 columns; all but the first are indented. No line break at the end.
std::string wrappedText(const std::string& text, std::size_t indent);

}  // namespace moktextool
