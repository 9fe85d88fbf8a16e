#include "moktex/report/ProgressLine.h"

#include <algorithm>
#include <ostream>
#include <system_error>

#include "moktex/report/console.h"

namespace moktextool {

namespace {

std::string countText(std::uint32_t finished, std::uint32_t all, const char* what) {
    return std::to_string(finished) + " of " + std::to_string(all) + ' ' + what + (all == 1 ? "" : "s");
}

}  // namespace

std::string progressText(const EncodingWork& work, std::uint32_t finishedImages, std::int64_t seconds) {
    std::string text;
    if (work.surfaces > 1) text = countText(finishedImages / work.levels, work.surfaces, "surface") + ", ";
    const std::uint32_t levels = finishedImages == work.surfaces * work.levels ? work.levels : finishedImages % work.levels;
    return text + countText(levels, work.levels, "level") + ", " + std::to_string(seconds) + " s";
}

ProgressLine::ProgressLine(Console& terminal, const EncodingWork& planned, std::chrono::milliseconds tick)
    : console(terminal), work(planned), interval(tick) {
    if (!console.isTerminal || console.quiet) return;
    try {
        drawer = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        // The progress line is optional.
    }
}

ProgressLine::~ProgressLine() {
    if (!drawer.joinable()) return;
    {
        const std::scoped_lock lock(mutex);
        isEnded = true;
    }
    ended.notify_one();
    drawer.join();
}

void ProgressLine::run() {
    std::unique_lock lock(mutex);
    while (!ended.wait_for(lock, interval, [this] { return isEnded; })) {
        const auto elapsed = std::chrono::steady_clock::now() - start;
        draw("moktex: " + progressText(work, finishedImages, std::chrono::duration_cast<std::chrono::seconds>(elapsed).count()));
    }
    if (drawnLength == 0) return;
    console.err << '\r' + std::string(drawnLength, ' ') + '\r' << std::flush;
}

/// Overwrites the line drawn before.
void ProgressLine::draw(const std::string& text) {
    const std::size_t rest = drawnLength - std::min(drawnLength, text.size());
    console.err << '\r' + text + std::string(rest, ' ') << std::flush;
    drawnLength = text.size();
}

}  // namespace moktextool
