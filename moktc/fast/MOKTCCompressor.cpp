#include "moktc/fast/MOKTCCompressor.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "moktc/block/block_order.h"

namespace moktexture::moktc {

MOKTCCompressor::MOKTCCompressor(const ConstImageView& image, Rate rate, const FastKernels& kernels)
    : m_width(image.width),
      m_height(image.height),
      m_blocksX(image.width / moktc::blockWidth(rate)),
      m_blocksY(image.height / moktc::blockHeight),
      m_blockWidth(static_cast<std::uint8_t>(moktc::blockWidth(rate))),
      m_blockHeight(moktc::blockHeight),
      m_source(std::size_t{image.width} * image.height * bytesPerRGBA8Pixel),
      m_colourA(std::size_t{m_blocksX} * m_blocksY),
      m_colourB(m_colourA.size()),
      m_upscaledA(m_source.size()),
      m_upscaledB(m_source.size()),
      m_kernels(kernels) {
    const std::size_t rowBytes = m_width * bytesPerRGBA8Pixel;
    for (std::uint32_t y = 0; y < m_height; ++y)
        std::memcpy(&m_source[y * rowBytes], image.row(y), rowBytes);
}

void MOKTCCompressor::initialise(bool wideFootprint) {
    initialiseColours(wideFootprint);
    upscaleColours();
    updateModulationRegion(0, m_blocksX, 0, m_blocksY);
}

void MOKTCCompressor::optimise() {
    for (std::uint32_t pass = 0; pass < m_iterations; ++pass) {
        updateColoursRegion(0, m_blocksX, 0, m_blocksY);
        upscaleColours();
        if (updatesModulation(pass)) updateModulationRegion(0, m_blocksX, 0, m_blocksY);
    }
}

void MOKTCCompressor::updateModulationRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) {
    for (std::uint32_t y = y0; y < y1; ++y) {
        for (std::uint32_t x = x0; x < x1; ++x)
            chooseModulation(blockIndex(x, y), imagesOf(x, y));
    }
}

void MOKTCCompressor::updateColoursRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) {
    for (std::uint32_t y = y0; y < y1; ++y) {
        for (std::uint32_t x = x0; x < x1; ++x) {
            const std::size_t index = blockIndex(x, y);
            const RGBAPair fitted = fitBlock(index, imagesOf(x, y), {m_colourA[index], m_colourB[index]});
            m_colourA[index] = fitted.a;
            m_colourB[index] = fitted.b;
        }
    }
}

void MOKTCCompressor::writeBlocks(void* out, bool twiddled) const {
    const std::size_t blocks = m_colourA.size();
    std::uint8_t* const bytes = static_cast<std::uint8_t*>(out);
    std::fill_n(bytes, blocks * bytesPerBlock, std::uint8_t{0});
    for (std::uint32_t y = 0; y < m_blocksY; ++y) {
        for (std::uint32_t x = 0; x < m_blocksX; ++x) {
            const std::uint64_t target = BlockIndex(m_blocksX, m_blocksY, x, y, !twiddled);
            if (target >= blocks) continue;
            Block block = packModulation(blockIndex(x, y));
            packColourA(block, m_colourA[blockIndex(x, y)]);
            packColourB(block, m_colourB[blockIndex(x, y)]);
            writeBlock(bytes + target * bytesPerBlock, block);
        }
    }
}

BlockImages MOKTCCompressor::imagesOf(std::uint32_t x, std::uint32_t y) const {
    const std::size_t rowBytes = m_width * bytesPerRGBA8Pixel;
    const std::size_t offset = y * m_blockHeight * rowBytes + x * m_blockWidth * bytesPerRGBA8Pixel;
    return {m_source.data() + offset, m_upscaledA.data() + offset, m_upscaledB.data() + offset, rowBytes};
}

// Start colours

/// The two pixels that are furthest apart. A is the one with the lower luminance, and of equal luminance the lower number.
RGBAPair MOKTCCompressor::furthestPair(const std::uint32_t* pixels, std::uint32_t count) const {
    std::uint32_t first, second;
    m_kernels.findFurthest(pixels, count, first, second);
    RGBAPair pair = {pixels[first], pixels[second]};
    const std::uint32_t luminanceA = luminance(pair.a), luminanceB = luminance(pair.b);
    if (luminanceA != luminanceB ? luminanceA > luminanceB : pair.a > pair.b) std::swap(pair.a, pair.b);
    return pair;
}

RGBAPair MOKTCCompressor::findStartColours(std::uint32_t x, std::uint32_t y, bool wideFootprint) const {
    const std::uint32_t scale = wideFootprint ? 2 : 1, columns = scale * m_blockWidth, rows = scale * m_blockHeight;
    const std::uint32_t left = m_blockWidth * x - (columns - m_blockWidth) / 2;
    const std::uint32_t top = m_blockHeight * y - (rows - m_blockHeight) / 2;
    const ConstImageView source = packedImage(m_source.data(), m_width, m_height);
    std::array<std::uint32_t, largestFootprint> footprint;
    std::uint32_t count = 0;
    for (std::uint32_t row = 0; row < rows; ++row) {
        for (std::uint32_t column = 0; column < columns; ++column) {
            const std::uint8_t* const pixel = source.pixel(wrapIndex(m_width, left + column), wrapIndex(m_height, top + row));
            std::memcpy(&footprint[count++], pixel, bytesPerRGBA8Pixel);
        }
    }
    return furthestPair(footprint.data(), count);
}

void MOKTCCompressor::initialiseColours(bool wideFootprint) {
    for (std::uint32_t y = 0; y < m_blocksY; ++y) {
        for (std::uint32_t x = 0; x < m_blocksX; ++x) {
            const RGBAPair colours = findStartColours(x, y, wideFootprint);
            m_colourA[blockIndex(x, y)] = colours.a;
            m_colourB[blockIndex(x, y)] = colours.b;
        }
    }
}

// Upscale

namespace {

/// The part of a cell that lies in the image, in one direction.
struct Clip {
    std::uint32_t first;   ///< first column (row) of the cell in the image
    std::uint32_t count;   ///< columns (rows) in the image
    std::uint32_t target;  ///< where the first one lies in the image
};

/// Clips cell `cell` of `blocks` + 1, counted from 0. Half of the first and half of the last cell lie outside.
Clip clipCell(std::uint32_t cell, std::uint32_t blocks, std::uint32_t size) {
    const std::uint32_t half = size / 2;
    if (cell == 0) return {half, half, 0};
    return {0, cell == blocks ? half : size, cell * size - half};
}

}  // namespace

void MOKTCCompressor::copyCell(const std::uint8_t* cell, std::uint32_t i, std::uint32_t j,
                               std::vector<std::uint8_t>& target) const {
    const Clip columns = clipCell(i, m_blocksX, m_blockWidth), rows = clipCell(j, m_blocksY, m_blockHeight);
    for (std::uint32_t row = 0; row < rows.count; ++row) {
        const std::size_t to = std::size_t{rows.target + row} * m_width + columns.target;
        const std::size_t from = (rows.first + row) * m_blockWidth + columns.first;
        std::memcpy(&target[to * bytesPerRGBA8Pixel], cell + from * bytesPerRGBA8Pixel, columns.count * bytesPerRGBA8Pixel);
    }
}

void MOKTCCompressor::upscaleImage(FillCell fillCell, const std::vector<std::uint32_t>& colours,
                                   std::vector<std::uint8_t>& target) const {
    std::array<std::uint8_t, blockArea2bpp * bytesPerRGBA8Pixel> cell;
    // A cell has the number of its lower right block: cell 0 lies between the last block, wrapped, and block 0.
    for (std::uint32_t j = 0; j <= m_blocksY; ++j) {
        const std::uint32_t *const above = &colours[blockIndex(0, wrapIndex(m_blocksY, j - 1))],
                                   *const below = &colours[blockIndex(0, wrapIndex(m_blocksY, j))];
        for (std::uint32_t i = 0; i <= m_blocksX; ++i) {
            const std::uint32_t left = wrapIndex(m_blocksX, i - 1), right = wrapIndex(m_blocksX, i);
            fillCell(above[left], above[right], below[left], below[right], cell.data());
            copyCell(cell.data(), i, j, target);
        }
    }
}

void MOKTCCompressor::upscaleColours() {
    const FillCell fillCell = m_blockWidth == moktc::blockWidth(Rate::twoBpp) ? m_kernels.fillCell2bpp : m_kernels.fillCell4bpp;
    upscaleImage(fillCell, m_colourA, m_upscaledA);
    upscaleImage(fillCell, m_colourB, m_upscaledB);
}

// 4 bits per pixel

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

// 2 bits per pixel

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
