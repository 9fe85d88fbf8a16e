#include "quality_names.h"

#include <array>

#include "exit_status.h"

namespace moktextool {

moktexture::ECompressorQuality parseQuality(const std::string& text) {
    static constexpr std::array names = {"fastest", "fast", "medium", "thorough", "verythorough", "exhaustive"};
    for (unsigned int quality = 0; quality < names.size(); ++quality) {
        if (text == names[quality] || text == std::to_string(quality))
            return static_cast<moktexture::ECompressorQuality>(quality);
    }
    throw Failure(ExitStatus::commandLine, "--quality " + text + ": no such quality; use " + qualityHelp);
}

}  // namespace moktextool
