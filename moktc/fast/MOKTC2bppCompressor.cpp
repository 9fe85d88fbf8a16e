#include "moktc/fast/MOKTC2bppCompressor.h"

#include <algorithm>
#include <array>

#include "moktc/block/block_packing.h"
#include "moktc/fast/colour_fit.h"
#include "moktc/fast/modulation_estimate.h"

namespace moktexture::moktc {
namespace {

constexpr float share = 1.0f / blockArea2bpp;
constexpr float goodEnough = 128.0f;

}  // namespace

MOKTC2bppCompressor::MOKTC2bppCompressor(const void* pixels, std::uint32_t width, std::uint32_t height,
                                         const FastKernels& kernels)
    : MOKTCCompressor(pixels, width, height, moktc::blockWidth(true), moktc::blockHeight, kernels), m_blocks(m_colourA.size()) {}

void MOKTC2bppCompressor::initialise(bool) {
    // Kept: a wide footprint that is asked for is not used; start colours, and so every encoded texture, rest on it.
    initialiseColours(false);
    upscaleColours();
    updateModulationRegion(0, m_blocksX, 0, m_blocksY);
}

void MOKTC2bppCompressor::upscaleColours() {
    upscaleImage(m_kernels.fillCell2bpp, m_colourA, m_upscaledA);
    upscaleImage(m_kernels.fillCell2bpp, m_colourB, m_upscaledB);
}

void MOKTC2bppCompressor::updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) {
    for (std::uint32_t y = y0; y < y1; ++y) {
        for (std::uint32_t x = x0; x < x1; ++x)
            m_kernels.chooseModulation2bpp(pixelsOf(x, y), m_blocks[blockIndex(x, y)]);
    }
}

void MOKTC2bppCompressor::updateColours(std::size_t index, const BlockPixels& pixels) {
    const ModulationBlock2bpp& block = m_blocks[index];
    std::array<std::uint8_t, blockArea2bpp> eighths;
    expandModulation(block, block.mode, eighths.data());
    // The estimate goes beyond the whole on the block's rim; a share of colour B does not.
    for (std::uint8_t& value : eighths)
        value = std::min(value, std::uint8_t{8});
    ResidualSums sums;
    m_kernels.sumResiduals(pixels, eighths.data(), m_blockWidth, sums);
    fitColours(sums, share, goodEnough, m_colourA[index], m_colourB[index]);
}

Block MOKTC2bppCompressor::packModulation(std::size_t index) const {
    const ModulationBlock2bpp& block = m_blocks[index];
    if (block.mode == 0) return {packDirect(block.directIndices), 0};
    return {withSubMode(packSamples(block.sampleIndices), static_cast<SubMode>(block.mode)), modeBit};
}

}  // namespace moktexture::moktc
