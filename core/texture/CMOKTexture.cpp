#include "CMOKTexture.h"

#include <cstdlib>
#include <utility>

#include "core/texture/TextureInternals.h"

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
    // Sizes repeat every 32 levels, so that a level far out of range takes no longer than another.
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

}  // namespace moktexture
