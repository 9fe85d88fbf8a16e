// The tool's command line: its subcommands, and what else may stand in the first place.

#include "moktex/commands/command_line.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <ostream>

#include "moktex/commands/commands.h"
#include "moktex/commands/convert_options.h"
#include "moktex/report/spelling.h"

namespace moktextool {

namespace {

constexpr const char* exitStatusHelp =
    "Exit status: 0 success, 1 wrong command line, 2 reading or writing failed, 3 invalid input file,\n"
    "4 processing failed, 5 not supported, 7 compared and different.\n";

constexpr const char* infoFooter =
    "OpenGL's numbers are internal format, format and type; '-' is a format without a number.\n"
    "With --json, an array with an object for each file that could be read.\n";

constexpr const char* compareFooter =
    "Values are compared as they are stored, at 8 bits a channel unless both sides hold more: then at 16 bits, or as\n"
    "floats of peak 1. Equal images have a PSNR of inf (null in JSON). 'rgba' is the mean of red, green, blue and alpha;\n"
    "'weighted' is red, green and blue weighted as the eye sees them, 0.299, 0.587 and 0.114. Different sizes give\n"
    "status 7.\n";

constexpr const char* convertSummary = "Converts pictures and textures to textures or pictures, with image operations";
constexpr const char* infoSummary =
    "Describes textures and pictures: format, sizes, colour space, metadata, numbers of graphics APIs";
constexpr const char* compareSummary = "Measures the difference of two pictures or textures of equal size";
constexpr const char* formatsSummary = "Lists the pixel formats and which of them can be decoded and encoded";

bool isOneOf(const std::string& word, std::initializer_list<const char*> choices) {
    return std::find(choices.begin(), choices.end(), word) != choices.end();
}

bool wantsHelp(const std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    return std::any_of(words.begin(), end, [](const std::string& word) { return isOneOf(word, {"--help", "-h", "-?"}); });
}

ExitStatus print(const std::string& text, Console& console) {
    console.out << text;
    return ExitStatus::success;
}

double parseDecibels(const std::string& text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || std::isnan(number))
        throw Failure(ExitStatus::commandLine,
                      "--min-psnr " + text + ": no number of decibels; use one as in 30 or 42.5, or inf");
    return number;
}

using Words = std::vector<std::string>;

ExitStatus convert(const Words& words, Console& console) {
    ConvertArguments arguments;
    const Command command = convertCommand(arguments);
    if (wantsHelp(words)) return print(command.help(), console);
    arguments.paths = command.parse(words);
    return runConvert(std::move(arguments), console);
}

ExitStatus info(const Words& words, Console& console) {
    InfoArguments arguments;
    Command command("info", {"[options] FILE..."}, infoSummary, {"leaf.mok", "leaf.mok bark.dds --json"});
    command.addFlag("--json", arguments.json, "Print JSON");
    command.setFooter(infoFooter);
    if (wantsHelp(words)) return print(command.help(), console);
    arguments.files = command.parse(words);
    if (arguments.files.empty()) throw Failure(ExitStatus::commandLine, "info: no file; use 'moktex info FILE...'");
    return runInfo(arguments, console);
}

ExitStatus compare(const Words& words, Console& console) {
    CompareArguments arguments;
    Command command("compare", {"[options] A B"}, compareSummary, {"photo.png photo.mok", "photo.png back.png --min-psnr 30"});
    command.addFlag("--levels", arguments.levels, "Compare all MIP levels that both have, not only the first");
    command.addValue(
        "--min-psnr", "DB", [&](const std::string& value) { arguments.minPSNR = parseDecibels(value); },
        "Give status 7 if the PSNR over rgba of a compared level is lower; inf for equal images");
    command.addFlag("--json", arguments.json, "Print JSON");
    command.setFooter(compareFooter);
    if (wantsHelp(words)) return print(command.help(), console);
    const Words files = command.parse(words);
    if (files.size() != 2) throw Failure(ExitStatus::commandLine, "compare: two files are compared; use 'moktex compare A B'");
    arguments.a = files[0];
    arguments.b = files[1];
    return runCompare(arguments, console);
}

ExitStatus formats(const Words& words, Console& console) {
    FormatsArguments arguments;
    Command command("formats", {"[options]"}, formatsSummary, {"", "--api"});
    command.addFlag("--json", arguments.json, "Print JSON");
    command.addFlag("--api", arguments.api, "Show the formats' numbers in OpenGL, OpenGL ES, Direct3D 9 and DXGI");
    if (wantsHelp(words)) return print(command.help(), console);
    if (const Words others = command.parse(words); !others.empty())
        throw Failure(ExitStatus::commandLine,
                      others.front() + ": formats takes no files; 'moktex info FILE' tells a file's format");
    return runFormats(arguments, console);
}

struct Subcommand {
    std::string name;
    const char* summary;
    ExitStatus (*run)(const Words& words, Console& console);
};

const std::vector<Subcommand>& subcommands() {
    // clang-format off
    static const std::vector<Subcommand> all = {
        {"convert", convertSummary, convert},
        {"info",    infoSummary,    info},
        {"compare", compareSummary, compare},
        {"formats", formatsSummary, formats},
    };
    // clang-format on
    return all;
}

std::string generalHelp() {
    std::string text = "Usage: moktex COMMAND ...\n\nConverts, inspects and compares GPU textures.\n\nCommands:\n";
    for (const Subcommand& command : subcommands())
        text += "  " + command.name + std::string(10 - command.name.size(), ' ') + command.summary + '\n';
    return text +
           "  help      This text, or with a command's name that command's options, with examples\n"
           "  version   The version, as does --version\n\n"
           "Operations of 'moktex convert', applied in the order in which they are given:\n" +
           operationHelp() + '\n' + exitStatusHelp;
}

[[noreturn]] void refuseCommand(const std::string& word) {
    Words names;
    for (const Subcommand& command : subcommands())
        names.push_back(command.name);
    std::error_code error;
    const std::string nearest = nearestName(word, names);
    std::string remedy = "'moktex help' lists the commands";
    if (word.size() > 1 && word[0] == '-')
        remedy = "options follow the command, as in 'moktex convert IN OUT'; " + remedy;
    else if (!nearest.empty())
        remedy = "did you mean " + nearest + "? " + remedy;
    else if (word.find('.') != std::string::npos || std::filesystem::exists(word, error))
        remedy = "a file follows a command, as in 'moktex convert IN OUT' and 'moktex info FILE'; " + remedy;
    throw Failure(ExitStatus::commandLine, word + ": no such command; " + remedy);
}

ExitStatus runCommand(const std::string& name, const Words& words, Console& console) {
    for (const Subcommand& command : subcommands())
        if (command.name == lowerCase(name)) return command.run(words, console);
    refuseCommand(name);
}

ExitStatus run(const Words& words, Console& console) {
    if (words.empty())
        throw Failure(ExitStatus::commandLine, "no command; use convert, info, compare or formats, 'moktex help' explains them");
    const std::string& first = words.front();
    const Words rest(words.begin() + 1, words.end());
    if (isOneOf(first, {"version", "--version", "-v", "-V"})) return print("moktex " MOKTEX_VERSION "\n", console);
    if (!isOneOf(first, {"help", "--help", "-h", "-?"})) return runCommand(first, rest, console);
    if (rest.empty() || isOneOf(rest.front(), {"help", "--help", "-h", "-?"})) return print(generalHelp(), console);
    return runCommand(rest.front(), {"--help"}, console);
}

}  // namespace

ExitStatus runMoktex(const std::vector<std::string>& arguments, Console& console) {
    return console.guard([&] { return run(arguments, console); });
}

}  // namespace moktextool
