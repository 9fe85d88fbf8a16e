/// @file
/// Bleeding of visible colours into transparent pixels.
///
/// Every pixel of alpha 0 gets the mean colour of the visible pixels in the box of 9 by 9 by 9 pixels around it, clipped to the
/// level. Means are taken from a copy of the level, so that colours do not spread further within one call. The sums are defined
/// as float additions over the box by slices, then rows, then pixels:
///
///     for each pixel with alpha 0:
///         sums = 0, count = 0
///         for each visible pixel of its box: sums += its colour, count += 1
///         if count is not 0: colour = sums / count
///
/// The copy holds (r, g, b, 1) for a visible pixel and zeroes for another one, so that the inner loop adds without a test.
/// Adding these zeroes changes no float sum, since no sum is ever -0.
///
/// There are two forms. Both find the same means:
///
/// - By boxes: the loop above. Up to 81 additions per channel and pixel on a 2D level, 729 in a volume. For 32-bit and float
///   elements and for deep 16-bit volumes, whose float sums are rounded and therefore depend on the order of addition.
/// - By running sums, for 8- and 16-bit elements where (largest element) * (pixels of a box) is below 2 to the 24: every partial
///   float sum is then an integer that a float holds exactly, so that integer sums in any order give the same value. One sum per
///   column covers the rows of the box; a row of boxes slides over the columns:
///
///       for each slice z:
///           columns = sums over rows 0 to 4 of the slices z-4 to z+4
///           for each row y:
///               box = sum of columns 0 to 3
///               for each x: box += columns[x + 4]; store the mean if needed; box -= columns[x - 4]
///               columns += row y + 5; columns -= row y - 4
///
///   2 additions per channel for the box and 2 per slice of the box for the column, whatever the radius in x and y.
///
/// Memory: a copy of the level (as floats in the form by boxes), and 16 bytes for each column.

#include "operations/bleed.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <new>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// Indices within bleedRadius of an index on one axis: from `first` to before `end`.
struct IndexRange {
    std::uint32_t first;
    std::uint32_t end;
};

IndexRange rangeAround(std::uint32_t index, std::uint32_t size) {
    return {index - std::min(index, bleedRadius), std::min(index + bleedRadius + 1, size)};
}

/// Sums of red, green and blue over visible pixels, and the number of these.
template <typename Sum>
using ColourSums = std::array<Sum, channelsPerPixel>;

/// An uninitialised array, or null if there is no memory.
template <typename T>
std::unique_ptr<T[]> tryAllocate(std::size_t count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[count]);
}

// Kept (bleed-white-32-bit-is-0): a mean of white 32-bit elements is 2 to the 32 as a float, whose low 32 bits are 0, so that
// white bleeds black. Stored 32-bit .mok files have these values; asset builds compare against them.
template <typename T, typename Sum>
void storeMean(const ColourSums<Sum>& sums, T* pixel) {
    const float count = static_cast<float>(sums[3]);
    for (std::size_t c = 0; c < 3; ++c)
        pixel[c] = withCanonicalNaN(elementFromBounded<T>(static_cast<float>(sums[c]) / count));
}

/// Copies a level so that sums need not test alpha: the colours and 1 of a visible pixel, zeroes for another one. Null if there
/// is no memory.
template <typename Copy, typename T>
std::unique_ptr<Copy[]> tryCopyVisible(const LevelView<T>& level) {
    const std::size_t elementCount = level.size.pixelCount() * channelsPerPixel;
    auto copy = tryAllocate<Copy>(elementCount);
    if (copy == nullptr) return copy;
    for (std::size_t i = 0; i < elementCount; i += channelsPerPixel) {
        const bool isVisible = level.data[i + 3] != T{0};
        for (std::size_t c = 0; c < 3; ++c)
            copy[i + c] = isVisible ? static_cast<Copy>(level.data[i + c]) : Copy{0};
        copy[i + 3] = isVisible ? Copy{1} : Copy{0};
    }
    return copy;
}

ColourSums<float> sumBox(const LevelView<const float>& copy, std::uint32_t x, std::uint32_t y, std::uint32_t z) {
    const IndexRange slices = rangeAround(z, copy.size.depth);
    const IndexRange rows = rangeAround(y, copy.size.height);
    const IndexRange columns = rangeAround(x, copy.size.width);
    ColourSums<float> sums = {};
    for (std::uint32_t k = slices.first; k < slices.end; ++k) {
        for (std::uint32_t j = rows.first; j < rows.end; ++j) {
            const float* const row = copy.row(j, k);
            for (std::size_t i = columns.first; i < columns.end; ++i) {
                for (std::size_t c = 0; c < channelsPerPixel; ++c)
                    sums[c] += row[i * channelsPerPixel + c];
            }
        }
    }
    return sums;
}

/// bleedLevel() for any elements.
template <typename T>
bool bleedByBoxes(const LevelView<T>& level) {
    const auto copy = tryCopyVisible<float>(level);
    if (copy == nullptr) return false;
    const LevelView<const float> copyView = {copy.get(), level.size};
    T* pixel = level.data;
    for (std::uint32_t z = 0; z < level.size.depth; ++z) {
        for (std::uint32_t y = 0; y < level.size.height; ++y) {
            for (std::uint32_t x = 0; x < level.size.width; ++x, pixel += channelsPerPixel) {
                if (pixel[3] != T{0}) continue;
                const ColourSums<float> sums = sumBox(copyView, x, y, z);
                if (sums[3] != 0.0f) storeMean(sums, pixel);
            }
        }
    }
    return true;
}

/// For each column of a slice the sums over the rows and slices that the boxes of one row cover.
template <typename T>
class ColumnSums {
public:
    /// `visible` comes from tryCopyVisible(), `sums` has an entry for each column.
    ColumnSums(const LevelView<const T>& visible, ColourSums<std::uint32_t>* sums) : copy(visible), columns(sums) {}

    /// Starts with the boxes of row 0.
    void beginSlice(std::uint32_t z) {
        slices = rangeAround(z, copy.size.depth);
        std::fill_n(columns, copy.size.width, ColourSums<std::uint32_t>{});
        const IndexRange rows = rangeAround(0, copy.size.height);
        for (std::uint32_t y = rows.first; y < rows.end; ++y)
            applyRow(y, [](std::uint32_t sum, T element) { return sum + element; });
    }
    /// Moves from the boxes of row y to those of the next row.
    void advance(std::uint32_t y) {
        if (y + bleedRadius + 1 < copy.size.height)
            applyRow(y + bleedRadius + 1, [](std::uint32_t sum, T element) { return sum + element; });
        if (y >= bleedRadius) applyRow(y - bleedRadius, [](std::uint32_t sum, T element) { return sum - element; });
    }

private:
    template <typename Change>
    void applyRow(std::uint32_t y, Change change) {
        for (std::uint32_t z = slices.first; z < slices.end; ++z) {
            const T* pixel = copy.row(y, z);
            for (std::uint32_t x = 0; x < copy.size.width; ++x, pixel += channelsPerPixel) {
                for (std::size_t c = 0; c < channelsPerPixel; ++c)
                    columns[x][c] = change(columns[x][c], pixel[c]);
            }
        }
    }

    LevelView<const T> copy;
    ColourSums<std::uint32_t>* columns;
    IndexRange slices = {};
};

/// Bleeds into one row of the level.
template <typename T>
void bleedRow(T* row, std::uint32_t width, const ColourSums<std::uint32_t>* columns) {
    ColourSums<std::uint32_t> box = {};
    for (std::uint32_t x = 0; x < std::min(bleedRadius, width); ++x) {
        for (std::size_t c = 0; c < channelsPerPixel; ++c)
            box[c] += columns[x][c];
    }
    for (std::uint32_t x = 0; x < width; ++x, row += channelsPerPixel) {
        if (x + bleedRadius < width) {
            for (std::size_t c = 0; c < channelsPerPixel; ++c)
                box[c] += columns[x + bleedRadius][c];
        }
        if (row[3] == 0 && box[3] != 0) storeMean(box, row);
        if (x >= bleedRadius) {
            for (std::size_t c = 0; c < channelsPerPixel; ++c)
                box[c] -= columns[x - bleedRadius][c];
        }
    }
}

/// bleedLevel() where bleedsByRunningSums().
template <typename T>
bool bleedByRunningSums(const LevelView<T>& level) {
    const auto copy = tryCopyVisible<T>(level);
    const auto columns = tryAllocate<ColourSums<std::uint32_t>>(level.size.width);
    if (copy == nullptr || columns == nullptr) return false;
    ColumnSums<T> sums({copy.get(), level.size}, columns.get());
    for (std::uint32_t z = 0; z < level.size.depth; ++z) {
        sums.beginSlice(z);
        for (std::uint32_t y = 0; y < level.size.height; ++y) {
            bleedRow(level.row(y, z), level.size.width, columns.get());
            sums.advance(y);
        }
    }
    return true;
}

}  // namespace

template <typename T>
bool bleedsByRunningSums(const LevelSize& size) {
    if constexpr (sizeof(T) < sizeof(std::uint32_t)) {
        constexpr std::uint32_t side = 2 * bleedRadius + 1;
        const std::uint32_t boxPixels = std::min(size.width, side) * std::min(size.height, side) * std::min(size.depth, side);
        return std::numeric_limits<T>::max() * boxPixels < 1u << 24;
    } else {
        return false;
    }
}

template <typename T>
bool bleedLevel(const LevelView<T>& level) {
    if (level.data == nullptr) return false;
    if constexpr (sizeof(T) < sizeof(std::uint32_t)) {
        if (bleedsByRunningSums<T>(level.size)) return bleedByRunningSums(level);
    }
    return bleedByBoxes(level);
}

template bool bleedLevel(const LevelView<std::uint8_t>&);
template bool bleedLevel(const LevelView<std::uint16_t>&);
template bool bleedLevel(const LevelView<std::uint32_t>&);
template bool bleedLevel(const LevelView<float>&);
template bool bleedsByRunningSums<std::uint8_t>(const LevelSize&);
template bool bleedsByRunningSums<std::uint16_t>(const LevelSize&);

bool Bleed(CMOKTexture& texture) {
    return isOperable(texture) && processLevels(texture, [](const auto& level, const Subresource&) { return bleedLevel(level); });
}

}  // namespace moktexture
