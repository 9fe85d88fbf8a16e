#include "moktex/formats/format_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <optional>
#include <string_view>

#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

// clang-format off
// By EMOKTVariableType.
constexpr std::array typeNames = {
    "ubytenorm",  "sbytenorm",  "ubyte",  "sbyte",
    "ushortnorm", "sshortnorm", "ushort", "sshort",
    "uintnorm",   "sintnorm",   "uint",   "sint",
    "float",
};
// clang-format on

constexpr const char* formatRemedy = "'moktex formats' lists them";

unsigned int storageWidth(EMOKTVariableType type) {
    return type <= eVarSByte ? 8 : type <= eVarSShort ? 16 : 32;
}

/// Letters and bits of the channels of a layout, without unused positions.
struct Channels {
    std::string letters;
    std::vector<unsigned int> bits;

    explicit Channels(PixelType format) {
        for (int i = 0; i < 4 && format.layout.channelName[i] != 0; ++i) {
            letters += static_cast<char>(format.layout.channelName[i]);
            bits.push_back(format.layout.channelBits[i]);
        }
    }
    unsigned int total() const {
        unsigned int sum = 0;
        for (const unsigned int count : bits)
            sum += count;
        return sum;
    }
    bool allHave(unsigned int width) const {
        return std::all_of(bits.begin(), bits.end(), [=](unsigned int b) { return b == width; });
    }
    bool someHave(unsigned int width) const { return std::count(bits.begin(), bits.end(), width) > 0; }
};

/// The numbers in "8888", "16161616" or "2.10.10.10"; empty if there are not `count` of them.
std::vector<unsigned int> splitBits(const std::string& text, std::size_t count) {
    std::vector<std::string> parts;
    if (text.find('.') != std::string::npos) {
        for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
            end = text.find('.', start);
            parts.push_back(text.substr(start, end - start));
        }
    } else if (count != 0 && (text.size() == count || text.size() == 2 * count)) {
        const std::size_t digits = text.size() / count;
        for (std::size_t i = 0; i < count; ++i)
            parts.push_back(text.substr(i * digits, digits));
    }
    std::vector<unsigned int> bits;
    for (const std::string& part : parts) {
        const bool isNumber = part.find_first_not_of("0123456789") == std::string::npos && (part.size() == 1 || part.size() == 2);
        if (!isNumber || part[0] == '0') return {};
        bits.push_back(static_cast<unsigned int>(std::stoul(part)));
    }
    return bits.size() == count ? bits : std::vector<unsigned int>{};
}

std::optional<PixelType> parseLayout(const std::string& text) {
    const std::size_t letters = std::min(text.find_first_not_of("rgbalix"), text.size());
    const std::vector<unsigned int> bits = splitBits(text.substr(letters), letters);
    if (letters > 4 || bits.empty()) return std::nullopt;
    PixelType format;
    for (std::size_t i = 0; i < letters; ++i) {
        format.layout.channelName[i] = static_cast<std::uint8_t>(text[i]);
        format.layout.channelBits[i] = static_cast<std::uint8_t>(bits[i]);
    }
    return format;
}

std::string layoutText(PixelType format) {
    const Channels channels(format);
    const auto isShort = [](unsigned int b) { return b < 10; };
    const auto shortOnes = static_cast<std::size_t>(std::count_if(channels.bits.begin(), channels.bits.end(), isShort));
    const bool needsDots = shortOnes != 0 && shortOnes != channels.bits.size();
    std::string text = channels.letters;
    for (std::size_t i = 0; i < channels.bits.size(); ++i)
        text += (needsDots && i > 0 ? "." : "") + std::to_string(channels.bits[i]);
    return text;
}

std::string wordProblem(const Channels& channels, EMOKTVariableType type) {
    const unsigned int storage = storageWidth(type);
    if (channels.allHave(storage)) return "";
    if (channels.someHave(storage) || channels.total() / channels.bits.size() == storage)
        return "some channels are as wide as the channel type and others are not";
    if (channels.total() > (isSigned(type) ? 32u : 64u)) return "too many bits to be packed in one word";
    if (*std::max_element(channels.bits.begin(), channels.bits.end()) > 32) return "a channel has more than 32 bits";
    return "";
}

constexpr std::array names = {"fastest", "fast", "medium", "thorough", "verythorough", "exhaustive"};

/// ETC1's qualities by name. Even qualities encode some dark blocks badly, so names select odd ones.
constexpr std::array<unsigned int, names.size()> namedETC1 = {1, 1, 3, 3, 5, 5};

constexpr ECompressorQuality defaultQuality = eCompressorQuality3;

}  // namespace

const FormatInfo* findCompressed(PixelType format) {
    const FormatInfo& info = GetFormatInfo(format);
    return info.format == eFmtUnknown ? nullptr : &info;
}

TextureFormat parseFormat(const std::string& name) {
    std::string text = name;
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (unsigned int id = 0; id < eFmtUnknown; ++id) {
        const FormatInfo& info = GetFormatInfo(id);
        if (text == info.name || (info.otherName != nullptr && text == info.otherName)) return {id, eVarUByteNorm};
    }
    const std::size_t colon = std::min(text.find(':'), text.size());
    const std::optional<PixelType> layout = parseLayout(text.substr(0, colon));
    if (!layout) throw Failure(ExitStatus::commandLine, "--format " + name + ": no such format; " + formatRemedy);
    TextureFormat format{*layout, defaultChannelType(*layout)};
    if (colon != text.size()) {
        const auto type = std::find(typeNames.begin(), typeNames.end(), text.substr(colon + 1));
        if (type == typeNames.end())
            throw Failure(ExitStatus::commandLine, "--format " + name + ": no such channel type; " + formatRemedy);
        format.channelType = static_cast<EMOKTVariableType>(type - typeNames.begin());
    }
    const std::string problem = layoutProblem(format);
    if (!problem.empty()) throw Failure(ExitStatus::notSupported, "--format " + name + ": " + problem + "; " + formatRemedy);
    return format;
}

std::string nameOf(const TextureFormat& format) {
    if (const FormatInfo* info = findCompressed(format.pixelType)) return info->name;
    if (isCompressed(format.pixelType)) return "unknown-" + std::to_string(format.pixelType.id);
    if (layoutProblem(format).empty())
        return layoutText(format.pixelType) +
               (format.channelType == defaultChannelType(format.pixelType) ? "" : ":" + nameOf(format.channelType));
    char number[32];
    std::snprintf(number, sizeof number, "layout-0x%08X%08X", format.pixelType.part.high, format.pixelType.part.low);
    return number;
}

std::string nameOf(EMOKTVariableType type) {
    return type < typeNames.size() ? typeNames[type] : "unknown-" + std::to_string(type);
}

std::string nameOf(EMOKTColourSpace colourSpace) {
    return colourSpace == eColourSpaceLinear ? "linear"
           : colourSpace == eColourSpaceSRGB ? "srgb"
                                             : "unknown-" + std::to_string(colourSpace);
}

EMOKTVariableType defaultChannelType(PixelType layout) {
    const Channels channels(layout);
    if (channels.allHave(32)) return eVarFloat;
    const unsigned int width = channels.allHave(8) ? 8 : channels.allHave(16) ? 16 : channels.total();
    return width <= 8 ? eVarUByteNorm : width <= 16 ? eVarUShortNorm : eVarUIntNorm;
}

std::string layoutProblem(const TextureFormat& format) {
    const Channels channels(format.pixelType);
    const std::size_t count = channels.bits.size();
    for (std::size_t i = 0; i < 4; ++i) {
        const bool isUsed = i < count;
        if (isUsed != (format.pixelType.layout.channelBits[i] != 0) || isUsed != (format.pixelType.layout.channelName[i] != 0))
            return "a channel without bits, or bits without a channel";
        if (isUsed && std::count(channels.letters.begin(), channels.letters.end(), channels.letters[i]) > 1)
            return "a channel appears twice";
    }
    if (count == 0 || channels.letters.find_first_not_of("rgbalix") != std::string::npos)
        return "channels must be of r g b a l i x";
    if (format.channelType > eVarFloat) return "the channel type is unknown";
    if (channels.total() % 8 != 0) return "the bits of a pixel must add up to whole bytes";
    if (format.channelType != eVarFloat) return wordProblem(channels, format.channelType);
    const bool areSmall =
        std::all_of(channels.bits.begin(), channels.bits.end(), [](unsigned int b) { return b == 10 || b == 11; });
    if (channels.allHave(32) || channels.allHave(16) || areSmall) return "";
    return "float channels must have 32 bits, 16 bits, or 11 and 10 bits";
}

void requireDecodable(const TextureFormat& format, const std::string& file) {
    if (isCompressed(format.pixelType) && !GetFormatInfo(format.pixelType).hasDecoder)
        throw Failure(ExitStatus::notSupported, file,
                      "its format " + nameOf(format) + " has no decoder; 'moktex formats' lists those that have");
    if (!isCompressed(format.pixelType) && !layoutProblem(format).empty())
        throw Failure(ExitStatus::notSupported, file,
                      "its pixel " + nameOf(format) + " cannot be read: " + layoutProblem(format));
}

Quality parseQuality(const std::string& text) {
    for (unsigned int step = 0; step < names.size(); ++step) {
        if (text == names[step] || text == std::to_string(step)) return {step, text == names[step]};
    }
    throw Failure(ExitStatus::commandLine, "--quality " + text + ": no such quality; use " + qualityHelp);
}

ECompressorQuality encoderQuality(const std::optional<Quality>& quality, PixelType format) {
    if (!quality) return defaultQuality;
    const bool isNamedETC1 = quality->isNamed && format.id == eFmtETC1;
    return static_cast<ECompressorQuality>(isNamedETC1 ? namedETC1[quality->step] : quality->step);
}

}  // namespace moktextool
