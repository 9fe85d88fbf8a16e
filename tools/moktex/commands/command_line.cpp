// The options and help texts of all commands. This is the only file that knows CLI11, which is slow to compile.

#include "moktex/commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <map>
#include <memory>

#include "moktex/commands/commands.h"
#include "moktex/files/container.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr const char* exitStatusHelp =
    "\nExit status: 0 success, 1 wrong command line, 2 reading or writing failed, 3 invalid input file,\n"
    "4 processing failed, 5 not supported, 7 compared and different.\n"
    "'moktex COMMAND --help' explains a command, with examples.";

constexpr const char* convertDescription =
    "Converts pictures (PNG, JPEG, TGA, BMP, HDR) and textures (.mok, .ktx, .dds) to textures (.mok, .ktx, .dds, C source\n"
    "in .h) or pictures (.png).";

constexpr const char* convertExamples =
    "Examples:\n"
    "  moktex convert photo.png photo.mok --format dxt1 --mipmaps --resize pow2\n"
    "  moktex convert photo.mok back.png\n"
    "  moktex convert photo.png photo.dds --format dxt5 --mipmaps --resize pow2\n"
    "  moktex convert --legacy gl-a photo.mok old.mok\n"
    "  moktex convert a.png b.jpg -o textures --format dxt5 --overwrite\n";

constexpr const char* convertDetails =
    "  Operations are applied in the order in which they are given, --mipmaps among them; --resize is applied before all\n"
    "  of them. They work on the stored values: no colour curve is applied.\n"
    "Quality:\n"
    "  DXT and packed formats have only one.\n"
    "  moktc, moktc2: each is slower than the one before and usually closer to the picture, but 5 of moktc2 equals 4;\n"
    "  5 takes minutes for large pictures. 0 of moktc is a separate, fast encoder.\n"
    "  etc1: even numbers weight the channels equally, odd ones as the eye does; names select the odd ones (1 1 3 3 5 5).\n"
    "Output:\n"
    "  OUT ends in .mok, .ktx, .dds, .h or .png. A .ktx or .dds file can only hold formats for which 'moktex formats --api'\n"
    "  shows a number of OpenGL or Direct3D 9; the array in a .h file is named after the file. Several inputs, or an OUT\n"
    "  that is a folder, give one OUT/NAME.mok each; a missing folder is created. '-' is standard input or output; standard\n"
    "  output receives a .mok texture.\n"
    "  A PNG holds MIP level 0, array layer 0, face 0 of a texture unless --level, --layer or --face select another; with\n"
    "  --format the picture is encoded in that format and decoded again.\n"
    "Colour:\n"
    "  Pictures of 8 and 16 bits are taken as sRGB, HDR pictures as linear. The output keeps the colour space and the values\n"
    "  of the input unless --colour-space asks for the other one; a message reports each curve that is applied.\n"
    "  A normal map is always linear.";

constexpr const char* infoFooter =
    "Example: moktex info leaf.mok bark.dds --json\n"
    "OpenGL's numbers are internal format, format and type; '-' is a format without a number.\n"
    "With --json, an array with an object for each file that could be read.";

constexpr const char* compareFooter =
    "Example: moktex compare photo.png back.png --min-psnr 30\n"
    "Values are compared as they are stored, at 8 bits a channel unless both sides hold more: then at 16 bits, or as\n"
    "floats of peak 1. Equal images have a PSNR of inf (null in JSON). 'rgba' is the mean of red, green, blue and alpha;\n"
    "'weighted' is red, green and blue weighted as the eye sees them, 0.299, 0.587 and 0.114. Different sizes give\n"
    "status 7.";

/// Makes a command line with `-m`, `--mips` or `--mipmaps` unambiguous: without a number they become `--mipmaps=all`, so that
/// they do not take the next argument as their value.
void normaliseMipmapsOption(std::vector<std::string>& arguments) {
    for (std::size_t i = 0; i < arguments.size() && arguments[i] != "--"; ++i) {
        std::string& argument = arguments[i];
        if (argument.starts_with("-m=")) argument = "--mipmaps=" + argument.substr(3);
        if (argument != "-m" && argument != "--mipmaps" && argument != "--mips") continue;
        const std::string next = i + 1 < arguments.size() ? arguments[i + 1] : "";
        const bool hasNumber = !next.empty() && next.find_first_not_of("0123456789") == std::string::npos;
        if (!hasNumber) argument = "--mipmaps=all";
    }
}

/// A name that an option accepts, and what it does.
struct Choice {
    std::string name;
    std::function<void()> select;
};

/// An option whose value is one of a few names. CLI11's own transformers are not used because they compile slowly.
void addChoice(CLI::App& command, const std::string& option, const std::string& help, const std::vector<Choice>& choices) {
    std::string names;
    for (const Choice& choice : choices)
        names += (names.empty() ? "" : "|") + choice.name;
    const auto select = [choices, names, option](const CLI::results_t& values) {
        for (const Choice& choice : choices) {
            if (choice.name != values.back()) continue;
            choice.select();
            return true;
        }
        throw CLI::ValidationError(option, values.back() + " is not one of " + names);
    };
    command.add_option(option, select, help)->type_name(names);
}

/// The choices that assign a value of an enumeration to `target`.
template <class Target, class Value>
std::vector<Choice> choicesOf(Target& target, const std::vector<std::pair<std::string, Value>>& values) {
    std::vector<Choice> choices;
    for (const auto& [name, value] : values)
        choices.push_back({name, [&target, chosen = value] { target = chosen; }});
    return choices;
}

/// The options of `moktex convert` before they are checked.
struct ConvertOptions {
    ConvertArguments arguments;
    std::string format, quality, resize;
};

void addSizeOptions(CLI::App& command, ConvertOptions& options) {
    const std::vector<std::pair<std::string, EResizeMode>> filters = {
        {"nearest", eResizeNearest}, {"linear", eResizeLinear}, {"cubic", eResizeCubic}};
    ConversionRequest& request = options.arguments.request;
    addChoice(command, "--mip-filter", "Filter of --mipmaps (linear)", choicesOf(request.mipFilter, filters));
    command.add_option("--resize", options.resize, "Change the size first; pow2: to the nearest powers of two")
        ->type_name("WxH|pow2");
    addChoice(command, "--resize-filter", "Filter of --resize (linear)", choicesOf(request.resizeFilter, filters));
}

void addOperationOptions(CLI::App& command) {
    const auto takeAll = [](CLI::Option* option) {
        return option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)->group("Operations");
    };
    for (const OperationOption& option : operationOptions()) {
        if (option.operand == nullptr)
            takeAll(command.add_flag(option.names, option.help));
        else
            takeAll(command.add_option(
                        option.names, [](const CLI::results_t&) { return true; }, option.help))
                ->type_name(option.operand);
    }
}

void addColourOptions(CLI::App& command, ConversionRequest& request) {
    const std::vector<std::pair<std::string, EMOKTColourSpace>> spaces = {{"linear", eColourSpaceLinear},
                                                                          {"srgb", eColourSpaceSRGB}};
    addChoice(command, "--assign-colour-space", "Colour space of the input; the values stay unchanged",
              choicesOf(request.assignedColourSpace, spaces));
    addChoice(command, "--colour-space", "Colour space of the output; the curve is applied",
              choicesOf(request.colourSpace, spaces));
    command.add_flag("--dither", request.dither, "Dither formats below 32 bits per pixel");
}

void addOutputOptions(CLI::App& command, ConvertArguments& arguments) {
    ConversionRequest& request = arguments.request;
    std::vector<std::pair<std::string, ELegacyApi>> apis;
    for (const auto& [name, api] : legacyApiNames())
        apis.emplace_back(name, api);
    addChoice(command, "--legacy", "Write .mok in the legacy layout, with the format numbers of that API",
              choicesOf(request.legacyApi, apis));
    command.add_option("--level", request.level, "MIP level to write as a PNG")->type_name("N");
    command.add_option("--layer,--member", request.layer, "Array layer to write as a PNG")->type_name("N");
    command.add_option("--face", request.face, "Cube face to write as a PNG")->type_name("N");
    command.add_flag("-y,--overwrite", arguments.overwrite, "Replace existing output files");
    command.add_flag("--quiet", arguments.quiet, "Print only errors and applied colour curves");
}

/// The operations in the order of the command line.
std::vector<GivenOperation> collectOperations(const CLI::App& command) {
    std::vector<GivenOperation> operations;
    std::map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* given : command.parse_order()) {
        for (const OperationOption& option : operationOptions()) {
            if (command.get_option(longName(option)) == given) operations.push_back({&option, given->results()[taken[given]++]});
        }
    }
    return operations;
}

void addConvertCommand(CLI::App& app, Console& console, ExitStatus& status) {
    CLI::App& command = *app.add_subcommand("convert", convertDescription);
    const auto options = std::make_shared<ConvertOptions>();
    ConvertArguments& arguments = options->arguments;
    command.footer(convertExamples + ("Operations, each with an example:\n" + operationHelp()) + convertDetails);
    command.add_option("IN", arguments.paths, "Input files; without -o, IN OUT")->required()->type_name("");
    command.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    command.add_option("-o,--output", arguments.output, "Output file, or a folder for several inputs")->type_name("OUT");
    command.add_option("-f,--format", options->format, "Format of the output, see 'moktex formats' (that of the input)")
        ->type_name("NAME");
    command.add_option("-q,--quality", options->quality, std::string("Effort of the encoder: ") + qualityHelp + " (3)")
        ->type_name("Q");
    addSizeOptions(command, *options);
    addOperationOptions(command);
    addColourOptions(command, arguments.request);
    addOutputOptions(command, arguments);
    command.callback([options, &command, &console, &status] {
        const auto given = [&command](const char* option, const std::string& value) {
            return command.count(option) != 0 ? std::optional(value) : std::nullopt;
        };
        options->arguments.format = given("--format", options->format);
        options->arguments.quality = given("--quality", options->quality);
        options->arguments.resize = given("--resize", options->resize);
        options->arguments.operations = collectOperations(command);
        status = runConvert(std::move(options->arguments), console);
    });
}

void addInfoCommand(CLI::App& app, Console& console, ExitStatus& status) {
    CLI::App& command = *app.add_subcommand(
        "info", "Describes textures and pictures: format, sizes, colour space, metadata, numbers of graphics APIs.");
    const auto arguments = std::make_shared<InfoArguments>();
    command.footer(infoFooter);
    command.add_option("FILE", arguments->files, "Files, or '-' for standard input")->required()->type_name("");
    command.add_flag("--json", arguments->json, "Print JSON");
    command.callback([arguments, &console, &status] { status = runInfo(*arguments, console); });
}

void addCompareCommand(CLI::App& app, Console& console, ExitStatus& status) {
    CLI::App& command = *app.add_subcommand("compare", "Measures the difference of two pictures or textures of equal size.");
    const auto arguments = std::make_shared<CompareArguments>();
    command.footer(compareFooter);
    command.add_option("A", arguments->a, "File, or '-' for standard input")->required()->type_name("");
    command.add_option("B", arguments->b, "File")->required()->type_name("");
    command.add_flag("--levels", arguments->levels, "Compare all MIP levels that both have, not only the first");
    command.add_option("--min-psnr", arguments->minPSNR, "Give status 7 if the PSNR over rgba of a compared level is lower")
        ->type_name("DB");
    command.add_flag("--json", arguments->json, "Print JSON");
    command.callback([arguments, &console, &status] { status = runCompare(*arguments, console); });
}

void addFormatsCommand(CLI::App& app, Console& console, ExitStatus& status) {
    CLI::App& command = *app.add_subcommand("formats", "Lists the pixel formats and which of them can be decoded and encoded.");
    const auto arguments = std::make_shared<FormatsArguments>();
    command.footer("Examples:\n  moktex formats --json\n  moktex formats --api");
    command.add_flag("--json", arguments->json, "Print JSON");
    command.add_flag("--api", arguments->api, "Show the formats' numbers in OpenGL, OpenGL ES, Direct3D 9 and DXGI");
    command.callback([arguments, &console, &status] { status = runFormats(*arguments, console); });
}

/// The message for a command line that CLI11 refuses.
std::string oneLine(const CLI::App* app, const CLI::Error& error) {
    const CLI::App* command = app->get_subcommands().empty() ? app : app->get_subcommands().front();
    const std::string name = command == app ? "moktex" : "moktex " + command->get_name();
    return "moktex: " + printable(error.what()) + "; see '" + name + " --help'\n";
}

}  // namespace

ExitStatus runMoktex(std::vector<std::string> arguments, Console& console) {
    ExitStatus status = ExitStatus::success;
    CLI::App app("Converts, inspects and compares GPU textures.", "moktex");
    app.require_subcommand(1);
    app.set_version_flag("--version", "moktex " MOKTEX_VERSION);
    app.footer("Operations of 'moktex convert', applied in the order in which they are given:\n" + operationHelp() +
               exitStatusHelp);
    app.failure_message(oneLine);
    addConvertCommand(app, console, status);
    addInfoCommand(app, console, status);
    addCompareCommand(app, console, status);
    addFormatsCommand(app, console, status);

    normaliseMipmapsOption(arguments);
    std::reverse(arguments.begin(), arguments.end());  // CLI11 takes them from the back
    return console.guard([&] {
        try {
            app.parse(arguments);
        } catch (const CLI::ParseError& error) {
            return app.exit(error, console.out, console.err) == 0 ? ExitStatus::success : ExitStatus::commandLine;
        }
        return status;
    });
}

}  // namespace moktextool
