#include "formats/standard/data_format_descriptor.h"

#include <array>
#include <bit>
#include <vector>

#include "core/texture/subresources.h"
#include "formats/standard/key_values.h"
#include "formats/standard/published_format.h"

namespace moktexture {
namespace {

constexpr std::uint8_t modelRGBSDA = 1, modelBC1 = 128, modelBC2 = 129, modelBC3 = 130, modelBC4 = 131, modelBC5 = 132,
                       modelBC6H = 133, modelBC7 = 134, modelETC2 = 161;
constexpr std::uint8_t primariesBT709 = 1, transferLinear = 1, transferSRGB = 2, flagPremultiplied = 1;
// Channels, and qualifiers that are added to them.
constexpr std::uint8_t channel0 = 0, channel1 = 1, channel2 = 2, alpha = 15;
constexpr std::uint8_t isLinear = 0x10, isExponent = 0x20, isSignedQualifier = 0x40, isFloat = 0x80;

constexpr std::size_t flagsOffset = 4 + 11;  // after the total size, the flags are the twelfth byte

/// A run of bits of a block that holds one channel.
struct Sample {
    std::uint16_t bitOffset;
    std::uint8_t bits;
    std::uint8_t channel;
    std::uint32_t lower, upper;
};

struct BlockSamples {
    PixelType format;
    std::uint8_t model;
    std::uint8_t count;
    std::array<std::uint8_t, 2> channels;
    std::array<std::uint16_t, 2> offsets;
    std::array<std::uint8_t, 2> bits;
};

// clang-format off
constexpr BlockSamples blockSamples[] = {
    // Format        Model       Samples  Channels              Bit offsets  Bits
    {eFmtDXT1,       modelBC1,   1,       {channel1, 0},        {0,  0},     { 64,  0}},
    {eFmtDXT2,       modelBC2,   2,       {alpha, channel0},    {0, 64},     { 64, 64}},
    {eFmtDXT3,       modelBC2,   2,       {alpha, channel0},    {0, 64},     { 64, 64}},
    {eFmtDXT4,       modelBC3,   2,       {alpha, channel0},    {0, 64},     { 64, 64}},
    {eFmtDXT5,       modelBC3,   2,       {alpha, channel0},    {0, 64},     { 64, 64}},
    {eFmtBC4,        modelBC4,   1,       {channel0, 0},        {0,  0},     { 64,  0}},
    {eFmtBC5,        modelBC5,   2,       {channel0, channel1}, {0, 64},     { 64, 64}},
    {eFmtBC6,        modelBC6H,  1,       {channel0, 0},        {0,  0},     {128,  0}},
    {eFmtBC7,        modelBC7,   1,       {channel0, 0},        {0,  0},     {128,  0}},
    {eFmtETC1,       modelETC2,  1,       {channel2, 0},        {0,  0},     { 64,  0}},
    {eFmtETC2RGB,    modelETC2,  1,       {channel2, 0},        {0,  0},     { 64,  0}},
    {eFmtETC2RGBA1,  modelETC2,  2,       {channel2, alpha},    {0,  0},     { 64, 64}},
    {eFmtETC2RGBA,   modelETC2,  2,       {alpha, channel2},    {0, 64},     { 64, 64}},
    {eFmtEACR11U,    modelETC2,  1,       {channel0, 0},        {0,  0},     { 64,  0}},
    {eFmtEACR11S,    modelETC2,  1,       {channel0, 0},        {0,  0},     { 64,  0}},
    {eFmtEACRG11U,   modelETC2,  2,       {channel0, channel1}, {0, 64},     { 64, 64}},
    {eFmtEACRG11S,   modelETC2,  2,       {channel0, channel1}, {0, 64},     { 64, 64}},
};
// clang-format on

bool isSignedType(EMOKTVariableType type) {
    return type < eVarFloat && type % 2 == 1;
}

bool isNormalised(EMOKTVariableType type) {
    return type <= eVarSByteNorm || type == eVarUShortNorm || type == eVarSShortNorm || type == eVarUIntNorm ||
           type == eVarSIntNorm;
}

void appendBlockSamples(const BlockSamples& row, const CMOKTextureHeader& header, std::vector<Sample>& samples) {
    const bool isSRGB = header.getColourSpace() == eColourSpaceSRGB;
    const bool isSignedFormat = isSignedType(header.getChannelType());
    for (std::size_t i = 0; i < row.count; ++i) {
        Sample sample{row.offsets[i], row.bits[i], row.channels[i], 0, 0xFFFFFFFF};
        if (sample.channel == alpha && isSRGB) sample.channel |= isLinear;
        if (row.format == eFmtBC6) {
            sample.channel |= isFloat;
            sample.upper = std::bit_cast<std::uint32_t>(1.0f);
            if (isSignedFormat) sample.lower = std::bit_cast<std::uint32_t>(-1.0f);
        } else if (isSignedFormat) {
            sample.lower = 0x80000000;
            sample.upper = 0x7FFFFFFF;
        }
        if (isSignedFormat) sample.channel |= isSignedQualifier;
        samples.push_back(sample);
    }
}

std::uint8_t channelOf(std::uint8_t letter) {
    switch (letter) {
        case 'g':
            return channel1;
        case 'b':
            return channel2;
        case 'a':
            return alpha;
        default:
            return channel0;
    }
}

/// The range of a channel's values, and its qualifiers.
void setRange(Sample& sample, EMOKTVariableType type) {
    const std::uint32_t ones = sample.bits == 32 ? 0xFFFFFFFFu : (1u << sample.bits) - 1;
    if (type == eVarFloat) {
        const bool hasSign = sample.bits >= 16;
        sample.channel |= hasSign ? isFloat | isSignedQualifier : isFloat;
        sample.lower = hasSign ? std::bit_cast<std::uint32_t>(-1.0f) : 0;
        sample.upper = std::bit_cast<std::uint32_t>(1.0f);
    } else if (isSignedType(type)) {
        sample.channel |= isSignedQualifier;
        sample.upper = isNormalised(type) ? ones >> 1 : 1;
        sample.lower = 0u - sample.upper;
    } else {
        sample.lower = 0;
        sample.upper = isNormalised(type) ? ones : 1;
    }
}

/// Channels of 8, 16 or 32 bits follow each other; others are packed from the highest bit of a word down.
void appendLayoutSamples(const CMOKTextureHeader& header, std::vector<Sample>& samples) {
    const PixelType::Layout layout = header.getPixelType().layout;
    const unsigned int total = bitsPerPixel(header.getPixelType());
    const bool isPacked = layout.channelBits[0] % 8 != 0;
    unsigned int before = 0;
    for (std::size_t i = 0; i < 4 && layout.channelBits[i] != 0; ++i) {
        const unsigned int bits = layout.channelBits[i];
        const unsigned int offset = isPacked ? total - before - bits : before;
        Sample sample{static_cast<std::uint16_t>(offset), static_cast<std::uint8_t>(bits), channelOf(layout.channelName[i]), 0,
                      0};
        setRange(sample, header.getChannelType());
        if (layout.channelName[i] == 'a' && header.getColourSpace() == eColourSpaceSRGB) sample.channel |= isLinear;
        samples.push_back(sample);
        before += bits;
    }
}

/// Three mantissas of 9 bits that share an exponent of 5 bits with bias 15.
void appendSharedExponentSamples(std::vector<Sample>& samples) {
    for (std::uint8_t channel = channel0; channel <= channel2; ++channel) {
        samples.push_back({static_cast<std::uint16_t>(9 * channel), 9, channel, 0, 8448});
        samples.push_back({27, 5, static_cast<std::uint8_t>(channel | isExponent), 15, 31});
    }
}

constexpr std::uint32_t pack(std::uint32_t byte0, std::uint32_t byte1, std::uint32_t byte2, std::uint32_t byte3) {
    return byte0 | byte1 << 8 | byte2 << 16 | byte3 << 24;
}

}  // namespace

std::string encodeDataFormatDescriptor(const CMOKTextureHeader& header) {
    const PixelType format = header.getPixelType();
    std::vector<Sample> samples;
    std::uint8_t model = modelRGBSDA;
    if (format == eFmtRGB9E5) {
        appendSharedExponentSamples(samples);
    } else if (!isCompressed(format)) {
        appendLayoutSamples(header, samples);
    } else {
        for (const BlockSamples& row : blockSamples) {
            if (row.format != format) continue;
            model = row.model;
            appendBlockSamples(row, header, samples);
        }
    }
    const StoredBlock block = storedBlock(format);
    const bool isSRGB = header.getColourSpace() == eColourSpaceSRGB;
    const auto blockSize = static_cast<std::uint32_t>(24 + 16 * samples.size());
    std::string bytes;
    appendWord(bytes, 4 + blockSize);
    appendWord(bytes, 0);                    // vendor and type: the basic descriptor of Khronos
    appendWord(bytes, 2 | blockSize << 16);  // version 1.3
    appendWord(bytes, pack(model, primariesBT709, isSRGB ? transferSRGB : transferLinear,
                           header.isPreMultiplied() ? flagPremultiplied : 0));
    appendWord(bytes, pack(block.width - 1, block.height - 1, 0, 0));
    appendWord(bytes, block.bytes);
    appendWord(bytes, 0);
    for (const Sample& sample : samples) {
        appendWord(bytes, sample.bitOffset | (sample.bits - 1u) << 16 | std::uint32_t{sample.channel} << 24);
        appendWord(bytes, 0);
        appendWord(bytes, sample.lower);
        appendWord(bytes, sample.upper);
    }
    return bytes;
}

bool isPremultiplied(std::span<const unsigned char> descriptor) {
    return descriptor.size() > flagsOffset && (descriptor[flagsOffset] & flagPremultiplied) != 0;
}

}  // namespace moktexture
