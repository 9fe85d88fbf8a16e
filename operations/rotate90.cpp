#include <algorithm>

#include "image_operations.h"
#include "operations/frame/operation_frame.h"
#include "operations/frame/whole_pixels.h"

namespace moktexture {
namespace {

CMOKTextureHeader rotatedHeader(const CMOKTextureHeader& header, EMOKTAxis axis) {
    CMOKTextureHeader rotated = header;
    const LevelSize size = levelSize(header, 0);
    if (axis == eAxisX) {
        rotated.setDepth(size.height);
        rotated.setHeight(size.depth);
    } else if (axis == eAxisY) {
        // Kept: the height takes the width, and nothing takes the height; callers know the size by that rule.
        rotated.setHeight(size.width);
    } else if (axis == eAxisZ) {
        rotated.setWidth(size.height);
        rotated.setHeight(size.width);
    }
    return rotated;
}

/// Pixels on the side of a tile: its rows, in the source and in the destination, stay in the cache while it is turned.
constexpr std::uint32_t tileSide = 16;

/// Part of a source slice.
struct Tile {
    std::uint32_t left;
    std::uint32_t top;
    std::uint32_t right;
    std::uint32_t bottom;
};

/// Turns a tile of a slice; the destination is `height` pixels wide.
template <typename Pixel>
void rotateTile(const Pixel* source, Pixel* destination, std::size_t width, std::size_t height, const Tile& tile, bool forward) {
    for (std::size_t x = tile.left; x < tile.right; ++x) {
        const Pixel* const column = source + x;
        if (forward) {
            Pixel* const lastOfRow = destination + (x + 1) * height - 1;
            for (std::size_t y = tile.top; y < tile.bottom; ++y)
                *(lastOfRow - y) = column[y * width];
        } else {
            Pixel* const row = destination + (width - x - 1) * height;
            for (std::size_t y = tile.top; y < tile.bottom; ++y)
                row[y] = column[y * width];
        }
    }
}

/// Turns each slice by a quarter. The slices of the destination are `size.height` wide and `size.width` high, at every level.
template <typename Pixel>
void rotateAboutZ(const Pixel* source, Pixel* destination, const LevelSize& size, bool forward) {
    const std::size_t sliceLength = std::size_t{size.width} * size.height;
    for (std::uint32_t z = 0; z < size.depth; ++z, source += sliceLength, destination += sliceLength) {
        for (std::uint32_t top = 0; top < size.height; top += tileSide) {
            for (std::uint32_t left = 0; left < size.width; left += tileSide) {
                const Tile tile = {left, top, std::min(left + tileSide, size.width), std::min(top + tileSide, size.height)};
                rotateTile(source, destination, size.width, size.height, tile, forward);
            }
        }
    }
}

template <typename Pixel>
bool rotateLevel(const Pixel* source, Pixel* destination, const LevelSize& size, EMOKTAxis axis, bool forward) {
    // Kept: only a rotation about Z moves pixels. About X and Y the result has the changed header and zeroed pixels, with
    // success, and about an unknown axis zeroed pixels with failure: a caller may count on the size and the flag, not on a
    // picture.
    if (axis == eAxisZ) rotateAboutZ(source, destination, size, forward);
    return axis <= eAxisZ;
}

}  // namespace

bool Rotate90(CMOKTexture& texture, EMOKTAxis axis, bool forward) {
    if (!isOperable(texture)) return false;
    const auto rotate = [&](const auto* source, auto* destination, const Subresource& piece) {
        return rotateLevel(wholePixels(source), wholePixels(destination), piece.size, axis, forward);
    };
    return rebuildLevels(texture, rotatedHeader(texture, axis), WalkedLevels::all, rotate);
}

}  // namespace moktexture
