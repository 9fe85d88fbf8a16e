#include <CLI/CLI.hpp>
#include <iomanip>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>

#include "command_line.h"
#include "console.h"
#include "format_names.h"

using namespace moktexture;
using Json = nlohmann::ordered_json;

namespace moktextool {

namespace {

/// The uncompressed layouts that are met most; any other that follows the rule works as well.
constexpr const char* commonLayouts[] = {
    "rgba8888",           "bgra8888", "rgb888",      "rgb565",    "rgba4444",     "rgba5551",  "argb1555",
    "abgr2.10.10.10",     "l8",       "la88",        "i8",        "a8",           "r8",        "rg88",
    "rgba8888:sbytenorm", "r16",      "rg1616",      "rgb161616", "rgba16161616", "r16:float", "rgba16161616:float",
    "bgr10.11.11:float",  "r32",      "rgba32323232"};

constexpr const char* explanation =
    "The first generation of moktc is encoded at quality 0.\n"
    "An uncompressed format is written as its channels and their bits: letters r g b a, l (luminance), i (intensity),\n"
    "x (ignored), then a number for each, joined or with dots, 'rgb565', 'abgr2.10.10.10'. Channels of 8, 16 or 32 bits\n"
    "lie one behind the other; others are packed in one word, the first in its highest bits.\n"
    "The channel type follows a colon: ubytenorm, sbytenorm, ubyte, sbyte, ushortnorm, sshortnorm, ushort, sshort,\n"
    "uintnorm, sintnorm, uint, sint, float. It may be left out where it is the usual one: unsigned and normalised, as\n"
    "wide as the channels or the word; float for channels of 32 bits.\n";

Json describe(const TextureForm& form) {
    CMOKTextureHeader header;
    header.setPixelFormat(form.format);
    const CompressedFormat* row = findCompressed(form.format);
    return {{"name", nameOf(form)},
            {"otherName", row != nullptr && row->otherName != nullptr ? Json(row->otherName) : Json()},
            {"compressed", row != nullptr},
            {"bitsPerPixel", header.getBitsPerPixel()},
            {"blockWidth", row != nullptr ? row->blockWidth : 1},
            {"blockHeight", row != nullptr ? row->blockHeight : 1},
            {"decodes", row == nullptr || row->hasDecoder},
            {"encodes", row == nullptr || row->hasEncoder}};
}

Json describeAll() {
    Json formats = Json::array();
    for (const CompressedFormat& row : compressedFormats())
        formats.push_back(describe({row.id, eVarUByteNorm}));
    for (const char* layout : commonLayouts)
        formats.push_back(describe(parseForm(layout)));
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

}  // namespace

void addFormatsCommand(CLI::App& app, Console& console, ExitStatus& status) {
    CLI::App& command = *app.add_subcommand("formats", "Lists the names of pixel formats and what can be done with them.");
    const auto json = std::make_shared<bool>(false);
    command.footer("Example: moktex formats --json");
    command.add_flag("--json", *json, "Print JSON");
    command.callback([json, &console, &status] {
        const Json formats = describeAll();
        if (*json)
            console.out << formats.dump(2) << '\n';
        else
            printTable(formats, console.out);
        status = ExitStatus::success;
    });
}

}  // namespace moktextool
