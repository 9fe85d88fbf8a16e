#include "moktc/fast/modulation_estimate.h"

namespace moktexture::moktc {
namespace {

constexpr std::uint32_t width = blockWidth(true), lastColumn = width - 1, lastRow = blockHeight - 1;

/// A block's samples as eighths.
struct Samples {
    const std::uint8_t* indices;

    std::uint32_t at(std::uint32_t x, std::uint32_t y) const { return indexWeights[0][indices[y * width + x]]; }
};

/// Mean of the neighbours that lie in the block.
std::uint32_t meanOfNeighbours(const Samples& samples, std::uint32_t x, std::uint32_t y) {
    std::uint32_t count = 0, sum = 0;
    const auto add = [&](std::uint32_t eighths) {
        ++count;
        sum += eighths;
    };
    if (y > 0) add(samples.at(x, y - 1));
    if (x > 0) add(samples.at(x - 1, y));
    if (y < lastRow) add(samples.at(x, y + 1));
    if (x < lastColumn) add(samples.at(x + 1, y));
    return (count / 2 + sum) / count;
}

// Kept: in modes 2 and 3 the axes are the other way round than in the decoder's sub-modes of these numbers, and on the block's
// rim the one neighbour gets the rounding constant without a division, which gives up to 10 eighths. The choice of modes, and so
// every encoded texture, rests on this estimate.

std::uint32_t meanOfColumn(const Samples& samples, std::uint32_t x, std::uint32_t y) {
    if (y == 0) return samples.at(x, y + 1) + 2;
    if (y == lastRow) return samples.at(x, y - 1) + 2;
    return (samples.at(x, y - 1) + samples.at(x, y + 1) + 2) / 2;
}

std::uint32_t meanOfRow(const Samples& samples, std::uint32_t x, std::uint32_t y) {
    if (x == 0) return samples.at(x + 1, y) + 1;
    if (x == lastColumn) return samples.at(x - 1, y) + 1;
    return (samples.at(x - 1, y) + samples.at(x + 1, y) + 1) / 2;
}

std::uint32_t estimateAt(const ModulationBlock2bpp& block, std::uint32_t mode, std::uint32_t x, std::uint32_t y) {
    if (mode == 0) return indexWeights[0][block.directIndices[y * width + x]];
    if (mode > 3) return 255;
    const Samples samples{block.sampleIndices};
    if ((x + y) % 2 == 0) return samples.at(x, y);
    if (mode == 1) return meanOfNeighbours(samples, x, y);
    return mode == 2 ? meanOfColumn(samples, x, y) : meanOfRow(samples, x, y);
}

}  // namespace

void expandModulation(const ModulationBlock2bpp& block, std::uint32_t mode, std::uint8_t* eighths) {
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        for (std::uint32_t x = 0; x < width; ++x)
            eighths[y * width + x] = static_cast<std::uint8_t>(estimateAt(block, mode, x, y));
    }
}

}  // namespace moktexture::moktc
