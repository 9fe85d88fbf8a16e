#include "moktc/fast/MOKTC2bppCompressor.h"

#include <algorithm>
#include <array>

namespace moktexture::moktc {
namespace {

/// A higher threshold skips more blocks that are nearly right and costs quality. The encoded bytes depend on it.
constexpr FitSettings fitSettings2bpp = {.pixels = blockArea2bpp, .errorThreshold = 128.0f};

}  // namespace

MOKTC2bppCompressor::MOKTC2bppCompressor(const ConstImageView& image, const FastKernels& kernels)
    : MOKTCCompressor(image, Rate::twoBpp, kernels), m_blocks(m_colourA.size()) {}

void MOKTC2bppCompressor::initialise(bool) {
    // Kept (2-bpp-ignores-wide-footprint): start colours always come from the block alone. Every texture encoded at 2 bpp and
    // quality 0 would get other bytes with the wide footprint, which encodeFast() asks for at both rates.
    MOKTCCompressor::initialise(false);
}

void MOKTC2bppCompressor::chooseModulation(std::size_t index, const BlockImages& images) {
    m_kernels.chooseModulation2bpp(images, m_blocks[index]);
}

RGBAPair MOKTC2bppCompressor::fitBlock(std::size_t index, const BlockImages& images, const RGBAPair& colours) const {
    const ModulationBlock2bpp& block = m_blocks[index];
    std::array<std::uint8_t, blockArea2bpp> weights;
    expandModulation(block, block.mode, weights.data());
    // The estimate exceeds 8 at the block's edge.
    for (std::uint8_t& weight : weights)
        weight = std::min(weight, std::uint8_t{8});
    ResidualSums sums;
    m_kernels.sumResiduals(images, weights.data(), m_blockWidth, sums);
    return fitColours(sums, fitSettings2bpp, colours);
}

Block MOKTC2bppCompressor::packModulation(std::size_t index) const {
    const ModulationBlock2bpp& block = m_blocks[index];
    if (block.mode == 0) return {packDirect(block.directIndices), 0};
    return {withSubMode(packSamples(block.sampleIndices), static_cast<SubMode>(block.mode)), modeBit};
}

}  // namespace moktexture::moktc
