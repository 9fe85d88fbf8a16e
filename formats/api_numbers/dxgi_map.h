#pragma once

#include <cstdint>

#include "PixelType.h"
#include "formats/api_numbers/format_map_row.h"
#include "texture_enums.h"

namespace moktexture {

/// A row of the map to DXGI.
struct DXGIRow {
    std::uint32_t number;  ///< a DXGI_FORMAT
    PixelType pixelFormat;
    EMOKTVariableType channelType;
    EMOKTColourSpace colourSpace;  ///< the getter compares it where two rows differ in nothing else
    MapDirection direction;
    bool takesAnyChannelType = false;  ///< the getter does not compare the channel type
};

/// The number of a pixel format; 0 if there is none. Every colour space but sRGB counts as linear.
std::uint32_t findDXGINumber(PixelType pixelFormat, EMOKTVariableType channelType, EMOKTColourSpace colourSpace);

/// The setter's row for a number, or null.
const DXGIRow* findDXGIFormat(std::uint32_t number);

}  // namespace moktexture
