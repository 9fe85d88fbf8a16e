#pragma once

#include <cstdint>
#include <cstdio>

/// @file
/// What a command-line front end of the encoder needs. Nothing in the library calls these; messages go to the standard error
/// stream.

namespace moktexture::amtc {

/// Rounds a picture's size down to one that can be encoded. Sizes that are no powers of two switch linear block order on, sides
/// above 4096 are cut there; a message names the picture. One too small for a block ends the process with status 1.
/// @param width, height, linearBlockOrder read and written
/// @param warn non-zero: tell when the size is changed
void CheckSourceSize(const char* name, std::uint32_t bitsPerPixel, std::int32_t* width, std::int32_t* height,
                     std::uint32_t* linearBlockOrder, std::uint32_t warn);

/// Writes the blocks of a level of so many pixels, 8 bytes each, as C source, a byte at a time. Pixels beyond whole blocks count
/// for nothing.
void WriteBlocksAsText(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels);
/// Writes the same blocks as they are, a 32-bit word at a time; a message for each that fails.
void WriteBlocksRaw(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels);

}  // namespace moktexture::amtc
