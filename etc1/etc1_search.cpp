#include "etc1/etc1_search.h"

#include <algorithm>

namespace moktexture::etc1 {

CodeBox boxAround(const Codes& centre, int radius) {
    CodeBox box{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        box.first[channel] = std::max(centre[channel] - radius, 0);
        box.last[channel] = std::min(centre[channel] + radius, 31);
    }
    return box;
}

bool isDifferentialSearched(const std::array<Codes, 2>& averages, int radius) {
    const int least = leastDelta - radius, greatest = greatestDelta + radius;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int delta = averages[1][channel] - averages[0][channel];
        if (delta < least || delta > greatest) return false;
    }
    return true;
}

}  // namespace moktexture::etc1
