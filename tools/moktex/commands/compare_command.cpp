#include <algorithm>
#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "moktex/commands/commands.h"
#include "moktex/commands/pixel_difference.h"
#include "moktex/files/texture_file.h"
#include "moktex/formats/format_names.h"
#include "moktex/operations/format_change.h"
#include "moktex/report/console.h"

using namespace moktexture;
using Json = nlohmann::ordered_json;

namespace moktextool {

namespace {

struct LevelDifference {
    std::uint32_t level, width, height;
    ChannelDifferences channels;
};

/// The largest value of a channel: 255, 65535, or 1 for floats.
double peakOf(const CMOKTextureHeader& header) {
    if (header.getChannelType() == eVarFloat) return 1;
    return header.getChannelType() == eVarUShortNorm ? 65535 : 255;
}

template <class T>
DifferenceSums sumDifferences(const ImageSet& a, const ImageSet& b, std::uint32_t level) {
    DifferenceSums sums;
    for (std::size_t i = 0; i < a.surfaces.size(); ++i) {
        const Image &imageA = a.surfaces[i][level], &imageB = b.surfaces[i][level];
        sums.add(reinterpret_cast<const T*>(imageA.getData()), reinterpret_cast<const T*>(imageB.getData()),
                 imageA.countRows() * imageA.getSize().width);
    }
    return sums;
}

/// Compares one MIP level, with all its layers, faces and slices, of two textures of equal size in the same format: RGBA8, RGBA16
/// or float RGBA.
LevelDifference compareLevel(const ImageSet& a, const ImageSet& b, std::uint32_t level, const std::string& file) {
    const double peak = peakOf(a.header);
    const auto sum = peak == 1     ? sumDifferences<float>
                     : peak == 255 ? sumDifferences<std::uint8_t>
                                   : sumDifferences<std::uint16_t>;
    return {level, a.header.getWidth(level), a.header.getHeight(level), differencesOf(sum(a, b, level), peak, file)};
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
    ImageSet a, b;
    std::uint32_t levels;
};

ComparedPair loadPair(const CompareArguments& arguments, Console& console) {
    TextureInput inputA = readTexture(arguments.a, console), inputB = readTexture(arguments.b, console);
    const CMOKTextureHeader a = inputA.texture, b = inputB.texture;
    requireEqualSize(a, b, arguments);
    requireDecodable(formatOf(a), arguments.a);
    requireDecodable(formatOf(b), arguments.b);
    if (a.getColourSpace() != b.getColourSpace())
        console.note(arguments.a + " is " + nameOf(a.getColourSpace()) + ", " + arguments.b + " is " +
                     nameOf(b.getColourSpace()) + "; the values are compared as they are stored");
    ComparedPair pair{{}, {}, 1};
    if (arguments.levels) pair.levels = std::min(a.getNumMIPLevels(), b.getNumMIPLevels());
    if (arguments.levels && a.getNumMIPLevels() != b.getNumMIPLevels())
        console.note("the numbers of levels differ; the first " + std::to_string(pair.levels) + " are compared");
    const TextureFormat format = commonFormat(formatOf(a), formatOf(b));
    const auto load = [&](TextureInput& input, const std::string& name) {
        ImageSet images = takeImages(input, {name, console});
        convertImages(images, {format, images.header.getColourSpace()}, {name, console});
        return images;
    };
    pair.a = load(inputA, arguments.a);
    pair.b = load(inputB, arguments.b);
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
    const double peak = peakOf(pair.a.header);
    Json json = {{"a", displayName(arguments.a)}, {"b", displayName(arguments.b)}, {"peak", peak}, {"levels", Json::array()}};
    bool equal = true, passes = true;
    if (!arguments.json) console.out << "in units of 1/" << peak << " of the full range\n";
    for (std::uint32_t level = 0; level < pair.levels; ++level) {
        const LevelDifference difference = compareLevel(pair.a, pair.b, level, arguments.b);
        const ChannelDifference& all = difference.channels[overAll];
        equal = equal && all.meanSquaredError == 0;
        passes = passes && (!arguments.minPSNR || all.psnr >= *arguments.minPSNR);
        if (arguments.json)
            json["levels"].push_back(levelJson(difference));
        else
            printLevel(difference, console.out);
    }
    json["equal"] = equal;
    json["passes"] = passes;
    if (arguments.json) console.out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return passes ? ExitStatus::success : ExitStatus::different;
}

}  // namespace moktextool
