#include "moktex/files/container.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "moktex/files/TemporaryFile.h"
#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_format.h"
#include "moktex/report/console.h"

namespace fs = std::filesystem;
using namespace moktexture;

namespace moktextool {

namespace {

constexpr std::array containerExtensions = {".mok", ".ktx", ".dds", ".h"};

// clang-format off
constexpr LegacyApiName legacyApis[] = {
    // name    family of format numbers
    {"gl-a",   eLegacyApiGLFamilyA},
    {"gl-b",   eLegacyApiGLFamilyB},
    {"gl-c",   eLegacyApiGLFamilyC},
    {"d3d-a",  eLegacyApiD3DFamilyA},
    {"d3d-b",  eLegacyApiD3DFamilyB},
    {"dxgi",   eLegacyApiDXGIFamily},
    {"vg",     eLegacyApiVGFamily},
};

/// The first bytes of texture files.
constexpr std::string_view firstBytes[] = {
    {"MOK\x03",  4},
    {"\xABKTX",  4},
    {"DDS ",     4},
    {"\x2C\0\0", 4},  // legacy: the size of its header, 44 or 52
    {"\x34\0\0", 4},
};
// clang-format on

/// "a", "a or b", "a, b or c".
std::string joinAlternatives(const std::vector<std::string>& choices) {
    std::string text;
    for (std::size_t i = 0; i < choices.size(); ++i)
        text += (i == 0 ? "" : i + 1 < choices.size() ? ", " : " or ") + choices[i];
    return text;
}

/// A texture of one pixel that a layout can hold if and only if it can hold the real one.
CMOKTexture sampleOf(const CMOKTextureHeader& header) {
    return {CMOKTextureHeader(header.getPixelType().id, 1, 1, 1, 1, 1, 1, header.getColourSpace(), header.getChannelType(),
                              header.isPreMultiplied()),
            nullptr};
}

std::string formText(const CMOKTextureHeader& header) {
    return nameOf(formatOf(header)) + (header.isPreMultiplied() ? ", premultiplied, " : ", ") + nameOf(header.getColourSpace());
}

void requireContainer(const CMOKTextureHeader& header, const std::string& path) {
    const CMOKTexture sample = sampleOf(header);
    const std::string wanted = path == standardStream ? ".mok" : extensionOf(path);
    std::vector<std::string> able;
    for (const char* extension : containerExtensions) {
        std::vector<unsigned char> image;
        if (!SaveTexture(sample, extension, image)) continue;
        if (extension == wanted) return;
        able.push_back(extension);
    }
    const std::string remedy = "use " + joinAlternatives(able) + ", or a --format that 'moktex formats --api' has numbers for";
    throw Failure(ExitStatus::notSupported, path, wanted + " files cannot hold " + formText(header) + "; " + remedy);
}

void requireLegacy(const CMOKTextureHeader& header, const std::string& path, ELegacyApi wanted) {
    if (header.getDepth() > 1)
        throw Failure(ExitStatus::notSupported, path, "the legacy layout cannot hold a volume; leave out --legacy");
    const CMOKTexture sample = sampleOf(header);
    const TemporaryFile probe(path);
    std::vector<std::string> able;
    std::string wantedName;
    for (const auto& [name, api] : legacyApis) {
        const bool isAble = sample.saveFileLegacyMOK(probe.getPath().string().c_str(), api);
        if (api == wanted) wantedName = name;
        if (isAble && api == wanted) return;
        if (isAble) able.push_back(name);
    }
    throw Failure(ExitStatus::notSupported, path,
                  "--legacy " + wantedName + " files cannot hold " + formText(header) +
                      (able.empty() ? "; " : "; use --legacy " + joinAlternatives(able) + ", or ") + "leave out --legacy");
}

/// Red, green and blue of a texture of one uncompressed pixel.
std::array<unsigned char, 3> colourOf(CMOKTexture pixel) {
    Transcode(pixel, PixelTypeRGBA8, eVarUByteNorm, pixel.getColourSpace(), eCompressorQuality0, false);
    std::array<unsigned char, 3> colour{};
    if (pixel.getDataSize() > colour.size()) std::memcpy(colour.data(), pixel.getDataPtr(), colour.size());
    return colour;
}

/// Writes and reads one pixel whose bytes all differ; returns a warning if its colour changes.
std::string colourCaveat(const CMOKTextureHeader& header, const std::string& extension) {
    CMOKTexture sample = sampleOf(header);
    if (isCompressed(header.getPixelType())) return "";
    auto* bytes = static_cast<unsigned char*>(sample.getDataPtr());
    for (std::uint32_t i = 0; i < sample.getDataSize(); ++i)
        bytes[i] = static_cast<unsigned char>(0x31 + 0x16 * i);
    std::vector<unsigned char> image;
    CMOKTexture loaded;
    if (!SaveTexture(sample, extension.c_str(), image) || LoadTexture(loaded, image.data(), image.size()) != eLoadOk) return "";
    loaded.setColourSpace(sample.getColourSpace());
    if (isCompressed(loaded.getPixelType()) || colourOf(sample) == colourOf(loaded)) return "";
    return nameOf(formatOf(sample)) + " reads back from a " + extension + " file as " + nameOf(formatOf(loaded)) +
           ", which gives other colours; choose another --format to be read there";
}

// clang-format off
/// What cannot name an array: the reserved words of C and C++ up to C23 and C++20, macros of compilers, and that of the file.
constexpr std::string_view keywords[] = {
    "A8BIT", "_Alignas", "_Alignof", "_Atomic", "_BitInt", "_Bool", "_Complex", "_Decimal128", "_Decimal32", "_Decimal64",
    "_Generic", "_Imaginary", "_Noreturn", "_Static_assert", "_Thread_local", "linux", "unix",
    "alignas", "alignof", "and", "and_eq", "asm", "auto", "bitand", "bitor", "bool", "break", "case", "catch", "char",
    "char16_t", "char32_t", "char8_t", "class", "co_await", "co_return", "co_yield", "compl", "concept", "const", "const_cast",
    "consteval", "constexpr", "constinit", "continue", "decltype", "default", "delete", "do", "double", "dynamic_cast", "else",
    "enum", "explicit", "export", "extern", "false", "float", "for", "friend", "goto", "if", "inline", "int", "long", "mutable",
    "namespace", "new", "noexcept", "not", "not_eq", "nullptr", "operator", "or", "or_eq", "private", "protected", "public",
    "register", "reinterpret_cast", "requires", "restrict", "return", "short", "signed", "sizeof", "static", "static_assert",
    "static_cast", "struct", "switch", "template", "this", "thread_local", "throw", "true", "try", "typedef", "typeid",
    "typename", "typeof", "typeof_unqual", "union", "unsigned", "using", "virtual", "void", "volatile", "wchar_t", "while",
    "xor", "xor_eq",
};
// clang-format on

/// The file's name as an identifier of C and C++; an underscore follows what cannot be one.
std::string arrayName(const std::string& path) {
    std::string name = fs::path(path).stem().string();
    for (char& letter : name) {
        const bool isPlain = static_cast<unsigned char>(letter) < 128 && std::isalnum(static_cast<unsigned char>(letter)) != 0;
        if (!isPlain) letter = '_';
    }
    if (std::find(std::begin(keywords), std::end(keywords), name) != std::end(keywords)) name += '_';
    return std::isdigit(static_cast<unsigned char>(name.front())) != 0 ? '_' + name : name;
}

/// The library calls the array `texture`.
void renameArray(std::vector<unsigned char>& source, const std::string& name) {
    constexpr std::string_view declaration = " texture[] = {";
    const auto found = std::search(source.begin(), source.end(), declaration.begin(), declaration.end());
    if (found == source.end()) return;
    const auto first = source.erase(found + 1, found + 1 + std::strlen("texture"));
    source.insert(first, name.begin(), name.end());
}

}  // namespace

std::string displayName(const std::string& path) {
    return path == standardStream ? "standard stream" : path;
}

std::string extensionOf(const std::string& path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

bool isContainerExtension(const std::string& extension) {
    return std::find(containerExtensions.begin(), containerExtensions.end(), extension) != containerExtensions.end();
}

bool isReadableExtension(const std::string& extension) {
    return isContainerExtension(extension) && extension != ".h";
}

bool startsLikeTexture(std::span<const unsigned char> bytes) {
    return std::any_of(std::begin(firstBytes), std::end(firstBytes), [&](std::string_view first) {
        return bytes.size() >= first.size() && std::memcmp(bytes.data(), first.data(), first.size()) == 0;
    });
}

std::span<const LegacyApiName> legacyApiNames() {
    return legacyApis;
}

void requireLegacyPath(const OutputTarget& target) {
    if (target.legacyApi && extensionOf(target.path) != ".mok")
        throw Failure(ExitStatus::commandLine, target.path, "--legacy writes .mok files only; name one");
}

void requireHoldable(const CMOKTextureHeader& header, const OutputTarget& target) {
    if (target.legacyApi)
        requireLegacy(header, target.path, *target.legacyApi);
    else
        requireContainer(header, target.path);
}

std::string containerCaveat(const CMOKTextureHeader& header, const OutputTarget& target) {
    const std::string extension = extensionOf(target.path);
    const bool isForeign = extension == ".dds" || extension == ".ktx";
    if (!isForeign || target.path == standardStream) return "";
    if (extension == ".dds" && (header.getDepth() > 1 || header.getNumArrayMembers() > 1))
        return "a .dds file does not record slices and array layers; readers find only the first one";
    return colourCaveat(header, extension);
}

std::vector<unsigned char> encodeContainer(const CMOKTexture& texture, const std::string& path) {
    const std::string extension = path == standardStream ? ".mok" : extensionOf(path);
    std::vector<unsigned char> image;
    if (SaveTexture(texture, extension.c_str(), image) && extension == ".h") renameArray(image, arrayName(path));
    return image;
}

}  // namespace moktextool
