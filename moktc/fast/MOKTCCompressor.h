#pragma once

#include <cstdint>
#include <vector>

#include "core/base/image_view.h"
#include "moktc/block/block_variant.h"
#include "moktc/fast/colour_fit.h"
#include "moktc/fast/fast_kernels.h"

namespace moktexture::moktc {

/// What the fast compressors of both rates share: the image, one pair of colours per block, and both colours upscaled to full
/// size. The method is described in fast_compressor.cpp. Colours have 8 bits per channel until the blocks are written.
///
/// Block ranges run from x0 to x1 and from y0 to y1, upper bounds excluded. The two operations on ranges may run concurrently on
/// ranges that do not overlap, but not beside any other operation.
class MOKTCCompressor {
public:
    /// Copies the image, which has at least one whole block. Pixels beyond whole blocks contribute to start colours but are not
    /// encoded.
    MOKTCCompressor(const ConstImageView& image, Rate rate, const FastKernels& kernels);
    MOKTCCompressor(const MOKTCCompressor&) = delete;
    MOKTCCompressor& operator=(const MOKTCCompressor&) = delete;
    virtual ~MOKTCCompressor() = default;

    /// Start colours, from the block or from a wide footprint around it, then the first upscaling and the first modulation.
    virtual void initialise(bool wideFootprint);
    /// Runs all passes over the whole grid on the caller's thread.
    void optimise();
    /// Packs all blocks, 8 bytes each, in twiddled or linear order. In twiddled order a grid with a side that is not a power of
    /// two has blocks with an index beyond the output, which are dropped; the gaps that they leave are zeroed.
    void writeBlocks(void* out, bool twiddled) const;
    /// Rebuilds both upscaled images.
    void upscaleColours();
    /// Chooses new modulation for a range of blocks.
    void updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1);
    /// Fits the colours of a range of blocks.
    void updateColoursRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1);

    void setIterations(std::uint32_t iterations) { m_iterations = iterations; }
    std::uint32_t iterations() const { return m_iterations; }
    std::uint32_t blocksX() const { return m_blocksX; }
    std::uint32_t blocksY() const { return m_blocksY; }
    /// Whether a pass ends with new modulation.
    bool updatesModulation(std::uint32_t pass) const { return m_modulationInterval != 0 && pass % m_modulationInterval == 0; }

protected:
    // What the rates do differently with one block; `index` counts blocks in raster order.

    /// Chooses the block's modulation for the present colours.
    virtual void chooseModulation(std::size_t index, const BlockImages& images) = 0;
    /// The block's fitted colours, from its current ones.
    virtual RGBAPair fitBlock(std::size_t index, const BlockImages& images, const RGBAPair& colours) const = 0;
    /// The block's modulation word and mode bit; the bits of its colours are 0.
    virtual Block packModulation(std::size_t index) const = 0;

    std::uint32_t m_width;
    std::uint32_t m_height;
    std::uint32_t m_blocksX;
    std::uint32_t m_blocksY;
    std::uint8_t m_blockWidth;
    std::uint8_t m_blockHeight;
    std::vector<std::uint8_t> m_source;    ///< RGBA8, rows packed
    std::vector<std::uint32_t> m_colourA;  ///< one colour per block, red in the lowest byte
    std::vector<std::uint32_t> m_colourB;
    std::vector<std::uint8_t> m_upscaledA;  ///< RGBA8, rows packed
    std::vector<std::uint8_t> m_upscaledB;
    std::uint32_t m_iterations = 0;
    /// Passes from one choice of modulation to the next. Above 1 passes cost less, and colours are fitted to older weights.
    std::uint32_t m_modulationInterval = 1;
    const FastKernels& m_kernels;

private:
    using FillCell = void (*)(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell);

    std::size_t blockIndex(std::uint32_t x, std::uint32_t y) const { return std::size_t{y} * m_blocksX + x; }
    BlockImages imagesOf(std::uint32_t x, std::uint32_t y) const;
    void initialiseColours(bool wideFootprint);
    RGBAPair findStartColours(std::uint32_t x, std::uint32_t y, bool wideFootprint) const;
    RGBAPair furthestPair(const std::uint32_t* pixels, std::uint32_t count) const;
    /// Upscales one colour per block to `target`. Colours wrap at the image's edges, pixels do not.
    void upscaleImage(FillCell fillCell, const std::vector<std::uint32_t>& colours, std::vector<std::uint8_t>& target) const;
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
