#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "transcode/pixels/PixelCodec.h"

namespace moktexture {

/// Conversion from a layout whose channels have at most 8 bits, by tables from the bits of one source channel to bits of the
/// destination pixel. The tables are filled by the plain code, so that they give its bits.
class TableConversion {
public:
    /// Entries for the source field `pixel >> shift & mask`; a single one, with mask 0, for a constant.
    struct Channel {
        std::uint32_t shift = 0;
        std::uint32_t mask = 0;
        /// Bits of the half of the destination pixel that holds the channel.
        std::array<std::uint64_t, 256> bits{};
    };

    /// Fills the tables; nothing if a destination channel mixes source channels, spills into others, or the layouts are
    /// irregular.
    static std::optional<TableConversion> settle(const PixelCodec& from, const PixelCodec& to, EMOKTColourSpace target,
                                                 EMOKTColourSpace source);

    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

    /// By destination position, of which 2 and 3 form the second half of destinations above 8 bytes. If `hasByteFields`, by
    /// source byte instead, all of mask 255.
    std::array<Channel, 4> channels;
    bool hasByteFields = false;
    unsigned int sourceBytes = 0;
    unsigned int destinationBytes = 0;
};

}  // namespace moktexture
