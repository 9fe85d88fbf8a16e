#pragma once

#include <array>
#include <cstring>
#include <vector>

#include "core/io/native_file.h"
#include "core/texture/TextureInternals.h"

/// Native files built by hand, and the content of a texture.
namespace nativeimage {

using Bytes = std::vector<unsigned char>;

struct Block {
    std::uint32_t fourCC, key;
    Bytes payload;
};

inline void append(Bytes& bytes, const void* source, std::size_t count) {
    const auto* const first = static_cast<const unsigned char*>(source);
    bytes.insert(bytes.end(), first, first + count);
}

/// Record, blocks and pixels, back to back. The caller sets the record's `metaDataSize`.
inline Bytes make(const MOKTextureHeaderV3& record, const std::vector<Block>& blocks, const Bytes& pixels) {
    Bytes image;
    append(image, &record, sizeof(record));
    for (const Block& block : blocks) {
        const auto size = static_cast<std::uint32_t>(block.payload.size());
        append(image, std::array{block.fourCC, block.key, size}.data(), 12);
        append(image, block.payload.data(), size);
    }
    append(image, pixels.data(), pixels.size());
    return image;
}

/// Everything in a texture, in comparable form: record, blocks in order and buffer as a native file holds them.
struct Contents {
    Bytes image;
    bool hasBuffer;
    std::uint64_t dataSize;
    bool operator==(const Contents&) const = default;
};

inline Contents contentsOf(const moktexture::CMOKTexture& texture) {
    Contents contents{{}, texture.getDataPtr() != nullptr, moktexture::TextureInternals::dataSize(texture)};
    moktexture::MemoryWriter writer(contents.image);
    moktexture::writeNativeFile(texture, writer);
    return contents;
}

}  // namespace nativeimage
