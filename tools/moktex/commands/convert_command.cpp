#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include "moktex/commands/command_line.h"
#include "moktex/files/container.h"
#include "moktex/files/texture_input.h"
#include "moktex/files/texture_output.h"
#include "moktex/formats/format_names.h"
#include "moktex/formats/quality_names.h"
#include "moktex/operations/conversion.h"
#include "moktex/operations/operation_options.h"
#include "moktex/report/console.h"

namespace fs = std::filesystem;
using namespace moktexture;

namespace moktextool {

namespace {

constexpr const char* description =
    "Converts pictures (PNG, JPEG, TGA, BMP, HDR) and textures (.mok, .ktx, .dds) to textures (.mok, .ktx, .dds, C source\n"
    "in .h) or pictures (.png).";

constexpr const char* examples =
    "Examples:\n"
    "  moktex convert photo.png photo.mok --format dxt1 --mipmaps --resize pow2\n"
    "  moktex convert photo.mok back.png\n"
    "  moktex convert photo.png photo.dds --format dxt5 --mipmaps --resize pow2\n"
    "  moktex convert --legacy gl-a photo.mok old.mok\n"
    "  moktex convert a.png b.jpg -o textures --format dxt5 --overwrite\n";

constexpr const char* explanation =
    "  They are applied in the order in which they are given, --mipmaps among them; --resize comes before all. Values are\n"
    "  taken as they are stored: no curve is applied for an operation.\n"
    "Quality:\n"
    "  DXT and packed formats have one.\n"
    "  moktc, moktc2: each takes longer than the one before and usually comes closer to the picture, but 5 of moktc2 is\n"
    "  the same as 4; 5 takes minutes for large pictures. Of moktc, 0 is an encoder of its own that takes moments.\n"
    "  etc1: even numbers measure errors plainly, odd ones as the eye does; names take the odd ones (1 1 3 3 5 5).\n"
    "Output:\n"
    "  OUT ends in .mok, .ktx, .dds, .h or .png. A .ktx or .dds file holds formats alone that 'moktex formats --api' has a\n"
    "  number of OpenGL or Direct3D 9 for; the array in a .h file is named for the file. Several inputs, or an OUT that is\n"
    "  a folder, give OUT/NAME.mok each; the folder is made if it is missing. '-' is standard input or output; what goes\n"
    "  there is a .mok texture.\n"
    "  A PNG holds level 0, member 0, face 0 of a texture unless --level, --member or --face say otherwise; with\n"
    "  --format the picture passes through that format first.\n"
    "Colour:\n"
    "  Pictures of 8 and 16 bits count as sRGB, HDR pictures as linear. The output keeps what the input is, and its\n"
    "  values stay as they are, unless --colour-space asks for the other curve; a line tells when one is applied.\n"
    "  A normal map comes out as linear.";

struct ConvertArguments {
    std::vector<std::string> paths;
    std::string output, format, quality, resize;
    bool overwrite = false, quiet = false;
    ConversionRequest request;
};

ResizeRequest parseResize(const std::string& text) {
    if (text == "pow2") return {0, 0};
    const std::size_t cross = std::min(text.find('x'), text.size());
    const ResizeRequest size{parseEdge(text.substr(0, cross)), cross < text.size() ? parseEdge(text.substr(cross + 1)) : 0};
    if (size.width == 0 || size.height == 0)
        throw Failure(ExitStatus::commandLine, "--resize " + text + ": no size; use WIDTHxHEIGHT of 1 to 65536 each, or pow2");
    return size;
}

/// One input and where it goes.
struct Job {
    std::string input;
    std::string output;
};

/// Takes the last of two paths as the output where -o is not given.
void settleOutput(ConvertArguments& arguments) {
    if (!arguments.output.empty()) return;
    if (arguments.paths.size() != 2)
        throw Failure(ExitStatus::commandLine, arguments.paths.front(), "the output is not clear; name it by -o OUT");
    arguments.output = arguments.paths.back();
    arguments.paths.pop_back();
}

bool goesToFolder(const ConvertArguments& arguments) {
    std::error_code error;
    const fs::path output(arguments.output);
    return arguments.paths.size() > 1 || !output.has_filename() || fs::is_directory(output, error);
}

std::vector<Job> planJobs(const ConvertArguments& arguments) {
    const std::string& output = arguments.output;
    if (!goesToFolder(arguments)) return {{arguments.paths.front(), output}};
    if (output == standardStream)
        throw Failure(ExitStatus::commandLine, "several inputs cannot go to standard output; name a folder");
    std::vector<Job> jobs;
    std::set<std::string> taken;
    for (const std::string& input : arguments.paths) {
        if (input == standardStream)
            throw Failure(ExitStatus::commandLine, "standard input has no name in a folder; name a file by -o");
        jobs.push_back({input, (fs::path(output) / fs::path(input).stem()).string() + ".mok"});
        if (!taken.insert(jobs.back().output).second)
            throw Failure(ExitStatus::commandLine, input,
                          "two inputs would become " + jobs.back().output + "; convert them one by one");
    }
    return jobs;
}

/// Makes the folder for several outputs if it is missing; true if it did.
bool makeFolder(const ConvertArguments& arguments) {
    if (!goesToFolder(arguments)) return false;
    std::error_code error;
    const bool isNew = fs::create_directories(arguments.output, error);
    if (error || !fs::is_directory(arguments.output, error))
        throw Failure(ExitStatus::inputOutput, arguments.output, "cannot be the folder for the outputs; choose another name");
    return isNew;
}

/// The operations in the order of the command line; of several --mipmaps the last one counts.
std::vector<OperationPointer> collectOperations(const CLI::App& command) {
    std::vector<OperationPointer> operations;
    std::map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* given : command.parse_order()) {
        const auto& known = operationOptions();
        const auto option = std::find_if(known.begin(), known.end(),
                                         [&](const OperationOption& row) { return command.get_option(chiefName(row)) == given; });
        if (option == known.end()) continue;
        const std::string value = given->results()[taken[given]++];
        const std::string text = chiefName(*option) + (option->operand == nullptr ? "" : ' ' + value);
        OperationPointer operation = option->parse(text, value);
        if (operation->isMipmaps()) std::erase_if(operations, [](const auto& earlier) { return earlier->isMipmaps(); });
        operations.push_back(std::move(operation));
    }
    return operations;
}

/// Converts each input, also after one failed; the first failure is the status.
ExitStatus convertAll(ConvertArguments& arguments, const CLI::App& command, Console& console) {
    console.quiet = arguments.quiet;
    ConversionRequest& request = arguments.request;
    const auto isGiven = [&command](const char* option) { return command.count(option) != 0; };
    if (isGiven("--format")) request.form = parseForm(arguments.format);
    if (isGiven("--quality")) request.quality = parseQuality(arguments.quality);
    request.operations = collectOperations(command);
    if (isGiven("--resize")) request.resize = parseResize(arguments.resize);
    settleOutput(arguments);
    ExitStatus status = ExitStatus::success;
    const std::vector<Job> jobs = planJobs(arguments);
    const bool isNewFolder = makeFolder(arguments);
    for (const Job& job : jobs) {
        const ExitStatus jobStatus = console.guard([&] {
            outputKind(job.output);
            requireLegacyPath({job.output, request.legacyApi});
            requireWritable(job.output, arguments.overwrite);
            convertFile(request, job.input, job.output, console);
            return ExitStatus::success;
        });
        if (status == ExitStatus::success) status = jobStatus;
    }
    std::error_code notEmpty;
    if (isNewFolder && status != ExitStatus::success) fs::remove(arguments.output, notEmpty);
    return status;
}

void addSizeOptions(CLI::App& command, ConvertArguments& arguments) {
    static const std::map<std::string, EResizeMode> filters = {
        {"nearest", eResizeNearest}, {"linear", eResizeLinear}, {"cubic", eResizeCubic}};
    command.add_option("--mip-filter", arguments.request.mipFilter, "Filter of --mipmaps (linear)")
        ->transform(CLI::CheckedTransformer(filters).description(""))
        ->type_name("nearest|linear|cubic");
    command.add_option("--resize", arguments.resize, "Change the size first; pow2 takes the nearest powers of two")
        ->type_name("WxH|pow2");
    command.add_option("--resize-filter", arguments.request.resizeFilter, "Filter of --resize (linear)")
        ->transform(CLI::CheckedTransformer(filters).description(""))
        ->type_name("nearest|linear|cubic");
}

void addLegacyOption(CLI::App& command, ConversionRequest& request) {
    std::map<std::string, ELegacyApi> apis;
    std::string names;
    for (const auto& [name, api] : legacyApiNames()) {
        apis[name] = api;
        names += (names.empty() ? "" : "|") + std::string(name);
    }
    command.add_option("--legacy", request.legacyApi, "Write .mok in the legacy layout, the format numbered as that API does")
        ->transform(CLI::CheckedTransformer(apis).description(""))
        ->type_name(names);
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

void addColourOptions(CLI::App& command, ConvertArguments& arguments) {
    static const std::map<std::string, EMOKTColourSpace> spaces = {{"linear", eColourSpaceLinear}, {"srgb", eColourSpaceSRGB}};
    command
        .add_option("--assign-colour-space", arguments.request.assignedColourSpace, "What the input is; values stay as they are")
        ->transform(CLI::CheckedTransformer(spaces).description(""))
        ->type_name("linear|srgb");
    command.add_option("--colour-space", arguments.request.colourSpace, "What the output is to be; the curve is applied")
        ->transform(CLI::CheckedTransformer(spaces).description(""))
        ->type_name("linear|srgb");
    command.add_flag("--dither", arguments.request.dither, "Spread the error of formats below 32 bits a pixel");
}

}  // namespace

void addConvertCommand(CLI::App& app, Console& console, ExitStatus& status) {
    CLI::App& command = *app.add_subcommand("convert", description);
    const auto arguments = std::make_shared<ConvertArguments>();
    ConversionRequest& request = arguments->request;
    command.footer(examples + ("Operations, each with an example:\n" + operationHelp()) + explanation);
    command.add_option("IN", arguments->paths, "Input files; without -o, IN OUT")->required()->type_name("");
    command.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    command.add_option("-o,--output", arguments->output, "Output file, or a folder for several inputs")->type_name("OUT");
    command
        .add_option("-f,--format", arguments->format, "Format of the output, as 'moktex formats' lists them (that of the input)")
        ->type_name("NAME");
    command.add_option("-q,--quality", arguments->quality, std::string("Effort of the encoder: ") + qualityHelp + " (3)")
        ->type_name("Q");
    addSizeOptions(command, *arguments);
    addOperationOptions(command);
    addColourOptions(command, *arguments);
    addLegacyOption(command, request);
    command.add_option("--level", request.level, "MIP level that becomes a PNG")->type_name("N");
    command.add_option("--member", request.member, "Array member that becomes a PNG")->type_name("N");
    command.add_option("--face", request.face, "Cube face that becomes a PNG")->type_name("N");
    command.add_flag("-y,--overwrite", arguments->overwrite, "Replace output files that exist");
    command.add_flag("--quiet", arguments->quiet, "Say nothing but errors and applied curves");
    command.callback([arguments, &command, &console, &status] { status = convertAll(*arguments, command, console); });
}

}  // namespace moktextool
