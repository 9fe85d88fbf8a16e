// The metadata of a texture header: a map of maps, FourCC -> key -> MetaDataBlock, both in order of insertion, which is the order
// of the blocks in a native file. The FourCC names the owner. Five keys of the library's own FourCC are the topics:
//
//   key  topic            payload
//     0  texture atlas    n floats
//     1  bump map         scale (float), channel order (4 letters, zero-filled)
//     2  cube map order   up to 6 face letters
//     3  orientation      3 bytes for x, y and z: 0 or the axis's bit of EMOKTOrientation
//     4  border           3 unsigned 32-bit numbers: pixels along x, y and z
//
// metaDataSize of the header record is a running sum of 12 bytes and the payload per block, kept by the setters; it is not
// computed from the map.

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utility>

#include "CMOKTextureHeader.h"

namespace {

/// A copy of the block's payload, or null if it has none.
unsigned char* copyPayload(const MetaDataBlock& block) {
    if (block.data == nullptr) return nullptr;
    unsigned char* copy = new unsigned char[block.dataSize];
    std::copy_n(block.data, block.dataSize, copy);
    return copy;
}

}  // namespace

MetaDataBlock::MetaDataBlock() : fourCC(0), key(0), dataSize(0), data(nullptr) {}

MetaDataBlock::MetaDataBlock(const MetaDataBlock& other)
    : fourCC(other.fourCC), key(other.key), dataSize(other.dataSize), data(copyPayload(other)) {}

MetaDataBlock::~MetaDataBlock() {
    delete[] data;
    data = nullptr;
}

MetaDataBlock& MetaDataBlock::operator=(const MetaDataBlock& other) {
    if (this == &other) return *this;
    unsigned char* copy = copyPayload(other);
    delete[] data;
    fourCC = other.fourCC;
    key = other.key;
    dataSize = other.dataSize;
    data = copy;
    return *this;
}

static_assert(sizeof(MetaDataBlock) == 24);

namespace moktexture {
namespace {

// Keys of the library's own metadata, under the FourCC MOKTextureHeaderV3::magic.
constexpr unsigned int atlasKey = 0;
constexpr unsigned int bumpMapKey = 1;
constexpr unsigned int cubeMapOrderKey = 2;
constexpr unsigned int orientationKey = 3;
constexpr unsigned int borderKey = 4;

// Kept (metadata-cube-map-key): a new cube map order is stored in the block under the key of the bump map; a native file carries
// that key, and its readers find the order there, as a bump map.
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
    // Kept (metadata-getters-insert): a query inserts the FourCC's entry, which fixes its index; native files hold the blocks in
    // the order of these indices.
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
    // Kept (metadata-no-atlas-of-one-pixel): a texture of one pixel has no atlas, whatever is stored; hosts ask headers without
    // pixels too, whose dimensions are all 1.
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
    // Kept (metadata-get-inserts-block): a query for a missing block inserts an empty one without counting it; hasMetaData() is
    // true from then on, and saving the texture as a native file writes the block and fails.
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
    // Copied first: the block may lie in this map, whose arrays may be reallocated.
    MetaDataBlock copy(block);
    MetaDataBlock& entry = metaData[copy.fourCC][copy.key];
    entry.fourCC = copy.fourCC;
    entry.key = copy.key;
    entry.dataSize = copy.dataSize;
    std::swap(entry.data, copy.data);
    // Kept (metadata-replaced-block-counted): the size of the replaced block stays counted; the sum is the metaDataSize in a
    // native file, and getMetaDataSize() that of hosts that add it up themselves.
    record.metaDataSize += sizeInFile(entry);
}

void CMOKTextureHeader::removeMetaData(const unsigned int& fourCC, const unsigned int& key) {
    // The references may be fields of a block in this map.
    const unsigned int blockKey = key;
    auto& blocks = metaData[fourCC];
    const std::uint32_t removedSize = sizeInFile(blocks[blockKey]);
    blocks.Remove(blockKey);
    // Kept (metadata-remove-absent-subtracts): removing an absent block subtracts 12 as well, and the count may wrap; so does a
    // removal that the map refuses. The count is the metaDataSize of native files.
    record.metaDataSize -= removedSize;
}

}  // namespace moktexture
