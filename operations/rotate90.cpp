/// @file
/// Rotation by a quarter turn about Z, slice by slice.
///
/// A slice of W by H pixels becomes one of H by W. `forward` (clockwise) moves the pixel at (x, y) to (H-1-y, x), the other
/// direction moves it to (y, W-1-x):
///
///     A B C    forward    D A    backward    C F
///     D E F    ------>    E B    ------->    B E
///                         F C                A D
///
/// Reading along a row of one slice means going down a column of the other one, so that a plain loop over a large slice misses
/// the cache at every pixel of the strided side. The slice is therefore cut into square tiles, whose rows in both slices stay in
/// the cache while the tile is rotated. Every pixel is copied once.

#include <algorithm>

#include "image_operations.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

CMOKTextureHeader rotatedHeader(const CMOKTextureHeader& header, EMOKTAxis axis) {
    CMOKTextureHeader rotated = header;
    const LevelSize size = levelSize(header, 0);
    if (axis == eAxisX) {
        rotated.setDepth(size.height);
        rotated.setHeight(size.depth);
    } else if (axis == eAxisY) {
        // Kept (rotate-y-height-from-width): the height becomes the width, and no dimension takes the old height. Hosts that
        // rotate about Y allocate for the dimensions that this header then has.
        rotated.setHeight(size.width);
    } else if (axis == eAxisZ) {
        rotated.setWidth(size.height);
        rotated.setHeight(size.width);
    }
    return rotated;
}

/// Pixels on the side of a tile. A larger tile makes longer runs, but has more rows that must stay in the cache at once.
constexpr std::uint32_t tileSide = 16;

/// Part of a source slice, `right` and `bottom` excluded.
struct Tile {
    std::uint32_t slice;
    std::uint32_t left;
    std::uint32_t top;
    std::uint32_t right;
    std::uint32_t bottom;
};

template <typename Pixel>
void rotateTile(const LevelView<const Pixel>& source, const LevelView<Pixel>& destination, const Tile& tile, bool forward) {
    const std::size_t width = source.size.width;
    const std::size_t height = source.size.height;
    for (std::size_t x = tile.left; x < tile.right; ++x) {
        const Pixel* const column = source.pixel(x, 0, tile.slice);
        if (forward) {
            Pixel* const lastOfRow = destination.pixel(height - 1, x, tile.slice);
            for (std::size_t y = tile.top; y < tile.bottom; ++y)
                *(lastOfRow - y) = column[y * width];
        } else {
            Pixel* const row = destination.row(width - x - 1, tile.slice);
            for (std::size_t y = tile.top; y < tile.bottom; ++y)
                row[y] = column[y * width];
        }
    }
}

template <typename Pixel>
void rotateAboutZ(const LevelView<const Pixel>& source, const LevelView<Pixel>& destination, bool forward) {
    const LevelSize& size = source.size;
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        for (std::uint32_t top = 0; top < size.height; top += tileSide) {
            for (std::uint32_t left = 0; left < size.width; left += tileSide) {
                const Tile tile = {z, left, top, std::min(left + tileSide, size.width), std::min(top + tileSide, size.height)};
                rotateTile(source, destination, tile, forward);
            }
        }
    }
}

/// The destination has the dimensions of rotatedHeader() at the same level, and is zeroed.
template <typename Pixel>
bool rotateLevel(const LevelView<const Pixel>& source, const LevelView<Pixel>& destination, EMOKTAxis axis, bool forward) {
    // Kept (rotate-only-z-moves-pixels): about X and Y the result is true with changed dimensions and zeroed pixels, about an
    // unknown axis it is false with zeroed pixels. Hosts use rotations about X and Y for their change of dimensions and fill in
    // the pixels themselves.
    if (axis == eAxisZ) rotateAboutZ(source, destination, forward);
    return axis <= eAxisZ;
}

}  // namespace

bool Rotate90(CMOKTexture& texture, EMOKTAxis axis, bool forward) {
    if (!isOperable(texture)) return false;
    const auto rotate = [&](const auto& source, const auto& destination, const Subresource&) {
        return rotateLevel(wholePixels(source), wholePixels(destination), axis, forward);
    };
    return rebuildLevels(texture, rotatedHeader(texture, axis), VisitedLevels::all, rotate);
}

}  // namespace moktexture
