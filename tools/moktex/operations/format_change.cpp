// Conversion of images between formats, band by band.
//
//     decodeTexture()   blocks -> RGBA8      bands of rows of blocks; MOKTC by whole slices
//     convertImages()   pixels -> pixels     bands of rows
//     encodeImages()    pixels -> any        bands of rows of blocks; MOKTC and dithered formats by whole levels
//
// Each band is a texture of its own, which Transcode() converts. The codecs of DXT, ETC1, packed YUV and 1 bit per pixel code
// every block independently, so that the bytes do not depend on where the bands begin.

#include "moktex/operations/format_change.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <optional>
#include <span>

#include "moktex/formats/format_names.h"
#include "moktex/report/ProgressLine.h"
#include "moktex/report/console.h"

using namespace moktexture;

namespace moktextool {

namespace {

/// The next float below 1: the largest value that does not wrap in a 32-bit integer channel.
constexpr float belowOne = 0x1.FFFFFEp-1F;

/// The values that a format can hold without wrapping.
struct ValueRange {
    float low;
    float high;
    float smallest;  ///< values nearer to zero count as zero
};

ValueRange rangeOf(const TextureFormat& format) {
    const unsigned int bits = widestChannel(format);
    if (isCompressed(format.pixelType)) return {0.0F, 1.0F, 0.0F};
    if (format.channelType == eVarFloat) return {bits == 16 ? -65504.0F : 0.0F, 65504.0F, 0x1p-15F};
    const float high = bits == 32 ? belowOne : 1.0F;
    // Negative values are stored as a magnitude whose scale is one larger, so -1 itself cannot be stored.
    if (isSigned(format.channelType))
        return {-std::min(belowOne, 1.0F - std::ldexp(1.0F, 1 - static_cast<int>(bits))), high, 0.0F};
    return {0.0F, high, 0.0F};
}

/// Clamps values to a range; NaN becomes 0. Returns whether any value changed by more than rounding.
bool clampValues(std::span<float> values, const ValueRange& range) {
    bool clamped = false;
    for (float& value : values) {
        const float kept =
            std::abs(value) < range.smallest || std::isnan(value) ? 0.0F : std::clamp(value, range.low, range.high);
        clamped |= !(std::abs(kept - value) <= 0x1p-14F);
        value = kept;
    }
    return clamped;
}

/// Whether a conversion goes through floats, because values could be out of range, or would be rounded twice,
/// before and after the curve.
bool needsFloats(const TextureFormat& source, const TextureFormat& target, bool hasCurve) {
    if (target.channelType == eVarFloat && !isCompressed(target.pixelType) && widestChannel(target) == 32) return false;
    return source.channelType == eVarFloat || isSigned(source.channelType) || target.channelType == eVarFloat ||
           widestChannel(target) == 32 || (hasCurve && widestChannel(source) > 8);
}

bool isOneOf(char letter, const std::uint8_t (&letters)[4]) {
    return std::find(std::begin(letters), std::end(letters), static_cast<std::uint8_t>(letter)) != std::end(letters);
}

/// How much of a picture's alpha a format keeps.
enum class AlphaKept { all, onOrOff, none };

AlphaKept alphaKept(PixelType format) {
    if (!isCompressed(format)) return isOneOf('a', format.layout.channelName) ? AlphaKept::all : AlphaKept::none;
    const FormatInfo& info = GetFormatInfo(format);
    // Both generations of MOKTC keep the alpha of their pixels, whatever their names say.
    if (info.codec == eCodecDXTn) return info.codecVariant == 1 ? AlphaKept::onOrOff : AlphaKept::all;
    return info.codec == eCodecMOKTC ? AlphaKept::all : AlphaKept::none;
}

/// What a conversion loses, collected from all bands.
struct Losses {
    std::atomic<bool> clamps = false;
    std::atomic<bool> hasAlpha = false;
    std::atomic<bool> hasHalfAlpha = false;  ///< neither 0 nor opaque

    void tell(const TextureFormat& target, const Workplace& place) const {
        if (clamps) place.console.warn(place.name + ": values that " + nameOf(target) + " cannot hold are clamped");
        const AlphaKept kept = alphaKept(target.pixelType);
        if (kept == AlphaKept::none && hasAlpha)
            place.console.warn(place.name + ": " + nameOf(target) + " has no alpha; that of the pixels is dropped");
        if (kept == AlphaKept::onOrOff && hasHalfAlpha)
            place.console.warn(place.name + ": " + nameOf(target) + " keeps alpha as transparent or opaque only; use dxt5");
    }
};

void transcode(CMOKTexture& texture, const FormatChange& change, const std::string& name) {
    if (!Transcode(texture, change.target.pixelType, change.target.channelType, change.colourSpace, change.quality,
                   change.dither)) {
        throw Failure(ExitStatus::workFailed, name,
                      "the conversion to " + nameOf(change.target) +
                          " failed, for lack of memory or because of its size; close other programs or use --resize");
    }
}

/// Records the alpha of pixels that are about to lose it.
void inspectAlpha(const CMOKTexture& band, const TextureFormat& target, const std::string& name, Losses& losses) {
    if (alphaKept(target.pixelType) == AlphaKept::all || alphaKept(band.getPixelType()) == AlphaKept::none) return;
    CMOKTexture bytes;
    const bool isReady = formatOf(band) == rgba8Format;
    if (!isReady) {
        bytes = band;
        transcode(bytes, {rgba8Format, band.getColourSpace()}, name);
    }
    const CMOKTexture& source = isReady ? band : bytes;
    const auto* pixels = static_cast<const unsigned char*>(source.getDataPtr());
    bool isOpaque = true, isHard = true;
    for (std::uint32_t i = 3; i < source.getDataSize(); i += 4) {
        isOpaque &= pixels[i] == 255;
        isHard &= pixels[i] == 0 || pixels[i] == 255;
    }
    if (!isOpaque) losses.hasAlpha = true;
    if (!isHard) losses.hasHalfAlpha = true;
}

/// Converts an uncompressed texture of one level.
void convertBand(CMOKTexture& band, const FormatChange& change, const std::string& name, Losses& losses) {
    const bool hasCurve = band.getColourSpace() != change.colourSpace;
    if (formatOf(band) == change.target && !hasCurve) return;
    if (needsFloats(formatOf(band), change.target, hasCurve)) {
        transcode(band, {rgbaFloatFormat, change.colourSpace}, name);
        const std::span values(static_cast<float*>(band.getDataPtr()), band.getDataSize() / sizeof(float));
        if (clampValues(values, rangeOf(change.target))) losses.clamps = true;
    }
    inspectAlpha(band, change.target, name, losses);
    transcode(band, change, name);
}

std::uint32_t roundUp(std::uint32_t size, std::uint32_t step) {
    return (size + step - 1) / step * step;
}

/// The slices of a compressed level, decoded. Sides are rounded up to whole blocks, as the data has them, because codecs other
/// than MOKTC's decode other sizes differently.
Image decodeLevel(const CMOKTexture& texture, const ImageSize& size, const unsigned char* blocks, const Workplace& place) {
    const FormatInfo& info = GetFormatInfo(texture.getPixelType());
    const bool isWhole = info.codec == eCodecMOKTC;
    const FormatInfo::Size block = isWhole ? FormatInfo::Size{1, 1} : info.sizeBlock;
    const std::uint32_t width = roundUp(size.width, block.width), height = roundUp(size.height, block.height);
    const std::uint64_t sliceSize = imageSize(texture.getPixelType(), {width, height, 1});
    const std::uint64_t blockRowSize = isWhole ? 0 : sliceSize / (height / block.height);
    Image decoded(rgba8Format, size);
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        const BandCut cut{height, width, isWhole ? ~std::uint64_t{0} : place.bandPixels, block.height};
        forEachBand(cut, [&](const RowBand& band) {
            CMOKTexture pixels = makeBand({texture.getPixelType(), eVarUByteNorm}, width, band.count, eColourSpaceLinear);
            std::memcpy(pixels.getDataPtr(), blocks + z * sliceSize + band.first / block.height * blockRowSize,
                        pixels.getDataSize());
            transcode(pixels, {rgba8Format, eColourSpaceLinear}, place.name);
            const auto* row = static_cast<const unsigned char*>(pixels.getDataPtr());
            const std::uint64_t end = std::min<std::uint64_t>(band.first + band.count, size.height);
            for (std::uint64_t y = band.first; y < end; ++y, row += std::size_t{width} * 4)
                std::memcpy(decoded.row(std::uint64_t{z} * size.height + y), row, decoded.getRowSize());
        });
    }
    return decoded;
}

/// How one level is laid out in the target format.
struct EncodedLevel {
    std::uint32_t width;     ///< of all rows, padding included
    std::uint32_t rows;      ///< of all slices, padding included
    std::uint32_t step;      ///< rows of one row of blocks
    std::uint64_t stepSize;  ///< bytes of one row of blocks
};

/// A side as it is encoded. The library pads sides below the format's smallest itself.
std::uint32_t paddedSide(std::uint32_t side, std::uint32_t smallest, std::uint32_t block) {
    return side < smallest ? side : roundUp(side, block);
}

EncodedLevel layOut(const ImageSize& size, PixelType target) {
    const FormatInfo& info = GetFormatInfo(target);
    const std::uint32_t width = paddedSide(size.width, info.smallestSize.width, info.sizeBlock.width);
    const std::uint32_t height = paddedSide(size.height, info.smallestSize.height, info.sizeBlock.height);
    const std::uint32_t step = info.sizeBlock.height;
    return {width, height * size.depth, step, imageSize(target, {width, step, 1})};
}

/// Rows of an image with its right and lower edge repeated to the padded size.
CMOKTexture paddedBand(const Image& image, const EncodedLevel& level, const RowBand& band, const CMOKTextureHeader& header) {
    const std::uint64_t last = image.countRows() - 1;
    const std::uint32_t width = image.getSize().width;
    const std::size_t rowSize = image.getRowSize(), pixelSize = rowSize / width;
    CMOKTexture padded = makeBand(image.getFormat(), level.width, band.count, header.getColourSpace(), header.isPreMultiplied());
    auto* out = static_cast<unsigned char*>(padded.getDataPtr());
    for (std::uint32_t i = 0; i < band.count; ++i) {
        std::memcpy(out, image.row(std::min(band.first + i, last)), rowSize);
        out += rowSize;
        for (std::uint32_t x = width; x < level.width; ++x, out += pixelSize)
            std::memcpy(out, out - pixelSize, pixelSize);
    }
    return padded;
}

void encodeLevel(const Image& image, const CMOKTextureHeader& header, const FormatChange& change, const Workplace& place,
                 unsigned char* encoded, Losses& losses) {
    const EncodedLevel level = layOut(image.getSize(), change.target.pixelType);
    const bool isWhole = needsWholeLevels(change.target, change.dither);
    const BandCut cut{level.rows, level.width, isWhole ? ~std::uint64_t{0} : place.bandPixels, level.step};
    forEachBand(cut, [&](const RowBand& band) {
        CMOKTexture texture = paddedBand(image, level, band, header);
        if (isWhole) {
            // Dithering passes errors on from slice to slice.
            texture.setHeight(band.count / image.getSize().depth);
            texture.setDepth(image.getSize().depth);
        }
        convertBand(texture, change, place.name, losses);
        std::memcpy(encoded + band.first / level.step * level.stepSize, texture.getDataPtr(), texture.getDataSize());
    });
}

void warnOfCurve(const CMOKTextureHeader& header, const FormatChange& change, const Workplace& place) {
    if (header.getColourSpace() == change.colourSpace) return;
    place.console.warn(place.name + ": applying the " +
                       (change.colourSpace == eColourSpaceSRGB ? "linear to sRGB" : "sRGB to linear") + " curve to the colours");
}

CMOKTextureHeader withFormat(const CMOKTextureHeader& header, const TextureFormat& format, EMOKTColourSpace colourSpace) {
    CMOKTextureHeader result = header;
    result.setPixelFormat(format.pixelType);
    result.setChannelType(format.channelType);
    result.setColourSpace(colourSpace);
    return result;
}

}  // namespace

bool needsWholeLevels(const TextureFormat& target, bool dither) {
    const bool dithers = dither && bitsPerPixel(target.pixelType) < 32;
    return dithers || (isCompressed(target.pixelType) && GetFormatInfo(target.pixelType).codec == eCodecMOKTC);
}

ImageSet decodeTexture(const CMOKTexture& texture, const Workplace& place) {
    const TextureFormat format = isCompressed(texture.getPixelType()) ? rgba8Format : formatOf(texture);
    ImageSet images{withFormat(texture, format, texture.getColourSpace()), {}};
    for (std::uint32_t layer = 0; layer < texture.getNumArrayMembers(); ++layer) {
        for (std::uint32_t face = 0; face < texture.getNumFaces(); ++face) {
            Surface& surface = images.surfaces.emplace_back();
            for (std::uint32_t level = 0; level < texture.getNumMIPLevels(); ++level) {
                const ImageSize size = levelSize(sizeOf(texture), level);
                const auto* data = static_cast<const unsigned char*>(texture.getDataPtr(level, layer, face));
                if (isCompressed(texture.getPixelType())) {
                    surface.push_back(decodeLevel(texture, size, data, place));
                } else {
                    surface.emplace_back(format, size);
                    std::memcpy(surface.back().getData(), data, surface.back().getDataSize());
                }
            }
        }
    }
    return images;
}

ImageSet takeImages(TextureInput& input, const Workplace& place) {
    if (!input.picture) {
        ImageSet images = decodeTexture(input.texture, place);
        CMOKTexture headerAlone;
        static_cast<CMOKTextureHeader&>(headerAlone) = input.texture.getHeader();
        input.texture = std::move(headerAlone);
        return images;
    }
    ImageSet images{input.texture.getHeader(), {}};
    images.surfaces.emplace_back().push_back(std::move(*input.picture));
    return images;
}

ImageSet takeImage(ImageSet images, std::uint32_t level, std::uint32_t layer, std::uint32_t face) {
    Image& source = images.surface(layer, face)[level];
    const CMOKTextureHeader& header = images.header;
    const ImageSize size{source.getSize().width, source.getSize().height, 1};
    ImageSet taken{CMOKTextureHeader(header.getPixelType().id, size.height, size.width, 1, 1, 1, 1, header.getColourSpace(),
                                     header.getChannelType(), header.isPreMultiplied()),
                   {}};
    Surface& surface = taken.surfaces.emplace_back();
    if (source.getSize() == size) {
        surface.push_back(std::move(source));
    } else {
        surface.emplace_back(source.getFormat(), size);
        std::memcpy(surface.back().getData(), source.getData(), surface.back().getDataSize());
    }
    return taken;
}

void convertImages(ImageSet& images, const FormatChange& change, const Workplace& place) {
    if (formatOf(images.header) == change.target && images.header.getColourSpace() == change.colourSpace) return;
    warnOfCurve(images.header, change, place);
    Losses losses;
    for (Surface& surface : images.surfaces) {
        for (Image& image : surface) {
            Image converted(change.target, image.getSize());
            encodeLevel(image, images.header, change, place, converted.getData(), losses);
            image = std::move(converted);
        }
    }
    images.header = withFormat(images.header, change.target, change.colourSpace);
    losses.tell(change.target, place);
}

CMOKTexture encodeImages(ImageSet images, const FormatChange& change, const Workplace& place) {
    CMOKTexture texture(withFormat(images.header, change.target, change.colourSpace), nullptr);
    const std::uint32_t layers = texture.getNumArrayMembers(), faces = texture.getNumFaces(), levels = texture.getNumMIPLevels();
    warnOfCurve(images.header, change, place);
    Losses losses;
    std::optional<ProgressLine> progress;
    if (isCompressed(change.target.pixelType)) progress.emplace(place.console, EncodingWork{layers * faces, levels});
    for (std::uint64_t i = 0; i < std::uint64_t{layers} * faces * levels; ++i) {
        const auto level = static_cast<std::uint32_t>(i % levels), face = static_cast<std::uint32_t>(i / levels % faces),
                   layer = static_cast<std::uint32_t>(i / levels / faces);
        const Image image = std::move(images.surface(layer, face)[level]);
        encodeLevel(image, images.header, change, place, static_cast<unsigned char*>(texture.getDataPtr(level, layer, face)),
                    losses);
        if (progress) progress->advance();
    }
    progress.reset();
    losses.tell(change.target, place);
    return texture;
}

}  // namespace moktextool
