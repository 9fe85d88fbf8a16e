#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <limits>
#include <nlohmann/json.hpp>
#include <ostream>

#include "moktex/commands/commands.h"
#include "moktex/files/texture_file.h"
#include "moktex/formats/format_names.h"
#include "moktex/report/console.h"

using namespace moktexture;
using Json = nlohmann::ordered_json;

namespace moktextool {

namespace {

/// The difference of two sets of values, in units of the channels: 0 to peakOf().
struct ChannelDifference {
    double meanSquaredError;
    double psnr;     ///< in decibels; infinite if all values are equal
    double largest;  ///< of the absolute differences
};

/// The entries of LevelDifference::channels: single channels, the means over three and four of them, and the mean over three
/// weighted as the eye sees them: 0.299, 0.587 and 0.114.
constexpr std::array differenceNames = {"r", "g", "b", "a", "rgb", "rgba", "weighted"};
constexpr std::size_t overAll = 5;

struct LevelDifference {
    std::uint32_t level, width, height;
    std::array<ChannelDifference, differenceNames.size()> channels;
};

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

/// Red, green and blue together, weighted.
ChannelDifference joinWeighted(const Sums& sums, double peak) {
    const double squares = 0.299 * sums.squares[0] + 0.587 * sums.squares[1] + 0.114 * sums.squares[2];
    return differenceFrom(squares / static_cast<double>(sums.pixels), join(sums, 0, 3, peak).largest, peak);
}

/// The largest value of a channel: 255, 65535, or 1 for floats.
double peakOf(const CMOKTextureHeader& header) {
    if (header.getChannelType() == eVarFloat) return 1;
    return header.getChannelType() == eVarUShortNorm ? 65535 : 255;
}

/// Compares one MIP level, with all its layers, faces and slices, of two textures of equal size in the same format: RGBA8, RGBA16
/// or float RGBA. Where only one of two values is NaN, the difference is infinite.
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

std::string sizeText(const CMOKTextureHeader& header) {
    return std::to_string(header.getWidth()) + " x " + std::to_string(header.getHeight()) + " x " +
           std::to_string(header.getDepth()) + ", " + std::to_string(header.getNumArrayMembers()) + " layers, " +
           std::to_string(header.getNumFaces()) + " faces";
}

void requireEqualSize(const CMOKTextureHeader& a, const CMOKTextureHeader& b, const CompareArguments& arguments) {
    if (sizeText(a) == sizeText(b)) return;
    throw Failure(ExitStatus::different, arguments.b,
                  "is " + sizeText(b) + ", and " + arguments.a + " is " + sizeText(a) +
                      "; compare equal sizes, 'moktex convert --resize' helps");
}

/// 8 bits, unless both textures have more; then floats if either is float or wider than 16 bits, else 16 bits.
TextureFormat commonFormat(const TextureFormat& a, const TextureFormat& b) {
    const auto isFloat = [](const TextureFormat& format) {
        return !isCompressed(format.pixelType) && format.channelType == eVarFloat;
    };
    const auto isWide = [&](const TextureFormat& format) { return isFloat(format) || widestChannel(format) > 8; };
    if (!isWide(a) || !isWide(b)) return rgba8Format;
    const bool needsFloat = isFloat(a) || isFloat(b) || widestChannel(a) > 16 || widestChannel(b) > 16;
    return needsFloat ? rgbaFloatFormat : rgba16Format;
}

/// Both textures in one format, with the stored values: no curve is applied.
struct ComparedPair {
    CMOKTexture a, b;
    std::uint32_t levels;
};

ComparedPair loadPair(const CompareArguments& arguments, Console& console) {
    ComparedPair pair{readTexture(arguments.a, console).texture, readTexture(arguments.b, console).texture, 1};
    requireEqualSize(pair.a, pair.b, arguments);
    requireDecodable(formatOf(pair.a), arguments.a);
    requireDecodable(formatOf(pair.b), arguments.b);
    if (pair.a.getColourSpace() != pair.b.getColourSpace())
        console.note(arguments.a + " is " + nameOf(pair.a.getColourSpace()) + ", " + arguments.b + " is " +
                     nameOf(pair.b.getColourSpace()) + "; the values are compared as they are stored");
    if (arguments.levels) pair.levels = std::min(pair.a.getNumMIPLevels(), pair.b.getNumMIPLevels());
    if (arguments.levels && pair.a.getNumMIPLevels() != pair.b.getNumMIPLevels())
        console.note("the numbers of levels differ; the first " + std::to_string(pair.levels) + " are compared");
    const TextureFormat format = commonFormat(formatOf(pair.a), formatOf(pair.b));
    changeFormat(pair.a, {format, pair.a.getColourSpace()}, arguments.a, console);
    changeFormat(pair.b, {format, pair.b.getColourSpace()}, arguments.b, console);
    return pair;
}

void printLevel(const LevelDifference& level, std::ostream& out) {
    out << "level " << level.level << ": " << level.width << " x " << level.height << '\n'
        << "  channel           MSE   PSNR [dB]     largest\n";
    for (std::size_t i = 0; i < differenceNames.size(); ++i) {
        const ChannelDifference& channel = level.channels[i];
        out << "  " << std::left << std::setw(8) << differenceNames[i] << std::right << std::setprecision(6) << std::defaultfloat
            << std::setw(13) << channel.meanSquaredError << std::setw(12);
        if (std::isinf(channel.psnr))
            out << (channel.psnr > 0 ? "inf" : "-inf");
        else
            out << std::fixed << std::setprecision(2) << channel.psnr << std::defaultfloat << std::setprecision(6);
        out << std::setw(12) << channel.largest << '\n';
    }
}

/// Infinite numbers are null in JSON.
Json levelJson(const LevelDifference& level) {
    Json channels;
    for (std::size_t i = 0; i < differenceNames.size(); ++i) {
        const ChannelDifference& channel = level.channels[i];
        channels[differenceNames[i]] = {{"mse", channel.meanSquaredError}, {"psnr", channel.psnr}, {"largest", channel.largest}};
    }
    return {{"level", level.level}, {"width", level.width}, {"height", level.height}, {"channels", channels}};
}

}  // namespace

ExitStatus runCompare(const CompareArguments& arguments, Console& console) {
    const ComparedPair pair = loadPair(arguments, console);
    const double peak = peakOf(pair.a);
    Json json = {{"a", displayName(arguments.a)}, {"b", displayName(arguments.b)}, {"peak", peak}, {"levels", Json::array()}};
    double worst = std::numeric_limits<double>::infinity();
    bool equal = true;
    if (!arguments.json) console.out << "in units of 1/" << peak << " of the full range\n";
    for (std::uint32_t level = 0; level < pair.levels; ++level) {
        const LevelDifference difference = compareLevel(pair.a, pair.b, level);
        worst = std::min(worst, difference.channels[overAll].psnr);
        equal = equal && difference.channels[overAll].meanSquaredError == 0;
        if (arguments.json)
            json["levels"].push_back(levelJson(difference));
        else
            printLevel(difference, console.out);
    }
    const bool passes = !arguments.minPSNR || worst >= *arguments.minPSNR;
    json["equal"] = equal;
    json["passes"] = passes;
    if (arguments.json) console.out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return passes ? ExitStatus::success : ExitStatus::different;
}

}  // namespace moktextool
