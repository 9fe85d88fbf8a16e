#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>

#include "../core/native_image.h"
#include "support/temporary_folder.h"
#include "support/test_images.h"
#include "texture_io.h"

/// Files of other layouts, put together from words, and the doors that they go through.
namespace foreignimage {

using namespace moktexture;
using namespace nativeimage;

inline Bytes words(std::initializer_list<std::uint32_t> values) {
    Bytes bytes;
    for (const std::uint32_t value : values)
        append(bytes, &value, sizeof(value));
    return bytes;
}

inline Bytes operator+(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

inline void setWord(Bytes& bytes, std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

/// Loads from memory that is exactly as large as the image.
inline ELoadStatus load(const Bytes& image, CMOKTexture& texture, const LoadLimits& limits = {}) {
    const Bytes exact(image.begin(), image.end());
    static const unsigned char none = 0;
    return LoadTexture(texture, exact.empty() ? &none : exact.data(), exact.size(), limits);
}

/// A texture with random pixels, 9 by 5.
inline CMOKTexture random(const PixelType& format, EMOKTVariableType type, std::uint32_t levels, std::uint32_t members,
                          std::uint32_t faces, std::uint32_t depth = 1) {
    const CMOKTextureHeader header(format.id, 5, 9, depth, levels, members, faces, eColourSpaceSRGB, type, false);
    return CMOKTexture(header, testimages::randomBytes(header.getDataSize(), format.id + levels).data());
}

inline Bytes pixelsOf(const CMOKTexture& texture) {
    Bytes bytes;
    if (TextureInternals::data(texture) != nullptr)
        append(bytes, TextureInternals::data(texture), TextureInternals::dataSize(texture));
    return bytes;
}

/// The image that SaveTexture() writes; empty if it gives false. saveFile() must write the same.
inline Bytes save(const CMOKTexture& texture, const std::string& extension) {
    const TemporaryFolder folder;
    Bytes image;
    const bool saved = SaveTexture(texture, extension.c_str(), image);
    EXPECT_EQ(texture.saveFile(folder.path("texture." + extension).c_str()), saved);
    EXPECT_EQ(folder.read("texture." + extension), image);
    return image;
}

/// A word of a head that is changed, and what becomes of the file.
struct HeadCase {
    std::size_t offset;
    std::uint32_t value;
    ELoadStatus status;
    std::int64_t size;  ///< of the constructor's buffer; -1: none
    bool isDefault = false;
};

inline void tryHeads(const Bytes& image, const std::string& name, std::initializer_list<HeadCase> cases) {
    const TemporaryFolder folder;
    for (const HeadCase& item : cases) {
        SCOPED_TRACE(&item - cases.begin());
        Bytes changed = image;
        setWord(changed, item.offset, item.value);
        CMOKTexture loaded;
        EXPECT_EQ(load(changed, loaded), item.status);
        const CMOKTexture texture(folder.write(name, changed).c_str());
        EXPECT_EQ(TextureInternals::data(texture) == nullptr, item.size < 0);
        if (item.size >= 0) {
            EXPECT_EQ(TextureInternals::dataSize(texture), static_cast<std::uint64_t>(item.size));
        }
        EXPECT_EQ(contentsOf(texture) == contentsOf(CMOKTexture()), item.isDefault);
    }
}

/// Cuts an image everywhere, and changes random words and bytes of it: nothing may crash, hang or read outside.
/// Whatever both doors load must be the same, and every buffer as large as its header says.
inline void batter(const Bytes& image, const std::string& extension, std::size_t headSize) {
    const TemporaryFolder folder;
    constexpr std::uint32_t extremes[] = {0, 1, 2, 3, 6, 16, 255, 256, 65536, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    testimages::Random dice(headSize);
    const std::size_t runs = image.size() + 400;
    for (std::size_t run = 0; run < runs; ++run) {
        SCOPED_TRACE(run);
        Bytes changed(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(std::min(run, image.size())));
        if (run >= image.size()) {
            for (std::uint32_t changes = dice.below(3) + 1; changes > 0; --changes) {
                if (dice.below(2) == 0)
                    setWord(changed, 4 * dice.below(static_cast<std::uint32_t>(headSize / 4)), extremes[dice.below(13)]);
                else
                    changed[dice.below(static_cast<std::uint32_t>(headSize))] ^= static_cast<unsigned char>(1u << dice.below(8));
            }
        }
        const CMOKTexture fromFile(folder.write("changed." + extension, changed).c_str());
        EXPECT_EQ(TextureInternals::dataSize(fromFile), fromFile.getDataSize());
        CMOKTexture loaded, loadedFile;
        const LoadLimits limits = {.maxLevels = 255, .maxTotalSize = 1u << 24};
        const ELoadStatus status = load(changed, loaded, limits);
        const ELoadStatus fileStatus = LoadTextureFile(loadedFile, folder.path("changed." + extension).c_str(), limits);
        if (run < image.size()) {
            EXPECT_EQ(status, run == 0 ? eLoadUnknown : eLoadTruncated);
        }
        EXPECT_EQ(contentsOf(loaded) == contentsOf(CMOKTexture()), status != eLoadOk);
        if (status != eLoadOk || fileStatus != eLoadOk) continue;
        EXPECT_EQ(contentsOf(loaded), contentsOf(loadedFile));
        EXPECT_EQ(contentsOf(loaded), contentsOf(fromFile));
    }
}

}  // namespace foreignimage
