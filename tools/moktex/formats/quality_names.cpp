#include "moktex/formats/quality_names.h"

#include <array>

#include "moktex/report/exit_status.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr std::array names = {"fastest", "fast", "medium", "thorough", "verythorough", "exhaustive"};

/// ETC1's efforts by name. Even numbers measure errors in a way that spoils some dark blocks, so names take the odd ones.
constexpr std::array<unsigned int, names.size()> namedETC1 = {1, 1, 3, 3, 5, 5};

constexpr ECompressorQuality usualQuality = eCompressorQuality3;

}  // namespace

Quality parseQuality(const std::string& text) {
    for (unsigned int step = 0; step < names.size(); ++step) {
        if (text == names[step] || text == std::to_string(step)) return {step, text == names[step]};
    }
    throw Failure(ExitStatus::commandLine, "--quality " + text + ": no such quality; use " + qualityHelp);
}

ECompressorQuality encoderQuality(const std::optional<Quality>& quality, PixelType format) {
    if (!quality) return usualQuality;
    const bool isNamedETC1 = quality->isNamed && format.id == eFmtETC1;
    return static_cast<ECompressorQuality>(isNamedETC1 ? namedETC1[quality->step] : quality->step);
}

}  // namespace moktextool
