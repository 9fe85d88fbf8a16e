// A signal may arrive in any thread at any time. Its handler removes every registered file and ends the process, by calls alone
// that are allowed in a handler. Creating a file and registering it must look like one step to the handler:
//
//   thread                                  handler, maybe in another thread
//     block signals in this thread            isEnding = true
//     ++delays                                wait until delays is 0
//     if isEnding: --delays, sleep for ever   remove the registered files
//     create, register                        end the process
//     --delays, unblock
//
// Either the thread sees isEnding and creates nothing, or the handler sees the delay and waits for the registration.

#include "moktex/files/interruption.h"

#include <array>
#include <atomic>

#include "moktex/report/console.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sched.h>
#include <unistd.h>
#endif

namespace moktextool {

namespace {

using PathCharacter = std::filesystem::path::value_type;

/// More files than the tool ever writes at a time.
std::array<std::atomic<const PathCharacter*>, 64> unfinished{};
std::atomic<int> delays{0};
std::atomic<bool> isEnding{false};
static_assert(std::atomic<const PathCharacter*>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void giveWay() {
#ifdef _WIN32
    Sleep(1);
#else
    sched_yield();
#endif
}

#ifdef _WIN32
/// Runs in a thread of its own. The next handler, that of the system, ends the process.
BOOL WINAPI onInterruption(DWORD) {
    removeUnfinishedFiles();
    return FALSE;
}
#else
constexpr int interruptions[] = {SIGINT, SIGTERM, SIGHUP};

/// The signal's default action, restored on entry, ends the process when the handler returns.
void onInterruption(int signal) {
    removeUnfinishedFiles();
    raise(signal);
}

/// The library ends the process where it cannot start the threads that it needs.
void onAbort(int) {
    constexpr char message[] = "moktex: the work cannot go on, most likely for lack of memory or threads; close other programs\n";
    removeUnfinishedFiles();
    const bool isPrinted = write(STDERR_FILENO, message, sizeof message - 1) > 0;
    _exit(static_cast<int>(isPrinted ? ExitStatus::workFailed : ExitStatus::inputOutput));
}
#endif

}  // namespace

void removeUnfinishedFiles() {
    isEnding = true;
    while (delays != 0)
        giveWay();
    for (const auto& slot : unfinished) {
        const PathCharacter* path = slot;
        if (path == nullptr) continue;
#ifdef _WIN32
        DeleteFileW(path);
#else
        unlink(path);
#endif
    }
}

#ifdef _WIN32

void handleInterruption() {
    SetConsoleCtrlHandler(onInterruption, TRUE);
}

#else

void handleInterruption() {
    struct sigaction action = {};
    sigfillset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    action.sa_handler = onInterruption;
    for (const int signal : interruptions) {
        struct sigaction previous = {};
        if (sigaction(signal, nullptr, &previous) == 0 && previous.sa_handler == SIG_DFL) sigaction(signal, &action, nullptr);
    }
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGABRT, onAbort);
}

#endif

InterruptionDelay::InterruptionDelay() {
#ifndef _WIN32
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previousMask);
#endif
    ++delays;
    if (!isEnding) return;
    --delays;
    for (;;)
        giveWay();
}

InterruptionDelay::~InterruptionDelay() {
    --delays;
#ifndef _WIN32
    pthread_sigmask(SIG_SETMASK, &previousMask, nullptr);
#endif
}

std::size_t registerFile(const std::filesystem::path& path) {
    for (std::size_t i = 0; i < unfinished.size(); ++i) {
        const PathCharacter* empty = nullptr;
        if (unfinished[i].compare_exchange_strong(empty, path.c_str())) return i;
    }
    return unfinished.size();
}

void unregisterFile(std::size_t registration) {
    if (registration < unfinished.size()) unfinished[registration] = nullptr;
}

}  // namespace moktextool
