#include "texture_io.h"

#include <array>
#include <string>

#include "core/io/byte_stream.h"
#include "core/texture/TextureInternals.h"
#include "formats/file_layout.h"

namespace moktexture {
namespace {

/// Loads strictly into a texture that is unchanged on failure. The first word tells the layout.
ELoadStatus loadByFirstWord(CMOKTexture& texture, ByteReader& source, const LoadLimits& limits) {
    std::uint32_t firstWord = 0;
    const std::size_t length = source.read(&firstWord, sizeof(firstWord));
    if (source.failed()) return eLoadUnreadable;
    if (length < sizeof(firstWord)) return startsFileLayout(firstWord, length) ? eLoadTruncated : eLoadUnknown;
    source.seek(0);
    const FileLayout layout = fileLayoutOfFirstWord(firstWord);
    CMOKTexture loaded;
    const ELoadStatus status = readPublishedFile(source, layout, ReadPolicy::strict(limits), loaded);
    if (status == eLoadOk) texture.Swap(loaded);
    return status;
}

}  // namespace

const char* describe(ELoadStatus status) {
    static constexpr std::array<const char*, 8> sentences = {
        "The texture was loaded.",
        "The file cannot be opened or read.",
        "The data is not a texture file of a known kind.",
        "The data ends before the header, metadata or pixels that it announces.",
        "The data contradicts itself.",
        "The texture exceeds the limits; whatever these are, one face stays below 512 MiB, and all pixel data below 4 GiB.",
        "The file is of a variant of its layout, or has a pixel format, that is not read.",
        "The file is compressed with Zstandard, which this build of the library does not read.",
    };
    return status < sentences.size() ? sentences[status] : "The status is unknown.";
}

ELoadStatus LoadTexture(CMOKTexture& texture, const void* image, std::size_t size, const LoadLimits& limits) {
    if (image == nullptr) return eLoadUnreadable;
    MemoryReader source(image, size);
    return loadByFirstWord(texture, source, limits);
}

ELoadStatus LoadTextureFile(CMOKTexture& texture, const char* filePath, const LoadLimits& limits) {
    if (filePath == nullptr) return eLoadUnreadable;
    const FileHandle file(std::fopen(filePath, "rb"));
    if (file == nullptr) return eLoadUnreadable;
    FileReader source(file.get());
    return loadByFirstWord(texture, source, limits);
}

bool SaveTexture(const CMOKTexture& texture, const char* extension, std::vector<unsigned char>& image) {
    if (extension == nullptr) return false;
    const std::string name(extension[0] == '.' ? extension + 1 : extension);
    // "a.mok" is a path, not an extension.
    if (name.find('.') != std::string::npos || TextureInternals::data(texture) == nullptr) return false;
    std::vector<unsigned char> written;
    written.reserve(static_cast<std::size_t>(sizeof(MOKTextureHeaderV3) + TextureInternals::dataSize(texture)));
    MemoryWriter target(written);
    if (!writeTextureFile(texture, fileLayoutForSaving(name), "texture", target)) return false;
    image.swap(written);
    return true;
}

}  // namespace moktexture
