#include "transcode/pixels/byte_shuffle.h"

namespace moktexture {

namespace {

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

std::optional<ByteShuffle> makeByteShuffle(const TableConversion& tables) {
    ByteShuffle shuffle{tables.sourceBytes, tables.destinationBytes, {}, {}};
    for (unsigned int byte = 0; byte < tables.destinationBytes; ++byte)
        if (!findSource(tables, byte, shuffle)) return std::nullopt;
    return shuffle;
}

}  // namespace moktexture
