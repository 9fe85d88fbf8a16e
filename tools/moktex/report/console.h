#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "moktex/report/exit_status.h"

namespace moktextool {

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
