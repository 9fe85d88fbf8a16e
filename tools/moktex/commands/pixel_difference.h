#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace moktextool {

/// The differences of two sets of RGBA values, summed up, in units of the channels.
struct DifferenceSums {
    std::array<double, 4> squares{};  ///< by channel
    std::array<double, 4> largest{};
    std::uint64_t pixels = 0;

    /// Adds `count` pixels: 4 values each of `std::uint8_t`, `std::uint16_t` or `float`. Where only one of two values is NaN, the
    /// difference is infinite.
    template <class T>
    void add(const T* a, const T* b, std::uint64_t count);
};

struct ChannelDifference {
    double meanSquaredError;
    double psnr;     ///< in decibels; infinite if all values are equal
    double largest;  ///< of the absolute differences
};

/// The names of the differences: single channels, the means over three and four of them, and the mean over three with the weights
/// of luminance: 0.299, 0.587 and 0.114.
inline constexpr std::array differenceNames = {"r", "g", "b", "a", "rgb", "rgba", "weighted"};
using ChannelDifferences = std::array<ChannelDifference, differenceNames.size()>;
inline constexpr std::size_t overAll = 5;  ///< index of "rgba"

/// The differences by the order of differenceNames. Throws a Failure that names the file if one of them is not a number, for
/// example because there are no pixels.
/// @param peak  the largest value of a channel
ChannelDifferences differencesOf(const DifferenceSums& sums, double peak, const std::string& file);

}  // namespace moktextool
