#include "transcode/pixels/one_bit.h"

#include <cstddef>
#include <cstring>

namespace moktexture {
namespace {

constexpr std::size_t bytesPerPixel = 4;

unsigned int isLight(const std::uint8_t* pixel) {
    return (pixel[0] + pixel[1] + pixel[2]) / 3 >= 128 ? 1u : 0u;
}

}  // namespace

int encode1bpp(const void* rgba, void* bits, const std::uint32_t* width, const std::uint32_t* height) {
    // Kept: pixels of an incomplete last byte are dropped, not coded beside clear bits; callers refuse textures of such levels.
    const std::uint32_t bytes = *width * *height >> 3;
    if (rgba == nullptr || bits == nullptr) return static_cast<int>(bytes);
    const auto* pixel = static_cast<const std::uint8_t*>(rgba);
    auto* const out = static_cast<std::uint8_t*>(bits);
    for (std::size_t i = 0; i < bytes; ++i) {
        unsigned int byte = 0;
        for (unsigned int bit = 0; bit < 8; ++bit, pixel += bytesPerPixel)
            byte |= isLight(pixel) << bit;
        out[i] = static_cast<std::uint8_t>(byte);
    }
    return static_cast<int>(bytes);
}

int decode1bpp(const void* bits, void* rgba, const std::uint32_t* width, const std::uint32_t* height) {
    const std::uint32_t pixels = *width * *height;
    if (bits == nullptr || rgba == nullptr) return static_cast<int>(pixels * 4);
    constexpr std::uint8_t black[] = {0, 0, 0, 255}, white[] = {255, 255, 255, 255};
    const auto* const in = static_cast<const std::uint8_t*>(bits);
    auto* out = static_cast<std::uint8_t*>(rgba);
    for (std::size_t i = 0; i < pixels; ++i, out += bytesPerPixel)
        std::memcpy(out, (in[i / 8] >> i % 8 & 1) != 0 ? white : black, bytesPerPixel);
    return static_cast<int>(pixels * 4);
}

}  // namespace moktexture
