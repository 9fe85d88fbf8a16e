#pragma once

#include <cstddef>
#include <cstdint>

#include "PixelType.h"
#include "texture_enums.h"

namespace moktexture {

/// Description of an uncompressed pixel layout at run time, with one pixel of it in a buffer.
///
/// Channels are read and written as normalised floats. Two memory layouts exist. In the element layout channel i is storage
/// element i of the pixel; in the packed layout the pixel is one little-endian word and channel 0 occupies its most significant
/// bits. A layout with errors is never reported: nothing is converted from it or to it, so that its pixels come out zeroed.
///
/// This is the plain form of every conversion; the forms beside convertLayout() give the same bits.
struct PixelCodec {
    /// Bits of `errorFlags`.
    enum LayoutError : std::uint32_t {
        repeatedName = 1,    ///< two positions carry the same name
        emptyChannel = 2,    ///< a position has a name and no bits
        namelessBits = 4,    ///< a position has bits and no name
        nameAfterGap = 8,    ///< a named position follows an unnamed one
        noWholeBytes = 16,   ///< `totalBits` is no multiple of 8
        exceedsBuffer = 32,  ///< the bits add up to more than `pixelBuffer` holds
    };
    static constexpr std::size_t bufferSize = 16;

    /// Describes a layout. A number of CompressedFormatId gives a description without channels.
    PixelCodec(PixelType type, EMOKTVariableType variableType);

    unsigned int getBitsPerPixel() const { return totalBits; }
    /// Whole bytes of `totalBits`. Above `bufferSize` only for a layout with errors.
    unsigned int getBytesPerPixel() const { return totalBits / 8u; }
    bool has(EChannelName name) const { return name <= eChannelUnspecified && channelIndexByName[name] >= 0; }

    /// Whether the position is stored as an element, and its `channelMask` is the element's number.
    bool isElement(unsigned int position) const;

    /// Copies getBytesPerPixel() bytes into the buffer, at most `bufferSize`; the other bytes keep what they held.
    /// @return false for a null pointer.
    bool loadPixel(const void* source);
    unsigned char* pixelBytes() { return pixelBuffer; }
    const unsigned char* pixelBytes() const { return pixelBuffer; }
    void clearPixel();

    /// The channel's value; 1.0 for alpha and unspecified where the layout lacks them, 0.0 for the other names.
    float readChannel(EChannelName name) const;
    /// Write a value to a channel; nothing happens where the layout lacks it.
    void writeUnsignedChannel(EChannelName name, float value);
    void writeSignedChannel(EChannelName name, float value);
    void writeFloatChannel(EChannelName name, float value);
    /// Writes with the writer of `variableType`; nothing happens for a type above eVarFloat.
    void writeChannel(EChannelName name, float value);

    /// Fills the buffer from the pixel in `source`'s buffer. With an error in either layout the buffer stays as it was.
    void convertFrom(const PixelCodec& source);
    /// Takes the colour channels of the pixel in the buffer through the curve from `source` to `target`.
    void convertColourSpace(EMOKTColourSpace target, EMOKTColourSpace source);

    std::uint32_t errorFlags;
    EMOKTVariableType variableType;
    EChannelName channelNames[4];
    /// By position: the channel's bits in the pixel word, or, where its bits fill a storage element, the element's number.
    std::uint64_t channelMask[4];
    /// By EChannelName: the position, or -1.
    std::int8_t channelIndexByName[8];
    std::uint8_t bitOffset[4];    ///< bits of the positions before
    std::uint8_t channelBits[4];  ///< bits of the position
    std::uint8_t shiftRight[4];   ///< how far the channel lies above bit 0 of the pixel word
    std::uint8_t totalBits;
    std::uint8_t storageWidth;  ///< bits of a storage element
    std::uint8_t channelCount;
    /// The pixel; its first 8 bytes are the pixel word of the packed layout.
    alignas(8) unsigned char pixelBuffer[bufferSize];

private:
    void describePosition(unsigned int position);
};

/// Whether the type is one of the signed integers, normalised or not.
bool isSignedType(EMOKTVariableType type);

}  // namespace moktexture
