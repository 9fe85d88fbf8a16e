#include "texture_io.h"

#include <array>
#include <string>

#include "core/TextureInternals.h"
#include "core/byte_stream.h"
#include "core/native_file.h"
#include "core/texture_path.h"

namespace moktexture {
namespace {

ELoadStatus loadStrictly(CMOKTexture& texture, ByteReader& source, const LoadLimits& limits) {
    CMOKTexture loaded;
    const ELoadStatus status = readNativeFile(source, NativeReadRules::strict(limits), loaded);
    if (status == eLoadOk) texture.Swap(loaded);
    return status;
}

}  // namespace

const char* describe(ELoadStatus status) {
    static constexpr std::array<const char*, 7> sentences = {
        "The texture was loaded.",
        "The file cannot be opened or read.",
        "The data is not a texture file of a known kind.",
        "The data ends before the header, metadata or pixels that it announces.",
        "The data contradicts itself.",
        "The texture exceeds the limits; whatever these are, one face stays below 512 MiB, and all pixel data below 4 GiB.",
        "The file has a layout that this version does not read.",
    };
    return status < sentences.size() ? sentences[status] : "The status is unknown.";
}

ELoadStatus LoadTexture(CMOKTexture& texture, const void* image, std::size_t size, const LoadLimits& limits) {
    if (image == nullptr) return eLoadUnreadable;
    MemoryReader source(image, size);
    return loadStrictly(texture, source, limits);
}

ELoadStatus LoadTextureFile(CMOKTexture& texture, const char* filePath, const LoadLimits& limits) {
    if (filePath == nullptr) return eLoadUnreadable;
    const FileHandle file(std::fopen(filePath, "rb"));
    if (file == nullptr) return eLoadUnreadable;
    if (fileLayoutForLoading(filePath) != FileLayout::native) return eLoadUnsupported;
    FileReader source(file.get());
    return loadStrictly(texture, source, limits);
}

bool SaveTexture(const CMOKTexture& texture, const char* extension, std::vector<unsigned char>& image) {
    if (extension == nullptr) return false;
    const std::string name(extension[0] == '.' ? extension + 1 : extension);
    // "a.mok" is a path, and no extension.
    if (name.find('.') != std::string::npos || fileLayoutForSaving(name) != FileLayout::native) return false;
    if (TextureInternals::data(texture) == nullptr) return false;
    std::vector<unsigned char> written;
    written.reserve(static_cast<std::size_t>(sizeof(MOKTextureHeaderV3) + TextureInternals::dataSize(texture)));
    MemoryWriter target(written);
    if (!writeNativeFile(texture, target)) return false;
    image.swap(written);
    return true;
}

}  // namespace moktexture
