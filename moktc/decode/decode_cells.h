#pragma once

#include <cstdint>

#include "core/base/image_view.h"
#include "moktc/block/block_variant.h"

namespace moktexture::moktc {

/// Decodes a level. `blocks` holds levelBlockCount() blocks for the image's size; every pixel of the image is written. Allocates
/// no memory.
void decodeCells(const std::uint8_t* blocks, BlockVariant variant, const ImageView& image);

}  // namespace moktexture::moktc
