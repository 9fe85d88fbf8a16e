#include <CLI/CLI.hpp>
#include <cmath>
#include <iomanip>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "moktex/commands/command_line.h"
#include "moktex/files/texture_input.h"
#include "moktex/formats/format_names.h"
#include "moktex/report/console.h"
#include "moktex/report/image_difference.h"

using namespace moktexture;
using Json = nlohmann::ordered_json;

namespace moktextool {

namespace {

struct CompareArguments {
    std::string a, b;
    bool levels = false, json = false;
    std::optional<double> minPSNR;
};

std::string sizeText(const CMOKTextureHeader& header) {
    return std::to_string(header.getWidth()) + " x " + std::to_string(header.getHeight()) + " x " +
           std::to_string(header.getDepth()) + ", " + std::to_string(header.getNumArrayMembers()) + " members, " +
           std::to_string(header.getNumFaces()) + " faces";
}

void requireEqualSize(const CMOKTextureHeader& a, const CMOKTextureHeader& b, const CompareArguments& arguments) {
    if (sizeText(a) == sizeText(b)) return;
    throw Failure(ExitStatus::different, arguments.b,
                  "is " + sizeText(b) + ", and " + arguments.a + " is " + sizeText(a) +
                      "; compare equal sizes, 'moktex convert --resize' helps");
}

/// 8 bits, unless both sides hold more; floats if either of those is float or wider than 16 bits.
TextureForm commonForm(const TextureForm& a, const TextureForm& b) {
    const auto isFloat = [](const TextureForm& form) { return !isCompressed(form.format) && form.channelType == eVarFloat; };
    const auto isWide = [&](const TextureForm& form) { return isFloat(form) || widestChannel(form) > 8; };
    if (!isWide(a) || !isWide(b)) return rgba8Form;
    const bool needsFloat = isFloat(a) || isFloat(b) || widestChannel(a) > 16 || widestChannel(b) > 16;
    return needsFloat ? rgbaFloatForm : rgba16Form;
}

/// Both sides in one form, as they are stored: no curve is applied.
struct ComparedPair {
    CMOKTexture a, b;
    std::uint32_t levels;
};

ComparedPair loadPair(const CompareArguments& arguments, Console& console) {
    ComparedPair pair{readTexture(arguments.a, console).texture, readTexture(arguments.b, console).texture, 1};
    requireEqualSize(pair.a, pair.b, arguments);
    requireDecodable(formOf(pair.a), arguments.a);
    requireDecodable(formOf(pair.b), arguments.b);
    if (pair.a.getColourSpace() != pair.b.getColourSpace())
        console.note(arguments.a + " is " + nameOf(pair.a.getColourSpace()) + ", " + arguments.b + " is " +
                     nameOf(pair.b.getColourSpace()) + "; the values are compared as they are stored");
    if (arguments.levels) pair.levels = std::min(pair.a.getNumMIPLevels(), pair.b.getNumMIPLevels());
    if (arguments.levels && pair.a.getNumMIPLevels() != pair.b.getNumMIPLevels())
        console.note("the numbers of levels differ; the first " + std::to_string(pair.levels) + " are compared");
    const TextureForm form = commonForm(formOf(pair.a), formOf(pair.b));
    changeForm(pair.a, {form, pair.a.getColourSpace()}, arguments.a, console);
    changeForm(pair.b, {form, pair.b.getColourSpace()}, arguments.b, console);
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

/// Infinite numbers become null.
Json levelJson(const LevelDifference& level) {
    Json channels;
    for (std::size_t i = 0; i < differenceNames.size(); ++i) {
        const ChannelDifference& channel = level.channels[i];
        channels[differenceNames[i]] = {{"mse", channel.meanSquaredError}, {"psnr", channel.psnr}, {"largest", channel.largest}};
    }
    return {{"level", level.level}, {"width", level.width}, {"height", level.height}, {"channels", channels}};
}

ExitStatus compare(const CompareArguments& arguments, Console& console) {
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

}  // namespace

void addCompareCommand(CLI::App& app, Console& console, ExitStatus& status) {
    CLI::App& command = *app.add_subcommand("compare", "Tells how close two pictures or textures of equal size are.");
    const auto arguments = std::make_shared<CompareArguments>();
    command.footer(
        "Example: moktex compare photo.png back.png --min-psnr 30\n"
        "Values are compared as they are stored, at 8 bits a channel unless both sides hold more: then at 16 bits, or as\n"
        "floats of peak 1. Equal images have a PSNR of inf (null in JSON). Over all is the mean of red, green, blue and\n"
        "alpha, 'rgba'; 'weighted' is red, green and blue by their weight for the eye, 0.299, 0.587 and 0.114. Sizes that\n"
        "differ give status 7.");
    command.add_option("A", arguments->a, "File, or '-' for standard input")->required()->type_name("");
    command.add_option("B", arguments->b, "File")->required()->type_name("");
    command.add_flag("--levels", arguments->levels, "Compare all MIP levels that both have, not only the first");
    command.add_option("--min-psnr", arguments->minPSNR, "End with status 7 if a compared level is below it over all")
        ->type_name("DB");
    command.add_flag("--json", arguments->json, "Print JSON");
    command.callback([arguments, &console, &status] { status = compare(*arguments, console); });
}

}  // namespace moktextool
