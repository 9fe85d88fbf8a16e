#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "moktex/commands/commands.h"
#include "moktex/formats/format_names.h"
#include "moktex/report/console.h"
#include "moktex/report/graphics_api_numbers.h"

using namespace moktexture;
using Json = nlohmann::ordered_json;

namespace moktextool {

namespace {

constexpr const char* explanation =
    "An uncompressed format is written as its channels and their bits: letters r g b a, l (luminance), i (intensity),\n"
    "x (ignored), then a number for each, joined or with dots, 'rgb565', 'abgr2.10.10.10'. Channels of 8, 16 or 32 bits\n"
    "are stored one after the other; others are packed in one word, the first in its highest bits.\n"
    "The channel type follows a colon: ubytenorm, sbytenorm, ubyte, sbyte, ushortnorm, sshortnorm, ushort, sshort,\n"
    "uintnorm, sintnorm, uint, sint, float. The default is unsigned and normalised, as wide as the\n"
    "channels or the word; float for channels of 32 bits.\n";

constexpr const char* numbersExplanation =
    "OpenGL's numbers are internal format, format and type; '-' is a format without a number. .ktx files hold formats\n"
    "with an OpenGL number, .dds files those with a Direct3D 9 or DXGI number.\n";

/// The numbers of a format in linear colour space, and that of DXGI also in sRGB.
Json describeNumbers(const TextureFormat& format) {
    CMOKTextureHeader header;
    header.setPixelFormat(format.pixelType);
    header.setChannelType(format.channelType);
    Json numbers = describeAPINumbers(header);
    header.setColourSpace(eColourSpaceSRGB);
    numbers["dxgiSRGB"] = describeAPINumbers(header)["dxgi"];
    return numbers;
}

Json describe(const TextureFormat& format, bool withNumbers) {
    CMOKTextureHeader header;
    header.setPixelFormat(format.pixelType);
    const FormatInfo* info = findCompressed(format.pixelType);
    Json description = {{"name", nameOf(format)},
                        {"otherName", info != nullptr && info->otherName != nullptr ? Json(info->otherName) : Json()},
                        {"compressed", info != nullptr},
                        {"bitsPerPixel", header.getBitsPerPixel()},
                        {"blockWidth", info != nullptr ? info->sizeBlock.width : 1},
                        {"blockHeight", info != nullptr ? info->sizeBlock.height : 1},
                        {"decodes", info == nullptr || info->hasDecoder},
                        {"encodes", info == nullptr || info->hasEncoder}};
    if (withNumbers) description["apiNumbers"] = describeNumbers(format);
    return description;
}

Json describeAll(bool withNumbers) {
    Json formats = Json::array();
    for (unsigned int id = 0; id < eFmtUnknown; ++id)
        formats.push_back(describe({id, eVarUByteNorm}, withNumbers));
    for (const char* layout : commonLayouts())
        formats.push_back(describe(parseFormat(layout), withNumbers));
    return formats;
}

void printTable(const Json& formats, std::ostream& out) {
    const auto row = [&out](const auto& name, const auto& bits, const auto& block, const auto& decodes, const auto& encodes,
                            const auto& other) {
        out << std::left << std::setw(20) << name << std::right << std::setw(14) << bits << std::setw(8) << block << std::setw(9)
            << decodes << std::setw(9) << encodes << "  " << other << '\n';
    };
    row("format", "bits per pixel", "block", "decodes", "encodes", "other name");
    for (const Json& format : formats) {
        const std::string block = format["blockWidth"].dump() + 'x' + format["blockHeight"].dump();
        row(format["name"].get<std::string>(), format["bitsPerPixel"].dump(), block, format["decodes"].get<bool>() ? "yes" : "no",
            format["encodes"].get<bool>() ? "yes" : "no",
            format["otherName"].is_null() ? "" : format["otherName"].get<std::string>());
    }
    out << '\n' << explanation;
}

void printNumbers(const Json& formats, std::ostream& out) {
    const auto row = [&out](const std::string& name, const std::string& openGL, const std::string& openGLES,
                            const std::string& direct3D9, const std::string& dxgi, const std::string& dxgiSRGB) {
        out << std::left << std::setw(26) << name << std::setw(22) << openGL << std::setw(22) << openGLES << std::setw(12)
            << direct3D9 << std::setw(6) << dxgi << dxgiSRGB << '\n';
    };
    row("format", "OpenGL", "OpenGL ES", "Direct3D 9", "DXGI", "DXGI sRGB");
    for (const Json& format : formats) {
        const Json& numbers = format["apiNumbers"];
        row(format["name"], openGLText(numbers["openGL"]), openGLText(numbers["openGLES"]), direct3D9Text(numbers["direct3D9"]),
            dxgiText(numbers["dxgi"]), dxgiText(numbers["dxgiSRGB"]));
    }
    out << '\n' << numbersExplanation;
}

}  // namespace

ExitStatus runFormats(const FormatsArguments& arguments, Console& console) {
    const Json formats = describeAll(arguments.api);
    if (arguments.json)
        console.out << formats.dump(2) << '\n';
    else if (arguments.api)
        printNumbers(formats, console.out);
    else
        printTable(formats, console.out);
    return ExitStatus::success;
}

}  // namespace moktextool
