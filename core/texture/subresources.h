#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "CMOKTextureHeader.h"

/// @file
/// The subresources of a texture: their sizes in bytes and pixels, and the loops over them. A subresource is one MIP level of one
/// face of one array layer.

namespace moktexture {

/// Block of a compressed format in pixels: the dimensions of a level are rounded up to multiples of it.
struct BlockSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
};

/// Whether the format is a number of CompressedFormatId, not a layout of channels.
inline bool isCompressed(const PixelType& format) {
    return (format.id >> 32) == 0;
}

/// The block of a compressed format; 1 by 1 by 1 for layouts and for numbers outside the table.
BlockSize minimumBlock(const PixelType& format);

/// Bits per pixel; 0 for formats without a data size.
unsigned int bitsPerPixel(const PixelType& format);

/// Size of a MIP level in pixels from that of level 0, at least 1. Levels count modulo 32.
inline std::uint32_t levelDimension(std::uint32_t size, std::uint32_t level) {
    return std::max(size >> (level & 31u), std::uint32_t{1});
}

/// Largest number of MIP levels of a buffer: levels are counted in 8 bits.
inline constexpr std::uint32_t maxMIPLevels = 255;

/// Whether the header has at most maxMIPLevels levels and none of its sizes wraps at 32 bits, so that
/// `getDataSize(allLevels, true, true)` is the size of the buffer and getDataPtr() computes true offsets.
bool sizesFit32Bits(const CMOKTextureHeader& header);

/// Size of one MIP level in pixels.
struct LevelSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;

    std::size_t pixelCount() const { return std::size_t{width} * height * depth; }
    bool isEmpty() const { return width == 0 || height == 0 || depth == 0; }
    bool operator==(const LevelSize&) const = default;
};

inline LevelSize levelSize(const CMOKTextureHeader& header, std::uint32_t level) {
    return {header.getWidth(level), header.getHeight(level), header.getDepth(level)};
}

struct Subresource {
    std::uint32_t layer;
    std::uint32_t face;
    std::uint32_t level;
    LevelSize size;
};

/// How many layers, faces and levels a loop visits.
struct SubresourceCounts {
    std::uint32_t layers;
    std::uint32_t faces;
    std::uint32_t levels;
};

inline SubresourceCounts subresourceCounts(const CMOKTextureHeader& header) {
    return {header.getNumArrayMembers(), header.getNumFaces(), header.getNumMIPLevels()};
}

/// Calls `visit(const Subresource&)` for each layer, in it each face, in it each MIP level.
/// @param header  gives the sizes of the levels
template <class Visit>
void forEachSubresource(const CMOKTextureHeader& header, const SubresourceCounts& counts, Visit&& visit) {
    for (std::uint32_t layer = 0; layer < counts.layers; ++layer)
        for (std::uint32_t face = 0; face < counts.faces; ++face)
            for (std::uint32_t level = 0; level < counts.levels; ++level)
                visit(Subresource{layer, face, level, levelSize(header, level)});
}

template <class Visit>
void forEachSubresource(const CMOKTextureHeader& header, Visit&& visit) {
    forEachSubresource(header, subresourceCounts(header), visit);
}

/// As forEachSubresource(), in the order of the texture's buffer: for each MIP level, in it each layer, in it each face.
template <class Visit>
void forEachSubresourceInBufferOrder(const CMOKTextureHeader& header, Visit&& visit) {
    const SubresourceCounts counts = subresourceCounts(header);
    for (std::uint32_t level = 0; level < counts.levels; ++level)
        for (std::uint32_t layer = 0; layer < counts.layers; ++layer)
            for (std::uint32_t face = 0; face < counts.faces; ++face)
                visit(Subresource{layer, face, level, levelSize(header, level)});
}

}  // namespace moktexture
