#include "core/texture/subresources.h"
#include "formats/api_numbers/api_constants.h"
#include "formats/api_numbers/format_maps.h"

namespace moktexture {
namespace {

using enum MapDirection;

// clang-format off
constexpr D3DRow d3dRows[] = {
    // Number              Pixel format                    Channel type   Direction  Premultiplied
    {D3DFMT_R8G8B8,        layout("rgb", 8, 8, 8),         eVarUIntNorm,  getAndSet},
    {D3DFMT_A8R8G8B8,      layout("argb", 8, 8, 8, 8),     eVarUIntNorm,  getAndSet},
    {D3DFMT_X8R8G8B8,      layout("xrgb", 8, 8, 8, 8),     eVarUIntNorm,  getAndSet},
    {D3DFMT_R5G6B5,        layout("rgb", 5, 6, 5),         eVarUIntNorm,  getAndSet},
    {D3DFMT_X1R5G5B5,      layout("xrgb", 1, 5, 5, 5),     eVarUIntNorm,  getAndSet},
    {D3DFMT_A1R5G5B5,      layout("argb", 1, 5, 5, 5),     eVarUIntNorm,  getAndSet},
    {D3DFMT_A4R4G4B4,      layout("argb", 4, 4, 4, 4),     eVarUIntNorm,  getAndSet},
    {D3DFMT_R3G3B2,        layout("rgb", 3, 3, 2),         eVarUIntNorm,  getAndSet},
    {D3DFMT_A8,            layout("a", 8),                 eVarUIntNorm,  getAndSet},
    {D3DFMT_A8R3G3B2,      layout("argb", 8, 3, 3, 2),     eVarUIntNorm,  getAndSet},
    {D3DFMT_A2B10G10R10,   layout("abgr", 2, 10, 10, 10),  eVarUIntNorm,  getAndSet},
    {D3DFMT_G16R16,        layout("gr", 16, 16),           eVarUIntNorm,  getAndSet},
    {D3DFMT_A2R10G10B10,   layout("argb", 2, 10, 10, 10),  eVarUIntNorm,  getAndSet},
    {D3DFMT_A16B16G16R16,  layout("abgr", 16, 16, 16, 16), eVarUIntNorm,  getAndSet},
    {D3DFMT_L8,            layout("l", 8),                 eVarUIntNorm,  getAndSet},
    {D3DFMT_A8L8,          layout("al", 8, 8),             eVarUIntNorm,  getAndSet},
    {D3DFMT_A4L4,          layout("al", 4, 4),             eVarUIntNorm,  getAndSet},
    {D3DFMT_V8U8,          layout("gr", 8, 8),             eVarSIntNorm,  getAndSet},
    {D3DFMT_L6V5U5,        layout("lgr", 6, 5, 5),         eVarSIntNorm,  getAndSet},
    {D3DFMT_X8L8V8U8,      layout("xlgr", 8, 8, 8, 8),     eVarSIntNorm,  getAndSet},
    {D3DFMT_Q8W8V8U8,      layout("abgr", 8, 8, 8, 8),     eVarSIntNorm,  getAndSet},
    {D3DFMT_V16U16,        layout("gr", 16, 16),           eVarSIntNorm,  getAndSet},
    {D3DFMT_A2W10V10U10,   layout("abgr", 2, 10, 10, 10),  eVarSIntNorm,  getAndSet},
    {D3DFMT_L16,           layout("l", 16),                eVarUIntNorm,  getAndSet},
    {D3DFMT_G16R16F,       layout("gr", 16, 16),           eVarFloat,     getAndSet},
    {D3DFMT_A16B16G16R16F, layout("abgr", 16, 16, 16, 16), eVarFloat,     getAndSet},
    {D3DFMT_R32F,          layout("r", 32),                eVarFloat,     getAndSet},
    {D3DFMT_A32B32G32R32F, layout("abgr", 32, 32, 32, 32), eVarFloat,     getAndSet},
    {D3DFMT_DXT1,          eFmtDXT1,                       eVarUByteNorm, getAndSet},
    {D3DFMT_DXT2,          eFmtDXT2,                       eVarUByteNorm, getAndSet, true},
    {D3DFMT_DXT3,          eFmtDXT3,                       eVarUByteNorm, getAndSet},
    {D3DFMT_DXT4,          eFmtDXT4,                       eVarUByteNorm, getAndSet, true},
    {D3DFMT_DXT5,          eFmtDXT5,                       eVarUByteNorm, getAndSet},
    {D3DFMT_UYVY,          eFmtUYVY,                       eVarUByteNorm, getAndSet},
    {D3DFMT_YUY2,          eFmtYUY2,                       eVarUByteNorm, getAndSet},

    // Layouts with the channel type of their width, for the getter: the setter gives the types above.
    {D3DFMT_R8G8B8,       layout("rgb", 8, 8, 8),         eVarUByteNorm,  getOnly},
    {D3DFMT_A8R8G8B8,     layout("argb", 8, 8, 8, 8),     eVarUByteNorm,  getOnly},
    {D3DFMT_X8R8G8B8,     layout("xrgb", 8, 8, 8, 8),     eVarUByteNorm,  getOnly},
    {D3DFMT_R5G6B5,       layout("rgb", 5, 6, 5),         eVarUShortNorm, getOnly},
    {D3DFMT_X1R5G5B5,     layout("xrgb", 1, 5, 5, 5),     eVarUShortNorm, getOnly},
    {D3DFMT_A1R5G5B5,     layout("argb", 1, 5, 5, 5),     eVarUShortNorm, getOnly},
    {D3DFMT_A4R4G4B4,     layout("argb", 4, 4, 4, 4),     eVarUShortNorm, getOnly},
    {D3DFMT_R3G3B2,       layout("rgb", 3, 3, 2),         eVarUByteNorm,  getOnly},
    {D3DFMT_A8,           layout("a", 8),                 eVarUByteNorm,  getOnly},
    {D3DFMT_A8R3G3B2,     layout("argb", 8, 3, 3, 2),     eVarUShortNorm, getOnly},
    {D3DFMT_G16R16,       layout("gr", 16, 16),           eVarUShortNorm, getOnly},
    {D3DFMT_A16B16G16R16, layout("abgr", 16, 16, 16, 16), eVarUShortNorm, getOnly},
    {D3DFMT_L8,           layout("l", 8),                 eVarUByteNorm,  getOnly},
    {D3DFMT_A8L8,         layout("al", 8, 8),             eVarUByteNorm,  getOnly},
    {D3DFMT_A4L4,         layout("al", 4, 4),             eVarUByteNorm,  getOnly},
    {D3DFMT_L16,          layout("l", 16),                eVarUShortNorm, getOnly},

    // Kept (d3d-r16f-as-r32): r 16 comes back as r 32; a loaded DDS file of R16F has a buffer of twice the size of its pixels.
    {D3DFMT_R16F,         layout("r", 16),                eVarFloat,     getOnly},
    {D3DFMT_R16F,         layout("r", 32),                eVarFloat,     setOnly},
    // Kept (d3d-g32r32f-order): rg comes back as gr, which has no number; a loaded DDS file of this number cannot be saved.
    {D3DFMT_G32R32F,      layout("rg", 32, 32),           eVarFloat,     getOnly},
    {D3DFMT_G32R32F,      layout("gr", 32, 32),           eVarFloat,     setOnly},
    // Kept (d3d-moktc-get-only): MOKTC, with alpha or without, has numbers that the setter refuses; saveFile() writes DDS files
    // of it, which load with eFmtUnknown.
    {d3dMOKTC2bpp,        eFmtMOKTC2bppRGB,               eVarUByteNorm, getOnly},
    {d3dMOKTC2bpp,        eFmtMOKTC2bppRGBA,              eVarUByteNorm, getOnly},
    {d3dMOKTC4bpp,        eFmtMOKTC4bppRGB,               eVarUByteNorm, getOnly},
    {d3dMOKTC4bpp,        eFmtMOKTC4bppRGBA,              eVarUByteNorm, getOnly},
    // Kept (d3d-x4r4g4b4-as-argb): x is read as alpha; a loaded DDS file of it has an alpha channel and the number 26.
    {D3DFMT_X4R4G4B4,     layout("argb", 4, 4, 4, 4),     eVarUIntNorm,  setOnly},
    // Kept (d3d-set-only-numbers): the setter accepts these numbers and the getter never returns them; DDS files of the first
    // three load and cannot be saved as DDS.
    {D3DFMT_A8B8G8R8,     layout("abgr", 8, 8, 8, 8),     eVarUIntNorm,  setOnly},
    {D3DFMT_X8B8G8R8,     layout("xbgr", 8, 8, 8, 8),     eVarUIntNorm,  setOnly},
    {D3DFMT_Q16W16V16U16, layout("abgr", 16, 16, 16, 16), eVarSIntNorm,  setOnly},
    {D3DFMT_R8G8_B8G8,    eFmtRGBG8888,                   eVarUByteNorm, setOnly},
    {D3DFMT_G8R8_G8B8,    eFmtGRGB8888,                   eVarUByteNorm, setOnly},
};
// clang-format on

}  // namespace

std::uint32_t findD3DNumber(PixelType pixelFormat, EMOKTVariableType channelType) {
    for (const D3DRow& row : d3dRows) {
        if (!isForGetter(row.direction) || row.pixelFormat != pixelFormat) continue;
        if (isCompressed(pixelFormat) || row.channelType == channelType) return row.number;
    }
    return 0;
}

const D3DRow* findD3DFormat(std::uint32_t number) {
    for (const D3DRow& row : d3dRows) {
        if (isForSetter(row.direction) && row.number == number) return &row;
    }
    return nullptr;
}

}  // namespace moktexture
