#include "CMOKTexture.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "core/TextureInternals.h"
#include "core/byte_stream.h"
#include "core/native_file.h"
#include "core/texture_path.h"

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

CMOKTexture::CMOKTexture(const char* filePath) : CMOKTexture() {
    if (filePath == nullptr || fileLayoutForLoading(filePath) != FileLayout::native) return;
    const FileHandle file(std::fopen(filePath, "rb"));
    privateLoadMOKFile(file.get());
}

CMOKTexture::CMOKTexture(const void* memoryImage) : CMOKTexture() {
    if (memoryImage == nullptr) return;
    MemoryReader reader(memoryImage, MemoryReader::unknownSize);
    readNativeFile(reader, NativeReadRules::memoryConstructor(), *this);
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

bool CMOKTexture::saveFile(const CMOKTString& filePath) const {
    std::string path(filePath.c_str());
    FileLayout layout = fileLayoutForSaving(path);
    if (layout == FileLayout::other) {
        // Kept: an unknown extension is no failure; callers rely on finding `picture.png.mok`.
        path += ".mok";
        layout = FileLayout::native;
    }
    if (layout != FileLayout::native) return false;
    FileHandle file(std::fopen(path.c_str(), "wb"));
    if (file == nullptr) return false;
    const bool saved = privateSaveMOKFile(file.get());
    return closeWritten(file) && saved;
}

bool CMOKTexture::privateLoadMOKFile(std::FILE* file) {
    if (file == nullptr) return false;
    FileReader reader(file);
    return readNativeFile(reader, NativeReadRules::fileConstructor(), *this) == eLoadOk;
}

bool CMOKTexture::privateSaveMOKFile(std::FILE* file) const {
    FileWriter writer(file);
    return writeNativeFile(*this, writer);
}

}  // namespace moktexture
