#include "moktex/report/image_difference.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace moktexture;

namespace moktextool {

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

struct Sums {
    std::array<double, 4> squares{};
    std::array<double, 4> largest{};
    std::size_t pixels = 0;
};

double differenceOf(double a, double b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) return 0;
    const double difference = std::abs(a - b);
    return std::isnan(difference) ? infinite : difference;
}

template <class T>
Sums sumDifferences(const void* a, const void* b, std::size_t bytes) {
    const T* valuesA = static_cast<const T*>(a);
    const T* valuesB = static_cast<const T*>(b);
    Sums sums;
    sums.pixels = bytes / (4 * sizeof(T));
    for (std::size_t i = 0; i < sums.pixels * 4; ++i) {
        const double difference = differenceOf(static_cast<double>(valuesA[i]), static_cast<double>(valuesB[i]));
        sums.squares[i % 4] += difference * difference;
        sums.largest[i % 4] = std::max(sums.largest[i % 4], difference);
    }
    return sums;
}

ChannelDifference differenceFrom(double error, double largest, double peak) {
    return {error, error == 0 ? infinite : 10 * std::log10(peak * peak / error), largest};
}

/// The first `count` channels from `first` on, taken together.
ChannelDifference join(const Sums& sums, std::size_t first, std::size_t count, double peak) {
    double squares = 0, largest = 0;
    for (std::size_t channel = first; channel < first + count; ++channel) {
        squares += sums.squares[channel];
        largest = std::max(largest, sums.largest[channel]);
    }
    return differenceFrom(squares / static_cast<double>(sums.pixels * count), largest, peak);
}

/// Red, green and blue taken together by their weights.
ChannelDifference joinWeighted(const Sums& sums, double peak) {
    const double squares = 0.299 * sums.squares[0] + 0.587 * sums.squares[1] + 0.114 * sums.squares[2];
    return differenceFrom(squares / static_cast<double>(sums.pixels), join(sums, 0, 3, peak).largest, peak);
}

}  // namespace

double peakOf(const CMOKTextureHeader& header) {
    if (header.getChannelType() == eVarFloat) return 1;
    return header.getChannelType() == eVarUShortNorm ? 65535 : 255;
}

LevelDifference compareLevel(const CMOKTexture& a, const CMOKTexture& b, std::uint32_t level) {
    const std::size_t bytes = a.getDataSize(static_cast<int>(level));
    const double peak = peakOf(a);
    const auto sum = peak == 1     ? sumDifferences<float>
                     : peak == 255 ? sumDifferences<std::uint8_t>
                                   : sumDifferences<std::uint16_t>;
    const Sums sums = sum(a.getDataPtr(level), b.getDataPtr(level), bytes);
    LevelDifference difference{level, a.getWidth(level), a.getHeight(level), {}};
    for (std::size_t channel = 0; channel < 4; ++channel)
        difference.channels[channel] = join(sums, channel, 1, peak);
    difference.channels[4] = join(sums, 0, 3, peak);
    difference.channels[overAll] = join(sums, 0, 4, peak);
    difference.channels[overAll + 1] = joinWeighted(sums, peak);
    return difference;
}

}  // namespace moktextool
