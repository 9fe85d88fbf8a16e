#pragma once

namespace moktexture {

/// Numbers of the compressed and special pixel formats. A PixelType whose high 32 bits are zero holds one of these; every number
/// above eFmtUnknown behaves as eFmtUnknown.
/// GetFormatInfo() gives the name, the bits per pixel, the block and the codec of each.
enum CompressedFormatId : unsigned int {
    eFmtMOKTC2bppRGB = 0,   ///< MOKTC, opaque
    eFmtMOKTC2bppRGBA = 1,  ///< MOKTC, with alpha
    eFmtMOKTC4bppRGB = 2,   ///< MOKTC, opaque
    eFmtMOKTC4bppRGBA = 3,  ///< MOKTC, with alpha
    eFmtMOKTCII2bpp = 4,    ///< second-generation MOKTC
    eFmtMOKTCII4bpp = 5,    ///< second-generation MOKTC
    eFmtETC1 = 6,           ///< ETC1
    eFmtDXT1 = 7,           ///< DXT1 (BC1)
    eFmtDXT2 = 8,           ///< DXT2: DXT3 with premultiplied colours
    eFmtDXT3 = 9,           ///< DXT3 (BC2)
    eFmtDXT4 = 10,          ///< DXT4: DXT5 with premultiplied colours
    eFmtDXT5 = 11,          ///< DXT5 (BC3)
    eFmtBC4 = 12,           ///< BC4
    eFmtBC5 = 13,           ///< BC5
    eFmtBC6 = 14,           ///< BC6
    eFmtBC7 = 15,           ///< BC7
    eFmtUYVY = 16,          ///< packed YUV, UYVY
    eFmtYUY2 = 17,          ///< packed YUV, YUY2
    eFmtBW1bpp = 18,        ///< black and white
    eFmtRGB9E5 = 19,        ///< shared-exponent RGB 9.9.9.5
    eFmtRGBG8888 = 20,      ///< RGBG packed pairs
    eFmtGRGB8888 = 21,      ///< GRGB packed pairs
    eFmtETC2RGB = 22,       ///< ETC2 RGB
    eFmtETC2RGBA = 23,      ///< ETC2 RGBA
    eFmtETC2RGBA1 = 24,     ///< ETC2 RGB with 1-bit alpha
    eFmtEACR11U = 25,       ///< EAC, one channel, unsigned
    eFmtEACR11S = 26,       ///< EAC, one channel, signed
    eFmtEACRG11U = 27,      ///< EAC, two channels, unsigned
    eFmtEACRG11S = 28,      ///< EAC, two channels, signed
    eFmtUnknown = 29,       ///< no format; the default of a new header
};

}  // namespace moktexture
