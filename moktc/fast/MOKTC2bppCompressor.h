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

private:
    void chooseModulation(std::size_t index, const BlockImages& images) override;
    RGBAPair fitBlock(std::size_t index, const BlockImages& images, const RGBAPair& colours) const override;
    Block packModulation(std::size_t index) const override;

    std::vector<ModulationBlock2bpp> m_blocks;
};

}  // namespace moktexture::moktc
