#pragma once

#include "moktc/fast/MOKTCCompressor.h"

namespace moktexture::moktc {

/// The fast compressor of 4 by 4 blocks at 4 bits per pixel.
class MOKTC4bppCompressor final : public MOKTCCompressor {
public:
    MOKTC4bppCompressor(const void* pixels, std::uint32_t width, std::uint32_t height, const FastKernels& kernels);

    void initialise(bool wideFootprint) override;
    void upscaleColours() override;
    void updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) override;

private:
    Block packModulation(std::size_t index) const override;
    void updateColours(std::size_t index, const BlockPixels& pixels) override;

    std::vector<ModulationBlock4bpp> m_blocks;
};

}  // namespace moktexture::moktc
