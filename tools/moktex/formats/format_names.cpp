#include "moktex/formats/format_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <optional>
#include <string_view>

#include "moktex/report/console.h"
#include "moktex/report/spelling.h"

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

// clang-format off
constexpr const char* layouts[] = {
    "rgba8888", "bgra8888", "rgb888", "rgb565", "rgba4444", "rgba5551", "argb1555", "abgr2.10.10.10", "l8", "la88",
    "i8", "a8", "r8", "rg88", "argb8888:uintnorm", "xrgb8888:uintnorm", "rgba8888:sbytenorm", "r16", "rg1616",
    "rgb161616", "rgba16161616", "r16:float", "rgba16161616:float", "bgr10.11.11:float", "r32", "rgba32323232",
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

/// The letters and digits of a name alone, so that "DXT-1" is "dxt1".
std::string squeezed(std::string name) {
    std::erase_if(name, [](unsigned char letter) { return std::isalnum(letter) == 0; });
    return lowerCase(std::move(name));
}

/// Removes `ending`; whether it was there.
bool removeEnding(std::string& text, const std::string& ending) {
    if (!text.ends_with(ending)) return false;
    text.resize(text.size() - ending.size());
    return true;
}

/// A layout of equally wide channels as other tools write it: "rgba", "rgba8", "rgb16f", "r8g8b8a8_unorm".
std::optional<TextureFormat> parseEqualChannels(const std::string& name) {
    std::string text = squeezed(name);
    removeEnding(text, "unorm");
    const bool isFloat = removeEnding(text, "float") || (text.size() > 2 && removeEnding(text, "f"));
    std::string letters, bits;
    std::vector<std::string> numbers;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = std::isdigit(static_cast<unsigned char>(text[i])) != 0;
        if (!isDigit)
            letters += text[i];
        else if (i > 0 && std::isdigit(static_cast<unsigned char>(text[i - 1])) != 0)
            numbers.back() += text[i];
        else
            numbers.emplace_back(1, text[i]);
    }
    const std::string width = numbers.empty() ? "8" : numbers.front();
    const bool areEqual = static_cast<std::size_t>(std::count(numbers.begin(), numbers.end(), width)) == numbers.size();
    const bool arePlaced = numbers.size() <= 1 ? letters == text.substr(0, letters.size()) : numbers.size() == letters.size();
    if (!areEqual || !arePlaced || (width != "8" && width != "16" && width != "32")) return std::nullopt;
    for (std::size_t i = 0; i < letters.size(); ++i)
        bits += (i == 0 ? "" : ".") + width;
    const std::optional<PixelType> layout = parseLayout(letters + bits);
    if (!layout) return std::nullopt;
    return TextureFormat{*layout, isFloat ? eVarFloat : defaultChannelType(*layout)};
}

std::optional<TextureFormat> parseCompressed(const std::string& name) {
    std::string text = squeezed(name);
    removeEnding(text, "unorm");
    for (unsigned int id = 0; id < eFmtUnknown; ++id) {
        const FormatInfo& info = GetFormatInfo(id);
        if (text == squeezed(info.name) || (info.otherName != nullptr && text == squeezed(info.otherName)))
            return TextureFormat{id, eVarUByteNorm};
    }
    return std::nullopt;
}

/// A layout as nameOf() writes it.
std::optional<TextureFormat> parseLayoutAndType(const std::string& name) {
    const std::string text = lowerCase(name);
    const std::size_t colon = std::min(text.find(':'), text.size());
    const std::optional<PixelType> layout = parseLayout(text.substr(0, colon));
    if (!layout) return std::nullopt;
    if (colon == text.size()) return TextureFormat{*layout, defaultChannelType(*layout)};
    const auto type = std::find(typeNames.begin(), typeNames.end(), text.substr(colon + 1));
    if (type != typeNames.end()) return TextureFormat{*layout, static_cast<EMOKTVariableType>(type - typeNames.begin())};
    std::string all;
    for (const char* each : typeNames)
        all += (all.empty() ? "" : ", ") + std::string(each);
    throw Failure(ExitStatus::commandLine, "--format " + name + ": no such channel type; use one of " + all);
}

/// What is meant by a name that is no format, as the remedy of a message.
std::string formatRemedyFor(const std::string& name) {
    const std::string text = squeezed(name);
    if (text.find("srgb") != std::string::npos)
        return "sRGB is a colour space; use --colour-space srgb, and a format as in --format rgba8888";
    for (const char* extension : {"mok", "ktx", "ktx2", "dds", "h", "png", "jpg", "jpeg"}) {
        if (text == extension) return "the kind of file follows from the output's name, as in -o OUT.dds";
    }
    std::vector<std::string> known(std::begin(layouts), std::end(layouts));
    for (unsigned int id = 0; id < eFmtUnknown; ++id) {
        known.emplace_back(GetFormatInfo(id).name);
        if (GetFormatInfo(id).otherName != nullptr) known.emplace_back(GetFormatInfo(id).otherName);
    }
    const std::string nearest = nearestName(name, known);
    return (nearest.empty() ? "" : "did you mean " + nearest + "? ") + std::string(formatRemedy);
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

std::span<const char* const> commonLayouts() {
    return layouts;
}

TextureFormat parseFormat(const std::string& name) {
    std::optional<TextureFormat> format = parseCompressed(name);
    if (format) return *format;
    format = parseLayoutAndType(name);
    const std::optional<TextureFormat> equal = parseEqualChannels(name);
    if (equal && (!format || !layoutProblem(*format).empty())) format = equal;
    if (!format) throw Failure(ExitStatus::commandLine, "--format " + name + ": no such format; " + formatRemedyFor(name));
    const std::string problem = layoutProblem(*format);
    if (!problem.empty()) throw Failure(ExitStatus::notSupported, "--format " + name + ": " + problem + "; " + formatRemedy);
    return *format;
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
        const bool isNamed = lowerCase(text) == names[step];
        if (isNamed || text == std::to_string(step)) return {step, isNamed};
    }
    throw Failure(ExitStatus::commandLine, "--quality " + text + ": no such quality; use " + qualityHelp);
}

ECompressorQuality encoderQuality(const std::optional<Quality>& quality, PixelType format) {
    if (!quality) return defaultQuality;
    const bool isNamedETC1 = quality->isNamed && format.id == eFmtETC1;
    return static_cast<ECompressorQuality>(isNamedETC1 ? namedETC1[quality->step] : quality->step);
}

}  // namespace moktextool
