#include "transcode/pixels/conversion_plan.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "transcode/pixels/channel_value.h"

namespace moktexture {

namespace {

constexpr unsigned int smallTableBits = 8;
constexpr unsigned int largeTableBits = 16;
/// From this many pixels on, filling a large table costs less than the curve for each of them.
constexpr std::uint64_t pixelsForLargeTables = 1u << 18;

/// Pixels that are converted at a time, one channel after another.
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

ConversionPlan::ConversionPlan(const PixelCodec& from, const PixelCodec& to, EMOKTColourSpace target, EMOKTColourSpace source,
                               std::uint64_t pixels)
    : sourceBytes(from.getBytesPerPixel()), destinationBytes(to.getBytesPerPixel()) {
    PixelCodec beyondPixel(from);
    std::memset(beyondPixel.pixelBuffer, 0, sourceBytes);
    sourceRest = bitsOf(beyondPixel);
    const TransferCurve curve = transferCurve(target, source);
    const unsigned int curveTableBits = pixels >= pixelsForLargeTables ? largeTableBits : smallTableBits;
    for (unsigned int i = eChannelRed; i <= eChannelUnspecified; ++i) {
        const auto name = static_cast<EChannelName>(i);
        if (!to.has(name)) continue;
        assignments.push_back(assignmentOf(name, from, to));
        if (curve != nullptr && isColourChannel(name))
            curvedChannels.push_back({ChannelReader(to, name, curve, curveTableBits), ChannelWriter(to, name)});
    }
}

ConversionPlan::Assignment ConversionPlan::assignmentOf(EChannelName name, const PixelCodec& from, const PixelCodec& to) {
    constexpr float luminanceWeights[] = {0.2126f, 0.7152f, 0.0722f};
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
        values[k] = withOneNaN(values[k] / divisor);
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
