#pragma once

#include <string_view>

#include "CMOKTString.h"

/// Views of the arguments of CMOKTString's operations.
namespace moktexture {

inline std::string_view viewOf(const CMOKTString& string) {
    return {string.data(), string.length()};
}
inline std::string_view viewOf(const char& character) {
    return {&character, 1};
}
/// Up to the zero byte; null gives an empty view.
inline std::string_view viewOf(const char* chars) {
    return chars == nullptr ? std::string_view() : std::string_view(chars);
}
/// `count` bytes, or up to the zero byte with npos; null gives an empty view.
inline std::string_view viewOf(const char* chars, std::size_t count) {
    return chars == nullptr || count == CMOKTString::npos ? viewOf(chars) : std::string_view(chars, count);
}
/// `count` bytes from `start`, clamped to the string.
inline std::string_view viewOf(const CMOKTString& string, std::size_t start, std::size_t count) {
    return start < string.length() ? viewOf(string).substr(start, count) : std::string_view();
}

}  // namespace moktexture
