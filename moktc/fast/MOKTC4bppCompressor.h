#pragma once

#include <vector>

#include "moktc/fast/MOKTCCompressor.h"

namespace moktexture::moktc {

/// The fast compressor of 4 by 4 blocks at 4 bits per pixel.
class MOKTC4bppCompressor final : public MOKTCCompressor {
public:
    MOKTC4bppCompressor(const ConstImageView& image, const FastKernels& kernels);

private:
    void chooseModulation(std::size_t index, const BlockImages& images) override;
    RGBAPair fitBlock(std::size_t index, const BlockImages& images, const RGBAPair& colours) const override;
    Block packModulation(std::size_t index) const override;

    std::vector<ModulationBlock4bpp> m_blocks;
};

}  // namespace moktexture::moktc
