#pragma once

#include <cstdint>

#include "PixelType.h"
#include "moktex_export.h"

namespace moktexture {

/// The codec of a compressed format.
enum EFormatCodec : unsigned int {
    eCodecNone = 0,       ///< the library can hold, load and save the format, but neither decode nor encode it
    eCodecMOKTC = 1,      ///< variant: a set of EMOKTCVariant bits; the rate is FormatInfo::bitsPerPixel
    eCodecETC1 = 2,       ///< variant: 0
    eCodecDXTn = 3,       ///< variant: 1 to 5, the n of DXTn
    eCodecPackedYUV = 4,  ///< variant: the format's number
    eCodecOneBit = 5,     ///< variant: 0
};

/// Bits of FormatInfo::codecVariant where the codec is eCodecMOKTC.
enum EMOKTCVariant : unsigned int {
    eMOKTCSecondGeneration = 1,
    eMOKTCHasAlpha = 2,  ///< passed to the encoder: the pixels have alpha
};

/// What the library knows of one compressed format. Blocks and sizes are in pixels; no format has a block deeper than 1.
struct FormatInfo {
    struct Size {
        std::uint32_t width;
        std::uint32_t height;
    };

    CompressedFormatId format;
    const char* name;            ///< as on the tool's command line, "dxt1"
    const char* otherName;       ///< a second name, "bc1"; null if there is none
    unsigned int bitsPerPixel;   ///< 0: the data size of a texture in this format is 0
    Size sizeBlock;              ///< getDataSize() rounds the size of each level up to multiples of this
    Size codecBlock;             ///< the block of the published format
    Size smallestSize;           ///< the smallest level that the codec takes; Transcode() pads smaller ones to it
    std::uint32_t largestSide;   ///< the longest side that the encoder takes
    bool needsPowersOfTwo;       ///< the encoder takes no sides but powers of two
    std::uint8_t ditherBits[4];  ///< bits of R, G, B, A that dithering aims at; 0 and 8 or more: the channel is not dithered
    EFormatCodec codec;
    unsigned int codecVariant;  ///< which variant of the codec; see EFormatCodec
    bool hasDecoder;
    bool hasEncoder;
    bool decodesSmallLevels;  ///< the decoder takes levels below smallestSize and writes no pixel outside them
};

/// The row of a compressed format in the library's table of formats. An uncompressed layout and a number that is no format give
/// the row of eFmtUnknown. The row lives as long as the library; any thread may read it at any time.
///
/// @code
/// for (unsigned int id = 0; id < eFmtUnknown; ++id)
///     std::puts(GetFormatInfo(id).name);
/// @endcode
MOKTEX_API const FormatInfo& GetFormatInfo(PixelType format);

}  // namespace moktexture
