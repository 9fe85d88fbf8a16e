#pragma once

#include <algorithm>

#include "etc1/etc1_block.h"
#include "support/test_images.h"

/// Blocks that strain the searches in different ways: noise, one colour, dark, bright, two colours, a ramp, halves apart,
/// extremes.
inline constexpr int sampleKinds = 8;

inline moktexture::etc1::BlockPixels sampleBlock(int kind, testimages::Random& random) {
    const auto below = [&](std::uint32_t limit) { return static_cast<int>(random.below(limit)); };
    const int base[] = {below(256), below(256), below(256)}, other[] = {below(256), below(256), below(256)};
    const int slope[] = {below(61) - 30, below(61) - 30, below(61) - 30};
    const bool isVertical = below(2) == 1;
    moktexture::etc1::BlockPixels block{};
    for (std::size_t place = 0; place < block.size(); ++place) {
        const int along = static_cast<int>(isVertical ? place / 4 : place % 4);
        const bool isOther = below(2) == 1;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const int b = base[channel], step = slope[channel], noise = below(256);
            const int values[] = {noise,
                                  b,
                                  noise / 12,
                                  255 - noise / 12,
                                  isOther ? b : other[channel],
                                  b + step * along / 2,
                                  b + (along < 2 ? 0 : 3 * step) + noise / 28,
                                  noise < 128 ? 0 : 255};
            block[place] |= static_cast<std::uint32_t>(std::clamp(values[kind], 0, 255)) << 8 * channel;
        }
    }
    return block;
}
