#include <array>
#include <limits>

#include "moktc/fast/fast_kernels.h"
#include "moktc/fast/modulation_estimate.h"

namespace moktexture::moktc {
namespace {

/// One block of RGBA8 pixels, rows packed.
using Tile = std::array<std::uint8_t, blockArea2bpp * bytesPerPixel>;
using Weights = std::array<std::uint8_t, 4>;

constexpr std::uint32_t square(int value) {
    return static_cast<std::uint32_t>(value * value);
}

constexpr int channelOf(std::uint32_t pixel, std::uint32_t channel) {
    return static_cast<int>(pixel >> 8 * channel & 255);
}

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

/// The four channels of one pixel in the source and in the upscaled images.
struct PixelChannels {
    const std::uint8_t* source;
    const std::uint8_t* a;
    const std::uint8_t* b;

    PixelChannels(const BlockPixels& pixels, std::uint32_t x, std::uint32_t y) {
        const std::size_t offset = y * pixels.rowBytes + x * bytesPerPixel;
        source = pixels.source + offset;
        a = pixels.a + offset;
        b = pixels.b + offset;
    }

    int blend(std::uint32_t channel, int eighths) const { return ((b[channel] - a[channel]) * eighths + a[channel] * 8) >> 3; }
};

std::uint32_t squaredDistance(const std::uint8_t* pixel, const std::uint8_t* other) {
    std::uint32_t sum = 0;
    for (std::uint32_t channel = 0; channel < 4; ++channel)
        sum += square(pixel[channel] - other[channel]);
    return sum;
}

/// The index with the smallest error; `cutOut` is the one whose alpha is 0, or 4.
std::uint8_t nearestIndex(const PixelChannels& pixel, const Weights& weights, std::uint32_t cutOut) {
    std::uint32_t smallest = std::numeric_limits<std::uint32_t>::max();
    std::uint8_t nearest = 0;
    for (std::uint8_t index = 0; index < 4; ++index) {
        std::uint32_t error = 0;
        for (std::uint32_t channel = 0; channel < 4; ++channel) {
            const int candidate = index == cutOut && channel == 3 ? 0 : pixel.blend(channel, weights[index]);
            error += square(candidate - pixel.source[channel]);
        }
        if (error >= smallest) continue;
        smallest = error;
        nearest = index;
    }
    return nearest;
}

void computeNormalIndices(const BlockPixels& pixels, std::uint8_t* indices) {
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        indices[i] = nearestIndex({pixels, i % 4, i / 4}, indexWeights[0], 4);
}

void computePunchIndices(const BlockPixels& pixels, std::uint8_t* indices) {
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        indices[i] = nearestIndex({pixels, i % 4, i / 4}, indexWeights[1], punchThroughIndex);
}

void computeDirectIndices(const BlockPixels& pixels, std::uint8_t* indices) {
    for (std::uint32_t i = 0; i < blockArea2bpp; ++i) {
        const PixelChannels pixel(pixels, i % 8, i / 8);
        indices[i] = squaredDistance(pixel.source, pixel.a) < squaredDistance(pixel.source, pixel.b) ? 0 : 3;
    }
}

void computeSampleIndices(const BlockPixels& pixels, std::uint8_t* indices) {
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        for (std::uint32_t x = y % 2; x < 8; x += 2)
            indices[y * 8 + x] = nearestIndex({pixels, x, y}, indexWeights[0], 4);
    }
}

/// Blends a block as its decoder would. Values beyond a byte, which more than 8 eighths give, keep their low bits.
void decodeTrialTile(const BlockPixels& pixels, const std::uint8_t* eighths, std::uint32_t width, Tile& tile) {
    for (std::uint32_t i = 0; i < width * blockHeight; ++i) {
        const PixelChannels pixel(pixels, i % width, i / width);
        for (std::uint32_t channel = 0; channel < 4; ++channel)
            tile[i * bytesPerPixel + channel] = static_cast<std::uint8_t>(pixel.blend(channel, eighths[i]));
    }
}

std::uint32_t tileError(const BlockPixels& pixels, const Tile& tile, std::uint32_t width) {
    std::uint32_t error = 0;
    for (std::uint32_t i = 0; i < width * blockHeight; ++i)
        error += squaredDistance(&tile[i * bytesPerPixel], PixelChannels(pixels, i % width, i / width).source);
    return error;
}

std::uint32_t trialError4bpp(const BlockPixels& pixels, const std::uint8_t* indices, const Weights& weights) {
    // Kept: the trial blends the alpha of punch-through pixels like any other, so mode 1 is judged by an alpha that its cut-outs
    // will not have; the choice of modes, and so every encoded texture, rests on it.
    std::array<std::uint8_t, blockArea4bpp> eighths;
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        eighths[i] = weights[indices[i]];
    Tile tile;
    decodeTrialTile(pixels, eighths.data(), 4, tile);
    return tileError(pixels, tile, 4);
}

void chooseModulation4bpp(const BlockPixels& pixels, ModulationBlock4bpp& block) {
    computeNormalIndices(pixels, block.normalIndices);
    computePunchIndices(pixels, block.punchIndices);
    const std::uint32_t normalError = trialError4bpp(pixels, block.normalIndices, indexWeights[0]);
    const std::uint32_t punchError = trialError4bpp(pixels, block.punchIndices, indexWeights[1]);
    block.mode = block.modeWeights[0] * normalError > block.modeWeights[1] * punchError ? 1 : 0;
}

void chooseModulation2bpp(const BlockPixels& pixels, ModulationBlock2bpp& block) {
    computeDirectIndices(pixels, block.directIndices);
    computeSampleIndices(pixels, block.sampleIndices);
    std::uint32_t smallest = std::numeric_limits<std::uint32_t>::max();
    for (std::uint8_t mode = 0; mode < 4; ++mode) {
        std::array<std::uint8_t, blockArea2bpp> eighths;
        expandModulation(block, mode, eighths.data());
        Tile tile;
        decodeTrialTile(pixels, eighths.data(), 8, tile);
        const std::uint32_t error = block.modeWeights[mode] * tileError(pixels, tile, 8);
        if (error >= smallest) continue;
        smallest = error;
        block.mode = mode;
    }
}

// Every sum is exact in single precision: shares are eighths, pixels are bytes, and a block has 32 pixels at most.
void sumResiduals(const BlockPixels& pixels, const std::uint8_t* eighths, std::uint32_t width, ResidualSums& sums) {
    sums = {};
    for (std::uint32_t i = 0; i < width * blockHeight; ++i) {
        const PixelChannels pixel(pixels, i % width, i / width);
        const float t = static_cast<float>(eighths[i]) * 0.125f;
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

const FastKernels plainFastKernels = {
    "plain", findFurthest, fillCell<4>, fillCell<8>, chooseModulation4bpp, chooseModulation2bpp, sumResiduals};

}  // namespace moktexture::moktc
