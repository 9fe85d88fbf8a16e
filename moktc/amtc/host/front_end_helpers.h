#pragma once

#include <cstdint>
#include <cstdio>

/// @file
/// Helpers for a command-line front end of the encoder. Nothing in the library calls these; messages go to the standard error
/// stream.

namespace moktexture::amtc {

/// Rounds an image's size down to one that can be encoded. Sizes that are no powers of two switch linear block order on, sides
/// above 4096 are limited to that; messages name the image. One smaller than a block ends the process with status 1.
/// @param width, height, linearBlockOrder read and written
/// @param warn non-zero: write a warning when the size is changed
void CheckSourceSize(const char* name, std::uint32_t bitsPerPixel, std::int32_t* width, std::int32_t* height,
                     std::uint32_t* linearBlockOrder, std::uint32_t warn);

/// Writes the blocks of `sizeInPixels` pixels, 8 bytes each, as C source, a byte at a time. Pixels beyond whole blocks are
/// ignored.
void WriteBlocksAsText(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels);
/// Writes the same blocks as bytes, a 32-bit word at a time, with a message for each one that fails.
void WriteBlocksRaw(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels);

}  // namespace moktexture::amtc
