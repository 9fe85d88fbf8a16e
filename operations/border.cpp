/// @file
/// Border: a margin on both sides of each axis, filled with the mirror image.
///
/// The new level, N pixels long on an axis where the image has n, holds the image from `margin` = (N - n) / 2 on. Each step reads
/// what the steps before it wrote:
///
///     copy the image to the centre
///     mirror slices: the image's rows only; see mirrorSlices(), which is not a true mirror
///     for each slice:
///         mirror rows:    the image's columns only, up and down
///         mirror columns: in every row, so that the corners are mirrored in both directions
///
/// On an axis with 3 pixels A B C and a margin of 2 this gives B A A B C C B: the edge pixel is repeated. A margin wider than the
/// image reads margin pixels that are not written yet. They are 0, and no read leaves the level: the farthest one is 2 * margin
/// pixels from the start or from the end of the axis. The cost is that of copying the new level once.

#include <algorithm>
#include <cstdint>
#include <limits>

#include "image_operations.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// A zeroed level that holds an image in its centre.
template <typename Pixel>
struct BorderedLevel {
    LevelView<Pixel> level;
    LevelSize image;
    LevelSize margin;  ///< on each side

    /// Copies the columns that the image takes from one row to another.
    void copyRow(std::size_t fromY, std::size_t fromZ, std::size_t toY, std::size_t toZ) const {
        std::copy_n(level.pixel(margin.width, fromY, fromZ), image.width, level.pixel(margin.width, toY, toZ));
    }
    /// Copies the rows that the image takes from one slice to another.
    void copySlice(std::size_t from, std::size_t to) const {
        for (std::size_t y = margin.height; y < std::size_t{margin.height} + image.height; ++y)
            copyRow(y, from, y, to);
    }
};

template <typename Pixel>
void copyToCentre(const LevelView<const Pixel>& image, const BorderedLevel<Pixel>& bordered) {
    const LevelSize& margin = bordered.margin;
    for (std::uint32_t z = 0; z < image.size.depth; ++z) {
        for (std::uint32_t y = 0; y < image.size.height; ++y) {
            std::copy_n(image.row(y, z), image.size.width,
                        bordered.level.pixel(margin.width, margin.height + y, margin.depth + z));
        }
    }
}

// Kept (border-z-is-no-mirror): below the image the mirror's centre is the image's first slice, so that slice 0 stays zero; above
// it the copy goes the wrong way, so that the margin stays zero and zeroes overwrite the slices before the image's last one.
// Stored .mok volumes with a border in z have these slices, and asset builds compare new files with them byte for byte.
template <typename Pixel>
void mirrorSlices(const BorderedLevel<Pixel>& bordered) {
    const std::size_t first = bordered.margin.depth;
    const std::size_t last = first + bordered.image.depth - 1;
    for (std::size_t k = 1; k < bordered.margin.depth; ++k)
        bordered.copySlice(first + k, first - k);
    for (std::size_t k = 1; k < bordered.margin.depth; ++k)
        bordered.copySlice(last + k, last - k);
}

/// Fills the rows above and below the image.
template <typename Pixel>
void mirrorRows(const BorderedLevel<Pixel>& bordered, std::size_t z) {
    const std::size_t first = bordered.margin.height;
    const std::size_t end = first + bordered.image.height;
    for (std::size_t k = 0; k < bordered.margin.height; ++k)
        bordered.copyRow(first + k, z, first - 1 - k, z);
    for (std::size_t k = 0; k < bordered.margin.height; ++k)
        bordered.copyRow(end - 1 - k, z, end + k, z);
}

/// Fills the columns left and right of the image, in the margin's rows too.
template <typename Pixel>
void mirrorColumns(const BorderedLevel<Pixel>& bordered, std::size_t z) {
    const std::size_t margin = bordered.margin.width;
    for (std::size_t y = 0; y < bordered.level.size.height; ++y) {
        Pixel* const first = bordered.level.pixel(margin, y, z);
        Pixel* const end = first + bordered.image.width;
        std::reverse_copy(first, first + margin, first - margin);
        std::reverse_copy(end - margin, end, end);
    }
}

/// The destination's size is the image's and twice the margin on each axis; its pixels are 0.
template <typename Pixel>
bool borderLevel(const LevelView<const Pixel>& image, const LevelView<Pixel>& destination) {
    const LevelSize& size = destination.size;
    const LevelSize margin = {(size.width - image.size.width) >> 1, (size.height - image.size.height) >> 1,
                              (size.depth - image.size.depth) >> 1};
    const BorderedLevel<Pixel> bordered = {destination, image.size, margin};
    copyToCentre(image, bordered);
    mirrorSlices(bordered);
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        mirrorRows(bordered, z);
        mirrorColumns(bordered, z);
    }
    return true;
}

/// Whether a dimension with a border on both sides still fits in 32 bits.
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

    CMOKTextureHeader header = texture;
    header.setWidth(size.width + 2 * borderX);
    header.setHeight(size.height + 2 * borderY);
    header.setDepth(size.depth + 2 * borderZ);
    header.setNumMIPLevels(1);
    header.setBorder(borderX, borderY, borderZ);
    return rebuildLevels(texture, header, VisitedLevels::first,
                         [](const auto& image, const auto& destination, const Subresource&) {
                             return borderLevel(wholePixels(image), wholePixels(destination));
                         });
}

}  // namespace moktexture
