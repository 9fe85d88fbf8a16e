#include "moktex/formats/texture_format.h"

#include <algorithm>
#include <cmath>
#include <cstring>
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
    float smallest;  ///< nearer to zero than this counts as zero
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

/// Whether a conversion takes floats as an intermediate step: because values could be out of range, or would be rounded twice,
/// before and after the curve.
bool needsFloats(const TextureFormat& source, const TextureFormat& target, bool hasCurve) {
    if (target.channelType == eVarFloat && !isCompressed(target.pixelType) && widestChannel(target) == 32) return false;
    return source.channelType == eVarFloat || isSigned(source.channelType) || target.channelType == eVarFloat ||
           widestChannel(target) == 32 || (hasCurve && widestChannel(source) > 8);
}

void transcode(CMOKTexture& texture, const FormatChange& change, const std::string& name) {
    if (!Transcode(texture, change.target.pixelType, change.target.channelType, change.colourSpace, change.quality,
                   change.dither)) {
        throw Failure(ExitStatus::workFailed, name,
                      "the conversion to " + nameOf(change.target) +
                          " failed, for lack of memory or because of its size; close other programs or use --resize");
    }
}

std::uint32_t roundUp(std::uint32_t size, std::uint32_t step) {
    return (size + step - 1) / step * step;
}

/// Decodes one level of a compressed texture to an array of 2D images. The size is rounded up to whole blocks, as the data has
/// them, because codecs other than MOKTC's decode other sizes differently.
CMOKTexture decodeWholeBlocks(const CMOKTexture& texture, std::uint32_t level, const std::string& name) {
    const FormatInfo& info = GetFormatInfo(texture.getPixelType());
    const FormatInfo::Size block = info.codec == eCodecMOKTC ? FormatInfo::Size{1, 1} : info.sizeBlock;
    const std::uint32_t width = roundUp(texture.getWidth(level), block.width);
    const std::uint32_t height = roundUp(texture.getHeight(level), block.height);
    const std::uint32_t images = texture.getNumArrayMembers() * texture.getNumFaces() * texture.getDepth(level);
    const CMOKTextureHeader header(texture.getPixelType().id, height, width, 1, 1, images, 1, eColourSpaceLinear, eVarUByteNorm,
                                   false);
    CMOKTexture blocks(header, texture.getDataPtr(level));
    transcode(blocks, {rgba8Format, eColourSpaceLinear}, name);
    return blocks;
}

void copyRows(CMOKTexture& destination, std::uint32_t level, const CMOKTexture& padded) {
    const std::size_t rowSize = std::size_t{destination.getWidth(level)} * 4;
    const std::size_t paddedRowSize = std::size_t{padded.getWidth()} * 4;
    auto* out = static_cast<unsigned char*>(destination.getDataPtr(level));
    for (std::uint32_t image = 0; image < padded.getNumArrayMembers(); ++image) {
        const auto* in = static_cast<const unsigned char*>(padded.getDataPtr(0, image));
        for (std::uint32_t y = 0; y < destination.getHeight(level); ++y, out += rowSize, in += paddedRowSize)
            std::memcpy(out, in, rowSize);
    }
}

/// Bytes of all levels in the header's compressed format. The sum is computed in 64 bits; the size of a single image can wrap,
/// but Transcode() refuses such an image.
std::uint64_t encodedSize(const CMOKTextureHeader& header) {
    std::uint64_t size = 0;
    for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level)
        size += header.getDataSize(static_cast<int>(level), false, false);
    return size * header.getNumArrayMembers() * header.getNumFaces();
}

/// Encodes an uncompressed texture that is not a volume, image by image, so that a terminal can show the progress. The bytes are
/// the same as when it is encoded as a whole.
void encodeBlocks(CMOKTexture& texture, const FormatChange& change, const std::string& name, Console& console) {
    CMOKTextureHeader header = texture.getHeader();
    header.setPixelFormat(change.target.pixelType);
    header.setChannelType(eVarUByteNorm);
    header.setColourSpace(change.colourSpace);
    if (encodedSize(header) != header.getDataSize())
        throw Failure(ExitStatus::notSupported, name, "too large when it is encoded; make the texture smaller or split it");
    CMOKTexture encoded(header, nullptr);
    const std::uint32_t layers = header.getNumArrayMembers(), faces = header.getNumFaces(), levels = header.getNumMIPLevels();
    ProgressLine progress(console, {layers * faces, levels});
    for (std::uint32_t i = 0; i < layers * faces * levels; ++i) {
        const std::uint32_t level = i % levels, face = i / levels % faces, layer = i / levels / faces;
        CMOKTexture image = extractImage(texture, level, layer, face);
        transcode(image, change, name);
        std::memcpy(encoded.getDataPtr(level, layer, face), image.getDataPtr(), image.getDataSize());
        progress.advance();
    }
    texture = std::move(encoded);
}

}  // namespace

bool operator==(const TextureFormat& a, const TextureFormat& b) {
    return a.pixelType == b.pixelType && a.channelType == b.channelType;
}

TextureFormat formatOf(const CMOKTextureHeader& header) {
    return {header.getPixelType(), header.getChannelType()};
}

bool isCompressed(PixelType format) {
    return format.part.high == 0;
}

bool isSigned(EMOKTVariableType type) {
    return type % 2 == 1;
}

unsigned int widestChannel(const TextureFormat& format) {
    if (isCompressed(format.pixelType)) return 8;
    return *std::max_element(std::begin(format.pixelType.layout.channelBits), std::end(format.pixelType.layout.channelBits));
}

std::uint64_t uncompressedSize(const CMOKTextureHeader& header, std::uint32_t bytesPerPixel) {
    std::uint64_t pixels = 0;
    for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level)
        pixels += std::uint64_t{header.getWidth(level)} * header.getHeight(level) * header.getDepth(level);
    return pixels * bytesPerPixel * header.getNumArrayMembers() * header.getNumFaces();
}

void decodeBlocks(CMOKTexture& texture, const std::string& name) {
    if (!isCompressed(texture.getPixelType())) return;
    const EMOKTColourSpace label = texture.getColourSpace();
    if (uncompressedSize(texture, 4) > maxDataSize)
        throw Failure(ExitStatus::notSupported, name, "above 4 GiB when it is decoded; make the texture smaller or split it");
    CMOKTextureHeader header = texture.getHeader();
    header.setPixelFormat(PixelTypeRGBA8);
    header.setChannelType(eVarUByteNorm);
    CMOKTexture decoded(header, nullptr);
    for (std::uint32_t level = 0; level < texture.getNumMIPLevels(); ++level)
        copyRows(decoded, level, decodeWholeBlocks(texture, level, name));
    texture = std::move(decoded);
    texture.setColourSpace(label);
}

void changeFormat(CMOKTexture& texture, const FormatChange& change, const std::string& name, Console& console) {
    const bool hasCurve = texture.getColourSpace() != change.colourSpace;
    if (formatOf(texture) == change.target && !hasCurve) return;
    decodeBlocks(texture, name);
    if (hasCurve) {
        console.warn(name + ": applying the " + (change.colourSpace == eColourSpaceSRGB ? "linear to sRGB" : "sRGB to linear") +
                     " curve to the colours");
    }
    if (needsFloats(formatOf(texture), change.target, hasCurve)) {
        transcode(texture, {rgbaFloatFormat, change.colourSpace}, name);
        const std::span values(static_cast<float*>(texture.getDataPtr()), texture.getDataSize() / sizeof(float));
        if (clampValues(values, rangeOf(change.target)))
            console.note(name + ": values that " + nameOf(change.target) + " cannot hold are clamped");
    }
    if (isCompressed(change.target.pixelType))
        encodeBlocks(texture, change, name, console);
    else
        transcode(texture, change, name);
}

CMOKTexture extractImage(const CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face) {
    const CMOKTextureHeader header(texture.getPixelType().id, texture.getHeight(level), texture.getWidth(level), 1, 1, 1, 1,
                                   texture.getColourSpace(), texture.getChannelType(), texture.isPreMultiplied());
    return {header, texture.getDataPtr(level, layer, face)};
}

}  // namespace moktextool
