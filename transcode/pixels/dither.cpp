#include "transcode/pixels/dither.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "core/texture/data_size.h"
#include "format_info.h"
#include "transcode/pixels/channel_name.h"

namespace moktexture {

namespace {

constexpr std::size_t channels = 4;

/// Rates of an uncompressed layout.
// Kept: of two positions with one channel the later counts; an `a` behind an `x` decides.
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

/// The 8-bit value that stands for what `bits` bits keep of `value`.
/// Kept: what is added to the upper bits is the value shifted by `bits`; for 1 to 3 bits the result is no level of the target
/// (1 bit gives the top bit plus half of the value); dithered files depend on it.
constexpr unsigned char quantise(unsigned char value, unsigned int bits) {
    const unsigned int dropped = 8 - bits;
    return clampToByte(static_cast<int>((value >> dropped << dropped) + (value >> bits)));
}

void addError(unsigned char& value, int error) {
    value = clampToByte(value + error);
}

/// Dithers one channel of one slice, of which `slice` is the first byte.
void ditherSlicePlain(unsigned char* slice, unsigned int bits, std::size_t width, std::size_t height) {
    const std::size_t pitch = width * channels;
    for (std::size_t x = 0; x < width; ++x) {
        const bool hasRight = x + 1 < width;
        for (std::size_t y = 0; y < height; ++y) {
            unsigned char* const pixel = slice + y * pitch + x * channels;
            const unsigned char value = *pixel;
            *pixel = quantise(value, bits);
            const int error = value - *pixel;
            if (hasRight) addError(pixel[channels], error / 2);
            if (y + 1 < height) {
                if (hasRight) addError(pixel[pitch + channels], error / 4);
                addError(pixel[pitch], error / 4);
            }
        }
    }
}

/// Per channel, what each value becomes: itself in a channel that is not dithered, whose error is then always 0.
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

/// Dithers one row. `above` holds the errors of the row before it, and takes up this row's. A pixel gets its three shares in the
/// order in which the columns' walk gives them, since each sum is clamped: from the upper left, the left, then from above.
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

void ditherLevelPlain(unsigned char* rgba, PixelType target, unsigned int width, unsigned int height, unsigned int depth) {
    const DitherRates rates = ditherRates(target);
    const std::size_t slice = std::size_t{width} * height * channels;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (!isDithered(rates[channel])) continue;
        for (unsigned int z = 0; z < depth; ++z)
            ditherSlicePlain(rgba + z * slice + channel, rates[channel], width, height);
    }
}

}  // namespace moktexture
