#pragma once

#include <cstdint>

#include "CMOKTexture.h"
#include "formats/standard/published_format.h"
#include "texture_io.h"

/// @file
/// Textures as published files store them: subresources in whole blocks of the format's own size, without a gap.

namespace moktexture {

/// Sizes and offsets of stored subresources. All in bytes, counted in 64 bits; sums that do not fit stay at the largest value.
class StoredLayout {
public:
    explicit StoredLayout(const CMOKTextureHeader& header);

    /// Bytes of a row of blocks.
    std::uint64_t rowBytes(std::uint32_t level) const;
    /// Rows of blocks in one slice.
    std::uint64_t rows(std::uint32_t level) const;
    /// Slices of a level.
    std::uint64_t slices(std::uint32_t level) const;
    /// One layer and face of a level, with all slices.
    std::uint64_t subresourceBytes(std::uint32_t level) const;
    /// All layers and faces of a level.
    std::uint64_t levelBytes(std::uint32_t level) const;
    /// Start of a subresource in a buffer that is ordered by level, layer and face.
    std::uint64_t offset(std::uint32_t level, std::uint32_t layer, std::uint32_t face) const;
    std::uint64_t totalBytes() const;

private:
    StoredBlock block;
    std::uint32_t width, height, depth, layers, faces, levels;
};

/// Whether the texture may be made: counts above 0, within the limits, a format whose size is known, and a total below 2^32.
/// `needed` bytes must remain in the source, which has `remaining`.
ELoadStatus validateStored(const CMOKTextureHeader& header, const LoadLimits& limits, std::uint64_t needed,
                           std::uint64_t remaining);

/// A zeroed texture of the header for stored subresources. For the few formats that getDataSize() counts in another way (BC6,
/// BC7, ETC2 and its like, shared exponents, RGBG) its buffer is larger than the header's data size: such a texture can be saved
/// and described, and every operation refuses it.
CMOKTexture makeStoredTexture(const CMOKTextureHeader& header);

/// The stored subresource; null where the texture's buffer is not that of makeStoredTexture().
unsigned char* storedSubresource(CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face);
const unsigned char* storedSubresource(const CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face);

/// Whether published containers know the shape: sizes and counts of 1 or more, 1 face or 6 square ones of depth 1, and no more
/// levels than halve the largest edge to 1.
bool hasPublishedShape(const CMOKTextureHeader& header);

/// Whether the buffer holds all stored subresources of the header.
bool hasStoredData(const CMOKTexture& texture);

}  // namespace moktexture
