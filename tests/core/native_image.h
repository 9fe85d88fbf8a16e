#pragma once

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "CMOKTexture.h"
#include "core/TextureInternals.h"

/// Native files laid out by hand, and what is in a texture.
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

/// Record, blocks and pixels, back to back. The record's `metaDataSize` is the caller's.
inline Bytes make(const MOKTextureHeaderV3& record, const std::vector<Block>& blocks, const Bytes& pixels) {
    Bytes image;
    append(image, &record, sizeof(record));
    for (const Block& block : blocks) {
        const auto size = static_cast<std::uint32_t>(block.payload.size());
        for (const std::uint32_t word : {block.fourCC, block.key, size})
            append(image, &word, sizeof(word));
        append(image, block.payload.data(), size);
    }
    append(image, pixels.data(), pixels.size());
    return image;
}

/// Everything in a texture, in comparable form: record, blocks in order, and the buffer.
struct Contents {
    Bytes record, metaData, pixels;
    bool hasBuffer;
    std::uint64_t dataSize;
    bool operator==(const Contents&) const = default;
};

inline Contents contentsOf(const moktexture::CMOKTexture& texture) {
    using moktexture::TextureInternals;
    Contents contents{{}, {}, {}, TextureInternals::data(texture) != nullptr, TextureInternals::dataSize(texture)};
    const MOKTextureHeaderV3 record = texture.getFileHeader();
    append(contents.record, &record, sizeof(record));
    const auto& owners = texture.getMetaDataMap();
    for (unsigned int owner = 0; owner < owners.GetSize(); ++owner) {
        for (unsigned int i = 0; i < owners.GetDataAtIndex(owner)->GetSize(); ++i) {
            const MetaDataBlock& block = *owners.GetDataAtIndex(owner)->GetDataAtIndex(i);
            append(contents.metaData, &block, 12);
            if (block.data != nullptr) append(contents.metaData, block.data, block.dataSize);
        }
    }
    if (contents.hasBuffer) append(contents.pixels, TextureInternals::data(texture), contents.dataSize);
    return contents;
}

/// A folder of its own that goes away with the object.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& name) : folder(std::filesystem::temp_directory_path() / ("moktex_" + name)) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    ~TemporaryFolder() { std::filesystem::remove_all(folder); }
    std::string path(const std::string& name) const { return (folder / name).string(); }
    std::string write(const std::string& name, const Bytes& bytes) const {
        std::ofstream file(path(name), std::ios::binary);
        std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
        return path(name);
    }
    Bytes read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), {});
    }

private:
    std::filesystem::path folder;
};

}  // namespace nativeimage
