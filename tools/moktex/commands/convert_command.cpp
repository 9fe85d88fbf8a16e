#include <algorithm>
#include <filesystem>
#include <set>

#include "moktex/commands/commands.h"
#include "moktex/files/container.h"
#include "moktex/files/picture_file.h"
#include "moktex/files/texture_file.h"
#include "moktex/formats/format_names.h"
#include "moktex/operations/conversion.h"
#include "moktex/operations/image_operation.h"
#include "moktex/report/console.h"
#include "moktex/report/spelling.h"

namespace fs = std::filesystem;
using namespace moktexture;

namespace moktextool {

namespace {

ResizeRequest parseResize(const std::string& given) {
    const std::string text = lowerCase(given);
    if (text == "pow2") return {0, 0};
    const std::size_t cross = std::min(text.find('x'), text.size());
    const ResizeRequest size{parseEdge(text.substr(0, cross)), cross < text.size() ? parseEdge(text.substr(cross + 1)) : 0};
    if (size.width == 0 || size.height == 0)
        throw Failure(ExitStatus::commandLine, "--resize " + given + ": no size; use WIDTHxHEIGHT of 1 to 65536 each, or pow2");
    return size;
}

/// One input and its output.
struct Job {
    std::string input;
    std::string output;
};

bool isFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

/// Whether the last path is more likely an input than the output: an existing picture, after other pictures, as
/// a shell makes it of '*.png'.
bool lastIsPicture(const std::vector<std::string>& paths) {
    std::error_code error;
    return std::all_of(paths.begin(), paths.end(), hasPictureExtension) && fs::exists(paths.back(), error);
}

/// Without -o, the last path is the output if it is a folder, or the second of two.
void takeOutputFromPaths(ConvertArguments& arguments) {
    std::vector<std::string>& paths = arguments.paths;
    if (paths.empty()) throw Failure(ExitStatus::commandLine, "convert: no input; use 'moktex convert IN OUT'");
    if (!arguments.output.empty()) return;
    const std::string& last = paths.back();
    if (paths.size() == 1 && isFolder(last))
        throw Failure(ExitStatus::commandLine, last, "a folder; name the files in it, and a folder for the outputs by -o FOLDER");
    if (paths.size() == 1) throw Failure(ExitStatus::commandLine, last, "no output; name it by -o OUT");
    if (!isFolder(last) && paths.size() > 2)
        throw Failure(ExitStatus::commandLine,
                      std::to_string(paths.size()) + " inputs and no output; name a folder by -o FOLDER");
    if (lastIsPicture(paths))
        throw Failure(
            ExitStatus::commandLine, last,
            "two pictures and no output; name a folder by -o FOLDER, or replace this one by -o " + last + " --overwrite");
    arguments.output = last;
    paths.pop_back();
}

bool goesToFolder(const ConvertArguments& arguments) {
    return arguments.paths.size() > 1 || !fs::path(arguments.output).has_filename() || isFolder(arguments.output);
}

/// Throws a Failure if the output for several inputs is not a folder's name.
void requireFolderName(const std::string& output) {
    if (output == standardStream)
        throw Failure(ExitStatus::commandLine, "several inputs cannot go to standard output; name a folder");
    const bool isFileName = isContainerExtension(extensionOf(output)) || hasPictureExtension(output);
    if (isFileName && !isFolder(output))
        throw Failure(
            ExitStatus::commandLine, output,
            "several inputs cannot go to one file; name a folder, which receives .mok files, or convert them one by one");
}

std::vector<Job> planJobs(const ConvertArguments& arguments) {
    const std::string& output = arguments.output;
    if (!goesToFolder(arguments)) return {{arguments.paths.front(), output}};
    requireFolderName(output);
    std::vector<Job> jobs;
    std::set<std::string> taken;
    for (const std::string& input : arguments.paths) {
        if (input == standardStream)
            throw Failure(ExitStatus::commandLine, "standard input has no name for a file in a folder; name a file by -o");
        jobs.push_back({input, (fs::path(output) / fs::path(input).stem()).string() + ".mok"});
        if (!taken.insert(jobs.back().output).second)
            throw Failure(ExitStatus::commandLine, input,
                          "two inputs would become " + jobs.back().output + "; convert them one by one");
    }
    return jobs;
}

/// Throws a Failure if an option selects an image for a PNG and the output is no picture.
void requirePictureFor(const ConvertArguments& arguments, const std::string& output) {
    const char* option = arguments.level ? "--level" : arguments.layer ? "--layer" : arguments.face ? "--face" : nullptr;
    if (option != nullptr && outputKind(output) != OutputKind::picture)
        throw Failure(ExitStatus::commandLine, displayName(output),
                      std::string(option) +
                          " selects the image to write as a PNG, and a texture is written whole; leave it out, or "
                          "name a .png");
}

/// Creates the folder for several outputs if it is missing; true if it did.
bool makeFolder(const ConvertArguments& arguments) {
    std::error_code error;
    if (!goesToFolder(arguments)) return false;
    const bool isNew = fs::create_directories(arguments.output, error);
    if (error || !fs::is_directory(arguments.output, error))
        throw Failure(ExitStatus::inputOutput, arguments.output, "cannot be the folder for the outputs; choose another name");
    return isNew;
}

/// The operations in the order of the command line; of several --mipmaps only the last one counts.
std::vector<OperationPointer> parseOperations(const std::vector<GivenOperation>& given) {
    std::vector<OperationPointer> operations;
    for (const auto& [option, value] : given) {
        const std::string text = longName(*option) + (option->operand == nullptr ? "" : ' ' + value);
        OperationPointer operation = option->parse(text, value);
        if (operation->isMipmaps()) std::erase_if(operations, [](const auto& earlier) { return earlier->isMipmaps(); });
        operations.push_back(std::move(operation));
    }
    return operations;
}

void noteIdleFilters(const ConversionRequest& request, Console& console) {
    const bool makesLevels = std::any_of(request.operations.begin(), request.operations.end(),
                                         [](const OperationPointer& operation) { return operation->isMipmaps(); });
    if (request.mipFilter != eResizeLinear && !makesLevels) console.note("--mip-filter has no effect without --mipmaps");
    if (request.resizeFilter != eResizeLinear && !request.resize) console.note("--resize-filter has no effect without --resize");
}

}  // namespace

ExitStatus runConvert(ConvertArguments arguments, Console& console) {
    console.quiet = arguments.quiet;
    ConversionRequest& request = arguments.request;
    request.overwrites = arguments.overwrite;
    if (arguments.format) request.format = parseFormat(*arguments.format);
    if (arguments.quality) request.quality = parseQuality(*arguments.quality);
    request.operations = parseOperations(arguments.operations);
    request.level = arguments.level.value_or(0);
    request.layer = arguments.layer.value_or(0);
    request.face = arguments.face.value_or(0);
    if (arguments.resize) request.resize = parseResize(*arguments.resize);
    takeOutputFromPaths(arguments);
    noteIdleFilters(request, console);
    ExitStatus status = ExitStatus::success;
    const std::vector<Job> jobs = planJobs(arguments);
    const bool isNewFolder = makeFolder(arguments);
    for (const Job& job : jobs) {
        const ExitStatus jobStatus = console.guard([&] {
            requirePictureFor(arguments, job.output);
            requireLegacyPath({job.output, request.legacyApi});
            requireWritable(job.output, arguments.overwrite, console);
            convertFile(request, job.input, job.output, console);
            return ExitStatus::success;
        });
        if (status == ExitStatus::success) status = jobStatus;
    }
    std::error_code notEmpty;
    if (isNewFolder && status != ExitStatus::success) fs::remove(arguments.output, notEmpty);
    return status;
}

}  // namespace moktextool
