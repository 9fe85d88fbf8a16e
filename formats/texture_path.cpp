#include "formats/texture_path.h"

#include <string_view>

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
    {"mok", FileLayout::native},
};
// clang-format on

char toLowerASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
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
    return FileLayout::other;
}

FileLayout fileLayoutForLoading(const std::string& path) {
    if (path.find('.') == std::string::npos) return FileLayout::native;
    const FileLayout layout = fileLayoutForSaving(path);
    return layout == FileLayout::ktx || layout == FileLayout::dds ? layout : FileLayout::native;
}

}  // namespace moktexture
