#include "core/texture/TextureInternals.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "core/texture/data_size.h"

namespace moktexture {

unsigned char* TextureInternals::newBuffer(std::uint64_t size, const void* content) {
    if (size > std::numeric_limits<std::size_t>::max()) throw std::bad_alloc();
    const std::size_t bytes = size == 0 ? 1 : static_cast<std::size_t>(size);
    // Zero pages cost nothing until they are touched, which a header that promises more than its file holds relies on.
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
    const std::uint64_t size = texture.getDataSize();
    unsigned char* const buffer = newBuffer(size, nullptr);
    std::free(texture.data);
    texture.data = buffer;
    texture.dataSize = size;
}

void TextureInternals::release(CMOKTexture& texture) {
    std::free(texture.data);
    texture.data = nullptr;
    texture.dataSize = 0;
}

}  // namespace moktexture
