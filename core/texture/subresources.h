#pragma once

#include <cstddef>
#include <cstdint>

#include "CMOKTextureHeader.h"

namespace moktexture {

/// Size of one MIP level in pixels.
struct LevelSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;

    std::size_t pixelCount() const { return std::size_t{width} * height * depth; }
    bool isEmpty() const { return width == 0 || height == 0 || depth == 0; }
    bool operator==(const LevelSize&) const = default;
};

inline LevelSize levelSize(const CMOKTextureHeader& header, std::uint32_t level) {
    return {header.getWidth(level), header.getHeight(level), header.getDepth(level)};
}

}  // namespace moktexture
