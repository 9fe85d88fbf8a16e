#include <array>
#include <limits>

#include "core/base/image_view.h"
#include "moktc/fast/fast_kernels.h"

namespace moktexture::moktc {
namespace {

/// One block of RGBA8 pixels, rows packed.
using Tile = std::array<std::uint8_t, blockArea2bpp * bytesPerRGBA8Pixel>;
/// Interpolation weight of each 2-bit index.
using IndexWeights = std::array<std::uint8_t, 4>;

constexpr std::uint32_t noIndex = 4;

constexpr std::uint32_t square(int value) {
    return static_cast<std::uint32_t>(value * value);
}

constexpr int channelOf(std::uint32_t pixel, std::uint32_t channel) {
    return static_cast<int>(pixel >> 8 * channel & 255);
}

// Start colours

std::uint32_t squaredDistance(std::uint32_t pixel, std::uint32_t other) {
    std::uint32_t sum = 0;
    for (std::uint32_t channel = 0; channel < 4; ++channel)
        sum += square(channelOf(pixel, channel) - channelOf(other, channel));
    return sum;
}

void findFurthest(const std::uint32_t* pixels, std::uint32_t count, std::uint32_t& first, std::uint32_t& second) {
    std::uint32_t greatest = 0;
    first = second = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        for (std::uint32_t j = i + 1; j < count; ++j) {
            const std::uint32_t distance = squaredDistance(pixels[i], pixels[j]);
            if (distance <= greatest) continue;
            greatest = distance;
            first = i;
            second = j;
        }
    }
}

// Upscale

template <int width>
void fillCell(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell) {
    constexpr int height = static_cast<int>(blockHeight);
    for (int dy = 0; dy < height; ++dy) {
        for (int dx = 0; dx < width; ++dx) {
            for (std::uint32_t channel = 0; channel < 4; ++channel) {
                const int top = (width - dx) * channelOf(p, channel) + dx * channelOf(q, channel);
                const int bottom = (width - dx) * channelOf(r, channel) + dx * channelOf(s, channel);
                *cell++ = static_cast<std::uint8_t>(((height - dy) * top + dy * bottom) / (width * height));
            }
        }
    }
}

// Estimate of the weights at 2 bpp

constexpr std::uint32_t width2bpp = blockWidth(Rate::twoBpp), lastColumn = width2bpp - 1, lastRow = blockHeight - 1;

/// The weights of a 2 bpp block's samples.
struct SampleWeights {
    const std::uint8_t* indices;

    std::uint32_t at(std::uint32_t x, std::uint32_t y) const { return indexWeights[0][indices[y * width2bpp + x]]; }
};

/// Mean of the neighbours inside the block.
std::uint32_t meanOfNeighbours(const SampleWeights& samples, std::uint32_t x, std::uint32_t y) {
    std::uint32_t count = 0, sum = 0;
    const auto add = [&](std::uint32_t weight) {
        ++count;
        sum += weight;
    };
    if (y > 0) add(samples.at(x, y - 1));
    if (x > 0) add(samples.at(x - 1, y));
    if (y < lastRow) add(samples.at(x, y + 1));
    if (x < lastColumn) add(samples.at(x + 1, y));
    return (count / 2 + sum) / count;
}

// Kept (estimate-swaps-sub-modes): modes 2 and 3 are estimated along the other axis than the decoder's sub-modes of these
// numbers, and a pixel at the block's edge with one neighbour gets the rounding constant without the division, which gives
// weights up to 10. The modes of every 2 bpp texture encoded at quality 0, and so its bytes, depend on this estimate.

std::uint32_t meanOfColumn(const SampleWeights& samples, std::uint32_t x, std::uint32_t y) {
    if (y == 0) return samples.at(x, y + 1) + 2;
    if (y == lastRow) return samples.at(x, y - 1) + 2;
    return (samples.at(x, y - 1) + samples.at(x, y + 1) + 2) / 2;
}

std::uint32_t meanOfRow(const SampleWeights& samples, std::uint32_t x, std::uint32_t y) {
    if (x == 0) return samples.at(x + 1, y) + 1;
    if (x == lastColumn) return samples.at(x - 1, y) + 1;
    return (samples.at(x - 1, y) + samples.at(x + 1, y) + 1) / 2;
}

std::uint32_t estimateAt(const ModulationBlock2bpp& block, std::uint32_t mode, std::uint32_t x, std::uint32_t y) {
    if (mode == 0) return indexWeights[0][block.directIndices[y * width2bpp + x]];
    if (mode > 3) return 255;
    const SampleWeights samples{block.sampleIndices};
    if ((x + y) % 2 == 0) return samples.at(x, y);
    if (mode == 1) return meanOfNeighbours(samples, x, y);
    return mode == 2 ? meanOfColumn(samples, x, y) : meanOfRow(samples, x, y);
}

}  // namespace

void expandModulation(const ModulationBlock2bpp& block, std::uint32_t mode, std::uint8_t* weights) {
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        for (std::uint32_t x = 0; x < width2bpp; ++x)
            weights[y * width2bpp + x] = static_cast<std::uint8_t>(estimateAt(block, mode, x, y));
    }
}

namespace {

// Modulation

/// One pixel of a block in the source and in both upscaled images.
struct PixelChannels {
    const std::uint8_t* source;
    const std::uint8_t* a;
    const std::uint8_t* b;

    PixelChannels(const BlockImages& images, std::uint32_t x, std::uint32_t y) {
        const std::size_t offset = y * images.rowBytes + x * bytesPerRGBA8Pixel;
        source = images.source + offset;
        a = images.a + offset;
        b = images.b + offset;
    }

    int blend(std::uint32_t channel, int weight) const { return ((b[channel] - a[channel]) * weight + a[channel] * 8) >> 3; }
};

std::uint32_t squaredDistance(const std::uint8_t* pixel, const std::uint8_t* other) {
    std::uint32_t sum = 0;
    for (std::uint32_t channel = 0; channel < 4; ++channel)
        sum += square(pixel[channel] - other[channel]);
    return sum;
}

/// The index with the smallest error. `transparentIndex` is the index whose alpha is 0, or `noIndex`.
std::uint8_t nearestIndex(const PixelChannels& pixel, const IndexWeights& weightOf, std::uint32_t transparentIndex) {
    std::uint32_t smallest = std::numeric_limits<std::uint32_t>::max();
    std::uint8_t nearest = 0;
    for (std::uint8_t index = 0; index < 4; ++index) {
        std::uint32_t error = 0;
        for (std::uint32_t channel = 0; channel < 4; ++channel) {
            const int candidate = index == transparentIndex && channel == 3 ? 0 : pixel.blend(channel, weightOf[index]);
            error += square(candidate - pixel.source[channel]);
        }
        if (error >= smallest) continue;
        smallest = error;
        nearest = index;
    }
    return nearest;
}

void computeNormalIndices(const BlockImages& images, std::uint8_t* indices) {
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        indices[i] = nearestIndex({images, i % 4, i / 4}, indexWeights[0], noIndex);
}

void computePunchIndices(const BlockImages& images, std::uint8_t* indices) {
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        indices[i] = nearestIndex({images, i % 4, i / 4}, indexWeights[1], punchThroughIndex);
}

void computeDirectIndices(const BlockImages& images, std::uint8_t* indices) {
    for (std::uint32_t i = 0; i < blockArea2bpp; ++i) {
        const PixelChannels pixel(images, i % 8, i / 8);
        indices[i] = squaredDistance(pixel.source, pixel.a) < squaredDistance(pixel.source, pixel.b) ? 0 : 3;
    }
}

void computeSampleIndices(const BlockImages& images, std::uint8_t* indices) {
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        for (std::uint32_t x = y % 2; x < 8; x += 2)
            indices[y * 8 + x] = nearestIndex({images, x, y}, indexWeights[0], noIndex);
    }
}

/// Blends a block by its weights. A value outside a byte, which a weight above 8 can give, keeps its low bits.
void decodeTrialTile(const BlockImages& images, const std::uint8_t* weights, std::uint32_t width, Tile& tile) {
    for (std::uint32_t i = 0; i < width * blockHeight; ++i) {
        const PixelChannels pixel(images, i % width, i / width);
        for (std::uint32_t channel = 0; channel < 4; ++channel)
            tile[i * bytesPerRGBA8Pixel + channel] = static_cast<std::uint8_t>(pixel.blend(channel, weights[i]));
    }
}

std::uint32_t tileError(const BlockImages& images, const Tile& tile, std::uint32_t width) {
    std::uint32_t error = 0;
    for (std::uint32_t i = 0; i < width * blockHeight; ++i)
        error += squaredDistance(&tile[i * bytesPerRGBA8Pixel], PixelChannels(images, i % width, i / width).source);
    return error;
}

std::uint32_t trialError4bpp(const BlockImages& images, const std::uint8_t* indices, const IndexWeights& weightOf) {
    // Kept (trial-blends-punch-through-alpha): the trial blends the alpha of punch-through pixels like any other channel, though
    // the decoder makes it 0, so that mode 1 is compared by an error that the decoded pixels do not have. The modes of every
    // cut-out texture encoded at quality 0, and so its bytes, depend on it.
    std::array<std::uint8_t, blockArea4bpp> weights;
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        weights[i] = weightOf[indices[i]];
    Tile tile;
    decodeTrialTile(images, weights.data(), 4, tile);
    return tileError(images, tile, 4);
}

void chooseModulation4bpp(const BlockImages& images, ModulationBlock4bpp& block) {
    computeNormalIndices(images, block.normalIndices);
    computePunchIndices(images, block.punchIndices);
    const std::uint32_t normalError = trialError4bpp(images, block.normalIndices, indexWeights[0]);
    const std::uint32_t punchError = trialError4bpp(images, block.punchIndices, indexWeights[1]);
    block.mode = block.modeWeights[0] * normalError > block.modeWeights[1] * punchError ? 1 : 0;
}

void chooseModulation2bpp(const BlockImages& images, ModulationBlock2bpp& block) {
    computeDirectIndices(images, block.directIndices);
    computeSampleIndices(images, block.sampleIndices);
    std::uint32_t smallest = std::numeric_limits<std::uint32_t>::max();
    for (std::uint8_t mode = 0; mode < 4; ++mode) {
        std::array<std::uint8_t, blockArea2bpp> weights;
        expandModulation(block, mode, weights.data());
        Tile tile;
        decodeTrialTile(images, weights.data(), 8, tile);
        const std::uint32_t error = block.modeWeights[mode] * tileError(images, tile, 8);
        if (error >= smallest) continue;
        smallest = error;
        block.mode = mode;
    }
}

// Residuals

// Every sum is exact in single precision: weights are multiples of 1/8, channels are bytes, and a block has 32 pixels at most.
void sumResiduals(const BlockImages& images, const std::uint8_t* weights, std::uint32_t width, ResidualSums& sums) {
    sums = {};
    for (std::uint32_t i = 0; i < width * blockHeight; ++i) {
        const PixelChannels pixel(images, i % width, i / width);
        const float t = static_cast<float>(weights[i]) * 0.125f;
        sums.t += t;
        sums.t2 += t * t;
        for (std::uint32_t channel = 0; channel < 4; ++channel) {
            const float residual = static_cast<float>(pixel.source[channel]) - static_cast<float>(pixel.a[channel]) * (1.0f - t) -
                                   static_cast<float>(pixel.b[channel]) * t;
            sums.e[channel] += residual;
            sums.et[channel] += residual * t;
        }
    }
}

}  // namespace

const FastKernels scalarFastKernels = {
    "scalar", findFurthest, fillCell<4>, fillCell<8>, chooseModulation4bpp, chooseModulation2bpp, sumResiduals};

}  // namespace moktexture::moktc
