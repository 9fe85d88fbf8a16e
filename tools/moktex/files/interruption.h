#pragma once

#include <csignal>
#include <cstddef>
#include <filesystem>

/// @file
/// Removes unfinished files when the process is interrupted.

namespace moktextool {

/// Makes interruption (Ctrl-C, SIGINT, SIGTERM, SIGHUP) remove all registered files before it ends the process as it would have
/// done anyway; a signal that the process was started to ignore stays ignored. Writing beyond the limit of file size becomes an
/// error of that write. To be called once, by the program's entry.
void handleInterruption();

/// Removes all registered files; allowed in a signal handler. Nothing may be registered after it.
void removeUnfinishedFiles();

/// While one exists, an interruption waits, so that a file is created and registered, or forgotten, as one step. Not nestable.
class InterruptionDelay {
public:
    InterruptionDelay();
    ~InterruptionDelay();
    InterruptionDelay(const InterruptionDelay&) = delete;
    InterruptionDelay& operator=(const InterruptionDelay&) = delete;

private:
#ifndef _WIN32
    sigset_t previousMask;
#endif
};

/// Registers a path that stays unchanged in memory until it is unregistered. Needs an InterruptionDelay.
/// @return what unregisterFile() takes
std::size_t registerFile(const std::filesystem::path& path);
void unregisterFile(std::size_t registration);

}  // namespace moktextool
