// Operations that change the values of pixels.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
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
    void apply(ImageSet& images, const OperationContext& context) const override {
        applyByBands(images, {text, PreMultiplyAlpha, rgba8Format}, context.place);
        images.header.setIsPreMultiplied(true);
    }
};

class BleedColours : public ImageOperation {
public:
    using ImageOperation::ImageOperation;

    void plan(PlannedTexture& texture) const override {
        if (texture.isPremultiplied)
            refuse(texture, ExitStatus::notSupported,
                   "transparent pixels of premultiplied colours must stay black; leave it out, or give it before --premultiply");
    }
    void apply(ImageSet& images, const OperationContext& context) const override {
        constexpr std::uint32_t radius = 4;  // of Bleed()
        applyByBands(images, {text, Bleed, {}, radius}, context.place);
    }
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
    void apply(ImageSet& images, const OperationContext& context) const override {
        const TextureFormat format = formatOf(images.header);
        applyByBands(
            images,
            {text,
             [&](CMOKTexture& band) {
                 EChannelName channels[] = {channel};
                 if (format == rgbaFloatFormat) {
                     float values[] = {static_cast<float>(value) / static_cast<float>(context.unit)};
                     return SetChannelsFloat(band, 1, channels, values);
                 }
                 const unsigned int largest = format == rgba8Format ? 255 : 65535;
                 unsigned int values[] = {static_cast<unsigned int>(value) * (largest / static_cast<unsigned int>(context.unit))};
                 return SetChannels(band, 1, channels, values);
             }},
            context.place);
    }

private:
    const EChannelName channel;
    const double value;
};

class Swizzle : public ImageOperation {
public:
    Swizzle(const std::string& givenText, const std::string& letters) : ImageOperation(givenText) {
        std::transform(letters.begin(), letters.end(), sources.begin(), [](char letter) { return channelLetters.find(letter); });
    }

    void plan(PlannedTexture&) const override {}
    void apply(ImageSet& images, const OperationContext& context) const override {
        const TextureFormat format = formatOf(images.header);
        for (Surface& surface : images.surfaces) {
            for (Image& image : surface) {
                if (format == rgba8Format)
                    permute<std::uint8_t>(image, context.place);
                else if (format == rgba16Format)
                    permute<std::uint16_t>(image, context.place);
                else
                    permute<float>(image, context.place);
            }
        }
    }

private:
    /// CopyChannels() rounds some 16-bit values, so that the channels are moved here.
    template <class T>
    void permute(Image& image, const Workplace& place) const {
        forEachBand({image.countRows(), image.getSize().width, place.bandPixels}, [&](const RowBand& band) {
            T* pixel = reinterpret_cast<T*>(image.row(band.first));
            T* const end = pixel + std::size_t{band.count} * image.getSize().width * 4;
            for (; pixel != end; pixel += 4) {
                const std::array values = {pixel[0], pixel[1], pixel[2], pixel[3]};
                for (std::size_t c = 0; c < 4; ++c)
                    pixel[c] = values[sources[c]];
            }
        });
    }

    std::array<std::size_t, 4> sources;
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
    void apply(ImageSet& images, const OperationContext& context) const override {
        applyByBands(images,
                     {text, [&](CMOKTexture& band) { return GenerateNormalMap(band, scale, order.c_str()); }, {}, 1, true},
                     rgbaFloatFormat, context.place);
        images.header.setBumpMap(scale, order.c_str());
        images.header.setColourSpace(eColourSpaceLinear);
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
    void apply(ImageSet& images, const OperationContext& context) const override {
        for (Surface& surface : images.surfaces) {
            for (std::uint32_t level = 1; level < surface.size(); ++level)
                tint(surface[level], level, context.place);
        }
    }

private:
    /// Tints row by row, each as the level of a texture of one row.
    void tint(Image& image, std::uint32_t level, const Workplace& place) const {
        constexpr std::uint32_t colours = 6;  // of ColourMIPMaps(), which then repeat
        const std::uint32_t index = (level - 1) % colours + 1;
        CMOKTextureHeader header;
        header.setPixelFormat(image.getFormat().pixelType);
        header.setChannelType(image.getFormat().channelType);
        header.setWidth(image.getSize().width << index);
        header.setNumMIPLevels(index + 1);
        CMOKTexture texture(header, nullptr);
        for (std::uint64_t y = 0; y < image.countRows(); ++y) {
            std::memcpy(texture.getDataPtr(index), image.row(y), image.getRowSize());
            requireSuccess(ColourMIPMaps(texture), place.name, text);
            std::memcpy(image.row(y), texture.getDataPtr(index), image.getRowSize());
        }
    }
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
