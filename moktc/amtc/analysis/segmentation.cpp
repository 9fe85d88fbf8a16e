// Segmentation: connected smooth regions of a footprint.
//
// Problem   In an area without detail, neighbouring pixels that choose their modulation indices one by one get noise. The early
//           sweeps therefore let all pixels of a smooth region share one choice, which needs the regions.
// Idea      Flood fill. A pixel joins the region of its neighbour if its colour is close to that of the region's first pixel
//           (flat areas) or if the line through both is nearly straight at it (gradients, which drift away from the first pixel).
//
//     for each pixel: is its second difference along the row small? along the column?
//     for each pixel in raster order that has no label:
//         take the next label; push the pixel
//         until the stack is empty: pop a pixel; of its 8 neighbours without label, those that
//             lie in the same row and are straight along it, or
//             lie in the same column and are straight along it, or
//             are close in colour to the first pixel of the segment
//         get the label and are pushed
//
// It ends because a pixel is pushed once, when it gets its label. The cost is linear: each popped pixel looks at three rows,
// where a bit mask of the columns without label skips the others. The stack has a fixed size; nothing is allocated.

#include <algorithm>
#include <bit>

#include "moktc/amtc/analysis/footprint_analysis.h"

namespace moktexture::amtc {

namespace {

constexpr std::uint8_t unlabelled = 255;
/// The smallest squared distance over the four channels at which two colours are different, and a line is bent: one channel may
/// differ by 4. A larger value makes larger segments, which smooths more noise and also fine texture; the bytes depend on it.
constexpr std::uint32_t segmentDistance = 17;

/// Whether the line through three pixels is nearly straight at the middle one.
bool isStraight(std::uint32_t before, std::uint32_t centre, std::uint32_t after) {
    std::uint32_t sum = 0;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int bend = static_cast<int>(channelOf(before, channel)) - 2 * static_cast<int>(channelOf(centre, channel)) +
                         static_cast<int>(channelOf(after, channel));
        sum += static_cast<std::uint32_t>(bend * bend);
    }
    return sum < segmentDistance;
}

/// By pixel: 1 if the image is nearly straight there along the row, and along the column.
struct StraightFlags {
    FootprintMask horizontal, vertical;
};

/// A pixel on the border, whose second difference across the border is not defined, takes that flag from the next pixel inside.
void findStraightPixels(const Footprint& footprint, std::size_t width, std::size_t height, StraightFlags& flags) {
    for (std::size_t row = 0; row < height; ++row) {
        const std::size_t middleRow = std::clamp<std::size_t>(row, 1, height - 2);
        for (std::size_t column = 0; column < width; ++column) {
            const std::size_t pixel = row * width + column;
            const std::size_t alongRow = row * width + std::clamp<std::size_t>(column, 1, width - 2);
            const std::size_t alongColumn = middleRow * width + column;
            flags.horizontal[pixel] = isStraight(footprint[alongRow - 1], footprint[alongRow], footprint[alongRow + 1]);
            flags.vertical[pixel] =
                isStraight(footprint[alongColumn - width], footprint[alongColumn], footprint[alongColumn + width]);
        }
    }
}

struct PixelPosition {
    std::uint32_t row, column;
};

/// Receives each pixel at most once: it is pushed when it is labelled.
using PixelStack = std::array<PixelPosition, maxFootprintPixels>;

/// Labels the pixels of a footprint segment by segment.
struct Segmenter {
    const Footprint& footprint;
    const std::uint32_t width, height;
    const StraightFlags& flags;
    FootprintMask& labels;
    FootprintMask& order;
    PixelStack& stack;
    std::array<std::uint32_t, maxFootprintWidth> unlabelledColumns{};  ///< by row: a bit for each column without label
    std::size_t labelledCount = 0, stackSize = 0;

    void addPixel(PixelPosition position, std::uint8_t label) {
        const std::size_t pixel = position.row * width + position.column;
        unlabelledColumns[position.row] &= ~(1u << position.column);
        labels[pixel] = label;
        order[labelledCount++] = static_cast<std::uint8_t>(pixel);  // truncates at 1 bit per pixel, where nothing reads it
        stack[stackSize++] = position;
    }

    void addNeighbours(PixelPosition centre, std::uint32_t seedColour, std::uint8_t label) {
        const std::uint32_t besideColumns = 7u << centre.column >> 1;
        for (std::uint32_t row = centre.row == 0 ? 0 : centre.row - 1; row <= std::min(centre.row + 1, height - 1); ++row) {
            for (std::uint32_t open = unlabelledColumns[row] & besideColumns; open != 0; open &= open - 1) {
                const std::uint32_t column = static_cast<std::uint32_t>(std::countr_zero(open)), pixel = row * width + column;
                if ((row == centre.row && flags.horizontal[pixel] != 0) ||
                    (column == centre.column && flags.vertical[pixel] != 0) ||
                    squaredDistance(footprint[pixel], seedColour) < segmentDistance)
                    addPixel({row, column}, label);
            }
        }
    }

    void fillFrom(PixelPosition seed, std::uint8_t label) {
        const std::uint32_t seedColour = footprint[seed.row * width + seed.column];
        addPixel(seed, label);
        while (stackSize != 0)
            addNeighbours(stack[--stackSize], seedColour, label);
    }
};

}  // namespace

std::uint32_t SegmentFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, FootprintMask& labels,
                               FootprintMask& order) {
    StraightFlags flags;
    findStraightPixels(footprint, settings.footprintWidth, settings.footprintHeight, flags);
    labels.fill(unlabelled);
    PixelStack stack;
    Segmenter segmenter{footprint, settings.footprintWidth, settings.footprintHeight, flags, labels, order, stack};
    std::fill_n(segmenter.unlabelledColumns.begin(), settings.footprintHeight, (1u << settings.footprintWidth) - 1);
    std::uint32_t count = 0;
    for (std::uint32_t pixel = 0; pixel < settings.footprintPixels(); ++pixel) {
        if (labels[pixel] != unlabelled) continue;
        // The 289 pixels of 1 bit per pixel may form more segments than there are labels; the last ones share label 254.
        const std::uint8_t label = static_cast<std::uint8_t>(std::min(count, unlabelled - 1u));
        segmenter.fillFrom({pixel / settings.footprintWidth, pixel % settings.footprintWidth}, label);
        ++count;
    }
    return count;
}

}  // namespace moktexture::amtc
