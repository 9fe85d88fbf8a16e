#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>

#include "../core/native_image.h"
#include "support/temporary_folder.h"
#include "support/test_images.h"
#include "texture_io.h"

/// Files of all layouts, built from 32-bit words, and the functions that load and save them.
namespace layoutfiles {

using namespace moktexture;
using namespace nativeimage;

inline Bytes words(std::initializer_list<std::uint32_t> values) {
    Bytes bytes;
    append(bytes, values.begin(), values.size() * sizeof(std::uint32_t));
    return bytes;
}

inline Bytes operator+(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

inline void setWord(Bytes& bytes, std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

/// The texture that the constructor from a path loads from an image.
inline CMOKTexture loadLeniently(const Bytes& image, const std::string& name) {
    return CMOKTexture(TemporaryFolder().write(name, image).c_str());
}

/// Loads strictly, from memory that is exactly as large as the image.
inline ELoadStatus load(const Bytes& image, CMOKTexture& texture, const LoadLimits& limits = {}) {
    const Bytes exact(image.begin(), image.end());
    static const unsigned char none = 0;
    return LoadTexture(texture, exact.empty() ? &none : exact.data(), exact.size(), limits);
}

/// A texture with random pixels, 9 by 5.
inline CMOKTexture random(const PixelType& format, EMOKTVariableType type, std::uint32_t levels, std::uint32_t layers,
                          std::uint32_t faces, std::uint32_t depth = 1) {
    const CMOKTextureHeader header(format.id, 5, 9, depth, levels, layers, faces, eColourSpaceSRGB, type, false);
    return CMOKTexture(header, testimages::randomBytes(header.getDataSize(), format.id + levels).data());
}

inline Bytes pixelsOf(const CMOKTexture& texture) {
    const unsigned char* const data = TextureInternals::data(texture);
    return data == nullptr ? Bytes() : Bytes(data, data + TextureInternals::dataSize(texture));
}

/// The image that SaveTexture() writes; empty if it returns false. saveFile() must write the same.
inline Bytes save(const CMOKTexture& texture, const std::string& extension) {
    const TemporaryFolder folder;
    Bytes image;
    const bool saved = SaveTexture(texture, extension.c_str(), image);
    EXPECT_EQ(texture.saveFile(folder.path("texture." + extension).c_str()), saved);
    EXPECT_EQ(folder.read("texture." + extension), image);
    return image;
}

/// A header field that is overwritten, and the result of loading the file.
struct HeaderFieldCase {
    std::size_t offset;
    std::uint32_t value;
    ELoadStatus status;      ///< of the strict load
    std::int64_t size;       ///< of the buffer of the lenient load; -1: none
    bool isDefault = false;  ///< whether the lenient load leaves a default texture
};

inline void checkHeaderFields(const Bytes& image, const std::string& name, std::initializer_list<HeaderFieldCase> cases) {
    for (const HeaderFieldCase& item : cases) {
        SCOPED_TRACE(&item - cases.begin());
        Bytes changed = image;
        setWord(changed, item.offset, item.value);
        CMOKTexture loaded;
        EXPECT_EQ(load(changed, loaded), item.status);
        const CMOKTexture texture = loadLeniently(changed, name);
        const auto size = static_cast<std::int64_t>(TextureInternals::dataSize(texture));
        EXPECT_EQ(texture.getDataPtr() == nullptr ? -1 : size, item.size);
        EXPECT_EQ(contentsOf(texture) == contentsOf(CMOKTexture()), item.isDefault);
    }
}

}  // namespace layoutfiles
