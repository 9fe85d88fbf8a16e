#include "formats/legacy/legacy_format_table.h"

#include <span>

#include "compressed_format_id.h"
#include "core/texture/subresources.h"
#include "formats/api_numbers/format_maps.h"

namespace moktexture {
namespace {

/// Whether a row serves the reader (number to format), the writer (format to number) or both.
enum class Use { both, read, write };

struct Row {
    std::uint8_t number;
    Use use;
    PixelType format;
    EMOKTVariableType channelType;
    EMOKTColourSpace colourSpace;
    bool isPreMultiplied;
};

constexpr EMOKTColourSpace linear = eColourSpaceLinear;
constexpr EMOKTColourSpace sRGB = eColourSpaceSRGB;
constexpr bool straight = false;
constexpr bool premultiplied = true;

// The numbers of the legacy layout, grouped by the family of APIs that writes them. A reader searches all four tables. A number
// that is written for another format than it is read as, or that is not written, has a row for each use.
// Kept (legacy-numbers-not-inverse): a texture saved under such a number comes back in another format, and a format without a row
// for writing cannot be saved: with other rows, existing files would load in other formats, or saves change their numbers.
// clang-format off
// number  use      format                           channel type    space    alpha
constexpr Row glRows[] = {
    { 16, Use::both,   layout("rgba", 4, 4, 4, 4),     eVarUShortNorm,  linear,  straight},
    { 17, Use::both,   layout("rgba", 5, 5, 5, 1),     eVarUShortNorm,  linear,  straight},
    { 18, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    { 19, Use::both,   layout("rgb", 5, 6, 5),         eVarUShortNorm,  linear,  straight},
    { 20, Use::both,   layout("rgbx", 5, 5, 5, 1),     eVarUShortNorm,  linear,  straight},
    { 21, Use::both,   layout("rgb", 8, 8, 8),         eVarUByteNorm,   linear,  straight},
    { 22, Use::read,   layout("l", 8),                 eVarUByteNorm,   linear,  straight},
    { 22, Use::write,  layout("i", 8),                 eVarUByteNorm,   linear,  straight},
    { 23, Use::read,   layout("la", 8, 8),             eVarUByteNorm,   linear,  straight},
    { 23, Use::write,  layout("ai", 8, 8),             eVarUByteNorm,   linear,  straight},
    { 24, Use::both,   eFmtMOKTC2bppRGBA,              eVarUByteNorm,   linear,  straight},
    { 24, Use::write,  eFmtMOKTC2bppRGB,               eVarUByteNorm,   linear,  straight},
    { 25, Use::both,   eFmtMOKTC4bppRGBA,              eVarUByteNorm,   linear,  straight},
    { 25, Use::write,  eFmtMOKTC4bppRGB,               eVarUByteNorm,   linear,  straight},
    { 26, Use::both,   layout("bgra", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    { 27, Use::both,   layout("a", 8),                 eVarUByteNorm,   linear,  straight},
    { 28, Use::both,   eFmtMOKTCII4bpp,                eVarUByteNorm,   linear,  straight},
    { 29, Use::both,   eFmtMOKTCII2bpp,                eVarUByteNorm,   linear,  straight},
    { 54, Use::both,   eFmtETC1,                       eVarUByteNorm,   linear,  straight},
};

constexpr Row d3dRows[] = {
    {  0, Use::read,   layout("argb", 4, 4, 4, 4),     eVarUShortNorm,  linear,  straight},
    {  0, Use::write,  layout("argb", 4, 4, 4, 4),     eVarUIntNorm,    linear,  straight},
    {  1, Use::read,   layout("argb", 1, 5, 5, 5),     eVarUShortNorm,  linear,  straight},
    {  1, Use::write,  layout("argb", 1, 5, 5, 5),     eVarUIntNorm,    linear,  straight},
    {  2, Use::read,   layout("rgb", 5, 6, 5),         eVarUShortNorm,  linear,  straight},
    {  2, Use::write,  layout("rgb", 5, 6, 5),         eVarUIntNorm,    linear,  straight},
    {  3, Use::read,   layout("xrgb", 1, 5, 5, 5),     eVarUShortNorm,  linear,  straight},
    {  3, Use::write,  layout("xrgb", 1, 5, 5, 5),     eVarUIntNorm,    linear,  straight},
    {  4, Use::both,   layout("rgb", 8, 8, 8),         eVarUIntNorm,    linear,  straight},
    {  5, Use::both,   layout("argb", 8, 8, 8, 8),     eVarUIntNorm,    linear,  straight},
    {  6, Use::read,   layout("argb", 8, 3, 3, 2),     eVarUShortNorm,  linear,  straight},
    {  6, Use::write,  layout("argb", 8, 3, 3, 2),     eVarUIntNorm,    linear,  straight},
    {  7, Use::read,   layout("i", 8),                 eVarUByteNorm,   linear,  straight},
    {  8, Use::read,   layout("ai", 8, 8),             eVarUShortNorm,  linear,  straight},
    {  9, Use::read,   eFmtBW1bpp,                     eVarUByteNorm,   linear,  straight},
    { 10, Use::read,   eFmtYUY2,                       eVarUByteNorm,   linear,  straight},
    { 11, Use::read,   eFmtUYVY,                       eVarUByteNorm,   linear,  straight},
    { 12, Use::both,   eFmtMOKTC2bppRGBA,              eVarUByteNorm,   linear,  straight},
    { 12, Use::write,  eFmtMOKTC2bppRGB,               eVarUByteNorm,   linear,  straight},
    { 13, Use::both,   eFmtMOKTC4bppRGBA,              eVarUByteNorm,   linear,  straight},
    { 13, Use::write,  eFmtMOKTC4bppRGB,               eVarUByteNorm,   linear,  straight},
    { 32, Use::both,   eFmtDXT1,                       eVarUByteNorm,   linear,  straight},
    { 33, Use::both,   eFmtDXT2,                       eVarUByteNorm,   linear,  premultiplied},
    { 34, Use::both,   eFmtDXT3,                       eVarUByteNorm,   linear,  straight},
    { 35, Use::both,   eFmtDXT4,                       eVarUByteNorm,   linear,  premultiplied},
    { 36, Use::both,   eFmtDXT5,                       eVarUByteNorm,   linear,  straight},
    { 37, Use::both,   layout("rgb", 3, 3, 2),         eVarUIntNorm,    linear,  straight},
    { 38, Use::both,   layout("al", 4, 4),             eVarUIntNorm,    linear,  straight},
    { 39, Use::both,   layout("lgr", 6, 5, 5),         eVarSIntNorm,    linear,  straight},
    { 40, Use::both,   layout("xlgr", 8, 8, 8, 8),     eVarSIntNorm,    linear,  straight},
    { 41, Use::both,   layout("abgr", 8, 8, 8, 8),     eVarSIntNorm,    linear,  straight},
    { 42, Use::both,   layout("abgr", 2, 10, 10, 10),  eVarUIntNorm,    linear,  straight},
    { 43, Use::both,   layout("argb", 2, 10, 10, 10),  eVarUIntNorm,    linear,  straight},
    { 44, Use::read,   layout("argb", 2, 10, 10, 10),  eVarUIntNorm,    linear,  straight},
    { 44, Use::write,  layout("abgr", 2, 10, 10, 10),  eVarSIntNorm,    linear,  straight},
    { 45, Use::both,   layout("gr", 16, 16),           eVarUIntNorm,    linear,  straight},
    { 46, Use::both,   layout("gr", 16, 16),           eVarSIntNorm,    linear,  straight},
    { 47, Use::both,   layout("abgr", 16, 16, 16, 16), eVarUIntNorm,    linear,  straight},
    { 48, Use::both,   layout("r", 16),                eVarFloat,       linear,  straight},
    { 49, Use::both,   layout("gr", 16, 16),           eVarFloat,       linear,  straight},
    { 50, Use::both,   layout("abgr", 16, 16, 16, 16), eVarFloat,       linear,  straight},
    { 51, Use::both,   layout("r", 32),                eVarFloat,       linear,  straight},
    { 52, Use::read,   layout("gr", 32, 32),           eVarFloat,       linear,  straight},
    { 52, Use::write,  layout("rg", 32, 32),           eVarFloat,       linear,  straight},
    { 53, Use::both,   layout("abgr", 32, 32, 32, 32), eVarFloat,       linear,  straight},
    { 64, Use::both,   layout("a", 8),                 eVarUIntNorm,    linear,  straight},
    { 65, Use::both,   layout("gr", 8, 8),             eVarSIntNorm,    linear,  straight},
    { 66, Use::both,   layout("l", 16),                eVarUIntNorm,    linear,  straight},
    { 67, Use::both,   layout("l", 8),                 eVarUIntNorm,    linear,  straight},
    { 68, Use::both,   layout("al", 8, 8),             eVarUIntNorm,    linear,  straight},
    { 69, Use::both,   eFmtUYVY,                       eVarUByteNorm,   linear,  straight},
    { 70, Use::both,   eFmtYUY2,                       eVarUByteNorm,   linear,  straight},
};

constexpr Row dxgiRows[] = {
    { 80, Use::both,   layout("rgba", 32, 32, 32, 32), eVarFloat,       linear,  straight},
    { 81, Use::both,   layout("rgba", 32, 32, 32, 32), eVarUInt,        linear,  straight},
    { 82, Use::both,   layout("rgba", 32, 32, 32, 32), eVarSInt,        linear,  straight},
    { 83, Use::both,   layout("rgb", 32, 32, 32),      eVarFloat,       linear,  straight},
    { 84, Use::both,   layout("rgb", 32, 32, 32),      eVarUInt,        linear,  straight},
    { 85, Use::both,   layout("rgb", 32, 32, 32),      eVarSInt,        linear,  straight},
    { 86, Use::both,   layout("rgba", 16, 16, 16, 16), eVarFloat,       linear,  straight},
    { 87, Use::both,   layout("rgba", 16, 16, 16, 16), eVarUShortNorm,  linear,  straight},
    { 88, Use::both,   layout("rgba", 16, 16, 16, 16), eVarUShort,      linear,  straight},
    { 89, Use::both,   layout("rgba", 16, 16, 16, 16), eVarSShortNorm,  linear,  straight},
    { 90, Use::both,   layout("rgba", 16, 16, 16, 16), eVarSShort,      linear,  straight},
    { 91, Use::both,   layout("rg", 32, 32),           eVarFloat,       linear,  straight},
    { 92, Use::both,   layout("rg", 32, 32),           eVarUInt,        linear,  straight},
    { 93, Use::both,   layout("rg", 32, 32),           eVarSInt,        linear,  straight},
    { 94, Use::both,   layout("rgba", 10, 10, 10, 2),  eVarUIntNorm,    linear,  straight},
    { 95, Use::both,   layout("rgba", 10, 10, 10, 2),  eVarUInt,        linear,  straight},
    { 96, Use::both,   layout("rgb", 11, 11, 10),      eVarFloat,       linear,  straight},
    { 97, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    { 98, Use::read,   layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    { 99, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarUByte,       linear,  straight},
    {100, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarSByteNorm,   linear,  straight},
    {101, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarSByte,       linear,  straight},
    {102, Use::both,   layout("rg", 16, 16),           eVarFloat,       linear,  straight},
    {103, Use::both,   layout("rg", 16, 16),           eVarUShortNorm,  linear,  straight},
    {104, Use::both,   layout("rg", 16, 16),           eVarUShort,      linear,  straight},
    {105, Use::both,   layout("rg", 16, 16),           eVarSShortNorm,  linear,  straight},
    {106, Use::both,   layout("rg", 16, 16),           eVarSShort,      linear,  straight},
    {107, Use::both,   layout("r", 32),                eVarFloat,       linear,  straight},
    {108, Use::both,   layout("r", 32),                eVarUInt,        linear,  straight},
    {109, Use::both,   layout("r", 32),                eVarSInt,        linear,  straight},
    {110, Use::both,   layout("rg", 8, 8),             eVarUByteNorm,   linear,  straight},
    {111, Use::both,   layout("rg", 8, 8),             eVarUByte,       linear,  straight},
    {112, Use::both,   layout("rg", 8, 8),             eVarSByteNorm,   linear,  straight},
    {113, Use::both,   layout("rg", 8, 8),             eVarSByte,       linear,  straight},
    {114, Use::both,   layout("r", 16),                eVarFloat,       linear,  straight},
    {115, Use::both,   layout("r", 16),                eVarUShortNorm,  linear,  straight},
    {116, Use::both,   layout("r", 16),                eVarUShort,      linear,  straight},
    {117, Use::both,   layout("r", 16),                eVarSShortNorm,  linear,  straight},
    {118, Use::both,   layout("r", 16),                eVarSShort,      linear,  straight},
    {119, Use::both,   layout("r", 8),                 eVarUByteNorm,   linear,  straight},
    {120, Use::both,   layout("r", 8),                 eVarUByte,       linear,  straight},
    {121, Use::both,   layout("r", 8),                 eVarSByteNorm,   linear,  straight},
    {122, Use::both,   layout("r", 8),                 eVarSByte,       linear,  straight},
    {123, Use::read,   layout("r", 8),                 eVarUByteNorm,   linear,  straight},
    {124, Use::read,   eFmtBW1bpp,                     eVarUByteNorm,   linear,  straight},
    {125, Use::read,   eFmtRGB9E5,                     eVarFloat,       linear,  straight},
    {126, Use::both,   eFmtRGBG8888,                   eVarUByteNorm,   linear,  straight},
    {127, Use::both,   eFmtGRGB8888,                   eVarUByteNorm,   linear,  straight},
    {128, Use::both,   eFmtDXT1,                       eVarUIntNorm,    linear,  straight},
    {129, Use::both,   eFmtDXT1,                       eVarUIntNorm,    sRGB,    straight},
    {130, Use::both,   eFmtDXT3,                       eVarUIntNorm,    linear,  straight},
    {131, Use::both,   eFmtDXT3,                       eVarUIntNorm,    sRGB,    straight},
    {132, Use::both,   eFmtDXT5,                       eVarUIntNorm,    linear,  straight},
    {133, Use::both,   eFmtDXT5,                       eVarUIntNorm,    sRGB,    straight},
    {134, Use::both,   eFmtBC4,                        eVarUIntNorm,    sRGB,    straight},
    {135, Use::both,   eFmtBC4,                        eVarSIntNorm,    linear,  straight},
    {136, Use::both,   eFmtBC5,                        eVarUIntNorm,    linear,  straight},
    {137, Use::both,   eFmtBC5,                        eVarSIntNorm,    linear,  straight},
};

constexpr Row vgRows[] = {
    {144, Use::both,   layout("rgbx", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {145, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {146, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    premultiplied},
    {147, Use::both,   layout("rgb", 5, 6, 5),         eVarUShortNorm,  sRGB,    straight},
    {148, Use::both,   layout("rgba", 5, 5, 5, 1),     eVarUShortNorm,  sRGB,    straight},
    {149, Use::both,   layout("rgba", 4, 4, 4, 4),     eVarUShortNorm,  sRGB,    straight},
    {150, Use::both,   layout("l", 8),                 eVarUByteNorm,   sRGB,    straight},
    {151, Use::both,   layout("rgbx", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {152, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {153, Use::both,   layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,   linear,  premultiplied},
    {154, Use::both,   layout("l", 8),                 eVarUByteNorm,   linear,  straight},
    {155, Use::both,   layout("a", 8),                 eVarUByteNorm,   linear,  straight},
    {156, Use::both,   eFmtBW1bpp,                     eVarUByteNorm,   linear,  straight},
    {157, Use::both,   layout("xrgb", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {158, Use::both,   layout("argb", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {159, Use::both,   layout("argb", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    premultiplied},
    {160, Use::both,   layout("argb", 1, 5, 5, 5),     eVarUShortNorm,  sRGB,    straight},
    {161, Use::both,   layout("argb", 4, 4, 4, 4),     eVarUShortNorm,  sRGB,    straight},
    {162, Use::both,   layout("xrgb", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {163, Use::both,   layout("argb", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {164, Use::both,   layout("argb", 8, 8, 8, 8),     eVarUByteNorm,   linear,  premultiplied},
    {165, Use::both,   layout("bgrx", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {166, Use::both,   layout("bgra", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {167, Use::both,   layout("bgra", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    premultiplied},
    {168, Use::both,   layout("bgr", 5, 6, 5),         eVarUShortNorm,  sRGB,    straight},
    {169, Use::both,   layout("bgra", 5, 5, 5, 1),     eVarUShortNorm,  sRGB,    straight},
    {170, Use::read,   layout("bgrx", 4, 4, 4, 4),     eVarUShortNorm,  sRGB,    straight},
    {170, Use::write,  layout("bgra", 4, 4, 4, 4),     eVarUShortNorm,  sRGB,    straight},
    {171, Use::both,   layout("bgrx", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {172, Use::both,   layout("bgra", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {173, Use::both,   layout("bgra", 8, 8, 8, 8),     eVarUByteNorm,   linear,  premultiplied},
    {174, Use::both,   layout("xbgr", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {175, Use::both,   layout("abgr", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    straight},
    {176, Use::both,   layout("abgr", 8, 8, 8, 8),     eVarUByteNorm,   sRGB,    premultiplied},
    {177, Use::both,   layout("abgr", 1, 5, 5, 5),     eVarUShortNorm,  sRGB,    straight},
    {178, Use::read,   layout("xbgr", 4, 4, 4, 4),     eVarUShortNorm,  sRGB,    straight},
    {178, Use::write,  layout("abgr", 4, 4, 4, 4),     eVarUShortNorm,  sRGB,    straight},
    {179, Use::both,   layout("xbgr", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {180, Use::both,   layout("abgr", 8, 8, 8, 8),     eVarUByteNorm,   linear,  straight},
    {181, Use::both,   layout("abgr", 8, 8, 8, 8),     eVarUByteNorm,   linear,  premultiplied},
};

// clang-format on

enum class Family { gl, d3d, dxgi, vectorGraphics };

std::span<const Row> rowsOf(Family family) {
    switch (family) {
        case Family::gl:
            return glRows;
        case Family::d3d:
            return d3dRows;
        case Family::dxgi:
            return dxgiRows;
        case Family::vectorGraphics:
            return vgRows;
    }
    return {};
}

std::optional<Family> familyOf(ELegacyApi api) {
    switch (api) {
        case eLegacyApiGLFamilyA:
        case eLegacyApiGLFamilyB:
        case eLegacyApiGLFamilyC:
            return Family::gl;
        case eLegacyApiD3DFamilyA:
        case eLegacyApiD3DFamilyB:
            return Family::d3d;
        case eLegacyApiDXGIFamily:
            return Family::dxgi;
        case eLegacyApiVGFamily:
            return Family::vectorGraphics;
    }
    return std::nullopt;
}

bool isAnyOf(const PixelType& format, std::span<const CompressedFormatId> formats) {
    for (const CompressedFormatId id : formats) {
        if (format.id == id) return true;
    }
    return false;
}

bool matchesDXGI(const Row& row, const LegacyFormat& wanted) {
    static constexpr CompressedFormatId ofAnyType[] = {eFmtRGBG8888, eFmtGRGB8888};
    static constexpr CompressedFormatId ofTwoColourSpaces[] = {eFmtDXT1, eFmtDXT3, eFmtDXT5};
    if (isAnyOf(row.format, ofAnyType)) return true;
    if (row.channelType != wanted.channelType) return false;
    // Kept (legacy-dxgi-colour-space): any colour space but linear counts as sRGB for these three formats, and the others of the
    // family are written whatever their colour space; hosts that save sRGB textures in them get a file instead of a failure.
    return !isAnyOf(row.format, ofTwoColourSpaces) || (row.colourSpace == linear) == (wanted.colourSpace == linear);
}

bool matchesVectorGraphics(const Row& row, const LegacyFormat& wanted) {
    if (row.format == eFmtBW1bpp) return true;
    return row.channelType == wanted.channelType && row.colourSpace == wanted.colourSpace;
}

/// Whether a row is written for a format, premultiplication aside.
bool matches(const Row& row, const LegacyFormat& wanted, Family family) {
    if (row.use == Use::read || row.format != wanted.format) return false;
    switch (family) {
        case Family::dxgi:
            return matchesDXGI(row, wanted);
        case Family::vectorGraphics:
            return matchesVectorGraphics(row, wanted);
        default:
            // Kept (legacy-compressed-any-type): a compressed format has its number for every channel type, so that hosts can
            // save MOKTC of any type; the file comes back with the row's type.
            return isCompressed(row.format) || row.channelType == wanted.channelType;
    }
}

}  // namespace

LegacyFormat formatOfLegacyNumber(std::uint8_t number) {
    for (const Family family : {Family::gl, Family::d3d, Family::dxgi, Family::vectorGraphics}) {
        for (const Row& row : rowsOf(family)) {
            if (row.number == number && row.use != Use::write)
                return {row.format, row.channelType, row.colourSpace, row.isPreMultiplied};
        }
    }
    return {eFmtUnknown, eVarNone, linear, straight};
}

std::optional<std::uint8_t> legacyNumberOf(const LegacyFormat& wanted, ELegacyApi api) {
    const std::optional<Family> family = familyOf(api);
    if (!family) return std::nullopt;
    // A format with rows for one state of premultiplication only has their number for both states.
    std::optional<std::uint8_t> number;
    for (const Row& row : rowsOf(*family)) {
        if (!matches(row, wanted, *family)) continue;
        if (row.isPreMultiplied == wanted.isPreMultiplied) return row.number;
        number = row.number;
    }
    return number;
}

}  // namespace moktexture
