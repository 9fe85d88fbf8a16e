#include "moktex/report/console.h"

#include <algorithm>
#include <new>
#include <ostream>
#include <sstream>

#include "moktex/report/exceptions.h"

namespace moktextool {

namespace {

constexpr std::size_t helpWidth = 110;

void printLine(std::ostream& err, const std::string& message) {
    err << "moktex: " << printable(message) << '\n';
}

}  // namespace

void Console::warn(const std::string& message) {
    if (printed.insert(message).second) printLine(err, message);
}

void Console::note(const std::string& message) {
    if (!quiet) warn(message);
}

ExitStatus Console::guard(const std::function<ExitStatus()>& work) {
    try {
        return work();
    } catch (const Failure& failure) {
        printLine(err, failure.what());
        return failure.status;
    } catch (const std::bad_alloc&) {
        err << noMemoryMessage;  // warn() would take memory
        return ExitStatus::workFailed;
    }
}

std::string systemReason(const std::error_code& error) {
    std::string reason = error.message();
    reason.erase(reason.find_last_not_of(".\r\n ") + 1);
    return reason;
}

std::string printable(const std::string& text) {
    std::string shown = text;
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    std::replace_if(shown.begin(), shown.end(), isControl, '?');
    return shown;
}

std::string wrappedText(const std::string& text, std::size_t indent) {
    std::istringstream words(text);
    std::string lines;
    std::size_t column = indent;
    for (std::string word; words >> word; column += word.size()) {
        if (column > indent && column + 1 + word.size() > helpWidth) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        }
        if (column > indent) lines += ' ', ++column;
        lines += word;
    }
    return lines;
}

}  // namespace moktextool
