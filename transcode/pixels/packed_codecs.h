#pragma once

#include <cstdint>

/// @file
/// Codecs of the formats that pack a few pixels into one group. `width` and `height` are in pixels, passed by pointer like those
/// of every codec.
///
/// eFmtBW1bpp: eight pixels in a byte, in memory order with no gap between rows, the first pixel in bit 0.
///
/// Packed YUV: two pixels in four bytes. Each pixel has its luma; both share the chroma.
///
/// | format   | byte 0    | byte 1 | byte 2   | byte 3   |
/// | -------- | --------- | ------ | -------- | -------- |
/// | eFmtUYVY | U         | Y even | V        | Y odd    |
/// | eFmtYUY2 | Y even    | U      | Y odd    | V        |
///
/// A row holds `width / 2` such groups, rounded down, and groups follow each other without a gap. At an odd width the last pixel
/// of a row is decoded from the group after the row's own ones, so that `yuv` must hold the level with its width rounded up to 2.

namespace moktexture {

/// Encodes one RGBA8 slice: a pixel whose mean of R, G and B, rounded down, is 128 or more sets its bit. Pixels of an incomplete
/// last byte are dropped. Returns `width * height >> 3`, with nothing done if a pointer is null.
int encode1bpp(const void* rgba, void* bits, const std::uint32_t* width, const std::uint32_t* height);

/// Decodes one slice to RGBA8, black or white with alpha 255. Returns `width * height * 4`, with nothing done if a pointer is
/// null.
int decode1bpp(const void* bits, void* rgba, const std::uint32_t* width, const std::uint32_t* height);

/// Encodes one RGBA8 slice and returns `width * height * 2`; 0 for a format that is neither eFmtUYVY nor eFmtYUY2, with nothing
/// written. At an odd width the last pixel of each row is ignored, and fewer bytes are
/// written than returned.
int encodeYUV(const void* rgba, void* yuv, const std::uint32_t* width, const std::uint32_t* height, const std::uint32_t* format);

/// Decodes one slice to RGBA8 with alpha 255 and returns `width * height * 4`; 0 for another format, with nothing written.
int decodeYUV(const void* yuv, void* rgba, const std::uint32_t* width, const std::uint32_t* height, const std::uint32_t* format);

}  // namespace moktexture
