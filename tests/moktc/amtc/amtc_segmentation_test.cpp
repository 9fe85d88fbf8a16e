#include <gtest/gtest.h>

#include <algorithm>

#include "moktc/amtc/analysis/footprint_analysis.h"

namespace {

using namespace moktexture::amtc;

template <typename Painter>
Segments segment(const AmtcLevelSettings& settings, Painter painter) {
    Footprint footprint{};
    for (std::uint32_t i = 0; i < settings.footprintPixels(); ++i)
        footprint[i] = painter(i / settings.footprintWidth, i % settings.footprintWidth);
    Segments segments{};
    segments.count = SegmentFootprint(footprint, settings, segments.labels, segments.order);
    return segments;
}

const AmtcLevelSettings at4Bits = makeLevelSettings(64, 64, {Rate::fourBpp, Generation::first});

/// Four different colours in tiles of 2 by 2, so that no two adjacent pixels are alike.
std::uint32_t tile(std::uint32_t y, std::uint32_t x) {
    constexpr std::uint32_t colours[] = {0xff000000, 0xff0000ff, 0xff00ff00, 0xffff0000};
    return colours[2 * (y % 2) + x % 2];
}

std::uint32_t step(bool isBright) {
    return isBright ? 0xffffffff : 0xff000000;
}

}  // namespace

TEST(AmtcSegmentation, CountsConnectedSmoothRegions) {
    const struct {
        const char* what;
        std::uint32_t (*painter)(std::uint32_t y, std::uint32_t x);
        std::uint32_t count;  ///< at 4 bits per pixel: 9 by 9
    } cases[] = {
        {"no two adjacent pixels alike", tile, 81},
        {"a checkerboard, connected diagonally", [](auto y, auto x) { return step((x + y) % 2 == 0); }, 2},
        {"first column, which bends like its neighbour", [](auto y, auto x) { return step(x < 1 && y > 0); }, 2},
        {"last column", [](auto, auto x) { return step(x < 8); }, 2},
        {"first row", [](auto y, auto x) { return step(y < 1 && x > 0); }, 2},
        {"last row", [](auto y, auto) { return step(y < 8); }, 2},
        {"a line through the middle", [](auto, auto x) { return step(x != 4); }, 3},
        {"a steep ramp along columns", [](auto y, auto) { return 25 * y << 24; }, 1},
        {"squared distance of 16 from the seed", [](auto y, auto x) { return (x + y) % 2 * 4; }, 1},
        {"squared distance of 17 from the seed", [](auto y, auto x) { return (x + y) % 2 * 0x0104; }, 2},
        // Ramps along the rows whose slope changes at column 4, by less and by more than the threshold.
        {"a bend of 4", [](auto, auto x) { return 100 + 10 * x + (x > 4 ? 4 * (x - 4) : 0); }, 1},
        {"a bend of 5", [](auto, auto x) { return 100 + 10 * x + (x > 4 ? 5 * (x - 4) : 0); }, 2},
        // The first pixel of the next row is no neighbour of the last one.
        {"ends of rows", [](auto y, auto x) { return (y == 2 && x == 8) || (y == 3 && x == 0) ? 0x80808080u : tile(y, x); }, 81},
    };
    for (const auto& c : cases)
        EXPECT_EQ(segment(at4Bits, c.painter).count, c.count) << c.what;
}

TEST(AmtcSegmentation, FillsFromAStackRowByRowAndSegmentBySegment) {
    // A column divides the footprint; segments are in the order of their seeds.
    const Segments segments = segment(at4Bits, [](auto, auto x) { return step(x != 4); });
    constexpr std::uint8_t labels[] = {0, 0, 0, 0, 1, 2, 2, 2, 2, 0},
                           start[] = {0, 1, 9, 10, 2, 11, 18, 19, 20, 12, 21, 28, 29, 30};
    constexpr std::uint8_t further[] = {4, 13, 22, 31, 40, 49, 58, 67, 76, 5, 6, 14, 15};
    EXPECT_TRUE(std::equal(std::begin(labels), std::end(labels), segments.labels.begin()));
    EXPECT_TRUE(std::equal(std::begin(start), std::end(start), segments.order.begin()));
    EXPECT_TRUE(std::equal(std::begin(further), std::end(further), segments.order.begin() + 36));
}

TEST(AmtcSegmentation, SharesTheLastLabelWhereLabelsRunOut) {
    const Segments segments = segment(makeLevelSettings(64, 64, {oneBpp, Generation::first}), tile);
    EXPECT_EQ(segments.count, 289u);
    EXPECT_EQ(segments.labels[288], 254);
}
