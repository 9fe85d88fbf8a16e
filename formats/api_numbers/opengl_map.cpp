#include "formats/api_numbers/opengl_map.h"

#include "core/texture/data_size.h"
#include "formats/api_numbers/api_constants.h"

namespace moktexture {
namespace {

using enum MapDirection;

// Columns: the texture's format and channel type; OpenGL's internal format, format and type; the way the row is read.
// clang-format off
constexpr OpenGLRow rows[] = {
    {eFmtMOKTC2bppRGB,  eVarUIntNorm, glMOKTC2bppRGB,   0, 0, getAndSet},
    {eFmtMOKTC2bppRGBA, eVarUIntNorm, glMOKTC2bppRGBA,  0, 0, getAndSet},
    {eFmtMOKTC4bppRGB,  eVarUIntNorm, glMOKTC4bppRGB,   0, 0, getAndSet},
    {eFmtMOKTC4bppRGBA, eVarUIntNorm, glMOKTC4bppRGBA,  0, 0, getAndSet},
    {eFmtMOKTCII2bpp,   eVarUIntNorm, glMOKTCII2bpp,    0, 0, getAndSet},
    {eFmtMOKTCII4bpp,   eVarUIntNorm, glMOKTCII4bpp,    0, 0, getAndSet},
    // Kept: ETC1 is read and never given, so that no KTX file is written with a number of OpenGL ES.
    {eFmtETC1,          eVarUIntNorm, GL_ETC1_RGB8_OES, 0, 0, setOnly  },

    {layout("a", 8),             eVarUByteNorm, GL_ALPHA8,            GL_ALPHA,           GL_UNSIGNED_BYTE, getAndSet},
    {layout("l", 8),             eVarUByteNorm, GL_LUMINANCE8,        GL_LUMINANCE,       GL_UNSIGNED_BYTE, getAndSet},
    {layout("r", 8),             eVarUByteNorm, GL_R8,                GL_RED,             GL_UNSIGNED_BYTE, getAndSet},
    {layout("la", 8, 8),         eVarUByteNorm, GL_LUMINANCE8_ALPHA8, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE, getAndSet},
    {layout("rg", 8, 8),         eVarUByteNorm, GL_RG8,               GL_RG,              GL_UNSIGNED_BYTE, getAndSet},
    {layout("rgb", 8, 8, 8),     eVarUByteNorm, GL_RGB8,              GL_RGB,             GL_UNSIGNED_BYTE, getAndSet},
    {layout("bgr", 8, 8, 8),     eVarUByteNorm, GL_RGB8,              GL_BGR,             GL_UNSIGNED_BYTE, getAndSet},
    {layout("rgba", 8, 8, 8, 8), eVarUByteNorm, GL_RGBA8,             GL_RGBA,            GL_UNSIGNED_BYTE, getAndSet},
    {layout("bgra", 8, 8, 8, 8), eVarUByteNorm, GL_RGBA8,             GL_BGRA,            GL_UNSIGNED_BYTE, getAndSet},

    {layout("a", 8),             eVarSByteNorm, GL_ALPHA8_SNORM,            GL_ALPHA,           GL_BYTE, getAndSet},
    {layout("l", 8),             eVarSByteNorm, GL_LUMINANCE8_SNORM,        GL_LUMINANCE,       GL_BYTE, getAndSet},
    {layout("r", 8),             eVarSByteNorm, GL_R8_SNORM,                GL_RED,             GL_BYTE, getAndSet},
    {layout("la", 8, 8),         eVarSByteNorm, GL_LUMINANCE8_ALPHA8_SNORM, GL_LUMINANCE_ALPHA, GL_BYTE, getAndSet},
    {layout("rg", 8, 8),         eVarSByteNorm, GL_RG8_SNORM,               GL_RG,              GL_BYTE, getAndSet},
    {layout("rgb", 8, 8, 8),     eVarSByteNorm, GL_RGB8_SNORM,              GL_RGB,             GL_BYTE, getAndSet},
    {layout("bgr", 8, 8, 8),     eVarSByteNorm, GL_RGB8_SNORM,              GL_BGR,             GL_BYTE, getAndSet},
    {layout("rgba", 8, 8, 8, 8), eVarSByteNorm, GL_RGBA8_SNORM,             GL_RGBA,            GL_BYTE, getAndSet},
    {layout("bgra", 8, 8, 8, 8), eVarSByteNorm, GL_RGBA8_SNORM,             GL_BGRA,            GL_BYTE, getAndSet},

    {layout("rgb", 5, 6, 5),        eVarUShortNorm, GL_RGB,      GL_RGB,  GL_UNSIGNED_SHORT_5_6_5,        getAndSet},
    {layout("rgba", 4, 4, 4, 4),    eVarUShortNorm, GL_RGBA4,    GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4,      getAndSet},
    // Kept: 5.5.5.1 comes back as 1.5.5.5, the layout that KTX files of this type are loaded with.
    {layout("rgba", 5, 5, 5, 1),    eVarUShortNorm, GL_RGB5_A1,  GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1,      getOnly  },
    {layout("rgba", 1, 5, 5, 5),    eVarUShortNorm, GL_RGB5_A1,  GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1,      setOnly  },
    {layout("abgr", 2, 10, 10, 10), eVarUIntNorm,   GL_RGB10_A2, GL_RGBA, GL_UNSIGNED_INT_2_10_10_10_REV, getAndSet},
    // Kept: x comes back as alpha: loaded KTX files have the layout with alpha.
    {layout("xbgr", 2, 10, 10, 10), eVarUIntNorm,   GL_RGB,      GL_RGB,  GL_UNSIGNED_INT_2_10_10_10_REV, getOnly  },
    {layout("abgr", 2, 10, 10, 10), eVarUIntNorm,   GL_RGB,      GL_RGB,  GL_UNSIGNED_INT_2_10_10_10_REV, setOnly  },

    {layout("r", 16),                eVarFloat, GL_R16F,                   GL_RED,             GL_HALF_FLOAT, getAndSet},
    {layout("a", 16),                eVarFloat, GL_ALPHA16F_ARB,           GL_ALPHA,           GL_HALF_FLOAT, getAndSet},
    {layout("l", 16),                eVarFloat, GL_LUMINANCE16F_ARB,       GL_LUMINANCE,       GL_HALF_FLOAT, getAndSet},
    {layout("la", 16, 16),           eVarFloat, GL_LUMINANCE_ALPHA16F_ARB, GL_LUMINANCE_ALPHA, GL_HALF_FLOAT, getAndSet},
    {layout("rg", 16, 16),           eVarFloat, GL_RG16F,                  GL_RG,              GL_HALF_FLOAT, getAndSet},
    {layout("rgb", 16, 16, 16),      eVarFloat, GL_RGB16F,                 GL_RGB,             GL_HALF_FLOAT, getAndSet},
    {layout("rgba", 16, 16, 16, 16), eVarFloat, GL_RGBA16F,                GL_RGBA,            GL_HALF_FLOAT, getAndSet},

    {layout("r", 32),                eVarFloat, GL_R32F,                   GL_RED,             GL_FLOAT, getAndSet},
    {layout("a", 32),                eVarFloat, GL_ALPHA32F_ARB,           GL_ALPHA,           GL_FLOAT, getAndSet},
    {layout("l", 32),                eVarFloat, GL_LUMINANCE32F_ARB,       GL_LUMINANCE,       GL_FLOAT, getAndSet},
    {layout("la", 32, 32),           eVarFloat, GL_LUMINANCE_ALPHA32F_ARB, GL_LUMINANCE_ALPHA, GL_FLOAT, getAndSet},
    {layout("rg", 32, 32),           eVarFloat, GL_RG32F,                  GL_RG,              GL_FLOAT, getAndSet},
    {layout("rgb", 32, 32, 32),      eVarFloat, GL_RGB32F,                 GL_RGB,             GL_FLOAT, getAndSet},
    {layout("rgba", 32, 32, 32, 32), eVarFloat, GL_RGBA32F,                GL_RGBA,            GL_FLOAT, getAndSet},
};
// clang-format on

}  // namespace

std::span<const OpenGLRow> openGLRows() {
    return rows;
}

const OpenGLRow* findOpenGLNumbers(std::span<const OpenGLRow> map, PixelType pixelFormat, EMOKTVariableType channelType) {
    for (const OpenGLRow& row : map) {
        if (!isForGetter(row.direction) || row.pixelFormat != pixelFormat) continue;
        if (isCompressed(pixelFormat) || row.channelType == channelType) return &row;
    }
    return nullptr;
}

const OpenGLRow* findOpenGLCompressed(std::span<const OpenGLRow> map, std::uint32_t internalFormat) {
    for (const OpenGLRow& row : map) {
        if (isForSetter(row.direction) && isCompressed(row.pixelFormat) && row.internalFormat == internalFormat) return &row;
    }
    return nullptr;
}

const OpenGLRow* findOpenGLLayout(std::span<const OpenGLRow> map, std::uint32_t baseFormat, std::uint32_t type) {
    for (const OpenGLRow& row : map) {
        if (!isForSetter(row.direction) || isCompressed(row.pixelFormat)) continue;
        if (row.format == baseFormat && row.type == type) return &row;
    }
    return nullptr;
}

}  // namespace moktexture
