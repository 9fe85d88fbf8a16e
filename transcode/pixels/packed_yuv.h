#pragma once

#include <cstdint>

/// @file
/// Packed YUV: two pixels in four bytes, of which each has a luma and both share the chroma.
///
/// | format   | byte 0    | byte 1 | byte 2   | byte 3   |
/// | -------- | --------- | ------ | -------- | -------- |
/// | eFmtUYVY | U         | Y even | V        | Y odd    |
/// | eFmtYUY2 | Y even    | U      | Y odd    | V        |
///
/// A row holds `width / 2` such groups, rounded down, and groups follow each other without a gap. At an odd width the last pixel
/// of a row is decoded from the group after the row's own ones, so that `yuv` holds the level with its width rounded up to 2.

namespace moktexture {

/// Encodes one RGBA8 slice and returns `width * height * 2`; 0 for a format that is neither eFmtUYVY nor eFmtYUY2, with nothing
/// written. The last pixel of an odd row is ignored, and fewer bytes are written than told.
int encodeYUV(const void* rgba, void* yuv, const std::uint32_t* width, const std::uint32_t* height, const std::uint32_t* format);

/// Decodes one slice to RGBA8 with alpha 255 and returns `width * height * 4`; 0 for another format, with nothing written.
int decodeYUV(const void* yuv, void* rgba, const std::uint32_t* width, const std::uint32_t* height, const std::uint32_t* format);

}  // namespace moktexture
