#include "formats/standard/dds_masks.h"

#include <algorithm>
#include <bit>
#include <string_view>
#include <vector>

#include "formats/standard/published_format.h"

namespace moktexture {
namespace {

/// A run of bits of the pixel.
struct Field {
    char letter;
    unsigned int shift, bits;
};

bool isContiguous(std::uint32_t mask) {
    const std::uint64_t run = std::uint64_t{mask} >> std::countr_zero(mask);
    return (run & (run + 1)) == 0;
}

std::string_view lettersOf(MaskKind kind) {
    return kind == MaskKind::luminance ? "l  a" : kind == MaskKind::bumpLuminance ? "rgl " : "rgba";
}

/// The masks as fields from bit 0 up, uncovered bits as `x`; empty if they contradict each other.
std::vector<Field> fieldsOf(const PixelMasks& masks) {
    std::vector<Field> fields;
    for (std::size_t channel = 0; channel < 4; ++channel) {
        const std::uint32_t mask = masks.masks[channel];
        if (mask == 0) continue;
        if (!isContiguous(mask) || lettersOf(masks.kind)[channel] == ' ') return {};
        fields.push_back({lettersOf(masks.kind)[channel], static_cast<unsigned int>(std::countr_zero(mask)),
                          static_cast<unsigned int>(std::popcount(mask))});
    }
    std::sort(fields.begin(), fields.end(), [](const Field& a, const Field& b) { return a.shift < b.shift; });
    std::vector<Field> whole;
    unsigned int end = 0;
    for (const Field& field : fields) {
        if (field.shift < end) return {};
        if (field.shift > end) whole.push_back({'x', end, field.shift - end});
        whole.push_back(field);
        end = field.shift + field.bits;
    }
    if (end > masks.bitCount) return {};
    if (end < masks.bitCount) whole.push_back({'x', end, masks.bitCount - end});
    return whole;
}

/// Whether all fields are elements of `bits` bits.
bool areElements(const std::vector<Field>& fields, unsigned int bits) {
    return std::all_of(fields.begin(), fields.end(), [bits](const Field& field) { return field.bits == bits; });
}

EMOKTVariableType typeOfWidth(unsigned int bits, bool isSigned) {
    const unsigned int type = bits <= 8 ? eVarUByteNorm : bits <= 16 ? eVarUShortNorm : eVarUIntNorm;
    return static_cast<EMOKTVariableType>(type + (isSigned ? 1 : 0));
}

}  // namespace

std::optional<UncompressedLayout> layoutFromMasks(const PixelMasks& masks) {
    if (masks.masks == decltype(masks.masks){} || masks.bitCount == 0 || masks.bitCount > 32 || masks.bitCount % 8 != 0)
        return std::nullopt;
    std::vector<Field> fields = fieldsOf(masks);
    if (fields.empty() || fields.size() > 4) return std::nullopt;
    const unsigned int width = fields[0].bits;
    const bool isArray = (width == 8 || width == 16 || width == 32) && areElements(fields, width);
    // Elements lie in memory order; the fields of a packed word are named from its highest bit down.
    if (!isArray) std::reverse(fields.begin(), fields.end());
    PixelType format(0, 0, 0, 0, 0, 0, 0, 0);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        format.layout.channelName[i] = static_cast<std::uint8_t>(fields[i].letter);
        format.layout.channelBits[i] = static_cast<std::uint8_t>(fields[i].bits);
    }
    return UncompressedLayout{format, typeOfWidth(isArray ? width : masks.bitCount,
                                                  masks.kind == MaskKind::signedRGB || masks.kind == MaskKind::bumpLuminance)};
}

std::optional<PixelMasks> masksFromLayout(const UncompressedLayout& layout) {
    const PixelType::Layout& channels = layout.pixelFormat.layout;
    const auto has = [&](char letter) {
        return std::find(channels.channelName, channels.channelName + 4, letter) != channels.channelName + 4;
    };
    const unsigned int total =
        channels.channelBits[0] + channels.channelBits[1] + channels.channelBits[2] + channels.channelBits[3];
    if (total == 0 || total > 32) return std::nullopt;
    const bool isSigned =
        layout.channelType == eVarSByteNorm || layout.channelType == eVarSShortNorm || layout.channelType == eVarSIntNorm;
    const bool isAlphaAlone = has('a') && !has('r') && !has('l') && !has('g') && !has('b');
    const MaskKind kind = has('l')       ? (has('r') ? MaskKind::bumpLuminance : MaskKind::luminance)
                          : isAlphaAlone ? MaskKind::alpha
                          : isSigned     ? MaskKind::signedRGB
                                         : MaskKind::rgb;
    PixelMasks masks{kind, total, {}};
    // A layout names its channels from the lowest or from the highest bit. The order whose masks give the layout back is the
    // right one.
    for (const bool lowestFirst : {true, false}) {
        unsigned int shift = lowestFirst ? 0 : total;
        masks.masks = {};
        for (std::size_t i = 0; i < 4 && channels.channelBits[i] != 0; ++i) {
            const unsigned int bits = channels.channelBits[i];
            if (!lowestFirst) shift -= bits;
            const std::size_t channel = lettersOf(masks.kind).find(static_cast<char>(channels.channelName[i]));
            if (channel != std::string_view::npos)
                masks.masks[channel] = static_cast<std::uint32_t>(((std::uint64_t{1} << bits) - 1) << shift);
            if (lowestFirst) shift += bits;
        }
        const std::optional<UncompressedLayout> back = layoutFromMasks(masks);
        if (back && haveSameBits(back->pixelFormat, back->channelType, layout.pixelFormat, layout.channelType)) return masks;
    }
    return std::nullopt;
}

}  // namespace moktexture
