#include "transcode/pixels/layout_conversion.h"

#include <algorithm>
#include <cstring>

namespace moktexture {

namespace {

/// Below this, preparing tables takes longer than converting.
constexpr std::uint64_t pixelsForTables = 256;

/// What one byte of the destination gets from one channel's table.
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

/// Settles one byte of the destination; false if it is computed.
bool settleByte(const TableConversion& tables, unsigned int byte, ByteShuffle& moves) {
    const bool hasHalves = tables.destinationBytes > 8;
    moves.source[byte] = ByteShuffle::noSource;
    for (unsigned int position = 0; position < tables.channels.size(); ++position) {
        if (hasHalves && position / 2 != byte / 8) continue;
        const ByteContribution contribution = contributionOf(tables.channels[position], byte % 8 * 8);
        if (contribution.isConstant)
            moves.constant[byte] |= contribution.constant;
        else if (contribution.isSourceByte && moves.source[byte] == ByteShuffle::noSource)
            moves.source[byte] = static_cast<std::uint8_t>(tables.channels[position].shift / 8);
        else
            return false;
    }
    return moves.source[byte] == ByteShuffle::noSource || moves.constant[byte] == 0;
}

}  // namespace

std::optional<ByteShuffle> makeByteShuffle(const TableConversion& tables) {
    ByteShuffle moves{tables.sourceBytes, tables.destinationBytes, {}, {}};
    for (unsigned int byte = 0; byte < tables.destinationBytes; ++byte)
        if (!settleByte(tables, byte, moves)) return std::nullopt;
    return moves;
}

LayoutConversion::LayoutConversion(const PixelCodec& from, const PixelCodec& to, EMOKTColourSpace target, EMOKTColourSpace source,
                                   std::uint64_t pixels, InstructionSet level)
    : fromCodec(from), toCodec(to), targetSpace(target), sourceSpace(source) {
    if (areConvertible(from, to) && pixels >= pixelsForTables) prepare(pixels, level);
}

void LayoutConversion::prepare(std::uint64_t pixels, InstructionSet level) {
    tables = TableConversion::settle(fromCodec, toCodec, targetSpace, sourceSpace);
    if (!tables) {
        settled.emplace(fromCodec, toCodec, targetSpace, sourceSpace, pixels);
        chosenForm = Form::settled;
        return;
    }
    chosenForm = Form::tables;
    if (level >= InstructionSet::sse41) moves = makeByteShuffle(*tables);
    if (moves) chosenForm = Form::byteShuffleSSE41;
}

void LayoutConversion::convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    std::size_t moved = 0;
    switch (chosenForm) {
        case Form::plain:
            return convertPlain(fromCodec, toCodec, targetSpace, sourceSpace, from, to, pixels);
        case Form::settled:
            return settled->convert(from, to, pixels);
        case Form::byteShuffleSSE41:
            moved = moveBytesSSE41(*moves, from, to, pixels);
            [[fallthrough]];
        case Form::tables:
            tables->convert(from + moved * tables->sourceBytes, to + moved * tables->destinationBytes, pixels - moved);
    }
}

void LayoutConversion::convertPlain(PixelCodec& fromCodec, PixelCodec& toCodec, EMOKTColourSpace target, EMOKTColourSpace source,
                                    const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    const bool isUsable = fromCodec.errorFlags == 0 && toCodec.errorFlags == 0;
    const std::size_t sourceBytes = fromCodec.getBytesPerPixel();
    const std::size_t destinationBytes = toCodec.getBytesPerPixel();
    for (std::size_t i = 0; i < pixels; ++i) {
        fromCodec.loadPixel(from + i * sourceBytes);
        toCodec.convertFrom(fromCodec);
        if (isUsable) toCodec.convertColourSpace(target, source);
        std::memcpy(to + i * destinationBytes, toCodec.pixelBytes(), std::min(destinationBytes, PixelCodec::bufferSize));
    }
}

}  // namespace moktexture
