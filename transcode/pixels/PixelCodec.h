#pragma once

#include <cstddef>
#include <cstdint>

#include "PixelType.h"
#include "texture_enums.h"

namespace moktexture {

/// @file
/// A pixel layout at run time, and what the conversion of one pixel means.
///
/// Channels are read and written as normalised floats. There are two memory layouts, chosen channel by channel:
///
///     element layout   channel i is storage element i:   rgba8 with an 8-bit type     byte  0  1  2  3
///                                                                                           R  G  B  A
///     packed layout    the pixel is one little-endian    rgb565 with a 16-bit type    bit  15 ... 11 10 ... 5 4 ... 0
///                      word, channel 0 in its top bits                                     R         G        B
///
/// A layout with errors is never reported. Nothing is converted from it or to it, so that its pixels are zero.

/// The channel that a letter of a PixelType names; eChannelNone for every letter other than r, g, b, a, l, i and x.
EChannelName channelNameFromChar(std::uint8_t letter);

/// An uncompressed pixel layout, and one pixel of it in a buffer. The per-pixel functions define every conversion; the faster
/// forms that convertLayout() chooses give the same bytes.
struct PixelCodec {
    /// Bits of `errorFlags`.
    enum LayoutError : std::uint32_t {
        repeatedName = 1,    ///< two positions carry the same name
        emptyChannel = 2,    ///< a position has a name but no bits
        namelessBits = 4,    ///< a position has bits but no name
        nameAfterGap = 8,    ///< a named position follows an unnamed one
        noWholeBytes = 16,   ///< `totalBits` is no multiple of 8
        exceedsBuffer = 32,  ///< the bits add up to more than `pixelBuffer` holds
    };
    static constexpr std::size_t bufferSize = 16;

    /// A number of CompressedFormatId gives a codec without channels.
    PixelCodec(PixelType type, EMOKTVariableType variableType);

    unsigned int getBitsPerPixel() const { return totalBits; }
    /// Whole bytes of `totalBits`. Above `bufferSize` only for a layout with errors.
    unsigned int getBytesPerPixel() const { return totalBits / 8u; }
    bool has(EChannelName name) const { return name <= eChannelUnspecified && channelIndexByName[name] >= 0; }

    /// Whether the position is stored as an element, and its `channelMask` is the element's number.
    bool isElement(unsigned int position) const;

    /// Copies getBytesPerPixel() bytes, at most `bufferSize`, into the buffer; its other bytes stay.
    /// @return false for a null pointer.
    bool loadPixel(const void* source);
    unsigned char* pixelBytes() { return pixelBuffer; }
    const unsigned char* pixelBytes() const { return pixelBuffer; }
    void clearPixel();

    /// The channel's value. A channel that the layout lacks is 1.0 for alpha and unspecified, 0.0 for the other names.
    float readChannel(EChannelName name) const;
    /// Write a value to a channel, if the layout has it.
    void writeUnsignedChannel(EChannelName name, float value);
    void writeSignedChannel(EChannelName name, float value);
    void writeFloatChannel(EChannelName name, float value);
    /// Writes with the writer of `variableType`; writes nothing for a type above eVarFloat.
    void writeChannel(EChannelName name, float value);

    /// Converts the pixel in `source`'s buffer. With an error in either layout the buffer stays as it was.
    void convertFrom(const PixelCodec& source);
    /// Applies the curve from `source` to `target` to the colour channels of the pixel in the buffer.
    void convertColourSpace(EMOKTColourSpace target, EMOKTColourSpace source);

    std::uint32_t errorFlags;
    EMOKTVariableType variableType;
    EChannelName channelNames[4];
    /// By position: the mask of the channel in the pixel word, or, if it fills a storage element, the element's number.
    std::uint64_t channelMask[4];
    /// By EChannelName: the position, or -1.
    std::int8_t channelIndexByName[8];
    std::uint8_t bitOffset[4];    ///< sum of the bits of the positions before
    std::uint8_t channelBits[4];  ///< bits of the position
    std::uint8_t shiftRight[4];   ///< bits below the channel in the pixel word
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

/// The source of a destination channel's value. It depends on the two layouts alone.
struct ValueSource {
    enum Kind {
        constant,   ///< the number `value`
        channel,    ///< the source's channel `name`
        luminance,  ///< weighted sum of the source's colour channels
        mean,       ///< mean of the source's colour channels
    };
    Kind kind;
    float value;
    EChannelName name;
};

/// The source of the channel `name`, which `destination` has, for PixelCodec::convertFrom() and all faster forms.
ValueSource valueSourceOf(EChannelName name, const PixelCodec& source, const PixelCodec& destination);

/// Whether both layouts are free of errors and have channels of a known type.
bool areConvertible(const PixelCodec& source, const PixelCodec& destination);

/// Whether a curve applies to the channel.
bool isColourChannel(EChannelName name);

}  // namespace moktexture
