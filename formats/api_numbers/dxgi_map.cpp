#include "formats/api_numbers/api_constants.h"
#include "formats/api_numbers/format_maps.h"

namespace moktexture {
namespace {

using enum MapDirection;
constexpr EMOKTColourSpace linear = eColourSpaceLinear;
constexpr EMOKTColourSpace sRGB = eColourSpaceSRGB;

// BC6H_UF16 (95) has no row.
// clang-format off
constexpr DXGIRow dxgiRows[] = {
    // Number                         Pixel format                    Channel type    Space   Direction  Any channel type
    {DXGI_FORMAT_R32G32B32A32_FLOAT,  layout("rgba", 32, 32, 32, 32), eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R32G32B32A32_UINT,   layout("rgba", 32, 32, 32, 32), eVarUInt,       linear, getAndSet},
    {DXGI_FORMAT_R32G32B32A32_SINT,   layout("rgba", 32, 32, 32, 32), eVarSInt,       linear, getAndSet},
    {DXGI_FORMAT_R32G32B32_FLOAT,     layout("rgb", 32, 32, 32),      eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R32G32B32_UINT,      layout("rgb", 32, 32, 32),      eVarUInt,       linear, getAndSet},
    {DXGI_FORMAT_R32G32B32_SINT,      layout("rgb", 32, 32, 32),      eVarSInt,       linear, getAndSet},
    {DXGI_FORMAT_R16G16B16A16_FLOAT,  layout("rgba", 16, 16, 16, 16), eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R16G16B16A16_UNORM,  layout("rgba", 16, 16, 16, 16), eVarUShortNorm, linear, getAndSet},
    {DXGI_FORMAT_R16G16B16A16_UINT,   layout("rgba", 16, 16, 16, 16), eVarUShort,     linear, getAndSet},
    {DXGI_FORMAT_R16G16B16A16_SNORM,  layout("rgba", 16, 16, 16, 16), eVarSShortNorm, linear, getAndSet},
    {DXGI_FORMAT_R16G16B16A16_SINT,   layout("rgba", 16, 16, 16, 16), eVarSShort,     linear, getAndSet},
    {DXGI_FORMAT_R32G32_FLOAT,        layout("rg", 32, 32),           eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R32G32_UINT,         layout("rg", 32, 32),           eVarUInt,       linear, getAndSet},
    {DXGI_FORMAT_R32G32_SINT,         layout("rg", 32, 32),           eVarSInt,       linear, getAndSet},
    {DXGI_FORMAT_R10G10B10A2_UNORM,   layout("rgba", 10, 10, 10, 2),  eVarUIntNorm,   linear, getAndSet},
    {DXGI_FORMAT_R10G10B10A2_UINT,    layout("rgba", 10, 10, 10, 2),  eVarUInt,       linear, getAndSet},
    {DXGI_FORMAT_R11G11B10_FLOAT,     layout("rgb", 11, 11, 10),      eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R8G8B8A8_UNORM,      layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_R8G8B8A8_UNORM_SRGB, layout("rgba", 8, 8, 8, 8),     eVarUByteNorm,  sRGB,   getAndSet},
    {DXGI_FORMAT_R8G8B8A8_UINT,       layout("rgba", 8, 8, 8, 8),     eVarUByte,      linear, getAndSet},
    {DXGI_FORMAT_R8G8B8A8_SNORM,      layout("rgba", 8, 8, 8, 8),     eVarSByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_R8G8B8A8_SINT,       layout("rgba", 8, 8, 8, 8),     eVarSByte,      linear, getAndSet},
    {DXGI_FORMAT_R16G16_FLOAT,        layout("rg", 16, 16),           eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R16G16_UNORM,        layout("rg", 16, 16),           eVarUShortNorm, linear, getAndSet},
    {DXGI_FORMAT_R16G16_UINT,         layout("rg", 16, 16),           eVarUShort,     linear, getAndSet},
    {DXGI_FORMAT_R16G16_SNORM,        layout("rg", 16, 16),           eVarSShortNorm, linear, getAndSet},
    {DXGI_FORMAT_R16G16_SINT,         layout("rg", 16, 16),           eVarSShort,     linear, getAndSet},
    {DXGI_FORMAT_R32_FLOAT,           layout("r", 32),                eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R32_UINT,            layout("r", 32),                eVarUInt,       linear, getAndSet},
    {DXGI_FORMAT_R32_SINT,            layout("r", 32),                eVarSInt,       linear, getAndSet},
    {DXGI_FORMAT_R8G8_UNORM,          layout("rg", 8, 8),             eVarUByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_R8G8_UINT,           layout("rg", 8, 8),             eVarUByte,      linear, getAndSet},
    {DXGI_FORMAT_R8G8_SNORM,          layout("rg", 8, 8),             eVarSByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_R8G8_SINT,           layout("rg", 8, 8),             eVarSByte,      linear, getAndSet},
    {DXGI_FORMAT_R16_FLOAT,           layout("r", 16),                eVarFloat,      linear, getAndSet},
    {DXGI_FORMAT_R16_UNORM,           layout("r", 16),                eVarUShortNorm, linear, getAndSet},
    {DXGI_FORMAT_R16_UINT,            layout("r", 16),                eVarUShort,     linear, getAndSet},
    {DXGI_FORMAT_R16_SNORM,           layout("r", 16),                eVarSShortNorm, linear, getAndSet},
    {DXGI_FORMAT_R16_SINT,            layout("r", 16),                eVarSShort,     linear, getAndSet},
    {DXGI_FORMAT_R8_UNORM,            layout("r", 8),                 eVarUByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_R8_UINT,             layout("r", 8),                 eVarUByte,      linear, getAndSet},
    {DXGI_FORMAT_R8_SNORM,            layout("r", 8),                 eVarSByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_R8_SINT,             layout("r", 8),                 eVarSByte,      linear, getAndSet},
    // Kept (dxgi-a8-as-r8): alpha comes back as red; a host that sets this number gets a texture with a red channel, whose number
    // is then 61.
    {DXGI_FORMAT_A8_UNORM,            layout("a", 8),                 eVarUByteNorm,  linear, getOnly  },
    {DXGI_FORMAT_A8_UNORM,            layout("r", 8),                 eVarUByteNorm,  linear, setOnly  },
    {DXGI_FORMAT_R1_UNORM,            eFmtBW1bpp,                     eVarUByteNorm,  linear, getAndSet, true},
    {DXGI_FORMAT_R8G8_B8G8_UNORM,     eFmtRGBG8888,                   eVarUByteNorm,  linear, getAndSet, true},
    {DXGI_FORMAT_G8R8_G8B8_UNORM,     eFmtGRGB8888,                   eVarUByteNorm,  linear, getAndSet, true},
    // Kept (dxgi-bc-integer-types): block formats have numbers for integer types only; DXT from DDS files or Transcode() has
    // byte channels and so no number, and hosts set the channel type before they query it.
    {DXGI_FORMAT_BC1_UNORM,           eFmtDXT1,                       eVarUIntNorm,   linear, getAndSet},
    {DXGI_FORMAT_BC1_UNORM_SRGB,      eFmtDXT1,                       eVarUIntNorm,   sRGB,   getAndSet},
    {DXGI_FORMAT_BC2_UNORM,           eFmtDXT3,                       eVarUIntNorm,   linear, getAndSet},
    {DXGI_FORMAT_BC2_UNORM_SRGB,      eFmtDXT3,                       eVarUIntNorm,   sRGB,   getAndSet},
    {DXGI_FORMAT_BC3_UNORM,           eFmtDXT5,                       eVarUIntNorm,   linear, getAndSet},
    {DXGI_FORMAT_BC3_UNORM_SRGB,      eFmtDXT5,                       eVarUIntNorm,   sRGB,   getAndSet},
    // Kept (dxgi-bc4-srgb): the setter marks BC4_UNORM as sRGB; native files saved after setDXGIFormat(80) hold it.
    {DXGI_FORMAT_BC4_UNORM,           eFmtBC4,                        eVarUIntNorm,   sRGB,   getAndSet},
    {DXGI_FORMAT_BC4_SNORM,           eFmtBC4,                        eVarSIntNorm,   linear, getAndSet},
    {DXGI_FORMAT_BC5_UNORM,           eFmtBC5,                        eVarUIntNorm,   linear, getAndSet},
    {DXGI_FORMAT_BC5_SNORM,           eFmtBC5,                        eVarSIntNorm,   linear, getAndSet},
    {DXGI_FORMAT_B5G6R5_UNORM,        layout("bgr", 5, 6, 5),         eVarUShortNorm, linear, getAndSet},
    {DXGI_FORMAT_B5G5R5A1_UNORM,      layout("bgra", 5, 5, 5, 1),     eVarUShortNorm, linear, getAndSet},
    {DXGI_FORMAT_B8G8R8A8_UNORM,      layout("bgra", 8, 8, 8, 8),     eVarUByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_B8G8R8X8_UNORM,      layout("bgrx", 8, 8, 8, 8),     eVarUByteNorm,  linear, getAndSet},
    {DXGI_FORMAT_B8G8R8A8_UNORM_SRGB, layout("bgra", 8, 8, 8, 8),     eVarUByteNorm,  sRGB,   getAndSet},
    {DXGI_FORMAT_B8G8R8X8_UNORM_SRGB, layout("bgrx", 8, 8, 8, 8),     eVarUByteNorm,  sRGB,   getAndSet},

    // Kept (dxgi-set-only-numbers): the setter accepts these numbers and the getter never returns them; hosts take its 0 for "no
    // number" and choose another format.
    {DXGI_FORMAT_R9G9B9E5_SHAREDEXP, eFmtRGB9E5,                 eVarFloat,      linear, setOnly},
    // Kept (dxgi-bc6-as-bc7): signed BC6 is read as BC7 in sRGB, and BC6 has no number; native files saved after
    // setDXGIFormat(96) hold that format.
    {DXGI_FORMAT_BC6H_SF16,          eFmtBC7,                    eVarFloat,      sRGB,   setOnly},
    {DXGI_FORMAT_BC7_UNORM,          eFmtBC7,                    eVarUIntNorm,   linear, setOnly},
    {DXGI_FORMAT_BC7_UNORM_SRGB,     eFmtBC7,                    eVarUIntNorm,   sRGB,   setOnly},
    {DXGI_FORMAT_YUY2,               eFmtYUY2,                   eVarUIntNorm,   linear, setOnly},
    {DXGI_FORMAT_AI44,               layout("ai", 4, 4),         eVarUByteNorm,  linear, setOnly},
    {DXGI_FORMAT_IA44,               layout("ia", 4, 4),         eVarUByteNorm,  linear, setOnly},
    {DXGI_FORMAT_B4G4R4A4_UNORM,     layout("bgra", 4, 4, 4, 4), eVarUShortNorm, linear, setOnly},
};
// clang-format on

}  // namespace

std::uint32_t findDXGINumber(PixelType pixelFormat, EMOKTVariableType channelType, EMOKTColourSpace colourSpace) {
    const bool wantsSRGB = colourSpace == eColourSpaceSRGB;
    std::uint32_t inOtherSpace = 0;
    for (const DXGIRow& row : dxgiRows) {
        if (!isForGetter(row.direction) || row.pixelFormat != pixelFormat) continue;
        if (row.channelType != channelType && !row.takesAnyChannelType) continue;
        if ((row.colourSpace == sRGB) == wantsSRGB) return row.number;
        inOtherSpace = row.number;
    }
    return inOtherSpace;
}

const DXGIRow* findDXGIFormat(std::uint32_t number) {
    for (const DXGIRow& row : dxgiRows) {
        if (isForSetter(row.direction) && row.number == number) return &row;
    }
    return nullptr;
}

}  // namespace moktexture
