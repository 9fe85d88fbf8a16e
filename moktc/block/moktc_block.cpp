#include "moktc/block/moktc_block.h"

namespace moktexture::moktc {

void packColourA(Block& block, std::uint32_t rgba) {
    const bool isOpaque = rgba >> 24 == 255;
    block.colours &= ~(colourAMask | opaqueABit);
    block.colours |= isOpaque ? packFields(rgba, opaqueA) | opaqueABit : packFields(rgba, translucentA);
}

void packColourB(Block& block, std::uint32_t rgba) {
    const bool isOpaque = rgba >> 24 == 255;
    block.colours &= ~(colourBMask | opaqueBBit);
    block.colours |= isOpaque ? packFields(rgba, opaqueB) | opaqueBBit : packFields(rgba, translucentB);
}

std::uint32_t packIndices(const std::uint8_t* indices) {
    std::uint32_t modulation = 0;
    for (std::uint32_t i = 0; i < blockWidth(Rate::fourBpp) * blockHeight; ++i)
        modulation |= (indices[i] & 3u) << 2 * i;
    return modulation;
}

std::uint32_t packDirect(const std::uint8_t* indices) {
    std::uint32_t modulation = 0;
    for (std::uint32_t i = 0; i < blockWidth(Rate::twoBpp) * blockHeight; ++i) {
        if (indices[i] == directSetIndex) modulation |= 1u << i;
    }
    return modulation;
}

std::uint32_t packSamples(const std::uint8_t* indices) {
    std::uint32_t modulation = 0, sample = 0;
    for (std::uint32_t y = 0; y < blockHeight; ++y) {
        for (std::uint32_t x = y % 2; x < blockWidth(Rate::twoBpp); x += 2)
            modulation |= (indices[y * blockWidth(Rate::twoBpp) + x] & 3u) << 2 * sample++;
    }
    return modulation;
}

}  // namespace moktexture::moktc
