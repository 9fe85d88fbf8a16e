#pragma once

#include <cstdint>

#include "CMOKTexture.h"

namespace moktexture {

/// What the library's own modules may do with a texture beyond the exported interface.
struct TextureInternals {
    /// Bytes in the buffer.
    static std::uint64_t dataSize(const CMOKTexture& texture) { return texture.dataSize; }
    static unsigned char* data(CMOKTexture& texture) { return texture.data; }
    static const unsigned char* data(const CMOKTexture& texture) { return texture.data; }

    /// Whether every pixel that the header tells of lies in the buffer: there is a buffer, the sizes are true, not 0, and the
    /// header asks for no more bytes than the buffer holds. Whatever touches pixels asks this first.
    static bool hasValidPixelData(const CMOKTexture& texture);

    /// A new buffer for a texture, to be freed with std::free: a copy of `size` bytes of `content`, or zeroes if that is null.
    /// Never null, also for 0 bytes. Raises `std::bad_alloc`.
    static unsigned char* newBuffer(std::uint64_t size, const void* content);
    /// Gives the texture a new zeroed buffer of the header's data size, which must be true.
    static void allocate(CMOKTexture& texture);
    /// Frees the buffer.
    static void release(CMOKTexture& texture);
    /// Records the size of a buffer that was not allocated: what a failed load leaves.
    static void setDataSize(CMOKTexture& texture, std::uint64_t dataSize) { texture.dataSize = dataSize; }
};

}  // namespace moktexture
