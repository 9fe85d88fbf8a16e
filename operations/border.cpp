#include <algorithm>
#include <cstdint>
#include <limits>

#include "image_operations.h"
#include "operations/frame/operation_frame.h"
#include "operations/frame/whole_pixels.h"

namespace moktexture {
namespace {

/// A zeroed level with an image inside, and the margins around it on both sides of each axis. A margin wider than the image
/// mirrors pixels that are not filled yet: they are zero, and lie within the level.
template <typename Pixel>
struct BorderedLevel {
    Pixel* pixels;
    LevelSize size;
    LevelSize image;
    LevelSize margin;

    Pixel* row(std::uint32_t y, std::uint32_t z) const { return pixels + (std::size_t{z} * size.height + y) * size.width; }
    /// Copies the image's width of one row to another.
    void copyRow(std::uint32_t fromY, std::uint32_t fromZ, std::uint32_t toY, std::uint32_t toZ) const {
        std::copy_n(row(fromY, fromZ) + margin.width, image.width, row(toY, toZ) + margin.width);
    }
    /// Copies the image's rows of one slice to another.
    void copySlice(std::uint32_t from, std::uint32_t to) const {
        for (std::uint32_t y = margin.height; y < margin.height + image.height; ++y)
            copyRow(y, from, y, to);
    }
};

template <typename Pixel>
void placeImage(const Pixel* image, const BorderedLevel<Pixel>& level) {
    for (std::uint32_t z = 0; z < level.image.depth; ++z) {
        for (std::uint32_t y = 0; y < level.image.height; ++y, image += level.image.width) {
            Pixel* const row = level.row(level.margin.height + y, level.margin.depth + z);
            std::copy_n(image, level.image.width, row + level.margin.width);
        }
    }
}

// Kept: the mirror in z takes the image's first slice as its axis, so that slice 0 stays zero, and on the far side it goes the
// other way: the upper margin stays zero, and slices before the image's last one take its zeroes. Volumes with a border look so.
template <typename Pixel>
void mirrorSlices(const BorderedLevel<Pixel>& level) {
    const std::uint32_t first = level.margin.depth;
    const std::uint32_t last = level.margin.depth + level.image.depth - 1;
    for (std::uint32_t k = 1; k < level.margin.depth; ++k)
        level.copySlice(first + k, first - k);
    for (std::uint32_t k = 1; k < level.margin.depth; ++k)
        level.copySlice(last + k, last - k);
}

/// Fills the rows above, then those below the image.
template <typename Pixel>
void mirrorRows(const BorderedLevel<Pixel>& level, std::uint32_t z) {
    const std::uint32_t first = level.margin.height;
    const std::uint32_t end = level.margin.height + level.image.height;
    for (std::uint32_t k = 0; k < level.margin.height; ++k)
        level.copyRow(first + k, z, first - 1 - k, z);
    for (std::uint32_t k = 0; k < level.margin.height; ++k)
        level.copyRow(end - 1 - k, z, end + k, z);
}

/// Fills the columns left, then those right of the image, in the rows of the margins too.
template <typename Pixel>
void mirrorColumns(const BorderedLevel<Pixel>& level, std::uint32_t z) {
    for (std::uint32_t y = 0; y < level.size.height; ++y) {
        Pixel* const first = level.row(y, z) + level.margin.width;
        Pixel* const end = first + level.image.width;
        std::reverse_copy(first, first + level.margin.width, first - level.margin.width);
        std::reverse_copy(end - level.margin.width, end, end);
    }
}

/// The new size is the image's and twice the margin on each axis.
template <typename Pixel>
bool borderLevel(const Pixel* image, Pixel* pixels, const LevelSize& size, const LevelSize& newSize) {
    const LevelSize margin = {(newSize.width - size.width) >> 1, (newSize.height - size.height) >> 1,
                              (newSize.depth - size.depth) >> 1};
    const BorderedLevel<Pixel> level = {pixels, newSize, size, margin};
    placeImage(image, level);
    mirrorSlices(level);
    for (std::uint32_t z = 0; z < newSize.depth; ++z) {
        mirrorRows(level, z);
        mirrorColumns(level, z);
    }
    return true;
}

/// Whether a size with a border on both sides still fits in 32 bits.
bool fitsWithBorder(std::uint32_t size, std::uint32_t border) {
    return std::uint64_t{size} + 2 * std::uint64_t{border} <= std::numeric_limits<std::uint32_t>::max();
}

}  // namespace

bool Border(CMOKTexture& texture, unsigned int borderX, unsigned int borderY, unsigned int borderZ) {
    if (!isOperable(texture)) return false;
    if (borderX == 0 && borderY == 0 && borderZ == 0) return true;
    const LevelSize size = levelSize(texture, 0);
    if (!fitsWithBorder(size.width, borderX) || !fitsWithBorder(size.height, borderY) || !fitsWithBorder(size.depth, borderZ))
        return false;

    const LevelSize newSize = {size.width + 2 * borderX, size.height + 2 * borderY, size.depth + 2 * borderZ};
    CMOKTextureHeader header = texture;
    header.setWidth(newSize.width);
    header.setHeight(newSize.height);
    header.setDepth(newSize.depth);
    header.setNumMIPLevels(1);
    header.setBorder(borderX, borderY, borderZ);
    return rebuildLevels(texture, header, WalkedLevels::first, [&](const auto* source, auto* destination, const Subresource&) {
        return borderLevel(wholePixels(source), wholePixels(destination), size, newSize);
    });
}

}  // namespace moktexture
