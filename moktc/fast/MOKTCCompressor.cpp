#include "moktc/fast/MOKTCCompressor.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "moktc/block/block_order.h"
#include "moktc/block/block_packing.h"

namespace moktexture::moktc {

MOKTCCompressor::MOKTCCompressor(const void* pixels, std::uint32_t width, std::uint32_t height, std::uint8_t columnsOfBlock,
                                 std::uint8_t rowsOfBlock, const FastKernels& kernels)
    : m_width(width),
      m_height(height),
      m_blocksX(width / columnsOfBlock),
      m_blocksY(height / rowsOfBlock),
      m_blockWidth(columnsOfBlock),
      m_blockHeight(rowsOfBlock),
      m_source(std::size_t{width} * height * bytesPerPixel),
      m_colourA(std::size_t{m_blocksX} * m_blocksY),
      m_colourB(m_colourA.size()),
      m_upscaledA(m_source.size()),
      m_upscaledB(m_source.size()),
      m_kernels(kernels) {
    std::memcpy(m_source.data(), pixels, m_source.size());
}

void MOKTCCompressor::optimise() {
    for (std::uint32_t pass = 0; pass < m_iterations; ++pass) {
        updateColoursRegion(0, m_blocksX, 0, m_blocksY);
        upscaleColours();
        if (renewsModulation(pass)) updateModulationRegion(0, m_blocksX, 0, m_blocksY);
    }
}

void MOKTCCompressor::updateColoursRegion(std::uint32_t x0, std::uint32_t x1, std::uint32_t y0, std::uint32_t y1) {
    for (std::uint32_t y = y0; y < y1; ++y) {
        for (std::uint32_t x = x0; x < x1; ++x)
            updateColours(blockIndex(x, y), pixelsOf(x, y));
    }
}

void MOKTCCompressor::writeBlocks(void* out, bool twiddled) const {
    const std::size_t blocks = m_colourA.size();
    std::uint8_t* const bytes = static_cast<std::uint8_t*>(out);
    std::fill_n(bytes, blocks * bytesPerBlock, std::uint8_t{0});
    for (std::uint32_t y = 0; y < m_blocksY; ++y) {
        for (std::uint32_t x = 0; x < m_blocksX; ++x) {
            const std::uint64_t place = BlockIndex(m_blocksX, m_blocksY, x, y, !twiddled);
            if (place >= blocks) continue;
            Block block = packModulation(blockIndex(x, y));
            packColourA(block, m_colourA[blockIndex(x, y)]);
            packColourB(block, m_colourB[blockIndex(x, y)]);
            writeBlock(bytes + place * bytesPerBlock, block);
        }
    }
}

BlockPixels MOKTCCompressor::pixelsOf(std::uint32_t x, std::uint32_t y) const {
    const std::size_t rowBytes = m_width * bytesPerPixel;
    const std::size_t offset = y * m_blockHeight * rowBytes + x * m_blockWidth * bytesPerPixel;
    return {m_source.data() + offset, m_upscaledA.data() + offset, m_upscaledB.data() + offset, rowBytes};
}

// Start colours

std::uint32_t MOKTCCompressor::sourcePixel(std::uint32_t x, std::uint32_t y) const {
    const std::uint8_t* const pixel = m_source.data() + (std::size_t{y} * m_width + x) * bytesPerPixel;
    return pixel[0] | std::uint32_t{pixel[1]} << 8 | std::uint32_t{pixel[2]} << 16 | std::uint32_t{pixel[3]} << 24;
}

void MOKTCCompressor::furthestPair(const std::uint32_t* pixels, std::uint32_t count, std::uint32_t& colourA,
                                   std::uint32_t& colourB) const {
    std::uint32_t first, second;
    m_kernels.findFurthest(pixels, count, first, second);
    colourA = pixels[first];
    colourB = pixels[second];
    const std::uint32_t luminanceA = luminance(colourA), luminanceB = luminance(colourB);
    if (luminanceA != luminanceB ? luminanceA > luminanceB : colourA > colourB) std::swap(colourA, colourB);
}

void MOKTCCompressor::findStartColours(std::uint32_t x, std::uint32_t y, bool wideFootprint, std::uint32_t& colourA,
                                       std::uint32_t& colourB) const {
    const std::uint32_t scale = wideFootprint ? 2 : 1, columns = scale * m_blockWidth, rows = scale * m_blockHeight;
    const std::uint32_t left = m_blockWidth * x - (columns - m_blockWidth) / 2;
    const std::uint32_t top = m_blockHeight * y - (rows - m_blockHeight) / 2;
    std::array<std::uint32_t, largestFootprint> footprint;
    std::uint32_t count = 0;
    for (std::uint32_t row = 0; row < rows; ++row) {
        for (std::uint32_t column = 0; column < columns; ++column)
            footprint[count++] = sourcePixel(wrapIndex(m_width, left + column), wrapIndex(m_height, top + row));
    }
    furthestPair(footprint.data(), count, colourA, colourB);
}

void MOKTCCompressor::initialiseColours(bool wideFootprint) {
    for (std::uint32_t y = 0; y < m_blocksY; ++y) {
        for (std::uint32_t x = 0; x < m_blocksX; ++x)
            findStartColours(x, y, wideFootprint, m_colourA[blockIndex(x, y)], m_colourB[blockIndex(x, y)]);
    }
}

// Upscale

namespace {

/// The part of a cell that lies in the image, in one direction, and where that part begins there.
struct Clip {
    std::uint32_t first, count, target;
};

/// Cell `cell` of `blocks` + 1, counted from 0; the first and the last lie half outside.
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
        std::memcpy(&target[to * bytesPerPixel], cell + from * bytesPerPixel, columns.count * bytesPerPixel);
    }
}

void MOKTCCompressor::upscaleImage(FillCell fillCell, const std::vector<std::uint32_t>& colours,
                                   std::vector<std::uint8_t>& target) const {
    std::array<std::uint8_t, blockArea2bpp * bytesPerPixel> cell;
    // Cells and their bottom right blocks are counted alike: cell 0 lies between the last block, wrapped, and block 0.
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

}  // namespace moktexture::moktc
