// The pixel format of a DDS file is a FourCC or a layout of masks, by its flags:
//
//   DDPF_FOURCC         a FourCC; a number below 256 there is a D3DFORMAT
//   DDPF_RGB            masks of red, green and blue, and of alpha with DDPF_ALPHAPIXELS
//   DDPF_BUMPLUMINANCE  masks of u, v and luminance, stored as red, green and blue
//   DDPF_BUMPDUDV       masks of u, v, w and q
//   DDPF_LUMINANCE      mask of luminance, stored as red, and of alpha with DDPF_ALPHAPIXELS
//   DDPF_ALPHA          mask of alpha
//
// A reader takes the first of these flags that is set and searches that flag's table for the bits per pixel and the masks. A
// writer has one table by D3DFORMAT. The two do not mirror each other.

#include "formats/dds/dds_pixel_format.h"

#include <algorithm>
#include <span>

#include "formats/api_numbers/api_constants.h"

namespace moktexture {
namespace {

enum DDSPixelFormatFlag : std::uint32_t {
    DDPF_ALPHAPIXELS = 0x1,
    DDPF_ALPHA = 0x2,
    DDPF_FOURCC = 0x4,
    DDPF_RGB = 0x40,
    DDPF_LUMINANCE = 0x20000,
    DDPF_BUMPLUMINANCE = 0x40000,
    DDPF_BUMPDUDV = 0x80000,
};

/// State of the flag DDPF_ALPHAPIXELS that a row matches.
enum class AlphaFlag { any, isSet, isClear };
using enum AlphaFlag;

/// A layout that is recognised.
struct ReadRow {
    std::uint32_t bits;
    AlphaFlag alphaFlag;
    std::uint32_t redMask, greenMask, blueMask, alphaMask;  ///< 0: not compared
    std::uint32_t number;
};

// Kept (dds-missing-layouts): common layouts are missing (32 bits without alpha, red in the lowest byte), so that such files load
// with eFmtUnknown and 0 bytes of pixels; hosts test for that and convert the files first.
// clang-format off
// bits  DDPF_ALPHAPIXELS  masks: red, green, blue, alpha               D3DFORMAT
constexpr ReadRow rgbRows[] = {
    { 8, any,     0xE0,       0x1C,       0x3,        0,          D3DFMT_R3G3B2},
    {16, isSet,   0xF00,      0xF0,       0xF,        0xF000,     D3DFMT_A4R4G4B4},
    {16, isSet,   0xE0,       0x1C,       0x3,        0xFF00,     D3DFMT_A8R3G3B2},
    {16, isSet,   0x7C00,     0x3E0,      0x1F,       0x8000,     D3DFMT_A1R5G5B5},
    {16, isClear, 0xF800,     0x7E0,      0x1F,       0,          D3DFMT_R5G6B5},
    {16, isClear, 0x7C00,     0x3E0,      0x1F,       0,          D3DFMT_X1R5G5B5},
    {24, any,     0xFF0000,   0xFF00,     0xFF,       0,          D3DFMT_R8G8B8},
    {32, isSet,   0xFF0000,   0xFF00,     0xFF,       0xFF000000, D3DFMT_A8R8G8B8},
    {32, isSet,   0x3FF00000, 0xFFC00,    0x3FF,      0xC0000000, D3DFMT_A2B10G10R10},
    {32, isSet,   0x3FF,      0xFFC00,    0x3FF00000, 0xC0000000, D3DFMT_A2R10G10B10},
    {32, isClear, 0xFFFF,     0xFFFF0000, 0,          0,          D3DFMT_G16R16},
};
constexpr ReadRow bumpLuminanceRows[] = {
    {32, any,     0xFF,       0xFF00,     0xFF0000,   0,          D3DFMT_X8L8V8U8},
    {16, any,     0x1F,       0x3E0,      0xFC00,     0,          D3DFMT_L6V5U5},
};
constexpr ReadRow bumpDuDvRows[] = {
    {16, any,     0xFF,       0xFF00,     0,          0,          D3DFMT_V8U8},
    {32, any,     0xFF,       0xFF00,     0xFF0000,   0xFF000000, D3DFMT_Q8W8V8U8},
    {32, any,     0x3FF00000, 0xFFC00,    0x3FF,      0xC0000000, D3DFMT_A2W10V10U10},
    {32, any,     0xFFFF,     0xFFFF0000, 0,          0,          D3DFMT_V16U16},
};
constexpr ReadRow luminanceRows[] = {
    { 8, any,     0xFF,       0,          0,          0,          D3DFMT_L8},
    {16, isSet,   0xFF,       0,          0,          0xFF00,     D3DFMT_A8L8},
    { 8, isSet,   0xF,        0,          0,          0xF0,       D3DFMT_A4L4},
    {16, any,     0xFFFF,     0,          0,          0,          D3DFMT_L16},
};
constexpr ReadRow alphaRows[] = {
    { 8, any,     0,          0,          0,          0xFF,       D3DFMT_A8},
};

/// A FourCC in a file, and the number that it is read as.
struct FourCCRow {
    std::uint32_t inFile;
    std::uint32_t number;
};
// Kept (dds-moktc-unreadable): "MTC4" is read as "MTC2", and setD3DFormat() has neither; a DDS file of MOKTC, which is written
// here, loads with eFmtUnknown, and not as a texture of the other rate.
constexpr FourCCRow fourCCRows[] = {
    {D3DFMT_DXT1,  D3DFMT_DXT1},
    {D3DFMT_DXT2,  D3DFMT_DXT2},
    {D3DFMT_DXT3,  D3DFMT_DXT3},
    {D3DFMT_DXT4,  D3DFMT_DXT4},
    {D3DFMT_DXT5,  D3DFMT_DXT5},
    {D3DFMT_YUY2,  D3DFMT_YUY2},
    {D3DFMT_UYVY,  D3DFMT_UYVY},
    {d3dMOKTC2bpp, d3dMOKTC2bpp},
    {d3dMOKTC4bpp, d3dMOKTC2bpp},
};

/// The layout that is written for a number.
struct WriteRow {
    std::uint32_t number;
    std::uint32_t flags;
    std::uint32_t bits;
    std::uint32_t redMask, greenMask, blueMask, alphaMask;
};

// Kept (dds-write-gaps): D3DFMT_X8R8G8B8 has no row, so that saveFile() returns false for it; D3DFMT_Q8W8V8U8 has an alpha mask
// without its flag, as the flags in the bytes of all written files are.
// number              flags                              bits  masks: red, green, blue, alpha
constexpr WriteRow writeRows[] = {
    {D3DFMT_R8G8B8,      DDPF_RGB,                          24, 0xFF0000,   0xFF00,     0xFF,       0},
    {D3DFMT_A8R8G8B8,    DDPF_RGB | DDPF_ALPHAPIXELS,       32, 0xFF0000,   0xFF00,     0xFF,       0xFF000000},
    {D3DFMT_R5G6B5,      DDPF_RGB,                          16, 0xF800,     0x7E0,      0x1F,       0},
    {D3DFMT_X1R5G5B5,    DDPF_RGB,                          16, 0x7C00,     0x3E0,      0x1F,       0},
    {D3DFMT_A1R5G5B5,    DDPF_RGB | DDPF_ALPHAPIXELS,       16, 0x7C00,     0x3E0,      0x1F,       0x8000},
    {D3DFMT_A4R4G4B4,    DDPF_RGB | DDPF_ALPHAPIXELS,       16, 0xF00,      0xF0,       0xF,        0xF000},
    {D3DFMT_R3G3B2,      DDPF_RGB,                           8, 0xE0,       0x1C,       0x3,        0},
    {D3DFMT_A8,          DDPF_ALPHA,                         8, 0,          0,          0,          0xFF},
    {D3DFMT_A8R3G3B2,    DDPF_RGB | DDPF_ALPHAPIXELS,       16, 0xE0,       0x1C,       0x3,        0xFF00},
    {D3DFMT_A2B10G10R10, DDPF_RGB | DDPF_ALPHAPIXELS,       32, 0x3FF00000, 0xFFC00,    0x3FF,      0xC0000000},
    {D3DFMT_G16R16,      DDPF_RGB,                          32, 0xFFFF,     0xFFFF0000, 0,          0},
    {D3DFMT_A2R10G10B10, DDPF_RGB | DDPF_ALPHAPIXELS,       32, 0x3FF,      0xFFC00,    0x3FF00000, 0xC0000000},
    {D3DFMT_L8,          DDPF_LUMINANCE,                     8, 0xFF,       0,          0,          0},
    {D3DFMT_A8L8,        DDPF_LUMINANCE | DDPF_ALPHAPIXELS, 16, 0xFF,       0,          0,          0xFF00},
    {D3DFMT_A4L4,        DDPF_LUMINANCE | DDPF_ALPHAPIXELS,  8, 0xF,        0,          0,          0xF0},
    {D3DFMT_V8U8,        DDPF_BUMPDUDV,                     16, 0xFF,       0xFF00,     0,          0},
    {D3DFMT_L6V5U5,      DDPF_BUMPLUMINANCE,                16, 0x1F,       0x3E0,      0xFC00,     0},
    {D3DFMT_X8L8V8U8,    DDPF_BUMPLUMINANCE,                32, 0xFF,       0xFF00,     0xFF0000,   0},
    {D3DFMT_Q8W8V8U8,    DDPF_BUMPDUDV,                     32, 0xFF,       0xFF00,     0xFF0000,   0xFF000000},
    {D3DFMT_V16U16,      DDPF_BUMPDUDV,                     32, 0xFFFF,     0xFFFF0000, 0,          0},
    {D3DFMT_A2W10V10U10, DDPF_BUMPDUDV | DDPF_ALPHAPIXELS,  32, 0x3FF00000, 0xFFC00,    0x3FF,      0xC0000000},
    {D3DFMT_L16,         DDPF_LUMINANCE,                    16, 0xFFFF,     0,          0,          0},
};

/// Further numbers that are written as a FourCC, beside those of fourCCRows.
constexpr std::uint32_t writtenAsFourCC[] = {
    D3DFMT_A16B16G16R16, D3DFMT_R16F, D3DFMT_G16R16F, D3DFMT_A16B16G16R16F, D3DFMT_R32F, D3DFMT_G32R32F, D3DFMT_A32B32G32R32F,
};
// clang-format on

bool matches(const ReadRow& row, const DDSPixelFormat& format) {
    const bool hasAlphaFlag = (format.flags & DDPF_ALPHAPIXELS) != 0;
    const auto isMask = [](std::uint32_t expected, std::uint32_t mask) { return expected == 0 || mask == expected; };
    return row.bits == format.bits && (row.alphaFlag == any || (row.alphaFlag == isSet) == hasAlphaFlag) &&
           isMask(row.redMask, format.redMask) && isMask(row.greenMask, format.greenMask) &&
           isMask(row.blueMask, format.blueMask) && isMask(row.alphaMask, format.alphaMask);
}

DDSFormatDecision decideFourCC(std::uint32_t fourCC) {
    // A D3DFORMAT in place of a FourCC, extended from 8 bits with its sign.
    if (fourCC >> 8 == 0) {
        const auto number = static_cast<std::int8_t>(fourCC);
        return {DDSFormatDecision::Action::setOrRefuse, static_cast<std::uint32_t>(std::int32_t{number})};
    }
    const auto* const row = std::ranges::find(fourCCRows, fourCC, &FourCCRow::inFile);
    if (row == std::end(fourCCRows)) return {DDSFormatDecision::Action::keep};
    return {DDSFormatDecision::Action::set, row->number};
}

DDSFormatDecision decideLayout(std::span<const ReadRow> rows, const DDSPixelFormat& format, DDSFormatDecision::Action otherwise) {
    for (const ReadRow& row : rows) {
        if (matches(row, format)) return {DDSFormatDecision::Action::set, row.number};
    }
    return {otherwise};
}

}  // namespace

DDSFormatDecision decideFormat(const DDSPixelFormat& format) {
    using Action = DDSFormatDecision::Action;
    if ((format.flags & DDPF_FOURCC) != 0) return decideFourCC(format.fourCC);
    if ((format.flags & DDPF_RGB) != 0) return decideLayout(rgbRows, format, Action::keep);
    if ((format.flags & DDPF_BUMPLUMINANCE) != 0) return decideLayout(bumpLuminanceRows, format, Action::keep);
    if ((format.flags & DDPF_BUMPDUDV) != 0) return decideLayout(bumpDuDvRows, format, Action::keep);
    if ((format.flags & DDPF_LUMINANCE) != 0) return decideLayout(luminanceRows, format, Action::keep);
    // Kept (dds-alpha-refuses): an unknown layout refuses the file for DDPF_ALPHA only, and keeps eFmtUnknown for the other
    // flags: hosts see a null getDataPtr() in the first case and 0 bytes of pixels in the other.
    if ((format.flags & DDPF_ALPHA) != 0) return decideLayout(alphaRows, format, Action::refuse);
    return {Action::refuse};
}

bool makePixelFormat(std::uint32_t number, DDSPixelFormat& format) {
    const bool isFourCC = std::ranges::find(fourCCRows, number, &FourCCRow::inFile) != std::end(fourCCRows);
    if (isFourCC || std::ranges::find(writtenAsFourCC, number) != std::end(writtenAsFourCC)) {
        format = {.flags = DDPF_FOURCC, .fourCC = number};
        return true;
    }
    const auto* const row = std::ranges::find(writeRows, number, &WriteRow::number);
    if (row == std::end(writeRows)) return false;
    format = {.flags = row->flags,
              .bits = row->bits,
              .redMask = row->redMask,
              .greenMask = row->greenMask,
              .blueMask = row->blueMask,
              .alphaMask = row->alphaMask};
    return true;
}

}  // namespace moktexture
