#include "formats/api_numbers/opengl_es_map.h"

#include "formats/api_numbers/api_constants.h"

namespace moktexture {
namespace {

using enum MapDirection;

// Columns: the texture's format and channel type; OpenGL ES's internal format, format and type; the way the row is read.
// clang-format off
constexpr OpenGLRow rows[] = {
    {eFmtMOKTC2bppRGB,  eVarUIntNorm, glMOKTC2bppRGB,   0, 0, getAndSet},
    {eFmtMOKTC2bppRGBA, eVarUIntNorm, glMOKTC2bppRGBA,  0, 0, getAndSet},
    {eFmtMOKTC4bppRGB,  eVarUIntNorm, glMOKTC4bppRGB,   0, 0, getAndSet},
    {eFmtMOKTC4bppRGBA, eVarUIntNorm, glMOKTC4bppRGBA,  0, 0, getAndSet},
    {eFmtMOKTCII2bpp,   eVarUIntNorm, glMOKTCII2bpp,    0, 0, getAndSet},
    {eFmtMOKTCII4bpp,   eVarUIntNorm, glMOKTCII4bpp,    0, 0, getAndSet},
    {eFmtETC1,          eVarUIntNorm, GL_ETC1_RGB8_OES, 0, 0, getAndSet},

    // bgr 8.8.8 and signed bytes have no rows: OpenGL ES has no such formats.
    {layout("a", 8),             eVarUByteNorm, GL_ALPHA,           GL_ALPHA,           GL_UNSIGNED_BYTE, getAndSet},
    {layout("l", 8),             eVarUByteNorm, GL_LUMINANCE,       GL_LUMINANCE,       GL_UNSIGNED_BYTE, getAndSet},
    {layout("r", 8),             eVarUByteNorm, GL_RED,             GL_RED,             GL_UNSIGNED_BYTE, getAndSet},
    {layout("la", 8, 8),         eVarUByteNorm, GL_LUMINANCE_ALPHA, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, getAndSet},
    {layout("rg", 8, 8),         eVarUByteNorm, GL_RG,              GL_RG,              GL_UNSIGNED_BYTE, getAndSet},
    {layout("rgb", 8, 8, 8),     eVarUByteNorm, GL_RGB,             GL_RGB,             GL_UNSIGNED_BYTE, getAndSet},
    {layout("rgba", 8, 8, 8, 8), eVarUByteNorm, GL_RGBA,            GL_RGBA,            GL_UNSIGNED_BYTE, getAndSet},
    {layout("bgra", 8, 8, 8, 8), eVarUByteNorm, GL_BGRA,            GL_BGRA,            GL_UNSIGNED_BYTE, getAndSet},

    {layout("rgb", 5, 6, 5),        eVarUShortNorm, GL_RGB,  GL_RGB,  GL_UNSIGNED_SHORT_5_6_5,        getAndSet},
    {layout("rgba", 4, 4, 4, 4),    eVarUShortNorm, GL_RGBA, GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4,      getAndSet},
    // Kept: 5.5.5.1 comes back as 1.5.5.5 and x as alpha, as from OpenGL; callers move textures between the two maps.
    {layout("rgba", 5, 5, 5, 1),    eVarUShortNorm, GL_RGBA, GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1,      getOnly  },
    {layout("rgba", 1, 5, 5, 5),    eVarUShortNorm, GL_RGBA, GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1,      setOnly  },
    {layout("abgr", 2, 10, 10, 10), eVarUIntNorm,   GL_RGBA, GL_RGBA, GL_UNSIGNED_INT_2_10_10_10_REV, getAndSet},
    {layout("xbgr", 2, 10, 10, 10), eVarUIntNorm,   GL_RGB,  GL_RGB,  GL_UNSIGNED_INT_2_10_10_10_REV, getOnly  },
    {layout("abgr", 2, 10, 10, 10), eVarUIntNorm,   GL_RGB,  GL_RGB,  GL_UNSIGNED_INT_2_10_10_10_REV, setOnly  },

    {layout("r", 16),                eVarFloat, GL_RED,             GL_RED,             GL_HALF_FLOAT_OES, getAndSet},
    {layout("a", 16),                eVarFloat, GL_ALPHA,           GL_ALPHA,           GL_HALF_FLOAT_OES, getAndSet},
    {layout("l", 16),                eVarFloat, GL_LUMINANCE,       GL_LUMINANCE,       GL_HALF_FLOAT_OES, getAndSet},
    {layout("la", 16, 16),           eVarFloat, GL_LUMINANCE_ALPHA, GL_LUMINANCE_ALPHA, GL_HALF_FLOAT_OES, getAndSet},
    {layout("rg", 16, 16),           eVarFloat, GL_RG,              GL_RG,              GL_HALF_FLOAT_OES, getAndSet},
    {layout("rgb", 16, 16, 16),      eVarFloat, GL_RGB,             GL_RGB,             GL_HALF_FLOAT_OES, getAndSet},
    {layout("rgba", 16, 16, 16, 16), eVarFloat, GL_RGBA,            GL_RGBA,            GL_HALF_FLOAT_OES, getAndSet},

    {layout("r", 32),                eVarFloat, GL_RED,             GL_RED,             GL_FLOAT, getAndSet},
    {layout("a", 32),                eVarFloat, GL_ALPHA,           GL_ALPHA,           GL_FLOAT, getAndSet},
    {layout("l", 32),                eVarFloat, GL_LUMINANCE,       GL_LUMINANCE,       GL_FLOAT, getAndSet},
    {layout("la", 32, 32),           eVarFloat, GL_LUMINANCE_ALPHA, GL_LUMINANCE_ALPHA, GL_FLOAT, getAndSet},
    {layout("rg", 32, 32),           eVarFloat, GL_RG,              GL_RG,              GL_FLOAT, getAndSet},
    {layout("rgb", 32, 32, 32),      eVarFloat, GL_RGB,             GL_RGB,             GL_FLOAT, getAndSet},
    {layout("rgba", 32, 32, 32, 32), eVarFloat, GL_RGBA,            GL_RGBA,            GL_FLOAT, getAndSet},
};
// clang-format on

}  // namespace

std::span<const OpenGLRow> openGLESRows() {
    return rows;
}

}  // namespace moktexture
