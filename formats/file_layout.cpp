#include "formats/file_layout.h"

#include <algorithm>
#include <string_view>

#include "core/io/native_file.h"
#include "formats/c_source/c_source_file.h"
#include "formats/dds/dds_file.h"
#include "formats/ktx/ktx_file.h"
#include "formats/legacy/legacy_file.h"
#include "formats/standard/dds_standard_file.h"
#include "formats/standard/ktx1_standard_file.h"
#include "formats/standard/ktx2_file.h"

namespace moktexture {
namespace {

struct Extension {
    std::string_view name;
    FileLayout layout;
};

// clang-format off
constexpr Extension extensions[] = {
    {"ktx", FileLayout::ktx},
    {"dds", FileLayout::dds},
    {"h",   FileLayout::cHeader},
    {"mok", FileLayout::mok},
};
// clang-format on

char toLowerASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Reads a native or a legacy file, by its first word.
ELoadStatus readMOKFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture) {
    std::uint32_t word = 0;
    const bool isWord = source.readAll(&word, sizeof(word));
    if (source.failed()) return eLoadUnreadable;
    source.seek(0);
    return isWord && isLegacyFirstWord(word) ? readLegacyFile(source, policy, texture) : readNativeFile(source, policy, texture);
}

}  // namespace

FileLayout fileLayoutForSaving(const std::string& path) {
    // Without a '.', npos + 1 is the start of the path.
    std::string extension = path.substr(path.rfind('.') + 1);
    for (char& c : extension)
        c = toLowerASCII(c);
    for (const Extension& known : extensions) {
        if (extension == known.name) return known.layout;
    }
    return FileLayout::unknown;
}

FileLayout fileLayoutForLoading(const std::string& path) {
    if (path.find('.') == std::string::npos) return FileLayout::mok;
    const FileLayout layout = fileLayoutForSaving(path);
    return layout == FileLayout::ktx || layout == FileLayout::dds ? layout : FileLayout::mok;
}

FileLayout fileLayoutOfFirstWord(std::uint32_t firstWord) {
    if (firstWord == ktxFirstWord) return FileLayout::ktx;
    return firstWord == ddsFirstWord ? FileLayout::dds : FileLayout::mok;
}

bool startsFileLayout(std::uint32_t word, std::size_t length) {
    if (length == 0) return false;
    const std::uint32_t mask = (1u << (8 * length)) - 1;
    constexpr std::uint32_t firstWords[] = {MOKTextureHeaderV3::magic, ktxFirstWord, ddsFirstWord, legacySmallHeaderSize,
                                            legacyHeaderSize};
    return std::ranges::any_of(firstWords, [&](std::uint32_t known) { return (known & mask) == word; });
}

ELoadStatus readTextureFile(ByteReader& source, FileLayout layout, const ReadPolicy& policy, CMOKTexture& texture) {
    if (layout == FileLayout::ktx) return readKTXFile(source, policy, texture);
    if (layout == FileLayout::dds) return readDDSFile(source, policy, texture);
    return readMOKFile(source, policy, texture);
}

ELoadStatus readPublishedFile(ByteReader& source, FileLayout layout, const ReadPolicy& policy, CMOKTexture& texture) {
    if (layout == FileLayout::ktx && isKTX2(source)) return readKTX2(source, policy.limits, texture);
    if (layout == FileLayout::ktx && isStandardKTX1(source, ownKTXPixelBytes(source)))
        return readStandardKTX1(source, policy.limits, texture);
    if (layout == FileLayout::dds && !isOwnDDS(source)) return readStandardDDS(source, policy.limits, texture);
    const ELoadStatus status = readTextureFile(source, layout, policy, texture);
    if (layout != FileLayout::dds || status != eLoadUnsupported) return status;
    // A header like the library's own whose format only the standard reader knows.
    source.seek(0);
    texture = CMOKTexture();
    return readStandardDDS(source, policy.limits, texture);
}

bool writeTextureFile(const CMOKTexture& texture, FileLayout layout, const char* arrayName, ByteWriter& target) {
    switch (layout) {
        case FileLayout::mok:
            return writeNativeFile(texture, target);
        case FileLayout::ktx:
            return writeKTXFile(texture, target);
        case FileLayout::dds:
            return writeDDSFile(texture, target);
        case FileLayout::cHeader:
            return writeCSource(texture, arrayName, target);
        case FileLayout::unknown:
            return false;
    }
    return false;
}

}  // namespace moktexture
