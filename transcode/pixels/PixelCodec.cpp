#include "transcode/pixels/PixelCodec.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "core/base/numeric.h"
#include "transcode/pixels/channel_value.h"
#include "transcode/pixels/transfer_curve.h"

namespace moktexture {

namespace {

static_assert(std::endian::native == std::endian::little, "storage elements and the pixel word are little-endian");

constexpr unsigned int positions = 4;

std::uint8_t storageWidthOf(EMOKTVariableType type) {
    return type <= eVarSByte ? 8 : type <= eVarSShort ? 16 : 32;
}

/// Whether a channel of that width is addressed as a storage element.
bool fillsElement(EMOKTVariableType type, unsigned int width) {
    if (type == eVarFloat) return width == 32 || width == 16;
    return type < eVarFloat && width == storageWidthOf(type);
}

std::uint64_t pixelWord(const unsigned char* pixel) {
    std::uint64_t word;
    std::memcpy(&word, pixel, sizeof word);
    return word;
}

template <class Element>
Element elementAt(const unsigned char* pixel, std::uint64_t index) {
    Element element;
    std::memcpy(&element, pixel + index * sizeof element, sizeof element);
    return element;
}

template <class Element>
void storeElement(unsigned char* pixel, std::uint64_t index, std::uint64_t raw) {
    const auto element = static_cast<Element>(raw);
    std::memcpy(pixel + index * sizeof element, &element, sizeof element);
}

/// The field under the mask of the low `wordBits` bits of the pixel word.
std::uint64_t packedField(const PixelCodec& codec, int position, unsigned int wordBits) {
    // Kept (element-number-as-mask): where the widths of a layout differ, a channel that fills an element is read with its
    // element number as the mask. Integer layouts of mixed widths would load other values from .mok files.
    const std::uint64_t mask = codec.channelMask[position] & lowBits(wordBits);
    return shiftedRight(pixelWord(codec.pixelBuffer) & mask, codec.shiftRight[position]);
}

/// Replaces the field by the low 32 bits of `raw`.
void storePacked(PixelCodec& codec, int position, std::uint64_t raw) {
    // Kept (packed-values-spill): what exceeds the field spills into the channels above it. The bytes of packed layouts with
    // values above 1.0 depend on it.
    const std::uint64_t field = shiftedLeft(raw & lowBits(32), codec.shiftRight[position]);
    const std::uint64_t word = (pixelWord(codec.pixelBuffer) & ~codec.channelMask[position]) | field;
    std::memcpy(codec.pixelBuffer, &word, sizeof word);
}

void storeInteger(PixelCodec& codec, int position, std::uint64_t raw) {
    if (codec.channelBits[position] != codec.storageWidth) return storePacked(codec, position, raw);
    const std::uint64_t index = codec.channelMask[position];
    if (index >= positions) return;
    if (codec.storageWidth == 8)
        storeElement<std::uint8_t>(codec.pixelBuffer, index, raw);
    else if (codec.storageWidth == 16)
        storeElement<std::uint16_t>(codec.pixelBuffer, index, raw);
    else
        storeElement<std::uint32_t>(codec.pixelBuffer, index, raw);
}

float readInteger(const PixelCodec& codec, int position) {
    const unsigned int width = codec.channelBits[position];
    const bool isSigned = isSignedType(codec.variableType);
    if (width == 0) return 0.0f;
    if (codec.totalBits / codec.channelCount != codec.storageWidth) {
        if (isSigned) return signedToFloat(static_cast<std::int64_t>(packedField(codec, position, 32)), width);
        return unsignedToFloat(packedField(codec, position, 64), width);
    }
    const std::uint64_t index = codec.channelMask[position];
    const unsigned char* pixel = codec.pixelBuffer;
    if (width != codec.storageWidth) return 0.0f;
    if (width == 8)
        return isSigned ? signedToFloat(elementAt<std::int8_t>(pixel, index), 8)
                        : unsignedToFloat(elementAt<std::uint8_t>(pixel, index), 8);
    if (width == 16)
        return isSigned ? signedToFloat(elementAt<std::int16_t>(pixel, index), 16)
                        : unsignedToFloat(elementAt<std::uint16_t>(pixel, index), 16);
    return isSigned ? signedToFloat(elementAt<std::int32_t>(pixel, index), 32)
                    : unsignedToFloat(elementAt<std::uint32_t>(pixel, index), 32);
}

float readFloat(const PixelCodec& codec, int position) {
    const std::uint64_t index = codec.channelMask[position];
    switch (codec.channelBits[position]) {
        case 32:
            return elementAt<float>(codec.pixelBuffer, index);
        case 16:
            return floatFromSmallFloat(elementAt<std::uint16_t>(codec.pixelBuffer, index), smallFloat16);
        case 11:
            return floatFromSmallFloat(static_cast<std::uint32_t>(packedField(codec, position, 64)), smallFloat11);
        case 10:
            return floatFromSmallFloat(static_cast<std::uint32_t>(packedField(codec, position, 64)), smallFloat10);
        default:
            return 0.0f;
    }
}

// Kept (grey-fills-one-channel): of a destination that has both luminance and intensity only one is filled, and the other is 0.
// convertFrom() writes one position of a pixel of l8 i8 and leaves the other byte 0, and such .mok files are stored like that.
ValueSource fromConstant(float value) {
    return {ValueSource::constant, value, eChannelNone};
}

ValueSource fromChannel(EChannelName name) {
    return {ValueSource::channel, 0.0f, name};
}

/// The grey value for a colour channel that the source lacks.
ValueSource greyValueSource(const PixelCodec& source, const PixelCodec& destination) {
    const bool fromLuminance = source.has(eChannelLuminance);
    const bool fromIntensity = source.has(eChannelIntensity);
    if (!fromLuminance && !fromIntensity) return fromConstant(0.0f);
    if (!fromIntensity || (fromLuminance && destination.has(eChannelLuminance))) return fromChannel(eChannelLuminance);
    return fromChannel(eChannelIntensity);
}

ValueSource luminanceSource(const PixelCodec& source, const PixelCodec& destination) {
    if (source.has(eChannelLuminance)) return fromChannel(eChannelLuminance);
    if (source.has(eChannelIntensity))
        return destination.has(eChannelIntensity) ? fromConstant(0.0f) : fromChannel(eChannelIntensity);
    return {ValueSource::luminance, 0.0f, eChannelNone};
}

ValueSource intensitySource(const PixelCodec& source, const PixelCodec& destination) {
    if (source.has(eChannelLuminance) && destination.has(eChannelLuminance)) return fromConstant(0.0f);
    if (source.has(eChannelIntensity)) return fromChannel(eChannelIntensity);
    if (source.has(eChannelLuminance)) return fromChannel(eChannelLuminance);
    return destination.has(eChannelLuminance) ? fromConstant(0.0f) : ValueSource{ValueSource::mean, 0.0f, eChannelNone};
}

float luminanceOf(const PixelCodec& source) {
    float luminance = 0.0f;
    for (const EChannelName name : {eChannelRed, eChannelGreen, eChannelBlue})
        if (source.has(name)) luminance += luminanceWeights[name - eChannelRed] * source.readChannel(name);
    return canonicalNaN(luminance);
}

float meanColour(const PixelCodec& source) {
    float sum = 0.0f;
    int count = 0;
    for (const EChannelName name : {eChannelRed, eChannelGreen, eChannelBlue}) {
        if (!source.has(name)) continue;
        sum += source.readChannel(name);
        ++count;
    }
    return count == 0 ? 0.0f : canonicalNaN(sum / static_cast<float>(count));
}

float valueFrom(const PixelCodec& source, const ValueSource& value) {
    switch (value.kind) {
        case ValueSource::channel:
            return source.readChannel(value.name);
        case ValueSource::luminance:
            return luminanceOf(source);
        case ValueSource::mean:
            return meanColour(source);
        default:
            return value.value;
    }
}

}  // namespace

EChannelName channelNameFromChar(std::uint8_t letter) {
    switch (letter) {
        case 'r':
            return eChannelRed;
        case 'g':
            return eChannelGreen;
        case 'b':
            return eChannelBlue;
        case 'a':
            return eChannelAlpha;
        case 'l':
            return eChannelLuminance;
        case 'i':
            return eChannelIntensity;
        case 'x':
            return eChannelUnspecified;
        default:
            return eChannelNone;
    }
}

ValueSource valueSourceOf(EChannelName name, const PixelCodec& source, const PixelCodec& destination) {
    if (name == eChannelLuminance) return luminanceSource(source, destination);
    if (name == eChannelIntensity) return intensitySource(source, destination);
    if (source.has(name)) return fromChannel(name);
    if (isColourChannel(name)) return greyValueSource(source, destination);
    const EChannelName other = name == eChannelAlpha ? eChannelUnspecified : eChannelAlpha;
    return source.has(other) ? fromChannel(other) : fromConstant(1.0f);
}

bool areConvertible(const PixelCodec& source, const PixelCodec& destination) {
    return source.errorFlags == 0 && destination.errorFlags == 0 && source.variableType <= eVarFloat &&
           destination.variableType <= eVarFloat;
}

bool isColourChannel(EChannelName name) {
    return name != eChannelAlpha && name != eChannelUnspecified;
}

bool isSignedType(EMOKTVariableType type) {
    return type < eVarFloat && (type & 1u) != 0;
}

PixelCodec::PixelCodec(PixelType type, EMOKTVariableType channelType)
    : errorFlags(0),
      variableType(channelType),
      channelNames{},
      channelMask{},
      channelIndexByName{-1, -1, -1, -1, -1, -1, -1, -1},
      bitOffset{},
      channelBits{},
      shiftRight{},
      totalBits(0),
      storageWidth(storageWidthOf(channelType)),
      channelCount(0),
      pixelBuffer{} {
    const bool isLayout = (type.id >> 32) != 0;
    unsigned int sum = 0;
    for (unsigned int i = 0; i < positions; ++i) {
        channelNames[i] = isLayout ? channelNameFromChar(type.layout.channelName[i]) : eChannelNone;
        channelBits[i] = type.layout.channelBits[i];
        bitOffset[i] = static_cast<std::uint8_t>(sum);
        sum += channelBits[i];
    }
    totalBits = static_cast<std::uint8_t>(sum);
    if (totalBits % 8 != 0) errorFlags |= noWholeBytes;
    if (sum > bufferSize * 8) errorFlags |= exceedsBuffer;
    for (unsigned int i = 0; i < positions; ++i)
        describePosition(i);
}

void PixelCodec::describePosition(unsigned int position) {
    const EChannelName name = channelNames[position];
    const unsigned int width = channelBits[position];
    shiftRight[position] = static_cast<std::uint8_t>(totalBits - width - bitOffset[position]);
    channelMask[position] = isElement(position) ? position : shiftedLeft(lowBits(width), shiftRight[position]);
    if (name == eChannelNone) {
        if (width != 0) errorFlags |= namelessBits;
        return;
    }
    if (channelIndexByName[name] >= 0) errorFlags |= repeatedName;
    if (width == 0) errorFlags |= emptyChannel;
    if (channelCount != position) errorFlags |= nameAfterGap;
    channelIndexByName[name] = static_cast<std::int8_t>(position);
    ++channelCount;
}

bool PixelCodec::isElement(unsigned int position) const {
    return fillsElement(variableType, channelBits[position]);
}

bool PixelCodec::loadPixel(const void* source) {
    if (source == nullptr) return false;
    std::memcpy(pixelBuffer, source, std::min<std::size_t>(getBytesPerPixel(), bufferSize));
    return true;
}

void PixelCodec::clearPixel() {
    std::memset(pixelBuffer, 0, bufferSize);
}

float PixelCodec::readChannel(EChannelName name) const {
    if (!has(name)) return name == eChannelAlpha || name == eChannelUnspecified ? 1.0f : 0.0f;
    if (variableType > eVarFloat) return 0.0f;
    const int position = channelIndexByName[name];
    return variableType == eVarFloat ? readFloat(*this, position) : readInteger(*this, position);
}

void PixelCodec::writeUnsignedChannel(EChannelName name, float value) {
    if (!has(name)) return;
    const int position = channelIndexByName[name];
    storeInteger(*this, position, floatToUnsigned(value, channelBits[position]));
}

void PixelCodec::writeSignedChannel(EChannelName name, float value) {
    if (!has(name)) return;
    const int position = channelIndexByName[name];
    storeInteger(*this, position, floatToSigned(value, channelBits[position]));
}

void PixelCodec::writeFloatChannel(EChannelName name, float value) {
    if (!has(name)) return;
    const int position = channelIndexByName[name];
    const std::uint64_t index = channelMask[position];
    switch (channelBits[position]) {
        case 32:
            if (index < positions) storeElement<std::uint32_t>(pixelBuffer, index, std::bit_cast<std::uint32_t>(value));
            return;
        case 16:
            if (index < positions) storeElement<std::uint16_t>(pixelBuffer, index, smallFloatFromFloat(value, smallFloat16));
            return;
        case 11:
            return storePacked(*this, position, smallFloatFromFloat(value, smallFloat11));
        case 10:
            return storePacked(*this, position, smallFloatFromFloat(value, smallFloat10));
        default:
            return storePacked(*this, position, 0);
    }
}

void PixelCodec::writeChannel(EChannelName name, float value) {
    if (isSignedType(variableType))
        writeSignedChannel(name, value);
    else if (variableType < eVarFloat)
        writeUnsignedChannel(name, value);
    else if (variableType == eVarFloat)
        writeFloatChannel(name, value);
}

void PixelCodec::convertFrom(const PixelCodec& source) {
    if (errorFlags != 0 || source.errorFlags != 0) return;
    clearPixel();
    for (unsigned int i = eChannelRed; i <= eChannelUnspecified; ++i) {
        const auto name = static_cast<EChannelName>(i);
        if (has(name)) writeChannel(name, valueFrom(source, valueSourceOf(name, source, *this)));
    }
}

void PixelCodec::convertColourSpace(EMOKTColourSpace target, EMOKTColourSpace source) {
    const TransferCurve curve = transferCurve(target, source);
    if (curve == nullptr || errorFlags != 0) return;
    // Kept (curve-after-quantising): the curve is applied to the value read back from the quantised channel, and the result is
    // quantised again. The bytes of every texture converted between colour spaces depend on it.
    for (const EChannelName name : {eChannelRed, eChannelGreen, eChannelBlue, eChannelLuminance, eChannelIntensity})
        if (has(name)) writeChannel(name, curve(readChannel(name)));
}

}  // namespace moktexture
