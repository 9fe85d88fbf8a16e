#pragma once

#include <cstddef>
#include <cstdint>

namespace moktexture {

/// Size of one MIP level in pixels.
struct LevelSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;

    std::size_t pixelCount() const { return std::size_t{width} * height * depth; }
    bool isEmpty() const { return width == 0 || height == 0 || depth == 0; }
};

inline bool operator==(const LevelSize& a, const LevelSize& b) {
    return a.width == b.width && a.height == b.height && a.depth == b.depth;
}

}  // namespace moktexture
