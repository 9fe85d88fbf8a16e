#include "transcode/pixels/dither.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "compressed_format_id.h"
#include "reference/dither_reference.h"
#include "support/test_images.h"

using namespace moktexture;

using Values = std::vector<std::uint8_t>;

TEST(Dither, ErrorGoesRightBelowAndLowerRight) {
    const struct {
        const char* what;
        std::uint8_t bits;
        unsigned int width, height, depth;
        Values before, after;
    } cases[] = {
        // clang-format off
        // what, bits, width, height, depth, before, after
        {"half goes right, truncated; the sum is clamped at 255", 5, 3, 1, 1, {10, 20, 255}, {8, 16, 255}},
        {"one bit is the top bit plus half of the value", 1, 2, 1, 1, {100, 200}, {50, 240}},
        {"a negative error is truncated toward zero", 1, 2, 1, 1, {201, 100}, {228, 43}},
        {"clamped at 0", 1, 2, 1, 1, {200, 7}, {228, 0}},
        {"in a single column a quarter goes below and the half is lost", 1, 1, 2, 1, {100, 100}, {50, 56}},
        {"all three shares", 1, 2, 2, 1, {100, 100, 100, 100}, {50, 62, 56, 205}},
        {"no error leaves a slice", 1, 1, 1, 2, {100, 100}, {50, 50}},
        {"each share is clamped before the next is added", 1, 2, 2, 1, {127, 0, 184, 250}, {63, 16, 228, 250}},
        {"no bits", 0, 2, 1, 1, {100, 200}, {100, 200}}, {"8 bits", 8, 2, 1, 1, {101, 203}, {101, 203}},
        // clang-format on
    };
    for (const auto& c : cases) {
        Values pixels, expected;
        for (std::size_t i = 0; i < c.before.size(); ++i) {
            pixels.insert(pixels.end(), {c.before[i], 77, 78, 79});
            expected.insert(expected.end(), {c.after[i], 77, 78, 79});
        }
        for (const auto dither : {ditherLevel, ditherLevelReference}) {
            Values dithered = pixels;
            dither(dithered.data(), PixelType('r', 0, 0, 0, c.bits, 0, 0, 0), c.width, c.height, c.depth);
            EXPECT_EQ(dithered, expected) << c.what;
        }
    }
}

TEST(Dither, RatesFollowTheLayoutOrTheFormatTable) {
    const std::map<std::uint64_t, DitherRates> cases = {
        // clang-format off
        {PixelType('a', 'b', 'g', 'r', 2, 10, 3, 4).id, {4, 3, 10, 2}}, {PixelType('l', 'a', 0, 0, 4, 3, 0, 0).id, {4, 4, 4, 3}},
        // The later position counts, also without bits; unknown letters count nowhere.
        {PixelType('r', 'i', 'x', 0, 5, 2, 3, 0).id, {2, 2, 2, 3}}, {PixelType('l', 'r', 'r', 0, 2, 5, 0, 0).id, {0, 2, 2, 0}},
        {PixelType('x', 'a', 'q', 'g', 3, 4, 5, 6).id, {0, 6, 0, 4}}, {eFmtETC1, {4, 4, 4, 4}}, {eFmtUnknown, {0, 0, 0, 0}},
        {0xFFFFFFFFu, {0, 0, 0, 0}},
        // clang-format on
    };
    for (const auto& [target, rates] : cases)
        EXPECT_EQ(ditherRates(PixelType(target)), rates) << std::hex << target;

    Values allRates;
    for (std::uint64_t number = 0; number < eFmtUnknown; ++number) {
        const DitherRates rates = ditherRates(PixelType(number));
        allRates.insert(allRates.end(), rates.begin(), rates.end());
    }
    EXPECT_EQ(testimages::digest(allRates), 10752368646626115781u);
}

TEST(Dither, EqualsTheReferenceForm) {
    const PixelType targets[] = {PixelType('r', 'g', 'b', 'a', 1, 2, 3, 4), PixelType('r', 'g', 'b', 'a', 5, 6, 7, 8),
                                 PixelType('a', 'l', 0, 0, 7, 1, 0, 0), eFmtDXT1, eFmtBW1bpp};
    testimages::Random random(7);
    for (int round = 0; round < 200; ++round) {
        const std::uint32_t width = 1 + random.below(33), height = 1 + random.below(17), depth = 1 + random.below(3);
        Values fast(std::size_t{width} * height * depth * 4);
        random.fill(fast);
        for (std::size_t i = 0; round % 2 == 0 && i < fast.size(); ++i)  // extremes, where the order of clamped sums shows
            fast[i] = static_cast<std::uint8_t>(fast[i] < 128 ? fast[i] % 8 : 255 - fast[i] % 8);
        Values expected = fast;
        const PixelType target = targets[static_cast<std::size_t>(round) % std::size(targets)];
        ditherLevel(fast.data(), target, width, height, depth);
        ditherLevelReference(expected.data(), target, width, height, depth);
        ASSERT_EQ(fast, expected) << width << " by " << height << " by " << depth;
    }
}
