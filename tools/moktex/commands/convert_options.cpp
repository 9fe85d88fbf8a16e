// The options and the help text of `moktex convert`.

#include "moktex/commands/convert_options.h"

#include "moktex/files/container.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr const char* convertDescription =
    "Converts pictures (PNG, JPEG, TGA, BMP, HDR) and textures (.mok, .ktx, .ktx2, .dds) to textures (the same, and C\n"
    "source in .h) or pictures (.png).";

const std::vector<std::string> convertExamples = {
    "photo.png photo.mok --format dxt1 --mipmaps --resize pow2", "photo.mok back.png",
    "photo.png photo.dds --format dxt5 --mipmaps --resize pow2", "photo.mok old.mok --legacy d3d-a",
    "a.png b.jpg -o textures --format dxt5 --overwrite",
};

constexpr const char* convertDetails =
    "  Operations are applied in the order in which they are given, --mipmaps among them; --resize is applied before all\n"
    "  of them. They work on the stored values; only averages of sRGB colours are made in linear light.\n"
    "\nFilters of --resize and --mipmaps, all centred on the pixels:\n"
    "  nearest: the nearest pixel. linear: the mean of the area that a pixel covers; between pixels when enlarging.\n"
    "  cubic: Catmull-Rom, sharper. Colours count by their alpha, unless they are premultiplied or a normal map, and pixels\n"
    "  that are all transparent keep their mean colour. These are the tool's own; Resize() and GenerateMIPMaps() of the\n"
    "  library sample points of the stored values.\n"
    "\nBlocks:\n"
    "  Where a side is no multiple of the format's block, the last blocks are padded by repeating the edge.\n"
    "\nQuality:\n"
    "  DXT and packed formats have only one.\n"
    "  moktc, moktc2: each is slower than the one before and usually closer to the picture, but 5 of moktc2 equals 4;\n"
    "  5 takes minutes for large pictures. 0 of moktc is a separate, fast encoder.\n"
    "  etc1: even numbers weight the channels equally, odd ones as the eye does; names select the odd ones (1 1 3 3 5 5).\n"
    "\nOutput:\n"
    "  OUT ends in .mok, .ktx, .ktx2, .dds, .h or .png. Where it cannot hold the format of an uncompressed input, it gets an\n"
    "  RGBA format that it holds, unless --format asks for one; the result's line names it. The array in a .h file is named\n"
    "  after the file. Several inputs, or an OUT that is a folder, give one OUT/NAME.mok each; a missing folder is created.\n"
    "  '-' is standard input or output; standard output receives a .mok texture.\n"
    "  A PNG holds MIP level 0, array layer 0, face 0 of a texture unless --level, --layer or --face select another; with\n"
    "  --format the picture is encoded in that format and decoded again.\n"
    "\nColour:\n"
    "  Pictures of 8 and 16 bits are taken as sRGB, HDR pictures as linear. The output keeps the colour space and the values\n"
    "  of the input unless --colour-space asks for the other one; a message reports each curve that is applied.\n"
    "  A normal map is always linear.";

void takeOutput(const std::string& value, ConvertArguments& arguments) {
    if (value.empty()) throw Failure(ExitStatus::commandLine, "--output: a file's name is empty; check where it comes from");
    arguments.output = value;
}

void addSizeOptions(Command& command, ConvertArguments& arguments) {
    const std::vector<std::pair<std::string, EResizeMode>> filters = {
        {"nearest", eResizeNearest}, {"linear", eResizeLinear}, {"cubic", eResizeCubic}};
    ConversionRequest& request = arguments.request;
    command.addChoice("--mip-filter", request.mipFilter, filters, "Filter of --mipmaps; default linear");
    command.addText("--resize", "WxH|pow2", arguments.resize, "Change the size first; pow2: to the nearest powers of two");
    command.addChoice("--resize-filter", request.resizeFilter, filters, "Filter of --resize; default linear");
    command.addFlag(
        "--no-linear-light", [&request] { request.linearLight = false; },
        "Average the stored values of sRGB colours, not linear light");
    command.addFlag(
        "--no-alpha-weight", [&request] { request.weightsByAlpha = false; }, "Average colours alike, whatever their alpha");
}

/// The operations. Their help is operationHelp().
void addOperationOptions(Command& command, ConvertArguments& arguments) {
    for (const OperationOption& option : operationOptions()) {
        const auto take = [&arguments, &option](const std::string& value) { arguments.operations.push_back({&option, value}); };
        if (option.operand == nullptr)
            command.addFlag(
                option.names, [take] { take(""); }, "");
        else if (option.operand[0] == '[')
            command.addOptionalNumber(option.names, "all", take, "");
        else
            command.addValue(option.names, option.operand, take, "");
    }
}

void addColourOptions(Command& command, ConversionRequest& request) {
    const std::vector<std::pair<std::string, EMOKTColourSpace>> spaces = {{"linear", eColourSpaceLinear},
                                                                          {"srgb", eColourSpaceSRGB}};
    command.addChoice("--assign-colour-space", request.assignedColourSpace, spaces,
                      "Colour space of the input; the values stay unchanged");
    command.addChoice("--colour-space", request.colourSpace, spaces, "Colour space of the output; the curve is applied");
    command.addFlag("--dither", request.dither, "Dither formats below 32 bits per pixel");
}

void addOutputOptions(Command& command, ConvertArguments& arguments) {
    ConversionRequest& request = arguments.request;
    std::vector<std::pair<std::string, ELegacyApi>> apis;
    for (const auto& [name, api] : legacyApiNames())
        apis.emplace_back(name, api);
    command.addChoice("--legacy", request.legacyApi, apis,
                      "Write .mok in the legacy layout, with the format numbers of that API");
    const std::vector<std::pair<std::string, EContainerLayout>> layouts = {{"standard", eLayoutStandard}, {"own", eLayoutOwn}};
    command.addChoice(
        "--layout", request.layout, layouts,
        "Arrangement of .ktx and .dds files: as published, or as the library's saveFile() writes them; default standard");
    command.addNumber("--level", arguments.level, "MIP level to write as a PNG; default 0");
    command.addNumber("--layer,--member", arguments.layer, "Array layer to write as a PNG; default 0");
    command.addNumber("--face", arguments.face, "Cube face to write as a PNG; default 0");
    command.addFlag("-y,--overwrite", arguments.overwrite, "Replace existing output files");
    command.addFlag("--quiet", arguments.quiet, "Print only errors and what the result loses or changes");
}

}  // namespace

Command convertCommand(ConvertArguments& arguments) {
    Command command("convert", {"[options] IN OUT", "[options] IN... -o FOLDER"}, convertDescription, convertExamples);
    command.addValue(
        "-o,--output", "OUT", [&arguments](const std::string& value) { takeOutput(value, arguments); },
        "Output file, or a folder for several inputs");
    command.addText("-f,--format", "NAME", arguments.format,
                    "Format of the output, see 'moktex formats'; default that of the input");
    command.addText("-q,--quality", "Q", arguments.quality, std::string("Effort of the encoder: ") + qualityHelp + "; default 3");
    addSizeOptions(command, arguments);
    addOperationOptions(command, arguments);
    addColourOptions(command, arguments.request);
    addOutputOptions(command, arguments);
    command.setFooter("Operations, each with an example:\n" + operationHelp() + convertDetails);
    return command;
}

}  // namespace moktextool
