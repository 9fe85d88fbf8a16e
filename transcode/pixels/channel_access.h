#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "transcode/pixels/PixelCodec.h"
#include "transcode/pixels/transfer_curve.h"

/// @file
/// Access to one channel of a run of pixels. A pixel is taken from memory into two 64-bit words once; a channel is then a field
/// of one word, and its ChannelField, its number form and its look-up table are determined before the run.

namespace moktexture {

/// The bytes of PixelCodec::pixelBuffer as two little-endian words, of which the first is the pixel word.
using PixelBits = std::array<std::uint64_t, 2>;

inline PixelBits bitsOf(const PixelCodec& codec) {
    PixelBits bits;
    static_assert(sizeof bits == sizeof codec.pixelBuffer);
    std::memcpy(bits.data(), codec.pixelBuffer, sizeof bits);
    return bits;
}

/// Reads pixels of a size that is known at compile time. `rest` holds the bits above them, as PixelCodec::loadPixel() leaves
/// them.
template <std::size_t bytes>
void unpackPixels(const std::uint8_t* from, std::size_t pixels, const PixelBits& rest, PixelBits* to) {
    for (std::size_t i = 0; i < pixels; ++i) {
        PixelBits bits{};
        std::memcpy(bits.data(), from + i * bytes, bytes);
        to[i] = {bits[0] | rest[0], bits[1] | rest[1]};
    }
}

template <std::size_t bytes>
void packPixels(const PixelBits* from, std::size_t pixels, std::uint8_t* to) {
    for (std::size_t i = 0; i < pixels; ++i)
        std::memcpy(to + i * bytes, from[i].data(), bytes);
}

/// The number form of a channel.
enum class ChannelFormat { zero, unsignedInteger, signedElement, signedField, float32, float16, float11, float10 };

/// The position of a channel in a pixel.
struct ChannelField {
    std::uint64_t load(const PixelBits& pixel) const { return (pixel[half] & mask) >> shift; }
    void store(PixelBits& pixel, std::uint64_t raw) const { pixel[half] = (pixel[half] & ~mask) | (raw & stored) << shift; }
    /// The largest number that load() gives.
    std::uint64_t maximum() const { return mask >> shift; }

    unsigned int half = 0;
    unsigned int shift = 0;    ///< below 64
    std::uint64_t mask = 0;    ///< the bits that are read, and cleared before writing
    std::uint64_t stored = 0;  ///< the low bits of a number that are written
};

/// Reads one channel as PixelCodec::readChannel() does.
class ChannelReader {
public:
    /// @param channel  one that the layout has
    /// @param valueCurve  applied to the values; null for none
    /// @param tableBits  fields of at most this width are read through a table
    ChannelReader(const PixelCodec& codec, EChannelName channel, TransferCurve valueCurve, unsigned int tableBits);

    void read(const PixelBits* pixels, std::size_t count, float* values) const;

private:
    void fillTable();
    void compute(const PixelBits* pixels, std::size_t count, float* values) const;

    ChannelFormat format;
    unsigned int width;
    ChannelField field;
    TransferCurve curve;
    std::vector<float> table;
};

/// Writes one channel as PixelCodec::writeChannel() does.
class ChannelWriter {
public:
    ChannelWriter(const PixelCodec& codec, EChannelName channel);

    void write(const float* values, std::size_t count, PixelBits* pixels) const;

private:
    ChannelFormat format;
    unsigned int width;
    ChannelField field;
};

}  // namespace moktexture
