#pragma once

#include "moktc/fast/MOKTCCompressor.h"

namespace moktexture::moktc {

/// The fast compressor of 8 by 4 blocks at 2 bits per pixel.
class MOKTC2bppCompressor final : public MOKTCCompressor {
public:
    MOKTC2bppCompressor(const void* pixels, std::uint32_t width, std::uint32_t height, const FastKernels& kernels);

    /// Start colours always come from the block itself.
    void initialise(bool wideFootprint) override;
    void upscaleColours() override;
    void updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) override;

private:
    Block packModulation(std::size_t index) const override;
    void updateColours(std::size_t index, const BlockPixels& pixels) override;

    std::vector<ModulationBlock2bpp> m_blocks;
};

}  // namespace moktexture::moktc
