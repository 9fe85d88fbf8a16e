#include "moktex/commands/pixel_difference.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "moktex/report/console.h"

namespace moktextool {

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

double differenceOf(double a, double b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) return 0;
    const double difference = std::abs(a - b);
    return std::isnan(difference) ? infinite : difference;
}

ChannelDifference differenceFrom(double error, double largest, double peak) {
    return {error, error == 0 ? infinite : 10 * std::log10(peak * peak / error), largest};
}

/// The first `count` channels from `first` on, taken together.
ChannelDifference join(const DifferenceSums& sums, std::size_t first, std::size_t count, double peak) {
    double squares = 0, largest = 0;
    for (std::size_t channel = first; channel < first + count; ++channel) {
        squares += sums.squares[channel];
        largest = std::max(largest, sums.largest[channel]);
    }
    return differenceFrom(squares / (static_cast<double>(sums.pixels) * static_cast<double>(count)), largest, peak);
}

/// Red, green and blue together, with the weights of luminance.
ChannelDifference joinWeighted(const DifferenceSums& sums, double peak) {
    const double squares = 0.299 * sums.squares[0] + 0.587 * sums.squares[1] + 0.114 * sums.squares[2];
    return differenceFrom(squares / static_cast<double>(sums.pixels), join(sums, 0, 3, peak).largest, peak);
}

}  // namespace

template <class T>
void DifferenceSums::add(const T* a, const T* b, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count * 4; ++i) {
        const double difference = differenceOf(static_cast<double>(a[i]), static_cast<double>(b[i]));
        squares[i % 4] += difference * difference;
        largest[i % 4] = std::max(largest[i % 4], difference);
    }
    pixels += count;
}

template void DifferenceSums::add(const std::uint8_t*, const std::uint8_t*, std::uint64_t);
template void DifferenceSums::add(const std::uint16_t*, const std::uint16_t*, std::uint64_t);
template void DifferenceSums::add(const float*, const float*, std::uint64_t);

ChannelDifferences differencesOf(const DifferenceSums& sums, double peak, const std::string& file) {
    ChannelDifferences differences{};
    for (std::size_t channel = 0; channel < 4; ++channel)
        differences[channel] = join(sums, channel, 1, peak);
    differences[overAll - 1] = join(sums, 0, 3, peak);
    differences[overAll] = join(sums, 0, 4, peak);
    differences[overAll + 1] = joinWeighted(sums, peak);
    const auto isNotANumber = [](const ChannelDifference& each) {
        return std::isnan(each.meanSquaredError) || std::isnan(each.psnr);
    };
    if (sums.pixels == 0 || std::any_of(differences.begin(), differences.end(), isNotANumber))
        throw Failure(ExitStatus::workFailed, file,
                      "the difference cannot be computed; check that both files have pixels and no NaN");
    return differences;
}

}  // namespace moktextool
