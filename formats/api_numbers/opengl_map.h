#pragma once

#include <cstdint>
#include <span>

#include "PixelType.h"
#include "formats/api_numbers/format_map_row.h"
#include "texture_enums.h"

namespace moktexture {

/// A row of the maps to OpenGL and OpenGL ES. A compressed format has a `format` and `type` of 0.
struct OpenGLRow {
    PixelType pixelFormat;
    EMOKTVariableType channelType;  ///< of a layout; a compressed format has this number for any
    std::uint32_t internalFormat;   ///< what the getter gives; the setter looks at it for compressed formats alone
    std::uint32_t format;           ///< what the getter gives and what a layout is found by
    std::uint32_t type;
    MapDirection direction;
};

/// The map to and from OpenGL.
std::span<const OpenGLRow> openGLRows();

/// The getter's row for a pixel format, or null.
const OpenGLRow* findOpenGLNumbers(std::span<const OpenGLRow> rows, PixelType pixelFormat, EMOKTVariableType channelType);

/// The setter's row for a compressed format, or null.
const OpenGLRow* findOpenGLCompressed(std::span<const OpenGLRow> rows, std::uint32_t internalFormat);

/// The setter's row for a layout, or null. `baseFormat` is what the rows have as `format`.
const OpenGLRow* findOpenGLLayout(std::span<const OpenGLRow> rows, std::uint32_t baseFormat, std::uint32_t type);

}  // namespace moktexture
