#include "CMOKTexture.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"

namespace moktexture {

CMOKTexture::CMOKTexture() : dataSize(0), data(nullptr) {}

CMOKTexture::CMOKTexture(const CMOKTextureHeader& header, const void* pixels)
    : CMOKTextureHeader(header), dataSize(getDataSize()), data(TextureInternals::newBuffer(dataSize, pixels)) {}

CMOKTexture::CMOKTexture(const CMOKTexture& other)
    : CMOKTextureHeader(other),
      dataSize(other.dataSize),
      data(other.data == nullptr ? nullptr : TextureInternals::newBuffer(dataSize, other.data)) {}

CMOKTexture::CMOKTexture(CMOKTexture&& other) : CMOKTexture() {
    Swap(other);
}

CMOKTexture::~CMOKTexture() {
    std::free(data);
}

CMOKTexture& CMOKTexture::operator=(const CMOKTexture& other) {
    if (this == &other) return *this;
    CMOKTexture copy(other);
    Swap(copy);
    return *this;
}

CMOKTexture& CMOKTexture::operator=(CMOKTexture&& other) {
    if (this == &other) return *this;
    CMOKTexture taken(std::move(other));
    Swap(taken);
    return *this;
}

void CMOKTexture::Swap(CMOKTexture& other) noexcept {
    CMOKTextureHeader::Swap(other);
    std::swap(dataSize, other.dataSize);
    std::swap(data, other.data);
}

void* CMOKTexture::getDataPtr(unsigned int mipLevel, unsigned int arrayMember, unsigned int face) const {
    if (mipLevel == 0xFFFFFFFFu || data == nullptr) return nullptr;
    // Sizes repeat every 32 levels: the offset of a level far out of range takes no longer than that of another.
    const auto sizeOfLevels = [this](unsigned int count) {
        std::uint32_t size = 0;
        for (unsigned int level = 0; level < count; ++level)
            size += getDataSize(static_cast<int>(level), true, true);
        return size;
    };
    const int level = static_cast<int>(mipLevel);
    std::uint32_t offset = sizeOfLevels(mipLevel % 32);
    if (mipLevel >= 32) offset += mipLevel / 32 * sizeOfLevels(32);
    offset += arrayMember * getDataSize(level, false, true);
    offset += face * getDataSize(level, false, false);
    return data + offset;
}

const CMOKTextureHeader& CMOKTexture::getHeader() const {
    return *this;
}

// --- TextureInternals: the pixel buffer

unsigned char* TextureInternals::newBuffer(std::uint64_t size, const void* content) {
    if (size > std::numeric_limits<std::size_t>::max()) throw std::bad_alloc();
    const std::size_t bytes = size == 0 ? 1 : static_cast<std::size_t>(size);
    // calloc() commits no memory for zero pages, so that a header that declares more than its file holds costs little.
    void* const buffer = content == nullptr ? std::calloc(bytes, 1) : std::malloc(bytes);
    if (buffer == nullptr) throw std::bad_alloc();
    if (content != nullptr) std::memcpy(buffer, content, static_cast<std::size_t>(size));
    return static_cast<unsigned char*>(buffer);
}

bool TextureInternals::hasValidPixelData(const CMOKTexture& texture) {
    if (texture.data == nullptr || !sizesFit32Bits(texture)) return false;
    const std::uint64_t size = texture.getDataSize();
    return size != 0 && size <= texture.dataSize;
}

void TextureInternals::allocate(CMOKTexture& texture) {
    allocate(texture, texture.getDataSize());
}

void TextureInternals::allocate(CMOKTexture& texture, std::uint64_t size) {
    unsigned char* const buffer = newBuffer(size, nullptr);
    release(texture);
    texture.data = buffer;
    texture.dataSize = size;
}

void TextureInternals::release(CMOKTexture& texture) {
    std::free(texture.data);
    texture.data = nullptr;
    texture.dataSize = 0;
}

}  // namespace moktexture
