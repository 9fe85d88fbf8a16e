#include "moktc/amtc/analysis/segmentation.h"

#include <algorithm>
#include <bit>

namespace moktexture::amtc {

namespace {

constexpr std::uint8_t unlabelled = 255;
/// Two colours, or a line's bend, this far apart do not belong together.
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

/// By pixel: whether its line is smooth along its row and along its column.
struct SmoothFlags {
    FootprintMask horizontal, vertical;
};

/// The pixels of the border take the flag of the pixel next to them across it.
void findSmoothPixels(const Footprint& footprint, std::size_t width, std::size_t height, SmoothFlags& flags) {
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

/// A pixel gets there once, when it is labelled.
using PixelStack = std::array<PixelPosition, mostFootprintPixels>;

/// Labels the pixels of a footprint segment by segment.
struct Segmenter {
    const Footprint& footprint;
    const std::uint32_t width, height;
    const SmoothFlags& flags;
    FootprintMask& labels;
    FootprintMask& order;
    PixelStack& stack;
    std::array<std::uint32_t, mostFootprintWidth> openColumns{};  // by row: a bit for each column without a label yet
    std::size_t labelledCount = 0, stackSize = 0;

    void take(PixelPosition position, std::uint8_t label) {
        const std::size_t pixel = position.row * width + position.column;
        openColumns[position.row] &= ~(1u << position.column);
        labels[pixel] = label;
        order[labelledCount++] = static_cast<std::uint8_t>(pixel);  // wraps at 1 bit per pixel, where nothing reads it
        stack[stackSize++] = position;
    }

    void takeNeighbours(PixelPosition centre, std::uint32_t seedColour, std::uint8_t label) {
        const std::uint32_t besideColumns = 7u << centre.column >> 1;
        for (std::uint32_t row = centre.row == 0 ? 0 : centre.row - 1; row <= std::min(centre.row + 1, height - 1); ++row) {
            for (std::uint32_t open = openColumns[row] & besideColumns; open != 0; open &= open - 1) {
                const std::uint32_t column = static_cast<std::uint32_t>(std::countr_zero(open)), pixel = row * width + column;
                if ((row == centre.row && flags.horizontal[pixel] != 0) ||
                    (column == centre.column && flags.vertical[pixel] != 0) ||
                    squaredDistance(footprint[pixel], seedColour) < segmentDistance)
                    take({row, column}, label);
            }
        }
    }

    void fillFrom(PixelPosition seed, std::uint8_t label) {
        const std::uint32_t seedColour = footprint[seed.row * width + seed.column];
        take(seed, label);
        while (stackSize != 0)
            takeNeighbours(stack[--stackSize], seedColour, label);
    }
};

}  // namespace

std::uint32_t SegmentFootprint(const Footprint& footprint, const AmtcLevelSettings& settings, FootprintMask& labels,
                               FootprintMask& order) {
    SmoothFlags flags;
    findSmoothPixels(footprint, settings.footprintWidth, settings.footprintHeight, flags);
    labels.fill(unlabelled);
    PixelStack stack;
    Segmenter segmenter{footprint, settings.footprintWidth, settings.footprintHeight, flags, labels, order, stack};
    std::fill_n(segmenter.openColumns.begin(), settings.footprintHeight, (1u << settings.footprintWidth) - 1);
    std::uint32_t count = 0;
    for (std::uint32_t pixel = 0; pixel < settings.footprintPixels(); ++pixel) {
        if (labels[pixel] != unlabelled) continue;
        // The 289 pixels of 1 bit per pixel may be more segments than there are labels; the last ones share one.
        const std::uint8_t label = static_cast<std::uint8_t>(std::min(count, unlabelled - 1u));
        segmenter.fillFrom({pixel / settings.footprintWidth, pixel % settings.footprintWidth}, label);
        ++count;
    }
    return count;
}

}  // namespace moktexture::amtc
