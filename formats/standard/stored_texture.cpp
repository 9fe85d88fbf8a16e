#include "formats/standard/stored_texture.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"

namespace moktexture {
namespace {

constexpr std::uint64_t tooLarge = std::numeric_limits<std::uint64_t>::max();

std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product = 0;
    return __builtin_mul_overflow(a, b, &product) ? tooLarge : product;
}

std::uint64_t add(std::uint64_t a, std::uint64_t b) {
    std::uint64_t sum = 0;
    return __builtin_add_overflow(a, b, &sum) ? tooLarge : sum;
}

std::uint64_t blocksOver(std::uint64_t pixels, std::uint32_t block) {
    return (pixels + block - 1) / block;
}

}  // namespace

StoredLayout::StoredLayout(const CMOKTextureHeader& header) : block(storedBlock(header.getPixelType())) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    width = record.width;
    height = record.height;
    depth = record.depth;
    layers = record.numArrayMembers;
    faces = record.numFaces;
    levels = record.numMIPLevels;
}

std::uint64_t StoredLayout::rowBytes(std::uint32_t level) const {
    return multiply(blocksOver(levelDimension(width, level), block.width), block.bytes);
}

std::uint64_t StoredLayout::rows(std::uint32_t level) const {
    return blocksOver(levelDimension(height, level), block.height);
}

std::uint64_t StoredLayout::slices(std::uint32_t level) const {
    return levelDimension(depth, level);
}

std::uint64_t StoredLayout::subresourceBytes(std::uint32_t level) const {
    return multiply(multiply(rowBytes(level), rows(level)), slices(level));
}

std::uint64_t StoredLayout::levelBytes(std::uint32_t level) const {
    return multiply(multiply(subresourceBytes(level), layers), faces);
}

std::uint64_t StoredLayout::offset(std::uint32_t level, std::uint32_t layer, std::uint32_t face) const {
    std::uint64_t start = 0;
    for (std::uint32_t before = 0; before < level; ++before)
        start = add(start, levelBytes(before));
    return add(start, multiply(subresourceBytes(level), std::uint64_t{layer} * faces + face));
}

std::uint64_t StoredLayout::totalBytes() const {
    return offset(levels, 0, 0);
}

ELoadStatus validateStored(const CMOKTextureHeader& header, const LoadLimits& limits, std::uint64_t needed,
                           std::uint64_t remaining) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    if (record.width == 0 || record.height == 0 || record.depth == 0 || record.numArrayMembers == 0 || record.numFaces == 0 ||
        record.numMIPLevels == 0)
        return eLoadCorrupt;
    if (std::max({record.width, record.height, record.depth}) > limits.maxEdge || record.numMIPLevels > limits.maxLevels ||
        record.numMIPLevels > maxMIPLevels || record.numArrayMembers > limits.maxMembers)
        return eLoadTooLarge;
    if (storedBlock(header.getPixelType()).bytes == 0) return eLoadUnsupported;
    const std::uint64_t total = StoredLayout(header).totalBytes();
    if (total > limits.maxTotalSize || total > std::numeric_limits<std::uint32_t>::max() || !sizesFit32Bits(header))
        return eLoadTooLarge;
    return needed > remaining ? eLoadTruncated : eLoadOk;
}

bool hasPublishedShape(const CMOKTextureHeader& header) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    const bool isCube = record.numFaces == 6 && record.width == record.height && record.depth == 1;
    const std::uint32_t edge = std::max({record.width, record.height, record.depth});
    return std::min({record.width, record.height, record.depth, record.numArrayMembers, record.numMIPLevels}) > 0 &&
           (record.numFaces == 1 || isCube) && record.numMIPLevels <= static_cast<std::uint32_t>(std::bit_width(edge));
}

CMOKTexture makeStoredTexture(const CMOKTextureHeader& header) {
    const std::uint64_t stored = StoredLayout(header).totalBytes();
    if (stored == header.getDataSize()) return CMOKTexture(header, nullptr);
    CMOKTexture texture;
    static_cast<CMOKTextureHeader&>(texture) = header;
    TextureInternals::allocate(texture, stored);
    return texture;
}

bool hasStoredData(const CMOKTexture& texture) {
    return TextureInternals::data(texture) != nullptr && sizesFit32Bits(texture) &&
           storedBlock(texture.getPixelType()).bytes != 0 &&
           TextureInternals::dataSize(texture) == StoredLayout(texture).totalBytes();
}

const unsigned char* storedSubresource(const CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face) {
    if (!hasStoredData(texture)) return nullptr;
    return TextureInternals::data(texture) + StoredLayout(texture).offset(level, layer, face);
}

unsigned char* storedSubresource(CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face) {
    return const_cast<unsigned char*>(storedSubresource(static_cast<const CMOKTexture&>(texture), level, layer, face));
}

}  // namespace moktexture
