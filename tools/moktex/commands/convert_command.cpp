#include <algorithm>
#include <filesystem>
#include <set>

#include "moktex/commands/commands.h"
#include "moktex/files/container.h"
#include "moktex/files/texture_file.h"
#include "moktex/formats/format_names.h"
#include "moktex/operations/conversion.h"
#include "moktex/operations/image_operation.h"
#include "moktex/report/console.h"

namespace fs = std::filesystem;
using namespace moktexture;

namespace moktextool {

namespace {

ResizeRequest parseResize(const std::string& text) {
    if (text == "pow2") return {0, 0};
    const std::size_t cross = std::min(text.find('x'), text.size());
    const ResizeRequest size{parseEdge(text.substr(0, cross)), cross < text.size() ? parseEdge(text.substr(cross + 1)) : 0};
    if (size.width == 0 || size.height == 0)
        throw Failure(ExitStatus::commandLine, "--resize " + text + ": no size; use WIDTHxHEIGHT of 1 to 65536 each, or pow2");
    return size;
}

/// One input and its output.
struct Job {
    std::string input;
    std::string output;
};

/// Without -o, the last of two paths is the output.
void takeOutputFromPaths(ConvertArguments& arguments) {
    if (!arguments.output.empty()) return;
    if (arguments.paths.size() != 2)
        throw Failure(ExitStatus::commandLine, arguments.paths.front(), "no output; name it by -o OUT");
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
            throw Failure(ExitStatus::commandLine, "standard input has no name for a file in a folder; name a file by -o");
        jobs.push_back({input, (fs::path(output) / fs::path(input).stem()).string() + ".mok"});
        if (!taken.insert(jobs.back().output).second)
            throw Failure(ExitStatus::commandLine, input,
                          "two inputs would become " + jobs.back().output + "; convert them one by one");
    }
    return jobs;
}

/// Creates the folder for several outputs if it is missing; true if it did.
bool makeFolder(const ConvertArguments& arguments) {
    if (!goesToFolder(arguments)) return false;
    std::error_code error;
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

}  // namespace

ExitStatus runConvert(ConvertArguments arguments, Console& console) {
    console.quiet = arguments.quiet;
    ConversionRequest& request = arguments.request;
    if (arguments.format) request.format = parseFormat(*arguments.format);
    if (arguments.quality) request.quality = parseQuality(*arguments.quality);
    request.operations = parseOperations(arguments.operations);
    if (arguments.resize) request.resize = parseResize(*arguments.resize);
    takeOutputFromPaths(arguments);
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

}  // namespace moktextool
