#include "CMOKTextureHeader.h"

#include <utility>

#include "core/base/numeric.h"
#include "core/texture/subresources.h"

namespace moktexture {
namespace {

/// Bits of one face of one level, wrapped at 32 bits.
std::uint32_t levelBits(const MOKTextureHeaderV3& record, unsigned int bits, const BlockSize& block, std::uint32_t level) {
    return bits * roundUp(levelDimension(record.depth, level), block.depth) *
           roundUp(levelDimension(record.height, level), block.height) *
           roundUp(levelDimension(record.width, level), block.width);
}

}  // namespace

CMOKTextureHeader::CMOKTextureHeader() = default;

CMOKTextureHeader::CMOKTextureHeader(const CMOKTextureHeader& other) = default;

CMOKTextureHeader::CMOKTextureHeader(std::uint64_t pixelFormat, std::uint32_t height, std::uint32_t width, std::uint32_t depth,
                                     std::uint32_t numMIPLevels, std::uint32_t numArrayMembers, std::uint32_t numFaces,
                                     EMOKTColourSpace colourSpace, EMOKTVariableType channelType, bool preMultiplied) {
    record.flags = preMultiplied ? MOKTextureHeaderV3::premultipliedFlag : 0;
    record.pixelFormat = pixelFormat;
    record.colourSpace = colourSpace;
    record.channelType = channelType;
    record.height = height;
    record.width = width;
    record.depth = depth;
    record.numArrayMembers = numArrayMembers;
    record.numFaces = numFaces;
    record.numMIPLevels = numMIPLevels;
}

// Kept (header-record-counts-blocks-twice): a `metaDataSize` that is not 0 stays and the blocks are added to it; hosts that pass
// a record with 0 there get the right sum, and native files hold the sum as it is.
CMOKTextureHeader::CMOKTextureHeader(MOKTextureHeaderV3 fileHeader, unsigned int count, const MetaDataBlock* blocks)
    : record(fileHeader) {
    if (blocks == nullptr) return;
    for (unsigned int i = 0; i < count; ++i)
        addMetaData(blocks[i]);
}

CMOKTextureHeader::~CMOKTextureHeader() = default;

CMOKTextureHeader& CMOKTextureHeader::operator=(const CMOKTextureHeader& other) {
    if (this == &other) return *this;
    CMOKTextureHeader copy(other);
    Swap(copy);
    return *this;
}

void CMOKTextureHeader::Swap(CMOKTextureHeader& other) noexcept {
    std::swap(record, other.record);
    metaData.Swap(other.metaData);
}

MOKTextureHeaderV3 CMOKTextureHeader::getFileHeader() const {
    return record;
}

PixelType CMOKTextureHeader::getPixelType() const {
    return PixelType(record.pixelFormat);
}

unsigned int CMOKTextureHeader::getBitsPerPixel() const {
    return bitsPerPixel(getPixelType());
}

EMOKTColourSpace CMOKTextureHeader::getColourSpace() const {
    return static_cast<EMOKTColourSpace>(record.colourSpace);
}

EMOKTVariableType CMOKTextureHeader::getChannelType() const {
    return static_cast<EMOKTVariableType>(record.channelType);
}

// Kept (header-one-level-past-last): the level after the last one has a size too; hosts that extend a chain query it before
// they raise the count.
std::uint32_t CMOKTextureHeader::getWidth(std::uint32_t level) const {
    return level > record.numMIPLevels ? 0 : levelDimension(record.width, level);
}

std::uint32_t CMOKTextureHeader::getHeight(std::uint32_t level) const {
    return level > record.numMIPLevels ? 0 : levelDimension(record.height, level);
}

std::uint32_t CMOKTextureHeader::getDepth(std::uint32_t level) const {
    return level > record.numMIPLevels ? 0 : levelDimension(record.depth, level);
}

std::uint32_t CMOKTextureHeader::getNumArrayMembers() const {
    return record.numArrayMembers;
}

std::uint32_t CMOKTextureHeader::getNumFaces() const {
    return record.numFaces;
}

std::uint32_t CMOKTextureHeader::getNumMIPLevels() const {
    return record.numMIPLevels;
}

std::uint32_t CMOKTextureHeader::getDataSize(int level, bool allSurfaces, bool allFaces) const {
    const PixelType format = getPixelType();
    const unsigned int bits = bitsPerPixel(format);
    const BlockSize block = minimumBlock(format);
    std::uint32_t size = 0;
    if (level != allLevels) {
        size = levelBits(record, bits, block, static_cast<std::uint32_t>(level));
    } else if (record.numMIPLevels <= maxMIPLevels) {
        for (std::uint32_t i = 0; i < record.numMIPLevels; ++i)
            size += levelBits(record, bits, block, i);
    }
    // Kept (header-bits-summed-over-levels): the bits of all levels are summed before they become bytes, so that levels below a
    // byte count together; this is the number of bytes of pixel data in a native file.
    size >>= 3;
    if (allSurfaces) size *= record.numArrayMembers;
    if (allFaces) size *= record.numFaces;
    return size;
}

std::uint32_t CMOKTextureHeader::getTextureSize(int level, bool allSurfaces, bool allFaces) const {
    const unsigned int bits = getBitsPerPixel();
    return bits == 0 ? 0 : getDataSize(level, allSurfaces, allFaces) * 8u / bits;
}

bool CMOKTextureHeader::isFileCompressed() const {
    return (record.flags & MOKTextureHeaderV3::fileCompressedFlag) != 0;
}

bool CMOKTextureHeader::isPreMultiplied() const {
    return (record.flags & MOKTextureHeaderV3::premultipliedFlag) != 0;
}

std::uint32_t CMOKTextureHeader::getMetaDataSize() const {
    return record.metaDataSize;
}

void CMOKTextureHeader::setPixelFormat(PixelType format) {
    record.pixelFormat = format.id;
}

void CMOKTextureHeader::setColourSpace(EMOKTColourSpace colourSpace) {
    record.colourSpace = colourSpace;
}

void CMOKTextureHeader::setChannelType(EMOKTVariableType channelType) {
    record.channelType = channelType;
}

void CMOKTextureHeader::setWidth(std::uint32_t newWidth) {
    record.width = newWidth;
}

void CMOKTextureHeader::setHeight(std::uint32_t newHeight) {
    record.height = newHeight;
}

void CMOKTextureHeader::setDepth(std::uint32_t newDepth) {
    record.depth = newDepth;
}

void CMOKTextureHeader::setNumArrayMembers(std::uint32_t newNumMembers) {
    record.numArrayMembers = newNumMembers;
}

void CMOKTextureHeader::setNumMIPLevels(std::uint32_t newNumMIPLevels) {
    record.numMIPLevels = newNumMIPLevels;
}

void CMOKTextureHeader::setNumFaces(std::uint32_t newNumFaces) {
    record.numFaces = newNumFaces;
}

// Kept (header-clear-clears-both-flags): clearing either flag clears both; hosts set the other one again, and the flags in a
// native file depend on it.
void CMOKTextureHeader::setIsFileCompressed(bool isFileCompressed) {
    record.flags = isFileCompressed ? record.flags | MOKTextureHeaderV3::fileCompressedFlag : 0;
}

void CMOKTextureHeader::setIsPreMultiplied(bool isPreMultiplied) {
    record.flags = isPreMultiplied ? record.flags | MOKTextureHeaderV3::premultipliedFlag : 0;
}

}  // namespace moktexture
