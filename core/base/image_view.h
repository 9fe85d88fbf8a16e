#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// Views of RGBA8 images: four bytes per pixel, red first. A view does not own its pixels.

namespace moktexture {

inline constexpr std::size_t bytesPerRGBA8Pixel = 4;

template <class Byte>
struct BasicImageView {
    Byte* pixels;
    std::uint32_t width;   ///< in pixels
    std::uint32_t height;  ///< in pixels
    std::size_t rowBytes;  ///< from the start of a row to the start of the next one

    Byte* row(std::uint32_t y) const { return pixels + y * rowBytes; }
    Byte* pixel(std::uint32_t x, std::uint32_t y) const { return row(y) + x * bytesPerRGBA8Pixel; }
};

/// Pixels that can only be read.
using ConstImageView = BasicImageView<const std::uint8_t>;

/// Pixels that can be read and written.
struct ImageView : BasicImageView<std::uint8_t> {
    operator ConstImageView() const { return {pixels, width, height, rowBytes}; }
};

/// A view of pixels whose rows follow each other without a gap.
inline ConstImageView packedImage(const void* pixels, std::uint32_t width, std::uint32_t height) {
    return {static_cast<const std::uint8_t*>(pixels), width, height, width * bytesPerRGBA8Pixel};
}
inline ImageView packedImage(void* pixels, std::uint32_t width, std::uint32_t height) {
    return {{static_cast<std::uint8_t*>(pixels), width, height, width * bytesPerRGBA8Pixel}};
}

}  // namespace moktexture
