#include "texture_io.h"

#include <array>
#include <string>

#include "core/io/byte_stream.h"
#include "core/io/native_file.h"
#include "core/texture/TextureInternals.h"
#include "formats/c_source/c_source_file.h"
#include "formats/dds/dds_file.h"
#include "formats/ktx/ktx_file.h"
#include "formats/mok_file.h"
#include "formats/texture_path.h"

namespace moktexture {
namespace {

/// What the first bytes say of a layout.
struct FirstBytes {
    std::uint32_t word = 0;
    std::size_t count = 0;
};

FirstBytes peek(ByteReader& source) {
    FirstBytes first;
    first.count = source.read(&first.word, sizeof(first.word));
    source.seek(0);
    return first;
}

/// Whether so few bytes are those of a known layout.
bool startsKnownLayout(const FirstBytes& first) {
    const std::uint32_t mask = (1u << (8 * first.count)) - 1;
    const auto starts = [&](std::uint32_t word) { return (word & mask) == first.word; };
    return first.count > 0 &&
           (starts(MOKTextureHeaderV3::magic) || starts(ktxFirstWord) || starts(ddsFirstWord) || starts(44) || starts(52));
}

FileLayout layoutOf(const FirstBytes& first) {
    if (first.word == ktxFirstWord) return FileLayout::ktx;
    return first.word == ddsFirstWord ? FileLayout::dds : FileLayout::native;
}

/// Loads a file of a layout into a texture that stays untouched on failure.
ELoadStatus loadStrictly(CMOKTexture& texture, ByteReader& source, FileLayout layout, const LoadLimits& limits) {
    CMOKTexture loaded;
    ELoadStatus status = eLoadOk;
    if (layout == FileLayout::ktx)
        status = readKTXFile(source, &limits, loaded);
    else if (layout == FileLayout::dds)
        status = readDDSFile(source, &limits, loaded);
    else
        status = readMOKFile(source, NativeReadRules::strict(limits), &limits, loaded);
    if (status == eLoadOk) texture.Swap(loaded);
    return status;
}

bool write(const CMOKTexture& texture, FileLayout layout, ByteWriter& target) {
    switch (layout) {
        case FileLayout::native:
            return writeNativeFile(texture, target);
        case FileLayout::ktx:
            return writeKTXFile(texture, target);
        case FileLayout::dds:
            return writeDDSFile(texture, target);
        case FileLayout::cHeader:
            return writeCSource(texture, "texture", target);
        case FileLayout::other:
            return false;
    }
    return false;
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
        "The file is of a variant of its layout, or has a pixel format, that is not read.",
    };
    return status < sentences.size() ? sentences[status] : "The status is unknown.";
}

ELoadStatus LoadTexture(CMOKTexture& texture, const void* image, std::size_t size, const LoadLimits& limits) {
    if (image == nullptr) return eLoadUnreadable;
    MemoryReader source(image, size);
    const FirstBytes first = peek(source);
    if (first.count < sizeof(first.word)) return startsKnownLayout(first) ? eLoadTruncated : eLoadUnknown;
    return loadStrictly(texture, source, layoutOf(first), limits);
}

ELoadStatus LoadTextureFile(CMOKTexture& texture, const char* filePath, const LoadLimits& limits) {
    if (filePath == nullptr) return eLoadUnreadable;
    const FileHandle file(std::fopen(filePath, "rb"));
    if (file == nullptr) return eLoadUnreadable;
    FileReader source(file.get());
    return loadStrictly(texture, source, fileLayoutForLoading(filePath), limits);
}

bool SaveTexture(const CMOKTexture& texture, const char* extension, std::vector<unsigned char>& image) {
    if (extension == nullptr) return false;
    const std::string name(extension[0] == '.' ? extension + 1 : extension);
    // "a.mok" is a path, and no extension.
    if (name.find('.') != std::string::npos || TextureInternals::data(texture) == nullptr) return false;
    std::vector<unsigned char> written;
    written.reserve(static_cast<std::size_t>(sizeof(MOKTextureHeaderV3) + TextureInternals::dataSize(texture)));
    MemoryWriter target(written);
    if (!write(texture, fileLayoutForSaving(name), target)) return false;
    image.swap(written);
    return true;
}

}  // namespace moktexture
