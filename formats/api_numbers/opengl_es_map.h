#pragma once

#include <span>

#include "formats/api_numbers/opengl_map.h"

namespace moktexture {

/// The map to and from OpenGL ES, where the internal format of a layout is its format.
std::span<const OpenGLRow> openGLESRows();

}  // namespace moktexture
