#pragma once

#include <cstdint>
#include <optional>

#include "PixelType.h"
#include "texture_enums.h"

/// @file
/// The numbers that files of the legacy layout name their pixel formats by: one byte, shared by all graphics APIs.

namespace moktexture {

/// What one number says of the pixels.
struct LegacyFormat {
    PixelType format;
    EMOKTVariableType channelType;
    EMOKTColourSpace colourSpace;
    bool isPreMultiplied;
};

/// What a number in a file means; eFmtUnknown, eVarNone, linear and straight if it means nothing.
LegacyFormat formatOfLegacyNumber(std::uint8_t number);

/// The number that an API's family writes for a format, if it has one. Not the inverse of formatOfLegacyNumber().
std::optional<std::uint8_t> legacyNumberOf(const LegacyFormat& wanted, ELegacyApi api);

}  // namespace moktexture
