#pragma once

#include <vector>

#include "moktc/fast/MOKTCCompressor.h"

namespace moktexture::moktc {

/// The fast compressor of 8 by 4 blocks at 2 bits per pixel.
class MOKTC2bppCompressor final : public MOKTCCompressor {
public:
    MOKTC2bppCompressor(const ConstImageView& image, const FastKernels& kernels);

    /// The argument has no effect: start colours come from the block alone.
    void initialise(bool wideFootprint) override;
    void upscaleColours() override;
    void updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) override;

private:
    Block packModulation(std::size_t index) const override;
    RGBAPair fitBlock(std::size_t index, const BlockImages& images, const RGBAPair& colours) const override;

    std::vector<ModulationBlock2bpp> m_blocks;
};

}  // namespace moktexture::moktc
