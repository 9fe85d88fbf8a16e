#include "core/texture/subresources.h"
#include "formats/api_numbers/api_constants.h"
#include "formats/api_numbers/format_maps.h"

namespace moktexture {
namespace {

/// A row of the maps to OpenGL and OpenGL ES, with OpenGL's numbers. Those of OpenGL ES follow from them: see numbersOf().
struct OpenGLRow {
    PixelType pixelFormat;
    EMOKTVariableType channelType;  ///< a compressed format has its numbers for every channel type
    OpenGLNumbers numbers;
    MapDirection openGL;
    MapDirection openGLES;
};

constexpr MapDirection both = MapDirection::getAndSet;
using enum MapDirection;

// Columns: pixel format, channel type, {internal format, format, type}, direction for OpenGL, direction for OpenGL ES. OpenGL ES
// has neither bgr 8.8.8 nor signed bytes.
// clang-format off
constexpr OpenGLRow openGLRows[] = {
    {eFmtMOKTC2bppRGB,  eVarUIntNorm, {glMOKTC2bppRGB,   0, 0}, both,    both},
    {eFmtMOKTC2bppRGBA, eVarUIntNorm, {glMOKTC2bppRGBA,  0, 0}, both,    both},
    {eFmtMOKTC4bppRGB,  eVarUIntNorm, {glMOKTC4bppRGB,   0, 0}, both,    both},
    {eFmtMOKTC4bppRGBA, eVarUIntNorm, {glMOKTC4bppRGBA,  0, 0}, both,    both},
    {eFmtMOKTCII2bpp,   eVarUIntNorm, {glMOKTCII2bpp,    0, 0}, both,    both},
    {eFmtMOKTCII4bpp,   eVarUIntNorm, {glMOKTCII4bpp,    0, 0}, both,    both},
    // Kept (opengl-etc1-set-only): getOGLFormat() has no number for ETC1, so that saveFile() writes no KTX file of it; the number
    // is one of OpenGL ES.
    {eFmtETC1,          eVarUIntNorm, {GL_ETC1_RGB8_OES, 0, 0}, setOnly, both},

    {layout("a", 8),             eVarUByteNorm, {GL_ALPHA8,            GL_ALPHA,           GL_UNSIGNED_BYTE}, both, both},
    {layout("l", 8),             eVarUByteNorm, {GL_LUMINANCE8,        GL_LUMINANCE,       GL_UNSIGNED_BYTE}, both, both},
    {layout("r", 8),             eVarUByteNorm, {GL_R8,                GL_RED,             GL_UNSIGNED_BYTE}, both, both},
    {layout("la", 8, 8),         eVarUByteNorm, {GL_LUMINANCE8_ALPHA8, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE}, both, both},
    {layout("rg", 8, 8),         eVarUByteNorm, {GL_RG8,               GL_RG,              GL_UNSIGNED_BYTE}, both, both},
    {layout("rgb", 8, 8, 8),     eVarUByteNorm, {GL_RGB8,              GL_RGB,             GL_UNSIGNED_BYTE}, both, both},
    {layout("bgr", 8, 8, 8),     eVarUByteNorm, {GL_RGB8,              GL_BGR,             GL_UNSIGNED_BYTE}, both, none},
    {layout("rgba", 8, 8, 8, 8), eVarUByteNorm, {GL_RGBA8,             GL_RGBA,            GL_UNSIGNED_BYTE}, both, both},
    {layout("bgra", 8, 8, 8, 8), eVarUByteNorm, {GL_RGBA8,             GL_BGRA,            GL_UNSIGNED_BYTE}, both, both},

    {layout("a", 8),             eVarSByteNorm, {GL_ALPHA8_SNORM,            GL_ALPHA,           GL_BYTE}, both, none},
    {layout("l", 8),             eVarSByteNorm, {GL_LUMINANCE8_SNORM,        GL_LUMINANCE,       GL_BYTE}, both, none},
    {layout("r", 8),             eVarSByteNorm, {GL_R8_SNORM,                GL_RED,             GL_BYTE}, both, none},
    {layout("la", 8, 8),         eVarSByteNorm, {GL_LUMINANCE8_ALPHA8_SNORM, GL_LUMINANCE_ALPHA, GL_BYTE}, both, none},
    {layout("rg", 8, 8),         eVarSByteNorm, {GL_RG8_SNORM,               GL_RG,              GL_BYTE}, both, none},
    {layout("rgb", 8, 8, 8),     eVarSByteNorm, {GL_RGB8_SNORM,              GL_RGB,             GL_BYTE}, both, none},
    {layout("bgr", 8, 8, 8),     eVarSByteNorm, {GL_RGB8_SNORM,              GL_BGR,             GL_BYTE}, both, none},
    {layout("rgba", 8, 8, 8, 8), eVarSByteNorm, {GL_RGBA8_SNORM,             GL_RGBA,            GL_BYTE}, both, none},
    {layout("bgra", 8, 8, 8, 8), eVarSByteNorm, {GL_RGBA8_SNORM,             GL_BGRA,            GL_BYTE}, both, none},

    {layout("rgb", 5, 6, 5),        eVarUShortNorm, {GL_RGB,      GL_RGB,  GL_UNSIGNED_SHORT_5_6_5},        both,    both},
    {layout("rgba", 4, 4, 4, 4),    eVarUShortNorm, {GL_RGBA4,    GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4},      both,    both},
    // Kept (opengl-5551-as-1555): 5.5.5.1 comes back as 1.5.5.5; KTX files of this type load with that layout, and a host that
    // reads channels by it sees the same bits as before.
    {layout("rgba", 5, 5, 5, 1),    eVarUShortNorm, {GL_RGB5_A1,  GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1},      getOnly, getOnly},
    {layout("rgba", 1, 5, 5, 5),    eVarUShortNorm, {GL_RGB5_A1,  GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1},      setOnly, setOnly},
    {layout("abgr", 2, 10, 10, 10), eVarUIntNorm,   {GL_RGB10_A2, GL_RGBA, GL_UNSIGNED_INT_2_10_10_10_REV}, both,    both},
    // Kept (opengl-xbgr-as-abgr): x comes back as alpha; KTX files of this type load with an alpha channel, and getOGLFormat() of
    // the loaded texture is GL_RGB10_A2.
    {layout("xbgr", 2, 10, 10, 10), eVarUIntNorm,   {GL_RGB,      GL_RGB,  GL_UNSIGNED_INT_2_10_10_10_REV}, getOnly, getOnly},
    {layout("abgr", 2, 10, 10, 10), eVarUIntNorm,   {GL_RGB,      GL_RGB,  GL_UNSIGNED_INT_2_10_10_10_REV}, setOnly, setOnly},

    {layout("r", 16),                eVarFloat, {GL_R16F,                   GL_RED,             GL_HALF_FLOAT}, both, both},
    {layout("a", 16),                eVarFloat, {GL_ALPHA16F_ARB,           GL_ALPHA,           GL_HALF_FLOAT}, both, both},
    {layout("l", 16),                eVarFloat, {GL_LUMINANCE16F_ARB,       GL_LUMINANCE,       GL_HALF_FLOAT}, both, both},
    {layout("la", 16, 16),           eVarFloat, {GL_LUMINANCE_ALPHA16F_ARB, GL_LUMINANCE_ALPHA, GL_HALF_FLOAT}, both, both},
    {layout("rg", 16, 16),           eVarFloat, {GL_RG16F,                  GL_RG,              GL_HALF_FLOAT}, both, both},
    {layout("rgb", 16, 16, 16),      eVarFloat, {GL_RGB16F,                 GL_RGB,             GL_HALF_FLOAT}, both, both},
    {layout("rgba", 16, 16, 16, 16), eVarFloat, {GL_RGBA16F,                GL_RGBA,            GL_HALF_FLOAT}, both, both},

    {layout("r", 32),                eVarFloat, {GL_R32F,                   GL_RED,             GL_FLOAT}, both, both},
    {layout("a", 32),                eVarFloat, {GL_ALPHA32F_ARB,           GL_ALPHA,           GL_FLOAT}, both, both},
    {layout("l", 32),                eVarFloat, {GL_LUMINANCE32F_ARB,       GL_LUMINANCE,       GL_FLOAT}, both, both},
    {layout("la", 32, 32),           eVarFloat, {GL_LUMINANCE_ALPHA32F_ARB, GL_LUMINANCE_ALPHA, GL_FLOAT}, both, both},
    {layout("rg", 32, 32),           eVarFloat, {GL_RG32F,                  GL_RG,              GL_FLOAT}, both, both},
    {layout("rgb", 32, 32, 32),      eVarFloat, {GL_RGB32F,                 GL_RGB,             GL_FLOAT}, both, both},
    {layout("rgba", 32, 32, 32, 32), eVarFloat, {GL_RGBA32F,                GL_RGBA,            GL_FLOAT}, both, both},
};
// clang-format on

/// The numbers of a row. OpenGL ES has no sized internal formats, and a number of its own for half floats.
OpenGLNumbers numbersOf(const OpenGLRow& row, OpenGLApi api) {
    OpenGLNumbers numbers = row.numbers;
    if (api == OpenGLApi::openGL) return numbers;
    if (!isCompressed(row.pixelFormat)) numbers.internalFormat = numbers.format;
    if (numbers.type == GL_HALF_FLOAT) numbers.type = GL_HALF_FLOAT_OES;
    return numbers;
}

MapDirection directionOf(const OpenGLRow& row, OpenGLApi api) {
    return api == OpenGLApi::openGL ? row.openGL : row.openGLES;
}

}  // namespace

std::optional<OpenGLNumbers> findOpenGLNumbers(OpenGLApi api, PixelType pixelFormat, EMOKTVariableType channelType) {
    for (const OpenGLRow& row : openGLRows) {
        if (!isForGetter(directionOf(row, api)) || row.pixelFormat != pixelFormat) continue;
        if (isCompressed(pixelFormat) || row.channelType == channelType) return numbersOf(row, api);
    }
    return std::nullopt;
}

std::optional<OpenGLPixels> findOpenGLCompressed(OpenGLApi api, std::uint32_t internalFormat) {
    for (const OpenGLRow& row : openGLRows) {
        if (!isForSetter(directionOf(row, api)) || !isCompressed(row.pixelFormat)) continue;
        if (row.numbers.internalFormat == internalFormat) return OpenGLPixels{row.pixelFormat, row.channelType};
    }
    return std::nullopt;
}

std::optional<OpenGLPixels> findOpenGLLayout(OpenGLApi api, std::uint32_t baseFormat, std::uint32_t type) {
    for (const OpenGLRow& row : openGLRows) {
        if (!isForSetter(directionOf(row, api)) || isCompressed(row.pixelFormat)) continue;
        const OpenGLNumbers numbers = numbersOf(row, api);
        if (numbers.format == baseFormat && numbers.type == type) return OpenGLPixels{row.pixelFormat, row.channelType};
    }
    return std::nullopt;
}

}  // namespace moktexture
