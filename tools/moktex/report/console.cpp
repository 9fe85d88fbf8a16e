#include "moktex/report/console.h"

#include <algorithm>
#include <new>
#include <ostream>

namespace moktextool {

void Console::warn(const std::string& message) {
    err << "moktex: " << printable(message) << '\n';
}

void Console::note(const std::string& message) {
    if (!quiet) warn(message);
}

ExitStatus Console::guard(const std::function<ExitStatus()>& work) {
    try {
        return work();
    } catch (const Failure& failure) {
        warn(failure.what());
        return failure.status;
    } catch (const std::bad_alloc&) {
        warn("not enough memory; use smaller pictures or close other programs");
        return ExitStatus::workFailed;
    }
}

std::string printable(const std::string& text) {
    std::string shown = text;
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    std::replace_if(shown.begin(), shown.end(), isControl, '?');
    return shown;
}

}  // namespace moktextool
