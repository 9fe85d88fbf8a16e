#include "moktc/fast/MOKTC4bppCompressor.h"

#include <array>

namespace moktexture::moktc {
namespace {

/// A higher threshold skips more blocks that are nearly right and costs quality. The encoded bytes depend on it.
constexpr FitSettings fitSettings4bpp = {.pixels = blockArea4bpp, .errorThreshold = 32.0f};

const std::uint8_t* indicesOf(const ModulationBlock4bpp& block) {
    return block.mode == 0 ? block.normalIndices : block.punchIndices;
}

}  // namespace

MOKTC4bppCompressor::MOKTC4bppCompressor(const ConstImageView& image, const FastKernels& kernels)
    : MOKTCCompressor(image, Rate::fourBpp, kernels), m_blocks(m_colourA.size()) {}

void MOKTC4bppCompressor::chooseModulation(std::size_t index, const BlockImages& images) {
    m_kernels.chooseModulation4bpp(images, m_blocks[index]);
}

RGBAPair MOKTC4bppCompressor::fitBlock(std::size_t index, const BlockImages& images, const RGBAPair& colours) const {
    // Kept (mode-1-fitted-with-mode-0-weights): blocks in mode 1 are fitted as if their indices had the weights of mode 0. The
    // colours of every cut-out texture encoded at quality 0, and so its bytes, depend on it.
    const std::uint8_t* const indices = indicesOf(m_blocks[index]);
    std::array<std::uint8_t, blockArea4bpp> weights;
    for (std::uint32_t i = 0; i < blockArea4bpp; ++i)
        weights[i] = indexWeights[0][indices[i]];
    ResidualSums sums;
    m_kernels.sumResiduals(images, weights.data(), m_blockWidth, sums);
    return fitColours(sums, fitSettings4bpp, colours);
}

Block MOKTC4bppCompressor::packModulation(std::size_t index) const {
    const ModulationBlock4bpp& block = m_blocks[index];
    return {packIndices(indicesOf(block)), block.mode == 0 ? 0 : modeBit};
}

}  // namespace moktexture::moktc
