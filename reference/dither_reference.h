#pragma once

#include "PixelType.h"

namespace moktexture {

/// ditherLevel() as it is defined: channel by channel, column by column.
void ditherLevelReference(unsigned char* rgba, PixelType target, unsigned int width, unsigned int height, unsigned int depth);

}  // namespace moktexture
