#include <algorithm>
#include <array>

#include "format_info.h"

/// @file
/// The one table of compressed formats. Sizes (subresources.cpp), codecs (transcode/codec_table.cpp), dithering and the
/// command-line tool all look up here. To add a format, give it a number in compressed_format_id.h and a row here; if its codec
/// is new, the codec becomes a value of EFormatCodec and a row of transcode/codec_table.cpp.

namespace moktexture {
namespace {

constexpr bool Y = true;
constexpr bool n = false;
constexpr const char* none = nullptr;
constexpr std::uint32_t any = 0xFFFFFFFFu;
constexpr EFormatCodec None = eCodecNone, MOKTC = eCodecMOKTC, ETC1 = eCodecETC1, DXTn = eCodecDXTn, YUV = eCodecPackedYUV,
                       OneBit = eCodecOneBit;
constexpr unsigned int Alpha = eMOKTCHasAlpha, Gen2 = eMOKTCSecondGeneration;

// Kept (format-size-gaps): a bit count of 0 gives a texture no data, and a size block of 1 by 1 rounds nothing up, though the
// blocks of these formats are larger. KTX and DDS files of these formats are read and written with the sizes that follow.
// Kept (dither-etc1-alpha): ETC1 dithers alpha too, which its encoder drops; the dithered RGBA8 pixels are the same as for a
// format with 4 bits of alpha.
// Kept (moktc2-encoder-alpha): the second-generation encoder does not get the alpha flag, unlike the first-generation one. Both
// encoders ignore it: .mok files of either generation hold the alpha of their pixels.
// clang-format off
constexpr std::array<FormatInfo, eFmtUnknown + 1> formats = {{
    //                                           size     codec   smallest longest, dither              variant
    //                                     other bits     block   size     in powers  bits                     decodes, encodes,
    // format           name               name  | block  |       |        |     of 2 |             codec   |  |  |  small levels
    {eFmtMOKTC2bppRGB,  "moktc-2bpp-rgb",  none,  2,  {16, 8}, {8, 4}, {16, 8}, 4096, Y, { 5, 5, 5, 0}, MOKTC,  0,     Y, Y, Y},
    {eFmtMOKTC2bppRGBA, "moktc-2bpp-rgba", none,  2,  {16, 8}, {8, 4}, {16, 8}, 4096, Y, { 4, 4, 4, 3}, MOKTC,  Alpha, Y, Y, Y},
    {eFmtMOKTC4bppRGB,  "moktc-4bpp-rgb",  none,  4,  { 8, 8}, {4, 4}, { 8, 8}, 4096, Y, { 5, 5, 5, 0}, MOKTC,  0,     Y, Y, Y},
    {eFmtMOKTC4bppRGBA, "moktc-4bpp-rgba", none,  4,  { 8, 8}, {4, 4}, { 8, 8}, 4096, Y, { 4, 4, 4, 3}, MOKTC,  Alpha, Y, Y, Y},
    {eFmtMOKTCII2bpp,   "moktc2-2bpp",     none,  2,  { 8, 4}, {8, 4}, { 8, 4}, 4096, n, { 4, 4, 4, 3}, MOKTC,  Gen2,  Y, Y, Y},
    {eFmtMOKTCII4bpp,   "moktc2-4bpp",     none,  4,  { 4, 4}, {4, 4}, { 4, 4}, 4096, n, { 4, 4, 4, 3}, MOKTC,  Gen2,  Y, Y, Y},
    {eFmtETC1,          "etc1",            none,  4,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 4, 4, 4, 4}, ETC1,   0,     Y, Y, n},
    {eFmtDXT1,          "dxt1",            "bc1", 4,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 5, 6, 5, 1}, DXTn,   1,     Y, Y, n},
    {eFmtDXT2,          "dxt2",            none,  8,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 5, 6, 5, 8}, DXTn,   2,     Y, Y, n},
    {eFmtDXT3,          "dxt3",            "bc2", 8,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 5, 6, 5, 8}, DXTn,   3,     Y, Y, n},
    {eFmtDXT4,          "dxt4",            none,  8,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 5, 6, 5, 8}, DXTn,   4,     Y, Y, n},
    {eFmtDXT5,          "dxt5",            "bc3", 8,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 5, 6, 5, 8}, DXTn,   5,     Y, Y, n},
    {eFmtBC4,           "bc4",             none,  4,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 8, 0, 0, 0}, None,   0,     n, n, n},
    {eFmtBC5,           "bc5",             none,  8,  { 4, 4}, {4, 4}, { 4, 4}, any,  n, { 8, 8, 0, 0}, None,   0,     n, n, n},
    {eFmtBC6,           "bc6",             none,  0,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, {16,16,16, 0}, None,   0,     n, n, n},
    {eFmtBC7,           "bc7",             none,  0,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, { 8, 8, 8, 0}, None,   0,     n, n, n},
    {eFmtUYVY,          "uyvy",            none,  16, { 2, 1}, {2, 1}, { 2, 1}, any,  n, { 8, 8, 8, 0}, YUV,    0,     Y, Y, n},
    {eFmtYUY2,          "yuy2",            none,  16, { 2, 1}, {2, 1}, { 2, 1}, any,  n, { 8, 8, 8, 0}, YUV,    0,     Y, Y, n},
    {eFmtBW1bpp,        "bw1",             none,  1,  { 8, 1}, {8, 1}, { 8, 1}, any,  n, { 1, 1, 1, 0}, OneBit, 0,     Y, Y, Y},
    {eFmtRGB9E5,        "rgb9e5",          none,  0,  { 1, 1}, {1, 1}, { 1, 1}, any,  n, {14,14,14, 0}, None,   0,     n, n, n},
    {eFmtRGBG8888,      "rgbg8888",        none,  0,  { 2, 1}, {2, 1}, { 2, 1}, any,  n, { 8, 8, 8, 0}, None,   0,     n, n, n},
    {eFmtGRGB8888,      "grgb8888",        none,  0,  { 2, 1}, {2, 1}, { 2, 1}, any,  n, { 8, 8, 8, 0}, None,   0,     n, n, n},
    {eFmtETC2RGB,       "etc2-rgb",        none,  4,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, { 4, 4, 4, 0}, None,   0,     n, n, n},
    {eFmtETC2RGBA,      "etc2-rgba",       none,  8,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, { 4, 4, 4, 4}, None,   0,     n, n, n},
    {eFmtETC2RGBA1,     "etc2-rgba1",      none,  4,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, { 5, 5, 5, 1}, None,   0,     n, n, n},
    {eFmtEACR11U,       "eac-r11",         none,  4,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, {11, 0, 0, 0}, None,   0,     n, n, n},
    {eFmtEACR11S,       "eac-r11s",        none,  4,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, {11, 0, 0, 0}, None,   0,     n, n, n},
    {eFmtEACRG11U,      "eac-rg11",        none,  8,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, {11,11, 0, 0}, None,   0,     n, n, n},
    {eFmtEACRG11S,      "eac-rg11s",       none,  8,  { 1, 1}, {4, 4}, { 4, 4}, any,  n, {11,11, 0, 0}, None,   0,     n, n, n},
    {eFmtUnknown,       "unknown",         none,  0,  { 1, 1}, {1, 1}, { 1, 1}, any,  n, { 0, 0, 0, 0}, None,   0,     n, n, n},
}};
// clang-format on

constexpr bool rowsAreInOrder() {
    for (std::size_t row = 0; row < formats.size(); ++row) {
        if (formats[row].format != row) return false;
    }
    return true;
}
static_assert(rowsAreInOrder());

}  // namespace

const FormatInfo& GetFormatInfo(PixelType format) {
    return formats[std::min<std::uint64_t>(format.id, eFmtUnknown)];
}

}  // namespace moktexture
