#pragma once

#include <cstdint>

#include "PixelType.h"
#include "formats/api_numbers/format_map_row.h"
#include "texture_enums.h"

namespace moktexture {

/// A row of the map to Direct3D 9.
struct D3DRow {
    std::uint32_t number;  ///< a D3DFORMAT, which may be a FourCC
    PixelType pixelFormat;
    EMOKTVariableType channelType;  ///< the getter compares it for layouts, not for compressed formats
    MapDirection direction;
    bool isPremultiplied = false;  ///< the setter marks the texture so; the getter does not look
};

/// The number of a pixel format; 0 if there is none.
std::uint32_t findD3DNumber(PixelType pixelFormat, EMOKTVariableType channelType);

/// The setter's row for a number, or null.
const D3DRow* findD3DFormat(std::uint32_t number);

}  // namespace moktexture
