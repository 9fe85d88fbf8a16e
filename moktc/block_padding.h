#pragma once

#include <cstdint>
#include <vector>

namespace moktexture::moktc {

/// Pads `width * height` RGBA8 pixels, neither side 0, to a width of `paddedWidth` and a height of `paddedHeight`. The last
/// columns and then the last rows are repeated in their order; an image smaller than its padding is repeated cyclically.
std::vector<std::uint8_t> padByRepeating(const void* pixels, std::uint32_t width, std::uint32_t height, std::uint32_t paddedWidth,
                                         std::uint32_t paddedHeight);

}  // namespace moktexture::moktc
