#pragma once

#include <cstdint>
#include <optional>

#include "PixelType.h"
#include "texture_enums.h"

/// @file
/// The numbers of pixel formats in legacy files: one byte, in one numbering for all graphics APIs.

namespace moktexture {

/// The pixel format that one number means.
struct LegacyFormat {
    PixelType format;
    EMOKTVariableType channelType;
    EMOKTColourSpace colourSpace;
    bool isPreMultiplied;
};

/// The format of a number in a file; eFmtUnknown, eVarNone, linear and not premultiplied for a number without one.
LegacyFormat formatOfLegacyNumber(std::uint8_t number);

/// The number that an API's family writes for a format, if it has one. Not the inverse of formatOfLegacyNumber().
std::optional<std::uint8_t> legacyNumberOf(const LegacyFormat& wanted, ELegacyApi api);

}  // namespace moktexture
