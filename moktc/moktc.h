#pragma once

#include <cstdint>

namespace moktexture {

/// Decodes one surface of `*width * *height` pixels to RGBA8 (red in the lowest byte, rows of `*width` pixels) and returns its
/// bytes, `width * height * 4`, modulo 32 bits. `is2bpp` tells 2 bits per pixel from 4; `*secondGeneration` is 0 for the formats
/// in twiddled order and anything else for those in linear order. With a null `blocks` or `pixels` nothing is decoded. `blocks`
/// holds the level's data as its texture counts it: sizes rounded up to the format's smallest block. 0, and no pixel touched, if
/// pixels or blocks are too many for the texture to count.
std::uint32_t DecompressMOKTC(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                              std::uint8_t is2bpp, const std::uint32_t* secondGeneration);

/// Encodes one surface of `*width * *height` RGBA8 pixels (red in the lowest byte) and returns its bytes,
/// `width * height * bits per pixel / 8`. `secondGeneration` is 0 for the formats in twiddled order and 1 for those in linear
/// order, whose sizes need not be whole blocks. Quality 0 of the first generation is the fast compressor, 1 to 5 are the efforts
/// of the slow one; in the second these are 0 to 4. A higher quality is the highest effort. Translucency comes from the pixels,
/// whatever `hasAlpha` says. `destination` takes 8 bytes for every block of the size rounded up to whole blocks, which in the
/// second generation can be more than is told. With a null `pixels` or `destination` nothing is encoded. 0 if it refuses: a side
/// above 4096, in the first generation a size that is not whole blocks, another generation, and if memory is short for the slow
/// encoder's own work; other allocations throw std::bad_alloc.
std::uint32_t CompressMOKTC(const void* pixels, void* destination, const std::uint32_t* width, const std::uint32_t* height,
                            bool hasAlpha, bool is2bpp, std::uint32_t secondGeneration, std::uint32_t quality);

}  // namespace moktexture
