#pragma once

#include <cstdint>
#include <vector>

#include "core/base/image_view.h"

namespace moktexture::moktc {

/// Copies an image, neither side 0, into the upper left corner of one of `paddedWidth * paddedHeight` packed RGBA8 pixels, and
/// fills the rest by repeating first the last columns, then the last rows, in their order. An image smaller than the padding is
/// repeated cyclically.
std::vector<std::uint8_t> padByRepeating(const ConstImageView& image, std::uint32_t paddedWidth, std::uint32_t paddedHeight);

}  // namespace moktexture::moktc
