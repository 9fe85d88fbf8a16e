#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace moktextool {

struct Console;

/// The images of a texture that are to be encoded. A surface is one face of one layer with all its MIP levels.
struct EncodingWork {
    std::uint32_t surfaces;
    std::uint32_t levels;  ///< of each surface
};

/// The progress as text: "3 of 11 levels, 12 s", after the number of surfaces if there are several.
std::string progressText(const EncodingWork& work, std::uint32_t finishedImages, std::int64_t seconds);

/// A line on the terminal that shows the progress of encoding. A thread of its own draws it after each tick; the destructor
/// erases it. Nothing is drawn without a terminal or on a quiet console.
class ProgressLine {
public:
    ProgressLine(Console& terminal, const EncodingWork& planned, std::chrono::milliseconds tick = std::chrono::seconds(1));
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// One more image is finished.
    void advance() { ++finishedImages; }

private:
    void run();
    void draw(const std::string& text);

    Console& console;
    const EncodingWork work;
    const std::chrono::milliseconds interval;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::atomic<std::uint32_t> finishedImages{0};
    std::size_t drawnLength = 0;
    std::mutex mutex;
    std::condition_variable ended;
    bool isEnded = false;
    std::thread drawer;
};

}  // namespace moktextool
