#include "operations/bleed.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// Neighbours of an index on one axis: from `first` to before `end`.
struct Neighbours {
    std::uint32_t first;
    std::uint32_t end;
};

Neighbours neighboursOf(std::uint32_t index, std::uint32_t size) {
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

// Kept: a mean of white 32-bit elements is 2 to the 32 as a float, and its low bits are 0: white bleeds black there, as in the
// other operations that truncate.
template <typename T, typename Sum>
void storeMean(const ColourSums<Sum>& sums, T* pixel) {
    const float count = static_cast<float>(sums[3]);
    for (std::size_t c = 0; c < 3; ++c)
        pixel[c] = withPlainNaN(elementFromBounded<T>(static_cast<float>(sums[c]) / count));
}

/// Calls `add(pixel, sums)` for the pixels of a box: by slices, then rows, then pixels.
template <typename Copy, typename Add>
ColourSums<float> sumBox(const Copy* pixels, const LevelSize& size, std::uint32_t x, std::uint32_t y, std::uint32_t z, Add add) {
    const Neighbours slices = neighboursOf(z, size.depth);
    const Neighbours rows = neighboursOf(y, size.height);
    const Neighbours columns = neighboursOf(x, size.width);
    ColourSums<float> sums = {};
    for (std::uint32_t k = slices.first; k < slices.end; ++k) {
        for (std::uint32_t j = rows.first; j < rows.end; ++j) {
            const Copy* const row = pixels + (std::size_t{k} * size.height + j) * size.width * channelsPerPixel;
            for (std::size_t i = columns.first; i < columns.end; ++i)
                add(row + i * channelsPerPixel, sums);
        }
    }
    return sums;
}

/// Bleeds into a level from its copy, each box summed by itself.
template <typename T, typename Copy, typename Add>
void bleedByBoxes(T* data, const Copy* copy, const LevelSize& size, Add add) {
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        for (std::uint32_t y = 0; y < size.height; ++y) {
            for (std::uint32_t x = 0; x < size.width; ++x, data += channelsPerPixel) {
                if (data[3] != T{0}) continue;
                const ColourSums<float> sums = sumBox(copy, size, x, y, z, add);
                if (sums[3] != 0.0f) storeMean(sums, data);
            }
        }
    }
}

/// Copies a level so that sums need not ask for alpha: a visible pixel's colours and 1, zeroes for others.
template <typename T, typename Copy>
void copyCountable(const T* pixels, std::size_t pixelCount, Copy* copy) {
    for (std::size_t i = 0; i < pixelCount * channelsPerPixel; i += channelsPerPixel) {
        const bool isVisible = pixels[i + 3] != T{0};
        for (std::size_t c = 0; c < 3; ++c)
            copy[i + c] = isVisible ? static_cast<Copy>(pixels[i + c]) : Copy{0};
        copy[i + 3] = isVisible ? Copy{1} : Copy{0};
    }
}

/// bleedLevel() for any elements. The zeroes of invisible pixels change no sum, as none is ever -0.
template <typename T>
bool bleedLevelByBoxes(T* data, const LevelSize& size) {
    const auto copy = tryAllocate<float>(size.pixelCount() * channelsPerPixel);
    if (copy == nullptr) return false;
    copyCountable(data, size.pixelCount(), copy.get());
    bleedByBoxes(data, copy.get(), size, [](const float* pixel, ColourSums<float>& sums) {
        for (std::size_t c = 0; c < channelsPerPixel; ++c)
            sums[c] += pixel[c];
    });
    return true;
}

/// Sums over the part of each column that lies in the boxes of a row.
template <typename T>
class ColumnSums {
public:
    /// `countable` comes from copyCountable(), `sums` has an entry for each column.
    ColumnSums(const T* countable, const LevelSize& levelSize, ColourSums<std::uint32_t>* sums)
        : pixels(countable), size(levelSize), columns(sums) {}

    /// Begins with the boxes of row 0.
    void beginSlice(std::uint32_t z) {
        slices = neighboursOf(z, size.depth);
        std::fill_n(columns, size.width, ColourSums<std::uint32_t>{});
        const Neighbours rows = neighboursOf(0, size.height);
        for (std::uint32_t y = rows.first; y < rows.end; ++y)
            changeByRow(y, [](std::uint32_t sum, T element) { return sum + element; });
    }
    /// Moves on from the boxes of row y to those of the next.
    void advance(std::uint32_t y) {
        if (y + bleedRadius + 1 < size.height)
            changeByRow(y + bleedRadius + 1, [](std::uint32_t sum, T element) { return sum + element; });
        if (y >= bleedRadius) changeByRow(y - bleedRadius, [](std::uint32_t sum, T element) { return sum - element; });
    }

private:
    template <typename Change>
    void changeByRow(std::uint32_t y, Change change) {
        for (std::uint32_t z = slices.first; z < slices.end; ++z) {
            const T* row = pixels + (std::size_t{z} * size.height + y) * size.width * channelsPerPixel;
            for (std::uint32_t x = 0; x < size.width; ++x, row += channelsPerPixel) {
                for (std::size_t c = 0; c < channelsPerPixel; ++c)
                    columns[x][c] = change(columns[x][c], row[c]);
            }
        }
    }

    const T* pixels;
    LevelSize size;
    ColourSums<std::uint32_t>* columns;
    Neighbours slices = {};
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

/// bleedLevel() where the sums are exact.
template <typename T>
bool bleedLevelByRunningSums(T* data, const LevelSize& size) {
    const auto copy = tryAllocate<T>(size.pixelCount() * channelsPerPixel);
    const auto columns = tryAllocate<ColourSums<std::uint32_t>>(size.width);
    if (copy == nullptr || columns == nullptr) return false;
    copyCountable(data, size.pixelCount(), copy.get());
    ColumnSums<T> sums(copy.get(), size, columns.get());
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        sums.beginSlice(z);
        for (std::uint32_t y = 0; y < size.height; ++y, data += size.width * channelsPerPixel) {
            bleedRow(data, size.width, columns.get());
            sums.advance(y);
        }
    }
    return true;
}

}  // namespace

template <typename T>
bool bleedLevelPlain(T* data, std::uint32_t width, std::uint32_t height, std::uint32_t depth) {
    if (data == nullptr) return false;
    const LevelSize size = {width, height, depth};
    const std::size_t elementCount = size.pixelCount() * channelsPerPixel;
    const auto copy = tryAllocate<T>(elementCount);
    if (copy == nullptr) return false;
    std::copy_n(data, elementCount, copy.get());
    bleedByBoxes(data, copy.get(), size, [](const T* pixel, ColourSums<float>& sums) {
        if (pixel[3] == T{0}) return;
        for (std::size_t c = 0; c < 3; ++c)
            sums[c] += static_cast<float>(pixel[c]);
        sums[3] += 1.0f;
    });
    return true;
}

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
bool bleedLevel(T* data, std::uint32_t width, std::uint32_t height, std::uint32_t depth) {
    if (data == nullptr) return false;
    const LevelSize size = {width, height, depth};
    if constexpr (sizeof(T) < sizeof(std::uint32_t)) {
        if (bleedsByRunningSums<T>(size)) return bleedLevelByRunningSums(data, size);
    }
    return bleedLevelByBoxes(data, size);
}

template bool bleedLevel(std::uint8_t*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedLevel(std::uint16_t*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedLevel(std::uint32_t*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedLevel(float*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedLevelPlain(std::uint8_t*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedLevelPlain(std::uint16_t*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedLevelPlain(std::uint32_t*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedLevelPlain(float*, std::uint32_t, std::uint32_t, std::uint32_t);
template bool bleedsByRunningSums<std::uint8_t>(const LevelSize&);
template bool bleedsByRunningSums<std::uint16_t>(const LevelSize&);

bool Bleed(CMOKTexture& texture) {
    return isOperable(texture) && processLevels(texture, [](auto* pixels, const Subresource& piece) {
               return bleedLevel(pixels, piece.size.width, piece.size.height, piece.size.depth);
           });
}

}  // namespace moktexture
