#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "transcode/pixels/PixelCodec.h"
#include "transcode/pixels/pixel_bits.h"
#include "transcode/pixels/transfer_curve.h"

namespace moktexture {

/// How the bits of a channel stand for its value.
enum class ChannelFormat { zero, unsignedInteger, signedElement, signedField, float32, float16, float11, float10 };

/// Where a channel lies in a pixel.
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

/// Reads one channel as PixelCodec::readChannel() does, with all that depends on the layout settled beforehand.
class ChannelReader {
public:
    /// @param channel  one that the layout has
    /// @param valueCurve  applied to the values, or null
    /// @param tableBits  fields up to that width are read through a table
    ChannelReader(const PixelCodec& codec, EChannelName channel, TransferCurve valueCurve, unsigned int tableBits);

    void read(const PixelBits* pixels, std::size_t count, float* values) const;

private:
    void fillTable();
    void readUntabled(const PixelBits* pixels, std::size_t count, float* values) const;

    ChannelFormat format;
    unsigned int width;
    ChannelField field;
    TransferCurve curve;
    std::vector<float> table;
};

/// Writes one channel as PixelCodec::writeChannel() does, likewise.
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
