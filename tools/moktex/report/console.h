#pragma once

#include <functional>
#include <iosfwd>
#include <stdexcept>
#include <string>

namespace moktextool {

enum class ExitStatus {
    success = 0,
    commandLine = 1,   ///< the arguments make no sense
    inputOutput = 2,   ///< reading or writing failed
    invalidInput = 3,  ///< an input file is broken or of no known kind
    workFailed = 4,    ///< the work itself failed, for want of memory for one
    notSupported = 5,  ///< a format that the tool or the format cannot hold
    different = 7,     ///< compared, and different by more than was allowed
};

/// Ends the work on one file. The message is one line: what is wrong, with which file, and what to do about it.
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
    bool quiet = false;       ///< leave out results of `convert`, notes and the progress of long work
    bool isTerminal = false;  ///< `err` is one, where a line can be drawn over

    /// One line on `err` that nothing silences.
    void warn(const std::string& message);
    /// One line on `err`, unless quiet.
    void note(const std::string& message);

    /// Runs a piece of work and turns what it throws into a line on `err` and a status.
    ExitStatus guard(const std::function<ExitStatus()>& work);
};

/// `text` without bytes that would move a terminal's cursor or break the line: those become '?'.
std::string printable(const std::string& text);

}  // namespace moktextool
