#include "transcode/pixels/channel_access.h"

#include <bit>
#include <utility>

#include "transcode/pixels/channel_value.h"

namespace moktexture {

namespace {

/// Whether integer channels are read as elements.
// Kept (average-width-decides-reading): the average width decides how a layout is read, each channel's own width how it is
// written. Integer layouts with channels of 8 and other bits would load other values from .mok files.
bool readsElements(const PixelCodec& codec) {
    return codec.totalBits / codec.channelCount == codec.storageWidth;
}

ChannelFormat floatFormat(unsigned int width) {
    switch (width) {
        case 32:
            return ChannelFormat::float32;
        case 16:
            return ChannelFormat::float16;
        case 11:
            return ChannelFormat::float11;
        case 10:
            return ChannelFormat::float10;
        default:
            return ChannelFormat::zero;
    }
}

ChannelField elementField(unsigned int position, unsigned int width) {
    const unsigned int offset = position * width;
    return {offset / 64, offset % 64, lowBits(width) << offset % 64, lowBits(width)};
}

/// A field of the pixel word; one above the word is empty.
ChannelField packedField(std::uint64_t mask, unsigned int shift) {
    return shift < 64 ? ChannelField{0, shift, mask, lowBits(32)} : ChannelField{};
}

/// The number form of an integer channel that is read, and its field.
ChannelFormat integerSource(const PixelCodec& codec, unsigned int position, ChannelField& field) {
    const bool isSigned = isSignedType(codec.variableType);
    if (!readsElements(codec)) {
        field = packedField(codec.channelMask[position] & lowBits(isSigned ? 32 : 64), codec.shiftRight[position]);
        return isSigned ? ChannelFormat::signedField : ChannelFormat::unsignedInteger;
    }
    if (!codec.isElement(position)) return ChannelFormat::zero;
    field = elementField(position, codec.channelBits[position]);
    return isSigned ? ChannelFormat::signedElement : ChannelFormat::unsignedInteger;
}

ChannelField storedField(const PixelCodec& codec, unsigned int position) {
    return codec.isElement(position) ? elementField(position, codec.channelBits[position])
                                     : packedField(codec.channelMask[position], codec.shiftRight[position]);
}

std::int32_t signExtended(std::uint64_t raw, unsigned int width) {
    const unsigned int unused = 32 - width;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(raw) << unused) >> unused;
}

template <class ValueOf>
void readAll(const ChannelField& field, const PixelBits* pixels, std::size_t count, float* values, ValueOf valueOf) {
    for (std::size_t i = 0; i < count; ++i)
        values[i] = valueOf(field.load(pixels[i]));
}

template <class RawOf>
void writeAll(const ChannelField& field, const float* values, std::size_t count, PixelBits* pixels, RawOf rawOf) {
    for (std::size_t i = 0; i < count; ++i)
        field.store(pixels[i], rawOf(values[i]));
}

SmallFloat smallFloatOf(ChannelFormat format) {
    return format == ChannelFormat::float16 ? smallFloat16 : format == ChannelFormat::float11 ? smallFloat11 : smallFloat10;
}

}  // namespace

ChannelReader::ChannelReader(const PixelCodec& codec, EChannelName channel, TransferCurve valueCurve, unsigned int tableBits)
    : curve(valueCurve) {
    const auto position = static_cast<unsigned int>(codec.channelIndexByName[channel]);
    width = codec.channelBits[position];
    if (codec.variableType == eVarFloat) {
        format = floatFormat(width);
        field = storedField(codec, position);
    } else {
        format = integerSource(codec, position, field);
    }
    if (field.maximum() <= lowBits(tableBits)) fillTable();
}

void ChannelReader::fillTable() {
    const std::size_t entries = static_cast<std::size_t>(field.maximum()) + 1;
    std::vector<PixelBits> pixels(entries);
    for (std::size_t raw = 0; raw < entries; ++raw)
        pixels[raw][field.half] = raw << field.shift;
    std::vector<float> values(entries);
    compute(pixels.data(), entries, values.data());
    table = std::move(values);
}

void ChannelReader::read(const PixelBits* pixels, std::size_t count, float* values) const {
    if (table.empty()) return compute(pixels, count, values);
    readAll(field, pixels, count, values, [entries = table.data()](std::uint64_t raw) { return entries[raw]; });
}

void ChannelReader::compute(const PixelBits* pixels, std::size_t count, float* values) const {
    const unsigned int bits = width;
    switch (format) {
        case ChannelFormat::zero:
            readAll(field, pixels, count, values, [](std::uint64_t) { return 0.0f; });
            break;
        case ChannelFormat::unsignedInteger:
            readAll(field, pixels, count, values, [bits](std::uint64_t raw) { return unsignedToFloat(raw, bits); });
            break;
        case ChannelFormat::signedElement:
            readAll(field, pixels, count, values,
                    [bits](std::uint64_t raw) { return signedToFloat(signExtended(raw, bits), bits); });
            break;
        case ChannelFormat::signedField:
            readAll(field, pixels, count, values,
                    [bits](std::uint64_t raw) { return signedToFloat(static_cast<std::int64_t>(raw), bits); });
            break;
        case ChannelFormat::float32:
            readAll(field, pixels, count, values,
                    [](std::uint64_t raw) { return std::bit_cast<float>(static_cast<std::uint32_t>(raw)); });
            break;
        default:
            readAll(field, pixels, count, values, [small = smallFloatOf(format)](std::uint64_t raw) {
                return floatFromSmallFloat(static_cast<std::uint32_t>(raw), small);
            });
    }
    if (curve != nullptr)
        for (std::size_t i = 0; i < count; ++i)
            values[i] = curve(values[i]);
}

ChannelWriter::ChannelWriter(const PixelCodec& codec, EChannelName channel) {
    const auto position = static_cast<unsigned int>(codec.channelIndexByName[channel]);
    width = codec.channelBits[position];
    field = storedField(codec, position);
    format = codec.variableType == eVarFloat    ? floatFormat(width)
             : isSignedType(codec.variableType) ? ChannelFormat::signedField
                                                : ChannelFormat::unsignedInteger;
}

void ChannelWriter::write(const float* values, std::size_t count, PixelBits* pixels) const {
    const unsigned int bits = width;
    switch (format) {
        case ChannelFormat::zero:
            return writeAll(field, values, count, pixels, [](float) { return std::uint64_t{0}; });
        case ChannelFormat::unsignedInteger:
            return writeAll(field, values, count, pixels, [bits](float value) { return floatToUnsigned(value, bits); });
        case ChannelFormat::signedElement:
        case ChannelFormat::signedField:
            return writeAll(field, values, count, pixels, [bits](float value) { return floatToSigned(value, bits); });
        case ChannelFormat::float32:
            return writeAll(field, values, count, pixels,
                            [](float value) { return std::uint64_t{std::bit_cast<std::uint32_t>(value)}; });
        default:
            return writeAll(field, values, count, pixels, [small = smallFloatOf(format)](float value) {
                return std::uint64_t{smallFloatFromFloat(value, small)};
            });
    }
}

}  // namespace moktexture
