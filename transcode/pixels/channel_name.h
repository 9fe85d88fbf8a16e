#pragma once

#include <cstdint>

#include "texture_enums.h"

namespace moktexture {

/// The channel that a letter of a PixelType names; eChannelNone for every letter other than r, g, b, a, l, i and x.
EChannelName channelNameFromChar(std::uint8_t letter);

}  // namespace moktexture
