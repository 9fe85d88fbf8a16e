#include "transcode/pixels/table_conversion.h"

#include <algorithm>
#include <cstring>

#include "transcode/pixels/channel_value.h"
#include "transcode/pixels/transfer_curve.h"

/// @file
/// Conversion by tables.
///
/// If each destination channel takes its value from one source channel of at most 8 bits, the destination pixel is the OR of one
/// table entry per channel:
///
///     preparation, for each destination channel, for each value of its source field:
///         convert a pixel that holds this value by PixelCodec, curve included
///         if a bit outside the destination channel is set:  there is no table conversion
///         table[channel][value] = the bits
///     for each pixel:
///         result = table[0][field 0] | table[1][field 1] | table[2][field 2] | table[3][field 3]
///
/// Equality with PixelCodec is proved before use, not assumed: the tables hold PixelCodec's own results for every value, and the
/// test of the outside bits shows that channels do not influence each other. Where all source fields are whole bytes, the tables
/// are joined by source byte, so that no shift depends on the layout. The pixel loop is compiled for each pair of pixel sizes.
/// Preparation takes at most 4 x 256 pixel conversions and 8 KiB.

namespace moktexture {

namespace {

/// Whether all channels are elements of one width or all are fields of the pixel word, so that none shares bits with another.
bool isRegular(const PixelCodec& codec) {
    if (codec.channelCount == 0) return false;
    for (unsigned int i = 0; i < codec.channelCount; ++i) {
        if (codec.isElement(i) != codec.isElement(0)) return false;
        if (codec.isElement(i) && codec.channelBits[i] != codec.channelBits[0]) return false;
    }
    return codec.isElement(0) || codec.totalBits <= 64;
}

bool hasNarrowChannels(const PixelCodec& codec) {
    return std::all_of(codec.channelBits, codec.channelBits + codec.channelCount, [](unsigned int width) { return width <= 8; });
}

/// The bits of the pixel that belong to a position.
PixelBits ownBits(const PixelCodec& codec, unsigned int position) {
    if (!codec.isElement(position)) return {codec.channelMask[position], 0};
    const unsigned int width = codec.channelBits[position];
    const unsigned int offset = position * width;
    PixelBits bits{};
    bits[offset / 64] = lowBits(width) << offset % 64;
    return bits;
}

std::uint32_t fieldShift(const PixelCodec& codec, unsigned int position) {
    return codec.isElement(position) ? position * codec.channelBits[position] : codec.shiftRight[position];
}

/// Runs PixelCodec over the values of one source field, for one destination channel.
class ChannelTableBuilder {
public:
    ChannelTableBuilder(const PixelCodec& source, const PixelCodec& destination, TransferCurve valueCurve)
        : from(source), to(destination), curve(valueCurve) {}

    /// False if the channel takes its value from more than one field or spills into other channels.
    bool build(unsigned int position, TableConversion::Channel& channel) {
        const EChannelName name = to.channelNames[position];
        const ValueSource value = valueSourceOf(name, from, to);
        if (value.kind != ValueSource::constant && value.kind != ValueSource::channel) return false;
        if (value.kind == ValueSource::channel) {
            const auto sourcePosition = static_cast<unsigned int>(from.channelIndexByName[value.name]);
            channel.shift = fieldShift(from, sourcePosition);
            channel.mask = static_cast<std::uint32_t>(lowBits(from.channelBits[sourcePosition]));
        }
        const unsigned int half = to.getBytesPerPixel() > 8 ? position / 2 : 0;
        const PixelBits own = ownBits(to, position);
        for (std::uint32_t field = 0; field <= channel.mask; ++field) {
            const PixelBits bits = convertField(name, value, field << channel.shift);
            if ((bits[0] & ~own[0]) != 0 || (bits[1] & ~own[1]) != 0) return false;
            channel.bits[field] = bits[half];
        }
        return true;
    }

private:
    PixelBits convertField(EChannelName name, const ValueSource& value, std::uint32_t pixel) {
        std::memcpy(from.pixelBuffer, &pixel, sizeof pixel);
        to.clearPixel();
        to.writeChannel(name, value.kind == ValueSource::constant ? value.value : from.readChannel(value.name));
        if (curve != nullptr && isColourChannel(name)) to.writeChannel(name, curve(to.readChannel(name)));
        return bitsOf(to);
    }

    PixelCodec from;
    PixelCodec to;
    TransferCurve curve;
};

/// Joins the tables of each source byte, if all fields are whole bytes and the destination has at most 8 bytes.
void joinByteFields(TableConversion& tables) {
    const auto isByteField = [](const TableConversion::Channel& channel) {
        return channel.mask == 0 || (channel.mask == 255 && channel.shift % 8 == 0);
    };
    if (tables.destinationBytes > 8 || !std::all_of(tables.channels.begin(), tables.channels.end(), isByteField)) return;
    std::array<TableConversion::Channel, 4> joined;
    for (std::uint32_t byte = 0; byte < joined.size(); ++byte) {
        joined[byte].shift = 8 * byte;
        joined[byte].mask = 255;
    }
    for (const TableConversion::Channel& channel : tables.channels)
        for (std::uint32_t value = 0; value < 256; ++value)
            joined[channel.shift / 8].bits[value] |= channel.bits[value & channel.mask];
    tables.channels = joined;
    tables.hasByteFields = true;
}

template <bool byteFields, unsigned int sourceBytes, unsigned int destinationBytes>
void convertByTables(const TableConversion& tables, const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    const auto lookUp = [&tables](unsigned int position, std::uint32_t pixel) {
        const TableConversion::Channel& channel = tables.channels[position];
        if constexpr (byteFields)
            return position < sourceBytes ? channel.bits[pixel >> 8 * position & 255] : 0;
        else
            return channel.bits[pixel >> channel.shift & channel.mask];
    };
    for (std::size_t i = 0; i < pixels; ++i) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, from + i * sourceBytes, sourceBytes);
        PixelBits result{lookUp(0, pixel) | lookUp(1, pixel), lookUp(2, pixel) | lookUp(3, pixel)};
        if constexpr (destinationBytes <= 8) result[0] |= result[1];
        std::memcpy(to + i * destinationBytes, result.data(), destinationBytes);
    }
}

using Kernel = void (*)(const TableConversion&, const std::uint8_t*, std::uint8_t*, std::size_t);
using KernelsBySourceBytes = std::array<Kernel, 4>;

struct KernelRow {
    unsigned int destinationBytes;
    KernelsBySourceBytes general;
    KernelsBySourceBytes byteFields;
};

template <bool byteFields, unsigned int bytes>
constexpr KernelsBySourceBytes kernels() {
    return {convertByTables<byteFields, 1, bytes>, convertByTables<byteFields, 2, bytes>, convertByTables<byteFields, 3, bytes>,
            convertByTables<byteFields, 4, bytes>};
}

template <unsigned int bytes>
constexpr KernelRow kernelRow() {
    if constexpr (bytes <= 8)
        return {bytes, kernels<false, bytes>(), kernels<true, bytes>()};
    else
        return {bytes, kernels<false, bytes>(), {}};
}

constexpr std::array<KernelRow, 8> kernelRows{kernelRow<1>(), kernelRow<2>(), kernelRow<3>(),  kernelRow<4>(),
                                              kernelRow<6>(), kernelRow<8>(), kernelRow<12>(), kernelRow<16>()};

/// The loop for these sizes of pixels; null if there is none.
Kernel kernelFor(bool byteFields, unsigned int sourceBytes, unsigned int destinationBytes) {
    if (sourceBytes < 1 || sourceBytes > 4) return nullptr;
    for (const KernelRow& row : kernelRows)
        if (row.destinationBytes == destinationBytes) return (byteFields ? row.byteFields : row.general)[sourceBytes - 1];
    return nullptr;
}

/// The contribution of one channel's table to one byte of the destination.
struct ByteContribution {
    bool isSourceByte = true;
    bool isConstant = true;
    std::uint8_t constant = 0;
};

ByteContribution contributionOf(const TableConversion::Channel& channel, unsigned int byteShift) {
    ByteContribution contribution;
    contribution.constant = static_cast<std::uint8_t>(channel.bits[0] >> byteShift);
    contribution.isSourceByte = channel.mask == 255 && channel.shift % 8 == 0;
    for (std::uint32_t field = 0; field <= channel.mask; ++field) {
        const auto byte = static_cast<std::uint8_t>(channel.bits[field] >> byteShift);
        contribution.isConstant = contribution.isConstant && byte == contribution.constant;
        contribution.isSourceByte = contribution.isSourceByte && byte == field;
    }
    return contribution;
}

/// Finds the source or the constant of one byte of the destination; false if the byte is computed.
bool findSource(const TableConversion& tables, unsigned int byte, ByteShuffle& shuffle) {
    const bool hasHalves = tables.destinationBytes > 8;
    shuffle.source[byte] = ByteShuffle::noSource;
    for (unsigned int position = 0; position < tables.channels.size(); ++position) {
        if (hasHalves && position / 2 != byte / 8) continue;
        const ByteContribution contribution = contributionOf(tables.channels[position], byte % 8 * 8);
        if (contribution.isConstant)
            shuffle.constant[byte] |= contribution.constant;
        else if (contribution.isSourceByte && shuffle.source[byte] == ByteShuffle::noSource)
            shuffle.source[byte] = static_cast<std::uint8_t>(tables.channels[position].shift / 8);
        else
            return false;
    }
    return shuffle.source[byte] == ByteShuffle::noSource || shuffle.constant[byte] == 0;
}

}  // namespace

std::optional<TableConversion> TableConversion::make(const ConversionRequest& request) {
    const PixelCodec& from = request.from;
    const PixelCodec& to = request.to;
    if (!areConvertible(from, to) || !isRegular(from) || !isRegular(to) || !hasNarrowChannels(from) ||
        kernelFor(false, from.getBytesPerPixel(), to.getBytesPerPixel()) == nullptr)
        return std::nullopt;
    std::optional<TableConversion> conversion(std::in_place);
    conversion->sourceBytes = from.getBytesPerPixel();
    conversion->destinationBytes = to.getBytesPerPixel();
    ChannelTableBuilder builder(from, to, transferCurve(request.target, request.source));
    for (unsigned int i = 0; i < to.channelCount; ++i)
        if (!builder.build(i, conversion->channels[i])) return std::nullopt;
    joinByteFields(*conversion);
    return conversion;
}

void TableConversion::convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const {
    kernelFor(hasByteFields, sourceBytes, destinationBytes)(*this, from, to, pixels);
}

std::optional<ByteShuffle> makeByteShuffle(const TableConversion& tables) {
    ByteShuffle shuffle{tables.sourceBytes, tables.destinationBytes, {}, {}};
    for (unsigned int byte = 0; byte < tables.destinationBytes; ++byte)
        if (!findSource(tables, byte, shuffle)) return std::nullopt;
    return shuffle;
}

}  // namespace moktexture
