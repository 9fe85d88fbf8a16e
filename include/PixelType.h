#pragma once

#include <cstdint>

#include "compressed_format_id.h"

namespace moktexture {

/// A pixel format, in eight bytes.
///
/// If the high 32 bits are zero the low ones are a CompressedFormatId. Otherwise the format is an uncompressed layout of up to
/// four channels: `layout.channelName` holds their letters, lower-case ASCII (`r`, `g`, `b`, `a`, `l` luminance, `i` intensity,
/// `x` ignored), `layout.channelBits` their bits. A missing channel has letter 0 and 0 bits and lies at the end.
///
/// @code
/// PixelType rgb565('r', 'g', 'b', 0, 5, 6, 5, 0);  // id 0x0005060500626772
/// PixelType dxt1 = eFmtDXT1;
/// @endcode
union PixelType {
    struct LowHigh {
        std::uint32_t low;
        std::uint32_t high;
    };
    struct Layout {
        std::uint8_t channelName[4];
        std::uint8_t channelBits[4];
    };

    std::uint64_t id;  ///< all eight bytes; letter 1 is the lowest
    LowHigh part;      ///< the id's halves
    Layout layout;     ///< letters and bits of an uncompressed layout

    /// Id 0, which is eFmtMOKTC2bppRGB.
    constexpr PixelType() : id(0) {}
    /// From an id, or implicitly from a CompressedFormatId.
    constexpr PixelType(std::uint64_t pixelTypeId) : id(pixelTypeId) {}
    /// From four channel letters and their bits.
    constexpr PixelType(std::uint8_t name1, std::uint8_t name2, std::uint8_t name3, std::uint8_t name4, std::uint8_t bits1,
                        std::uint8_t bits2, std::uint8_t bits3, std::uint8_t bits4)
        : id(std::uint64_t{name1} | std::uint64_t{name2} << 8 | std::uint64_t{name3} << 16 | std::uint64_t{name4} << 24 |
             std::uint64_t{bits1} << 32 | std::uint64_t{bits2} << 40 | std::uint64_t{bits3} << 48 | std::uint64_t{bits4} << 56) {}
};

constexpr bool operator==(const PixelType& a, const PixelType& b) {
    return a.id == b.id;
}
constexpr bool operator!=(const PixelType& a, const PixelType& b) {
    return a.id != b.id;
}

/// The three layouts that the image operations work on: red, green, blue, alpha at 8, 16 or 32 bits per channel.
inline constexpr PixelType PixelTypeRGBA8{'r', 'g', 'b', 'a', 8, 8, 8, 8};
inline constexpr PixelType PixelTypeRGBA16{'r', 'g', 'b', 'a', 16, 16, 16, 16};
inline constexpr PixelType PixelTypeRGBA32{'r', 'g', 'b', 'a', 32, 32, 32, 32};

static_assert(sizeof(PixelType) == 8);

}  // namespace moktexture
