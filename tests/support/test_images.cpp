#include "support/test_images.h"

#include <algorithm>

namespace testimages {
namespace {

struct Pixel {
    std::uint32_t r, g, b, a;
};

Pixel gradientPixel(std::uint32_t x, std::uint32_t y, std::uint32_t width, std::uint32_t height) {
    return {255 * x / width, 255 * y / height, 255 * (x + y) / (width + height), 255};
}

/// Distance from the middle, 0 there and 256 at the nearer edge's middle.
std::uint32_t radius(std::uint32_t x, std::uint32_t y, std::uint32_t width, std::uint32_t height) {
    const std::int64_t dx = (2 * std::int64_t{x} - width) * 256 / width;
    const std::int64_t dy = (2 * std::int64_t{y} - height) * 256 / height;
    return static_cast<std::uint32_t>((dx * dx + dy * dy) / 256);
}

Pixel pixelOf(Kind kind, std::uint32_t x, std::uint32_t y, std::uint32_t width, std::uint32_t height, std::uint64_t seed,
              Random& random) {
    Pixel pixel = gradientPixel(x, y, width, height);
    switch (kind) {
        case Kind::gradient:
            break;
        case Kind::noise:
            pixel = {random.below(256), random.below(256), random.below(256), random.below(256)};
            break;
        case Kind::edges: {
            const std::uint32_t tile = (x / 7 * 31 + y / 5 * 17 + static_cast<std::uint32_t>(seed)) * 2654435761u;
            pixel = {tile >> 24, tile >> 16 & 255, tile >> 8 & 255, 255};
            break;
        }
        case Kind::text: {
            const bool ink = (x * 5 + y / 9 * 3 + seed) % 11 < 2 && y % 9 < 6;
            const std::uint32_t ground = 235 + random.below(12);
            pixel = ink ? Pixel{20, 24, 40, 255} : Pixel{ground, ground, ground - 8, 255};
            break;
        }
        case Kind::cutOut:
            pixel.a = radius(x, y, width, height) < 200 ? 255 : 0;
            break;
        case Kind::softAlpha:
            pixel.a = 255 - std::min(radius(x, y, width, height), 255u);
            break;
    }
    return pixel;
}

}  // namespace

std::string nameOf(Kind kind) {
    constexpr const char* names[] = {"gradient", "noise", "edges", "text", "cutOut", "softAlpha"};
    return names[static_cast<int>(kind)];
}

std::vector<std::uint8_t> make(Kind kind, std::uint32_t width, std::uint32_t height, std::uint64_t seed) {
    Random random(seed);
    std::vector<std::uint8_t> image;
    image.reserve(std::size_t{4} * width * height);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const Pixel pixel = pixelOf(kind, x, y, width, height, seed, random);
            for (const std::uint32_t value : {pixel.r, pixel.g, pixel.b, pixel.a})
                image.push_back(static_cast<std::uint8_t>(value));
        }
    }
    return image;
}

std::vector<std::uint8_t> randomBytes(std::size_t count, std::uint64_t seed) {
    std::vector<std::uint8_t> bytes(count);
    Random(seed).fill(bytes);
    return bytes;
}

std::uint64_t digest(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0xCBF29CE484222325u;
    for (const std::uint8_t byte : bytes)
        value = (value ^ byte) * 0x100000001B3u;
    return value;
}

}  // namespace testimages
