#pragma once

#include "moktc/amtc/driver/level_resources.h"
#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// Encodes one level whose sides are multiples of the block's into `destination`. `quality` is from 0 to 4. False if memory is
/// short, with a message on the standard error stream.
bool CompressLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                   std::uint32_t secondGeneration, std::uint8_t* destination, bool linearBlockOrder, std::uint32_t quality,
                   const LevelResources& resources);

}  // namespace moktexture::amtc
