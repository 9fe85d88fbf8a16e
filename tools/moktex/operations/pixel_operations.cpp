// Operations that change the values of pixels.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "moktex/formats/texture_format.h"
#include "moktex/operations/image_operation.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr std::string_view channelLetters = "rgba";

EChannelName channelOf(char letter) {
    return static_cast<EChannelName>(eChannelRed + channelLetters.find(letter));
}

/// A finite number, or nothing for any other text.
std::optional<double> parseNumber(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(static_cast<float>(number))) return {};
    return number;
}

class Premultiply : public ImageOperation {
public:
    using ImageOperation::ImageOperation;

    void plan(PlannedTexture& texture) const override {
        if (texture.isPremultiplied)
            refuse(texture, ExitStatus::notSupported, "the colours are multiplied by alpha already; leave it out");
        if (texture.unit != 255)
            refuse(texture, ExitStatus::notSupported,
                   "would reduce more than 8 bits a channel to 8; convert it to an 8-bit format first, as by "
                   "--format rgba8888");
        texture.isPremultiplied = true;
    }
    OperandFormat operandFormat() const override { return OperandFormat::bytes; }
    bool apply(CMOKTexture& texture, const OperationContext&) const override { return PreMultiplyAlpha(texture); }
};

class BleedColours : public ImageOperation {
public:
    using ImageOperation::ImageOperation;

    void plan(PlannedTexture& texture) const override {
        if (texture.isPremultiplied)
            refuse(texture, ExitStatus::notSupported,
                   "transparent pixels of premultiplied colours must stay black; leave it out, or give it before --premultiply");
    }
    bool apply(CMOKTexture& texture, const OperationContext&) const override { return Bleed(texture); }
};

class SetChannel : public ImageOperation {
public:
    SetChannel(const std::string& givenText, EChannelName setChannel, double setValue)
        : ImageOperation(givenText), channel(setChannel), value(setValue) {}

    void plan(PlannedTexture& texture) const override {
        const bool isWhole = value == std::floor(value) && text.find('.') == std::string::npos;
        if (texture.unit == 1 || (isWhole && value >= 0 && value <= texture.unit)) return;
        const std::string largest = std::to_string(static_cast<unsigned int>(texture.unit));
        refuse(texture, ExitStatus::commandLine, "the texture's channels hold whole numbers; use 0 to " + largest);
    }
    bool apply(CMOKTexture& texture, const OperationContext& context) const override {
        EChannelName channels[] = {channel};
        if (texture.getChannelType() == eVarFloat) {
            float values[] = {static_cast<float>(value) / static_cast<float>(context.unit)};
            return SetChannelsFloat(texture, 1, channels, values);
        }
        unsigned int values[] = {static_cast<unsigned int>(value)};
        return SetChannels(texture, 1, channels, values);
    }

private:
    const EChannelName channel;
    const double value;
};

class Swizzle : public ImageOperation {
public:
    Swizzle(const std::string& givenText, const std::string& letters) : ImageOperation(givenText) {
        std::transform(letters.begin(), letters.end(), sources.begin(), channelOf);
    }

    void plan(PlannedTexture&) const override {}
    // CopyChannels() between 16-bit channels changes some values by one.
    OperandFormat operandFormat() const override { return OperandFormat::exact; }
    bool apply(CMOKTexture& texture, const OperationContext&) const override {
        std::array destinations = {eChannelRed, eChannelGreen, eChannelBlue, eChannelAlpha};
        std::array from = sources;
        return CopyChannels(texture, texture, 4, destinations.data(), from.data());
    }

private:
    std::array<EChannelName, 4> sources;
};

class NormalMap : public ImageOperation {
public:
    NormalMap(const std::string& givenText, float givenScale, const std::string& givenOrder)
        : ImageOperation(givenText), scale(givenScale), order(givenOrder) {}

    void plan(PlannedTexture& texture) const override {
        if (texture.size.depth > 1)
            refuse(texture, ExitStatus::notSupported,
                   "slopes at the edges of a volume's slices would be taken from the first slice; use pictures, or a texture "
                   "without depth");
        texture.unit = 1;
        texture.colourSpace = eColourSpaceLinear;
        texture.holdsNormals = true;
    }
    bool apply(CMOKTexture& texture, const OperationContext&) const override {
        if (!GenerateNormalMap(texture, scale, order.c_str())) return false;
        texture.setColourSpace(eColourSpaceLinear);
        return true;
    }

private:
    const float scale;
    const std::string order;
};

class ColourMips : public ImageOperation {
public:
    using ImageOperation::ImageOperation;

    void plan(PlannedTexture& texture) const override {
        if (texture.size.levels == 1)
            refuse(texture, ExitStatus::commandLine, "there is no level below the first; give --mipmaps before it");
    }
    bool apply(CMOKTexture& texture, const OperationContext&) const override { return ColourMIPMaps(texture); }
};

}  // namespace

OperationPointer parsePremultiply(const std::string& text, const std::string&) {
    return std::make_unique<Premultiply>(text);
}

OperationPointer parseBleed(const std::string& text, const std::string&) {
    return std::make_unique<BleedColours>(text);
}

OperationPointer parseSetChannel(const std::string& text, const std::string& value) {
    const std::optional<double> number = value.size() > 2 ? parseNumber(std::string_view(value).substr(2)) : std::nullopt;
    if (!number || value[1] != '=' || channelLetters.find(value[0]) == std::string_view::npos)
        throw Failure(ExitStatus::commandLine, text + ": no channel and value; use r, g, b or a, '=' and a number, as in a=255");
    return std::make_unique<SetChannel>(text, channelOf(value[0]), *number);
}

OperationPointer parseSwizzle(const std::string& text, const std::string& value) {
    if (value.size() != 4 || value.find_first_not_of(channelLetters) != std::string::npos)
        throw Failure(ExitStatus::commandLine, text + ": no order of channels; use four of r, g, b, a, as in bgra");
    return std::make_unique<Swizzle>(text, value);
}

OperationPointer parseNormalMap(const std::string& text, const std::string& value) {
    const std::size_t colon = std::min(value.find(':'), value.size());
    const std::string order = colon < value.size() ? value.substr(colon + 1) : "xyz";
    const std::optional<double> scale = parseNumber(std::string_view(value).substr(0, colon));
    if (!scale || static_cast<float>(*scale) == 0)
        throw Failure(ExitStatus::commandLine,
                      text + ": no scale; use a number other than 0, as in 2, or a negative one to invert the relief");
    const bool isRepeated =
        std::any_of(order.begin(), order.end(), [&](char letter) { return std::count(order.begin(), order.end(), letter) > 1; });
    if (order.empty() || isRepeated || order.find_first_not_of("xyzh") != std::string::npos)
        throw Failure(ExitStatus::commandLine, text + ": no order of channels; use x, y, z and h once each at most, as in xyzh");
    return std::make_unique<NormalMap>(text, static_cast<float>(*scale), order);
}

OperationPointer parseColourMips(const std::string& text, const std::string&) {
    return std::make_unique<ColourMips>(text);
}

}  // namespace moktextool
