#include "moktc/fast/MOKTC4bppCompressor.h"

#include <array>

#include "moktc/block/block_packing.h"
#include "moktc/fast/colour_fit.h"

namespace moktexture::moktc {
namespace {

constexpr float share = 1.0f / blockArea4bpp;
constexpr float goodEnough = 32.0f;

const std::uint8_t* indicesOf(const ModulationBlock4bpp& block) {
    return block.mode == 0 ? block.normalIndices : block.punchIndices;
}

}  // namespace

MOKTC4bppCompressor::MOKTC4bppCompressor(const void* pixels, std::uint32_t width, std::uint32_t height,
                                         const FastKernels& kernels)
    : MOKTCCompressor(pixels, width, height, moktc::blockWidth(false), moktc::blockHeight, kernels), m_blocks(m_colourA.size()) {}

void MOKTC4bppCompressor::initialise(bool wideFootprint) {
    initialiseColours(wideFootprint);
    upscaleColours();
    updateModulationRegion(0, m_blocksX, 0, m_blocksY);
}

void MOKTC4bppCompressor::upscaleColours() {
    upscaleImage(m_kernels.fillCell4bpp, m_colourA, m_upscaledA);
    upscaleImage(m_kernels.fillCell4bpp, m_colourB, m_upscaledB);
}

void MOKTC4bppCompressor::updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) {
    for (std::uint32_t y = y0; y < y1; ++y) {
        for (std::uint32_t x = x0; x < x1; ++x)
            m_kernels.chooseModulation4bpp(pixelsOf(x, y), m_blocks[blockIndex(x, y)]);
    }
}

void MOKTC4bppCompressor::updateColours(std::size_t index, const BlockPixels& pixels) {
    // Kept: the indices of mode 1 count with the weights of mode 0; the bytes of every encoded cut-out rest on it.
    const std::uint8_t* const indices = indicesOf(m_blocks[index]);
    std::array<std::uint8_t, blockArea4bpp> eighths;
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        eighths[i] = indexWeights[0][indices[i]];
    ResidualSums sums;
    m_kernels.sumResiduals(pixels, eighths.data(), m_blockWidth, sums);
    fitColours(sums, share, goodEnough, m_colourA[index], m_colourB[index]);
}

Block MOKTC4bppCompressor::packModulation(std::size_t index) const {
    const ModulationBlock4bpp& block = m_blocks[index];
    return {packIndices(indicesOf(block)), block.mode == 0 ? 0 : modeBit};
}

}  // namespace moktexture::moktc
