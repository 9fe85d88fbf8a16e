#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "transcode/pixels/byte_shuffle.h"
#include "transcode/pixels/conversion_plan.h"

namespace moktexture {

/// Conversion from a layout whose channels have at most 8 bits, by tables from the bits of one source channel to bits of the
/// destination pixel.
class TableConversion {
public:
    /// Entries for the source field `pixel >> shift & mask`; a single entry, with mask 0, for a constant.
    struct Channel {
        std::uint32_t shift = 0;
        std::uint32_t mask = 0;
        /// Bits of the 64-bit half of the destination pixel that holds the channel.
        std::array<std::uint64_t, 256> bits{};
    };

    /// Fills the tables; nothing if a destination channel mixes source channels or spills into others, or if channels of a layout
    /// share bits.
    static std::optional<TableConversion> make(const ConversionRequest& request);

    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

    /// By destination position; of a destination above 8 bytes, 2 and 3 form the second half. If `hasByteFields`, by source byte
    /// instead, all with mask 255.
    std::array<Channel, 4> channels;
    bool hasByteFields = false;
    unsigned int sourceBytes = 0;
    unsigned int destinationBytes = 0;
};

/// The byte shuffle that gives the same bytes as the tables; nothing if there is none. All values of each table are looked at, so
/// that the two are equal for every pixel.
std::optional<ByteShuffle> makeByteShuffle(const TableConversion& tables);

}  // namespace moktexture
