#pragma once

#include <cstdint>

#include "CMOKTexture.h"

namespace moktexture {

/// Gives the library's own modules access to a texture's buffer.
struct TextureInternals {
    /// Bytes in the buffer.
    static std::uint64_t dataSize(const CMOKTexture& texture) { return texture.dataSize; }
    static unsigned char* data(CMOKTexture& texture) { return texture.data; }
    static const unsigned char* data(const CMOKTexture& texture) { return texture.data; }

    /// Whether every pixel that the header describes lies in the buffer: there is a buffer, the sizes fit in 32 bits and are not
    /// 0, and the header describes no more bytes than the buffer has. To be called before pixels are accessed.
    static bool hasValidPixelData(const CMOKTexture& texture);

    /// Allocates a buffer, to be freed with std::free: a copy of `size` bytes of `content`, or zeroes if that is null.
    /// Never null, not even for 0 bytes. Raises `std::bad_alloc`.
    static unsigned char* newBuffer(std::uint64_t size, const void* content);
    /// Replaces the buffer by a zeroed one of the header's data size, which must fit in 32 bits.
    static void allocate(CMOKTexture& texture);
    /// Gives the texture a new zeroed buffer of another size.
    static void allocate(CMOKTexture& texture, std::uint64_t size);
    /// Frees the buffer.
    static void release(CMOKTexture& texture);
    /// Sets the size of a buffer that was not allocated, as a failed load leaves it.
    static void setDataSize(CMOKTexture& texture, std::uint64_t dataSize) { texture.dataSize = dataSize; }
};

}  // namespace moktexture
