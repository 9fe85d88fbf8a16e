#include "transcode/pixels/conversion_plan.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "core/base/numeric.h"

/// @file
/// The per-channel form of a conversion.
///
/// Problem: PixelCodec decides again for each pixel which channels exist, where they are, in which number form, and which
/// value replaces a channel that the source lacks. All of this depends on the two layouts alone.
///
/// Idea: decide once, and then convert blocks of 64 pixels channel by channel, so that each inner loop does one thing for one
/// channel and the compiler can vectorise it.
///
///     for each block of 64 pixels:
///         unpack the pixels to two 64-bit words each
///         for each destination channel:                  # Assignment, in the order of EChannelName
///             values = constant | channel | luminance or mean of channels    # ValueSource; readers have tables up to 8 bits
///             write values into the result words
///         for each destination colour channel, if there is a curve:          # CurvedChannel
///             values = curve(what the channel holds now); write them
///         pack the results
///
/// The bytes equal PixelCodec's because readers and writers use the same functions of channel_value.h, in the same order of
/// operations, and channels are written in the same order, so that values spill into other channels identically. The tests
/// compare both forms for random layouts. The cost is linear in the number of pixels; the memory is the tables, 1 KiB for each
/// source channel and at most 256 KiB for each curved one.

namespace moktexture {

namespace {

/// Fields up to this width are read through tables, filled in about the time of 256 pixels.
constexpr unsigned int smallTableBits = 8;
/// The same for channels that go through the curve, if there are many pixels: the table of 65536 entries is filled by the curve,
/// which takes about as long as the curve for a quarter of `pixelsForLargeTables`. No byte depends on the two.
constexpr unsigned int largeTableBits = 16;
constexpr std::uint64_t pixelsForLargeTables = 1u << 18;

/// Pixels per block: the words and values of a block (about 2.5 KiB) stay in the L1 cache.
constexpr std::size_t blockPixels = 64;

using Unpack = void (*)(const std::uint8_t*, std::size_t, const PixelBits&, PixelBits*);
using Pack = void (*)(const PixelBits*, std::size_t, std::uint8_t*);

template <std::size_t... sizes>
constexpr std::array<Unpack, sizeof...(sizes)> unpackTable(std::index_sequence<sizes...>) {
    return {unpackPixels<sizes>...};
}
template <std::size_t... sizes>
constexpr std::array<Pack, sizeof...(sizes)> packTable(std::index_sequence<sizes...>) {
    return {packPixels<sizes>...};
}

/// By bytes per pixel.
constexpr auto unpackBySize = unpackTable(std::make_index_sequence<PixelCodec::bufferSize + 1>());
constexpr auto packBySize = packTable(std::make_index_sequence<PixelCodec::bufferSize + 1>());

}  // namespace

ConversionPlan::ConversionPlan(const ConversionRequest& request)
    : sourceBytes(request.from.getBytesPerPixel()), destinationBytes(request.to.getBytesPerPixel()) {
    const PixelCodec& from = request.from;
    const PixelCodec& to = request.to;
    PixelCodec abovePixel(from);
    std::memset(abovePixel.pixelBuffer, 0, sourceBytes);
    sourceRest = bitsOf(abovePixel);
    const TransferCurve curve = transferCurve(request.target, request.source);
    const unsigned int curveTableBits = request.pixels >= pixelsForLargeTables ? largeTableBits : smallTableBits;
    for (unsigned int i = eChannelRed; i <= eChannelUnspecified; ++i) {
        const auto name = static_cast<EChannelName>(i);
        if (!to.has(name)) continue;
        assignments.push_back(assignmentOf(name, from, to));
        if (curve != nullptr && isColourChannel(name))
            curvedChannels.push_back({ChannelReader(to, name, curve, curveTableBits), ChannelWriter(to, name)});
    }
}

ConversionPlan::Assignment ConversionPlan::assignmentOf(EChannelName name, const PixelCodec& from, const PixelCodec& to) {
    Assignment assignment{valueSourceOf(name, from, to), {}, {}, ChannelWriter(to, name)};
    if (assignment.source.kind == ValueSource::constant) return assignment;
    if (assignment.source.kind == ValueSource::channel) {
        assignment.readers.emplace_back(from, assignment.source.name, nullptr, smallTableBits);
        return assignment;
    }
    for (const EChannelName colour : {eChannelRed, eChannelGreen, eChannelBlue}) {
        if (!from.has(colour)) continue;
        assignment.readers.emplace_back(from, colour, nullptr, smallTableBits);
        assignment.weights.push_back(luminanceWeights[colour - eChannelRed]);
    }
    return assignment;
}

void ConversionPlan::Assignment::evaluate(const PixelBits* pixels, std::size_t count, float* values) const {
    std::fill_n(values, count, source.value);
    if (source.kind == ValueSource::channel) return readers.front().read(pixels, count, values);

    float terms[blockPixels];
    for (std::size_t i = 0; i < readers.size(); ++i) {
        readers[i].read(pixels, count, terms);
        for (std::size_t k = 0; k < count; ++k)
            values[k] += source.kind == ValueSource::luminance ? weights[i] * terms[k] : terms[k];
    }
    const float divisor = source.kind == ValueSource::mean && !readers.empty() ? static_cast<float>(readers.size()) : 1.0f;
    for (std::size_t k = 0; k < count; ++k)
        values[k] = canonicalNaN(values[k] / divisor);
}

void ConversionPlan::convertBlock(const PixelBits* pixels, std::size_t count, PixelBits* results) const {
    float values[blockPixels];
    for (const Assignment& assignment : assignments) {
        assignment.evaluate(pixels, count, values);
        assignment.writer.write(values, count, results);
    }
    for (const CurvedChannel& channel : curvedChannels) {
        channel.reader.read(results, count, values);
        channel.writer.write(values, count, results);
    }
}

void ConversionPlan::convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const {
    PixelBits block[blockPixels];
    for (std::size_t done = 0; done < pixels; done += blockPixels) {
        const std::size_t count = std::min(blockPixels, pixels - done);
        PixelBits results[blockPixels]{};
        unpackBySize[sourceBytes](from + done * sourceBytes, count, sourceRest, block);
        convertBlock(block, count, results);
        packBySize[destinationBytes](results, count, to + done * destinationBytes);
    }
}

}  // namespace moktexture
