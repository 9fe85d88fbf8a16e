// The metadata of a texture header: the library's own five topics, and blocks of any owner.

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>

#include "CMOKTextureHeader.h"

namespace moktexture {
namespace {

// Keys of the library's own topics, under the FourCC MOKTextureHeaderV3::magic.
constexpr unsigned int atlasKey = 0;
constexpr unsigned int bumpMapKey = 1;
constexpr unsigned int cubeMapOrderKey = 2;
constexpr unsigned int orientationKey = 3;
constexpr unsigned int borderKey = 4;

// Kept: a fresh cube map order carries the bump map's key into files, where readers have always met it.
constexpr unsigned int cubeMapOrderStoredKey = bumpMapKey;

constexpr std::size_t bumpMapOrderLength = 4;
constexpr std::size_t cubeMapOrderLength = 6;

/// Bytes that a block takes in a file.
std::uint32_t sizeInFile(const MetaDataBlock& block) {
    return 12u + block.dataSize;
}

/// `Size` bytes of the block's payload from `offset`; zeroes where it is shorter.
template <std::size_t Size>
std::array<unsigned char, Size> payloadBytes(const MetaDataBlock& block, std::size_t offset) {
    std::array<unsigned char, Size> bytes{};
    if (block.data != nullptr && offset < block.dataSize)
        std::memcpy(bytes.data(), block.data + offset, std::min<std::size_t>(Size, block.dataSize - offset));
    return bytes;
}

/// The payload's bytes from `offset` up to the first zero, `Size` at most.
template <std::size_t Size>
CMOKTString payloadLetters(const MetaDataBlock& block, std::size_t offset) {
    std::array<char, Size + 1> letters{};
    std::memcpy(letters.data(), payloadBytes<Size>(block, offset).data(), Size);
    return CMOKTString(letters.data());
}

}  // namespace

const MetaDataBlock* CMOKTextureHeader::findBlock(unsigned int fourCC, unsigned int key) const {
    // Kept: asking makes the FourCC's entry, and its place in the order that files are written in.
    const auto& blocks = metaData[fourCC];
    const unsigned int index = blocks.GetIndexOf(key);
    return index < blocks.GetSize() ? blocks.GetDataAtIndex(index) : nullptr;
}

const MetaDataBlock* CMOKTextureHeader::findTopic(unsigned int key) const {
    return findBlock(MOKTextureHeaderV3::magic, key);
}

void CMOKTextureHeader::setTopic(unsigned int key, unsigned int storedKey, const void* payload, std::uint32_t payloadSize) {
    auto newData = std::make_unique<unsigned char[]>(payloadSize);
    if (payload != nullptr) std::copy_n(static_cast<const unsigned char*>(payload), payloadSize, newData.get());

    MetaDataBlock& block = metaData[MOKTextureHeaderV3::magic][key];
    if (block.data != nullptr) {
        record.metaDataSize -= sizeInFile(block);
        delete[] block.data;
    } else {
        block.fourCC = MOKTextureHeaderV3::magic;
        block.key = storedKey;
    }
    block.dataSize = payloadSize;
    block.data = newData.release();
    record.metaDataSize += sizeInFile(block);
}

EMOKTOrientation CMOKTextureHeader::getOrientation(EMOKTAxis axis) const {
    const MetaDataBlock* const block = findTopic(orientationKey);
    return static_cast<EMOKTOrientation>(block == nullptr ? 0u : payloadBytes<1>(*block, axis)[0]);
}

bool CMOKTextureHeader::isBumpMap() const {
    return findTopic(bumpMapKey) != nullptr;
}

float CMOKTextureHeader::getBumpMapScale() const {
    float scale = 0.0f;
    if (const MetaDataBlock* const block = findTopic(bumpMapKey))
        std::memcpy(&scale, payloadBytes<sizeof(scale)>(*block, 0).data(), sizeof(scale));
    return scale;
}

CMOKTString CMOKTextureHeader::getBumpMapOrder() const {
    const MetaDataBlock* const block = findTopic(bumpMapKey);
    return block == nullptr ? CMOKTString() : payloadLetters<bumpMapOrderLength>(*block, sizeof(float));
}

int CMOKTextureHeader::getNumTextureAtlasMembers() const {
    const MetaDataBlock* const block = findTopic(atlasKey);
    if (block == nullptr || block->data == nullptr) return 0;
    // Kept: a texture of one pixel has no atlas, whatever is stored; its header is then no more than a default one.
    if (getWidth() < 2 && getHeight() < 2 && getDepth() < 2) return 0;
    return static_cast<int>(block->dataSize / sizeof(float));
}

const float* CMOKTextureHeader::getTextureAtlasData() const {
    const MetaDataBlock* const block = findTopic(atlasKey);
    return block == nullptr ? nullptr : reinterpret_cast<const float*>(block->data);
}

CMOKTString CMOKTextureHeader::getCubeMapOrder() const {
    if (getNumFaces() < 2) return CMOKTString();
    const MetaDataBlock* const block = findTopic(cubeMapOrderKey);
    return block == nullptr ? CMOKTString() : payloadLetters<cubeMapOrderLength>(*block, 0);
}

void CMOKTextureHeader::getBorder(unsigned int& x, unsigned int& y, unsigned int& z) const {
    std::array<unsigned int, 3> border{};
    if (const MetaDataBlock* const block = findTopic(borderKey))
        std::memcpy(border.data(), payloadBytes<sizeof(border)>(*block, 0).data(), sizeof(border));
    x = border[0];
    y = border[1];
    z = border[2];
}

MetaDataBlock CMOKTextureHeader::getMetaData(unsigned int fourCC, unsigned int key) const {
    // Kept: asking for a block that is not there inserts an empty one, without counting it.
    const MetaDataBlock& stored = metaData[fourCC][key];
    MetaDataBlock block;
    block.data = new unsigned char[stored.dataSize]();
    block.fourCC = stored.fourCC;
    block.key = stored.key;
    block.dataSize = stored.dataSize;
    if (stored.data != nullptr) std::copy_n(stored.data, stored.dataSize, block.data);
    return block;
}

bool CMOKTextureHeader::hasMetaData(unsigned int fourCC, unsigned int key) const {
    return findBlock(fourCC, key) != nullptr;
}

const CMOKTextureHeader::MetaDataMap& CMOKTextureHeader::getMetaDataMap() const {
    return metaData;
}

void CMOKTextureHeader::setOrientation(EMOKTOrientation orientation) {
    const std::array<unsigned char, 3> axes = {static_cast<unsigned char>(orientation & eOrientLeft),
                                               static_cast<unsigned char>(orientation & eOrientUp),
                                               static_cast<unsigned char>(orientation & eOrientOut)};
    setTopic(orientationKey, orientationKey, axes.data(), static_cast<std::uint32_t>(axes.size()));
}

void CMOKTextureHeader::setBumpMap(float bumpScale, CMOKTString bumpOrder) {
    std::array<unsigned char, sizeof(float) + bumpMapOrderLength> payload{};
    std::memcpy(payload.data(), &bumpScale, sizeof(bumpScale));
    std::memcpy(payload.data() + sizeof(bumpScale), bumpOrder.data(), std::min(bumpOrder.length(), bumpMapOrderLength));
    setTopic(bumpMapKey, bumpMapKey, payload.data(), static_cast<std::uint32_t>(payload.size()));
}

void CMOKTextureHeader::setTextureAtlas(const float* data, unsigned int count) {
    setTopic(atlasKey, atlasKey, data, count * static_cast<std::uint32_t>(sizeof(float)));
}

void CMOKTextureHeader::setCubeMapOrder(CMOKTString order) {
    const std::size_t length = std::min(order.length(), cubeMapOrderLength);
    setTopic(cubeMapOrderKey, cubeMapOrderStoredKey, order.data(), static_cast<std::uint32_t>(length));
}

void CMOKTextureHeader::setBorder(unsigned int x, unsigned int y, unsigned int z) {
    const std::array<unsigned int, 3> border = {x, y, z};
    setTopic(borderKey, borderKey, border.data(), sizeof(border));
}

void CMOKTextureHeader::addMetaData(const MetaDataBlock& block) {
    // Copied first, since the block may lie in this very map, whose arrays may grow.
    MetaDataBlock copy(block);
    MetaDataBlock& entry = metaData[copy.fourCC][copy.key];
    entry.fourCC = copy.fourCC;
    entry.key = copy.key;
    entry.dataSize = copy.dataSize;
    std::swap(entry.data, copy.data);
    // Kept: the size of a block that is replaced stays counted; files are written with that sum.
    record.metaDataSize += sizeInFile(entry);
}

void CMOKTextureHeader::removeMetaData(const unsigned int& fourCC, const unsigned int& key) {
    // The references may lie in a block of this very map.
    const unsigned int blockKey = key;
    auto& blocks = metaData[fourCC];
    const std::uint32_t removedSize = sizeInFile(blocks[blockKey]);
    blocks.Remove(blockKey);
    // Kept: removing a block that is absent takes off 12 as well, and the count may wrap; so does a removal that the map refuses.
    record.metaDataSize -= removedSize;
}

}  // namespace moktexture
