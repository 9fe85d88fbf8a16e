#pragma once

#include <cstdint>

namespace moktexture::moktc {

/// The first generation's decoder, cell by cell: the plain form. `blocks` holds the level's data (see levelBlockCount());
/// `pixels` takes `width * height` RGBA8 pixels, zeroes where no whole block stands. Returns the bytes of block data under the
/// pixels, with sides of at least two blocks, modulo 32 bits. Raises `std::bad_alloc`.
std::uint32_t DecodeTwiddled(const std::uint8_t* blocks, bool is2bpp, std::uint32_t width, std::uint32_t height,
                             std::uint8_t* pixels);

}  // namespace moktexture::moktc
