#include "moktex/files/container.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_format.h"
#include "moktex/report/console.h"

namespace fs = std::filesystem;
using namespace moktexture;

namespace moktextool {

namespace {

struct ContainerExtension {
    const char* extension;
    ETextureContainer container;
};

// clang-format off
constexpr ContainerExtension containerExtensions[] = {
    {".mok",  eContainerMOK},
    {".ktx",  eContainerKTX},
    {".ktx2", eContainerKTX2},
    {".dds",  eContainerDDS},
    {".h",    eContainerCSource},
};

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

std::string formText(const CMOKTextureHeader& header) {
    return nameOf(formatOf(header)) + (header.isPreMultiplied() ? ", premultiplied, " : ", ") + nameOf(header.getColourSpace());
}

/// The container of a path whose extension is one; the native one for standard output.
ETextureContainer containerOf(const std::string& path) {
    const std::string extension = extensionOf(path);
    const auto found = std::find_if(std::begin(containerExtensions), std::end(containerExtensions),
                                    [&](const ContainerExtension& row) { return extension == row.extension; });
    return path == standardStream || found == std::end(containerExtensions) ? eContainerMOK : found->container;
}

void requireContainer(const CMOKTextureHeader& header, const OutputTarget& target) {
    const ESaveStatus status = CheckContainer(header, containerOf(target.path), target.layout);
    if (status == eSaveOk) return;
    std::vector<std::string> able;
    for (const auto& [extension, container] : containerExtensions) {
        if (CheckContainer(header, container, target.layout) == eSaveOk) able.push_back(extension);
    }
    const std::string wanted = target.path == standardStream ? ".mok" : extensionOf(target.path);
    std::string reason = describe(status);
    reason.pop_back();
    reason[0] = static_cast<char>(std::tolower(reason[0]));
    throw Failure(ExitStatus::notSupported, displayName(target.path),
                  wanted + " files cannot hold " + formText(header) + ": " + reason + "; " +
                      (able.empty() ? "choose another --format" : "use " + joinAlternatives(able) + ", or another --format") +
                      (target.layout == eLayoutOwn ? ", or leave out --layout own" : ""));
}

/// Whether a legacy file has the pixels; it may not say how they are meant.
bool holdsPixels(ESaveStatus status) {
    return status == eSaveOk || status == eSaveNoColourSpace || status == eSaveNoPremultiplied;
}

void requireLegacy(const CMOKTextureHeader& header, const std::string& path, ELegacyApi wanted) {
    if (CheckLegacyFile(header, wanted) == eSaveNoShape)
        throw Failure(ExitStatus::notSupported, path,
                      "the legacy layout cannot hold a volume, an array or a cube map with MIP levels; leave out --legacy");
    std::vector<std::string> able;
    std::string wantedName;
    for (const auto& [name, api] : legacyApis) {
        const bool isAble = holdsPixels(CheckLegacyFile(header, api));
        if (api == wanted) wantedName = name;
        if (isAble && api == wanted) return;
        if (isAble) able.push_back(name);
    }
    throw Failure(ExitStatus::notSupported, path,
                  "--legacy " + wantedName + " files cannot hold " + formText(header) +
                      (able.empty() ? "; " : "; use --legacy " + joinAlternatives(able) + ", or ") + "leave out --legacy");
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
    return std::any_of(std::begin(containerExtensions), std::end(containerExtensions),
                       [&](const ContainerExtension& row) { return extension == row.extension; });
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

bool holds(const OutputTarget& target, const CMOKTextureHeader& header) {
    if (target.legacyApi) return holdsPixels(CheckLegacyFile(header, *target.legacyApi));
    return CheckContainer(header, containerOf(target.path), target.layout) == eSaveOk;
}

void requireHoldable(const CMOKTextureHeader& header, const OutputTarget& target) {
    if (target.legacyApi)
        requireLegacy(header, target.path, *target.legacyApi);
    else
        requireContainer(header, target);
}

std::string containerCaveat(const CMOKTextureHeader& header, const OutputTarget& target) {
    if (target.legacyApi && CheckLegacyFile(header, *target.legacyApi) != eSaveOk)
        return "a legacy file of that API does not say " +
               std::string(header.isPreMultiplied() ? "that the colours are premultiplied, or " : "") +
               "that the colour space is " + nameOf(header.getColourSpace());
    const ETextureContainer container = containerOf(target.path);
    const bool losesMetadata = container == eContainerDDS || (container == eContainerKTX && target.layout == eLayoutOwn);
    if (!losesMetadata || target.legacyApi) return "";
    const auto& owners = header.getMetaDataMap();
    bool hasMetadata = false;
    for (unsigned int owner = 0; owner < owners.GetSize(); ++owner)
        hasMetadata = hasMetadata || owners.GetDataAtIndex(owner)->GetSize() > 0;
    return hasMetadata ? "such a file holds no metadata: orientation, border, bump map and the like are left out" : "";
}

std::vector<unsigned char> encodeContainer(const CMOKTexture& texture, const OutputTarget& target) {
    const ETextureContainer container = containerOf(target.path);
    std::vector<unsigned char> image;
    const ESaveStatus status = SaveTexture(texture, container, image, target.layout);
    if (status == eSaveNoPixels)
        throw Failure(ExitStatus::workFailed, displayName(target.path), "there are no pixels to write; check the input");
    if (status != eSaveOk) requireContainer(texture, target);
    if (status != eSaveOk) throw Failure(ExitStatus::workFailed, displayName(target.path), describe(status));
    if (container == eContainerCSource) renameArray(image, arrayName(target.path));
    return image;
}

}  // namespace moktextool
