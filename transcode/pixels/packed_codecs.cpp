#include "transcode/pixels/packed_codecs.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "compressed_format_id.h"

namespace moktexture {
namespace {

constexpr std::size_t bytesPerPixel = 4;
constexpr std::size_t bytesPerGroup = 4;

unsigned int isLight(const std::uint8_t* pixel) {
    return (pixel[0] + pixel[1] + pixel[2]) / 3 >= 128 ? 1u : 0u;
}

/// The byte of each value of a group, by format.
struct GroupOrder {
    std::uint32_t format;
    std::uint8_t yEven, u, yOdd, v;
};
// clang-format off
constexpr GroupOrder groupOrders[] = {
    // format  Y even  U  Y odd  V
    {eFmtUYVY,   1,    0,   3,   2},
    {eFmtYUY2,   0,    1,   2,   3},
};
// clang-format on

const GroupOrder* findGroupOrder(std::uint32_t format) {
    const auto* const found = std::ranges::find(groupOrders, format, &GroupOrder::format);
    return found == std::end(groupOrders) ? nullptr : found;
}

std::uint8_t byteFromSum(float sum) {
    if (!(sum > 0.0f)) return 0;
    return sum > 255.0f ? std::uint8_t{255} : static_cast<std::uint8_t>(sum);
}

float luma(const std::uint8_t* rgba) {
    return static_cast<float>(rgba[0]) * 0.257f + static_cast<float>(rgba[1]) * 0.504f + static_cast<float>(rgba[2]) * 0.098f +
           16.5f;
}

// Kept (chroma-is-not-averaged): U comes from the even pixel alone and V from the odd one. The bytes of every encoded eFmtUYVY
// and eFmtYUY2 texture depend on it.
void rgbPairToYUV(const std::uint8_t* even, const std::uint8_t* odd, const GroupOrder& order, std::uint8_t* group) {
    group[order.yEven] = byteFromSum(luma(even));
    group[order.yOdd] = byteFromSum(luma(odd));
    group[order.u] = byteFromSum(static_cast<float>(even[2]) * 0.439f -
                                 (static_cast<float>(even[0]) * 0.148f + static_cast<float>(even[1]) * 0.291f) + 128.5f);
    group[order.v] = byteFromSum(static_cast<float>(odd[0]) * 0.439f - static_cast<float>(odd[1]) * 0.368f -
                                 static_cast<float>(odd[2]) * 0.071f + 128.5f);
}

std::uint8_t byteFromFixedPoint(int sum) {
    return static_cast<std::uint8_t>(std::min(std::max(sum, 0) >> 8, 255));
}

void yuvToRGB(int y, int u, int v, std::uint8_t* rgba) {
    const int c = (y - 16) * 298, d = u - 128, e = v - 128;
    rgba[0] = byteFromFixedPoint(c + 409 * e + 128);
    rgba[1] = byteFromFixedPoint(c - 100 * d - 208 * e + 128);
    // Kept (blue-factor-517): one above the customary 516. Transcode() of eFmtUYVY and eFmtYUY2 to RGBA8 gives
    // the blue byte by it, 242 and not 241 for Y 50 and U 228, and hosts have stored such RGBA8 .mok files.
    rgba[2] = byteFromFixedPoint(c + 517 * d + 128);
    rgba[3] = 255;
}

}  // namespace

int encode1bpp(const void* rgba, void* bits, const std::uint32_t* width, const std::uint32_t* height) {
    // Kept (incomplete-byte-is-dropped): pixels of an incomplete last byte are dropped. Transcode() reports failure for such
    // levels, because their data size is rounded up to 8 pixels.
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

int encodeYUV(const void* rgba, void* yuv, const std::uint32_t* width, const std::uint32_t* height, const std::uint32_t* format) {
    const GroupOrder* const order = findGroupOrder(*format);
    if (order == nullptr) return 0;
    const std::size_t groups = *width / 2;
    auto* group = static_cast<std::uint8_t*>(yuv);
    for (std::size_t y = 0; y < *height; ++y) {
        const auto* pixel = static_cast<const std::uint8_t*>(rgba) + y * *width * bytesPerPixel;
        for (std::size_t i = 0; i < groups; ++i, pixel += 2 * bytesPerPixel, group += bytesPerGroup)
            rgbPairToYUV(pixel, pixel + bytesPerPixel, *order, group);
    }
    // Kept (odd-width-yuv-count): at an odd width fewer bytes were written. Transcode() compares this count with the data size,
    // which is rounded up to 2 pixels, and so reports failure.
    return static_cast<int>(*width * *height * 2);
}

int decodeYUV(const void* yuv, void* rgba, const std::uint32_t* width, const std::uint32_t* height, const std::uint32_t* format) {
    const GroupOrder* const order = findGroupOrder(*format);
    if (order == nullptr) return 0;
    const std::size_t pixels = std::size_t{*width} * *height;
    for (std::size_t y = 0; y < *height; ++y) {
        const auto* group = static_cast<const std::uint8_t*>(yuv) + (*width / 2) * y * bytesPerGroup;
        for (std::size_t x = 0; x < *width; x += 2, group += bytesPerGroup) {
            const std::size_t index = y * *width + x;
            std::uint8_t* const pixel = static_cast<std::uint8_t*>(rgba) + index * bytesPerPixel;
            yuvToRGB(group[order->yEven], group[order->u], group[order->v], pixel);
            // Kept (odd-width-yuv-overhang): at an odd width the second pixel of a row's last group is written to the first pixel
            // of the next row, which then overwrites it. That of the last row is dropped.
            if (index + 1 < pixels) yuvToRGB(group[order->yOdd], group[order->u], group[order->v], pixel + bytesPerPixel);
        }
    }
    return static_cast<int>(*width * *height * 4);
}

}  // namespace moktexture
