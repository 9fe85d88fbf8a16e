#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "moktex/commands/commands.h"
#include "moktex/files/texture_file.h"
#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_size.h"
#include "moktex/report/console.h"
#include "moktex/report/graphics_api_numbers.h"

using namespace moktexture;
using Json = nlohmann::ordered_json;

namespace moktextool {

namespace {

/// Strings from files may hold any bytes; invalid UTF-8 is replaced.
std::string dump(const Json& json, int indent = -1) {
    return json.dump(indent, ' ', indent < 0, Json::error_handler_t::replace);
}

std::string orientationText(const CMOKTextureHeader& header) {
    const std::string x = header.getOrientation(eAxisX) != 0 ? "left" : "right";
    const std::string y = header.getOrientation(eAxisY) != 0 ? "up" : "down";
    return x + ", " + y + (header.getOrientation(eAxisZ) != 0 ? ", out" : ", in");
}

/// The metadata entries that the library itself defines.
Json describeTopics(const CMOKTextureHeader& header) {
    Json topics = Json::object();
    if (header.hasMetaData(MOKTextureHeaderV3::magic, 3)) topics["orientation"] = orientationText(header);
    if (header.hasMetaData(MOKTextureHeaderV3::magic, 4)) {
        unsigned int x = 0, y = 0, z = 0;
        header.getBorder(x, y, z);
        topics["border"] = {x, y, z};
    }
    if (header.isBumpMap())
        topics["bumpMap"] = {{"scale", header.getBumpMapScale()}, {"order", header.getBumpMapOrder().c_str()}};
    if (const CMOKTString order = header.getCubeMapOrder(); !order.empty()) topics["cubeMapOrder"] = order.c_str();
    if (header.getNumTextureAtlasMembers() > 0) topics["textureAtlasFloats"] = header.getNumTextureAtlasMembers();
    return topics;
}

Json describeBlocks(const CMOKTextureHeader& header) {
    Json blocks = Json::array();
    const CMOKTextureHeader::MetaDataMap& owners = header.getMetaDataMap();
    for (unsigned int owner = 0; owner < owners.GetSize(); ++owner) {
        const auto& entries = *owners.GetDataAtIndex(owner);
        for (unsigned int entry = 0; entry < entries.GetSize(); ++entry) {
            const MetaDataBlock& block = *entries.GetDataAtIndex(entry);
            blocks.push_back({{"fourCC", block.fourCC}, {"key", block.key}, {"bytes", block.dataSize}});
        }
    }
    return blocks;
}

Json describeLevels(const CMOKTextureHeader& header) {
    Json levels = Json::array();
    for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level) {
        levels.push_back({{"width", header.getWidth(level)},
                          {"height", header.getHeight(level)},
                          {"depth", header.getDepth(level)},
                          {"bytes", imageSize(header.getPixelType(), levelSize(sizeOf(header), level)) *
                                        header.getNumArrayMembers() * header.getNumFaces()}});
    }
    return levels;
}

Json describeTexture(const TextureInput& input, const std::string& file) {
    const CMOKTextureHeader& header = input.texture.getHeader();
    Json flags = Json::array();
    if (header.isFileCompressed()) flags.push_back("fileCompressed");
    if (header.isPreMultiplied()) flags.push_back("premultiplied");
    return {{"file", file},
            {"kind", input.isPicture() ? "picture" : "texture"},
            {"format", nameOf(formatOf(header))},
            {"bitsPerPixel", header.getBitsPerPixel()},
            {"width", header.getWidth()},
            {"height", header.getHeight()},
            {"depth", header.getDepth()},
            {"mipLevels", header.getNumMIPLevels()},
            {"arrayMembers", header.getNumArrayMembers()},
            {"faces", header.getNumFaces()},
            {"colourSpace", nameOf(header.getColourSpace())},
            {"channelType", nameOf(header.getChannelType())},
            {"flags", flags},
            {"apiNumbers", describeAPINumbers(header)},
            {"topics", describeTopics(header)},
            {"metadata", describeBlocks(header)},
            {"bytes", textureSize(header)},
            {"levels", describeLevels(header)}};
}

std::string sizeText(const Json& level) {
    const std::uint32_t depth = level["depth"];
    return dump(level["width"]) + " x " + dump(level["height"]) + (depth > 1 ? " x " + std::to_string(depth) : "");
}

std::string flagsText(const Json& flags) {
    std::string text;
    for (const Json& flag : flags)
        text += (text.empty() ? "" : ", ") + flag.get<std::string>();
    return text.empty() ? "none" : text;
}

void printTexture(const Json& texture, std::ostream& out) {
    const auto row = [&out](const std::string& name, const std::string& value) {
        out << "  " << std::left << std::setw(15) << name << value << '\n';
    };
    out << printable(texture["file"]) << " (" << texture["kind"].get<std::string>() << ")\n";
    row("format", texture["format"].get<std::string>() + ", " + dump(texture["bitsPerPixel"]) + " bits per pixel");
    row("size", sizeText(texture));
    row("MIP levels", dump(texture["mipLevels"]));
    row("array layers", dump(texture["arrayMembers"]));
    row("faces", dump(texture["faces"]));
    row("colour space", texture["colourSpace"]);
    row("channel type", texture["channelType"]);
    row("flags", flagsText(texture["flags"]));
    const Json& numbers = texture["apiNumbers"];
    row("OpenGL", openGLText(numbers["openGL"]));
    row("OpenGL ES", openGLText(numbers["openGLES"]));
    row("Direct3D 9", direct3D9Text(numbers["direct3D9"]));
    row("DXGI", dxgiText(numbers["dxgi"]));
    row("metadata", texture["metadata"].empty() ? "none" : std::to_string(texture["metadata"].size()) + " blocks");
    for (const auto& [topic, value] : texture["topics"].items())
        row("", topic + ' ' + dump(value));
    for (const Json& block : texture["metadata"])
        row("", "block of " + dump(block["fourCC"]) + ", key " + dump(block["key"]) + ": " + dump(block["bytes"]) + " bytes");
    row("bytes", dump(texture["bytes"]));
    for (std::size_t level = 0; level < texture["levels"].size(); ++level) {
        const Json& description = texture["levels"][level];
        row("level " + std::to_string(level), sizeText(description) + ", " + dump(description["bytes"]) + " bytes");
    }
}

}  // namespace

ExitStatus runInfo(const InfoArguments& arguments, Console& console) {
    ExitStatus status = ExitStatus::success;
    Json descriptions = Json::array();
    for (const std::string& file : arguments.files) {
        const ExitStatus fileStatus = console.guard([&] {
            descriptions.push_back(describeTexture(readTexture(file, console), displayName(file)));
            if (!arguments.json) printTexture(descriptions.back(), console.out);
            return ExitStatus::success;
        });
        if (status == ExitStatus::success) status = fileStatus;
    }
    if (arguments.json) console.out << dump(descriptions, 2) << '\n';
    return status;
}

}  // namespace moktextool
