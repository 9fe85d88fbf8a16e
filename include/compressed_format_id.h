#pragma once

namespace moktexture {

/// Numbers of the compressed and special pixel formats. A PixelType whose high 32 bits are zero holds one of these; every number
/// above eFmtUnknown behaves as eFmtUnknown.
///
/// The columns are the bits per pixel, 0 for a format without a data size; the block in pixels, width by height, to whose
/// multiples a level's size is rounded up (its depth never is); and the format.
enum CompressedFormatId : unsigned int {
    eFmtMOKTC2bppRGB = 0,   ///<  2 | 16 x 8 | MOKTC, opaque
    eFmtMOKTC2bppRGBA = 1,  ///<  2 | 16 x 8 | MOKTC, with alpha
    eFmtMOKTC4bppRGB = 2,   ///<  4 |  8 x 8 | MOKTC, opaque
    eFmtMOKTC4bppRGBA = 3,  ///<  4 |  8 x 8 | MOKTC, with alpha
    eFmtMOKTCII2bpp = 4,    ///<  2 |  8 x 4 | second-generation MOKTC
    eFmtMOKTCII4bpp = 5,    ///<  4 |  4 x 4 | second-generation MOKTC
    eFmtETC1 = 6,           ///<  4 |  4 x 4 | ETC1
    eFmtDXT1 = 7,           ///<  4 |  4 x 4 | DXT1 (BC1)
    eFmtDXT2 = 8,           ///<  8 |  4 x 4 | DXT2: DXT3 with premultiplied colours
    eFmtDXT3 = 9,           ///<  8 |  4 x 4 | DXT3 (BC2)
    eFmtDXT4 = 10,          ///<  8 |  4 x 4 | DXT4: DXT5 with premultiplied colours
    eFmtDXT5 = 11,          ///<  8 |  4 x 4 | DXT5 (BC3)
    eFmtBC4 = 12,           ///<  4 |  4 x 4 | BC4
    eFmtBC5 = 13,           ///<  8 |  4 x 4 | BC5
    eFmtBC6 = 14,           ///<  0 |  1 x 1 | BC6
    eFmtBC7 = 15,           ///<  0 |  1 x 1 | BC7
    eFmtUYVY = 16,          ///< 16 |  2 x 1 | packed YUV, UYVY
    eFmtYUY2 = 17,          ///< 16 |  2 x 1 | packed YUV, YUY2
    eFmtBW1bpp = 18,        ///<  1 |  8 x 1 | black and white
    eFmtRGB9E5 = 19,        ///<  0 |  1 x 1 | shared-exponent RGB 9.9.9.5
    eFmtRGBG8888 = 20,      ///<  0 |  2 x 1 | RGBG packed pairs
    eFmtGRGB8888 = 21,      ///<  0 |  2 x 1 | GRGB packed pairs
    eFmtETC2RGB = 22,       ///<  4 |  1 x 1 | ETC2 RGB
    eFmtETC2RGBA = 23,      ///<  8 |  1 x 1 | ETC2 RGBA
    eFmtETC2RGBA1 = 24,     ///<  4 |  1 x 1 | ETC2 RGB with 1-bit alpha
    eFmtEACR11U = 25,       ///<  4 |  1 x 1 | EAC, one channel, unsigned
    eFmtEACR11S = 26,       ///<  4 |  1 x 1 | EAC, one channel, signed
    eFmtEACRG11U = 27,      ///<  8 |  1 x 1 | EAC, two channels, unsigned
    eFmtEACRG11S = 28,      ///<  8 |  1 x 1 | EAC, two channels, signed
    eFmtUnknown = 29,       ///<  0 |  1 x 1 | no format; the default of a new header
};

}  // namespace moktexture
