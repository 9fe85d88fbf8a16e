#include "transcode/pixels/dither.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "core/texture/subresources.h"
#include "format_info.h"
#include "transcode/pixels/PixelCodec.h"

/// @file
/// Error diffusion.
///
/// Problem: reducing a channel to b bits makes visible steps. The error of each pixel is therefore spread over neighbours that
/// are still to be quantised:
///
///              | pixel (quantised) | + error / 2
///     ---------+-------------------+-------------
///              |     + error / 4   | + error / 4      each share truncated toward zero, each sum clamped to 0 to 255
///
/// The definition processes each channel column by column, top to bottom. A pixel thus gets its shares in the order upper left,
/// left, above, and since each sum is clamped this order decides the bytes. No other order of visits matters: a pixel depends on
/// those three neighbours alone. This implementation goes row by row with all channels of a pixel together, which touches memory
/// in order, and adds the shares in the same order:
///
///     for each row:
///         upper left = left = 0
///         for each pixel:
///             value += upper left / 4;  value += left / 2;  value += errors[x] / 4     # clamped after each
///             quantise by table; the error becomes left and errors[x], the old errors[x] becomes upper left
///
/// One pass over the level and one row of errors, 8 bytes per pixel. The channel-by-channel form is in
/// reference/dither_reference.cpp.

namespace moktexture {

namespace {

constexpr std::size_t channels = 4;

/// Rates of an uncompressed layout.
// Kept (later-position-decides-rate): of two positions with the same channel the later one decides, also an `a` after an `x`.
// The bytes of dithered targets such as r5 i2 depend on it.
DitherRates layoutRates(const PixelType& target) {
    DitherRates rates{};
    for (std::size_t position = 0; position < channels; ++position) {
        const std::uint8_t bits = target.layout.channelBits[position];
        switch (channelNameFromChar(target.layout.channelName[position])) {
            case eChannelRed:
                rates[0] = bits;
                break;
            case eChannelGreen:
                rates[1] = bits;
                break;
            case eChannelBlue:
                rates[2] = bits;
                break;
            case eChannelLuminance:
            case eChannelIntensity:
                rates[0] = rates[1] = rates[2] = bits;
                break;
            case eChannelAlpha:
            case eChannelUnspecified:
                rates[3] = bits;
                break;
            default:
                break;
        }
    }
    return rates;
}

constexpr bool isDithered(unsigned int bits) {
    return bits >= 1 && bits <= 7;
}

constexpr unsigned char clampToByte(int value) {
    return static_cast<unsigned char>(std::clamp(value, 0, 255));
}

/// The 8-bit value that `bits` bits of `value` represent.
/// Kept (dither-second-shift): the value shifted by `bits` is added to the upper bits, so that for 1 to 3 bits the result is not
/// a value that the target can represent: 1 bit gives the top bit plus half of the value. Transcode() with `dither` passes on
/// the errors of these sums: .mok files dithered to eFmtBW1bpp, and the alpha of eFmtDXT1 and eFmtMOKTC2bppRGBA, hold their bits.
constexpr unsigned char quantise(unsigned char value, unsigned int bits) {
    const unsigned int dropped = 8 - bits;
    return clampToByte(static_cast<int>((value >> dropped << dropped) + (value >> bits)));
}

void addError(unsigned char& value, int error) {
    value = clampToByte(value + error);
}

/// Per channel, the quantised form of each value; in a channel that is not dithered the value itself, so that its error is 0.
using QuantiserTables = std::array<std::array<unsigned char, 256>, channels>;

QuantiserTables quantiserTables(const DitherRates& rates) {
    QuantiserTables tables;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (unsigned int value = 0; value < 256; ++value) {
            const auto byte = static_cast<unsigned char>(value);
            tables[channel][value] = isDithered(rates[channel]) ? quantise(byte, rates[channel]) : byte;
        }
    }
    return tables;
}

using PixelErrors = std::array<std::int16_t, channels>;

/// Dithers one row. `above` holds the errors of the row above, and receives this row's.
void ditherRow(unsigned char* row, std::size_t width, const QuantiserTables& tables, PixelErrors* above) {
    PixelErrors upperLeft{};
    PixelErrors left{};
    for (std::size_t x = 0; x < width; ++x) {
        const PixelErrors upper = above[x];
        for (std::size_t channel = 0; channel < channels; ++channel) {
            unsigned char& value = row[x * channels + channel];
            addError(value, upperLeft[channel] / 4);
            addError(value, left[channel] / 2);
            addError(value, upper[channel] / 4);
            const unsigned char quantised = tables[channel][value];
            left[channel] = static_cast<std::int16_t>(value - quantised);
            value = quantised;
        }
        above[x] = left;
        upperLeft = upper;
    }
}

}  // namespace

DitherRates ditherRates(const PixelType& target) {
    if (!isCompressed(target)) return layoutRates(target);
    return std::to_array(GetFormatInfo(target).ditherBits);
}

void ditherLevel(unsigned char* rgba, PixelType target, unsigned int width, unsigned int height, unsigned int depth) {
    const DitherRates rates = ditherRates(target);
    if (std::none_of(rates.begin(), rates.end(), isDithered)) return;

    const QuantiserTables tables = quantiserTables(rates);
    const std::size_t pitch = std::size_t{width} * channels;
    std::vector<PixelErrors> errors(width);
    for (unsigned int z = 0; z < depth; ++z) {
        std::fill(errors.begin(), errors.end(), PixelErrors{});
        for (unsigned int y = 0; y < height; ++y, rgba += pitch)
            ditherRow(rgba, width, tables, errors.data());
    }
}

}  // namespace moktexture
