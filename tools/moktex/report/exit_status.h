#pragma once

#include <stdexcept>
#include <string>

namespace moktextool {

enum class ExitStatus {
    success = 0,
    commandLine = 1,   ///< the arguments make no sense
    inputOutput = 2,   ///< reading or writing failed
    invalidInput = 3,  ///< an input file is broken or of no known kind
    workFailed = 4,    ///< the work itself failed, for want of memory for one
    notSupported = 5,  ///< a form that the tool or the format cannot hold
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

}  // namespace moktextool
