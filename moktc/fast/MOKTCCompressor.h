#pragma once

#include <cstdint>
#include <vector>

#include "moktc/fast/fast_kernels.h"

namespace moktexture::moktc {

/// What the fast compressors of both bit rates share: the image, one pair of colours a block, and both colours upscaled to full
/// size. Encoding chooses start colours, then goes through passes of better colours, a new upscale and a new modulation. Each
/// pass overwrites the one before. Colours stay at 8 bits a channel until the blocks are written.
///
/// Ranges of blocks are from x0 up to x1 and from y0 up to y1, upper bounds excluded. The two operations on ranges may run at the
/// same time on ranges that do not overlap, never beside another operation.
class MOKTCCompressor {
public:
    /// Copies `width * height` RGBA8 pixels, at least one block. Pixels beyond whole blocks lend colours and are not encoded.
    MOKTCCompressor(const void* pixels, std::uint32_t width, std::uint32_t height, std::uint8_t columnsOfBlock,
                    std::uint8_t rowsOfBlock, const FastKernels& kernels);
    MOKTCCompressor(const MOKTCCompressor&) = delete;
    MOKTCCompressor& operator=(const MOKTCCompressor&) = delete;
    virtual ~MOKTCCompressor() = default;

    /// Start colours, sought in the block or in a wide footprint around it, first upscale and first modulation.
    virtual void initialise(bool wideFootprint) = 0;
    /// All passes over the whole grid on the caller's thread.
    void optimise();
    /// Packs all blocks, 8 bytes each, in twiddled or raster order. Twiddled places of a grid whose sides are no powers of two
    /// can lie beyond the grid's blocks: those blocks are left out, and places that no block takes are zeroed.
    void writeBlocks(void* out, bool twiddled) const;
    /// Rebuilds both upscaled images.
    virtual void upscaleColours() = 0;
    /// Chooses new modulation for a range of blocks.
    virtual void updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) = 0;
    /// Chooses new colours for a range of blocks.
    void updateColoursRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1);

    void setIterations(std::uint32_t iterations) { m_iterations = iterations; }
    std::uint32_t iterations() const { return m_iterations; }
    std::uint32_t blocksX() const { return m_blocksX; }
    std::uint32_t blocksY() const { return m_blocksY; }
    /// Whether the modulation is renewed in a pass.
    bool renewsModulation(std::uint32_t pass) const { return m_modulationInterval != 0 && pass % m_modulationInterval == 0; }

protected:
    using FillCell = void (*)(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell);

    /// The modulation word of a block and its mode bit, with both colours' bits still 0.
    virtual Block packModulation(std::size_t index) const = 0;
    /// Moves one block's colours; `index` counts blocks in raster order.
    virtual void updateColours(std::size_t index, const BlockPixels& pixels) = 0;

    std::size_t blockIndex(std::uint32_t x, std::uint32_t y) const { return std::size_t{y} * m_blocksX + x; }
    BlockPixels pixelsOf(std::uint32_t x, std::uint32_t y) const;
    void initialiseColours(bool wideFootprint);
    /// Upscales one colour a block to `target`. Colours wrap at the image's edges, pixels do not.
    void upscaleImage(FillCell fillCell, const std::vector<std::uint32_t>& colours, std::vector<std::uint8_t>& target) const;

    std::uint32_t m_width;
    std::uint32_t m_height;
    std::uint32_t m_blocksX;
    std::uint32_t m_blocksY;
    std::uint8_t m_blockWidth;
    std::uint8_t m_blockHeight;
    std::vector<std::uint8_t> m_source;    ///< RGBA8, rows packed
    std::vector<std::uint32_t> m_colourA;  ///< one colour a block, red in the lowest byte
    std::vector<std::uint32_t> m_colourB;
    std::vector<std::uint8_t> m_upscaledA;  ///< RGBA8, rows packed
    std::vector<std::uint8_t> m_upscaledB;
    std::uint32_t m_iterations = 0;
    std::uint32_t m_modulationInterval = 1;
    const FastKernels& m_kernels;

private:
    void findStartColours(std::uint32_t x, std::uint32_t y, bool wideFootprint, std::uint32_t& colourA,
                          std::uint32_t& colourB) const;
    void furthestPair(const std::uint32_t* pixels, std::uint32_t count, std::uint32_t& colourA, std::uint32_t& colourB) const;
    std::uint32_t sourcePixel(std::uint32_t x, std::uint32_t y) const;
    void copyCell(const std::uint8_t* cell, std::uint32_t i, std::uint32_t j, std::vector<std::uint8_t>& target) const;
};

/// (n + i) modulo n in unsigned arithmetic: -1 becomes n - 1.
constexpr std::uint32_t wrapIndex(std::uint32_t n, std::uint32_t i) {
    return (n + i) % n;
}

/// Luminance of an RGBA8 pixel, 0 to 255, truncated.
constexpr std::uint32_t luminance(std::uint32_t pixel) {
    return (30 * (pixel & 255) + 59 * (pixel >> 8 & 255) + 11 * (pixel >> 16 & 255)) / 100;
}

}  // namespace moktexture::moktc
