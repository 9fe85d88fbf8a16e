// Editing a string, extracting parts of it, and formatting new ones.

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "CMOKTString.h"
#include "core/containers/string_views.h"

using moktexture::viewOf;

namespace {

constexpr const char* whitespace = " \t\n\r";

/// Applies `change` to the bytes up to the first zero byte.
template <class Change>
void changeText(CMOKTString& string, Change change) {
    // Kept (string-case-stops-at-zero): bytes after a zero byte stay unchanged; hosts keep binary data there.
    for (std::size_t i = 0; string[i] != 0; ++i)
        string[i] = change(string[i]);
}

std::size_t lastSeparator(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash != std::string_view::npos ? slash : path.rfind('\\');
}

/// Number of matches of `searched` that do not overlap; `searched` is not empty.
std::size_t countSeparate(std::string_view text, std::string_view searched) {
    std::size_t count = 0;
    for (std::size_t at = text.find(searched); at != std::string_view::npos; at = text.find(searched, at + searched.size()))
        ++count;
    return count;
}

/// `base` + `count` * `each`, or npos, for which newBuffer() throws, if that overflows.
std::size_t saturatingMultiplyAdd(std::size_t base, std::size_t count, std::size_t each) {
    return each != 0 && count > (CMOKTString::npos - base) / each ? CMOKTString::npos : base + count * each;
}

/// Calls va_end on an argument list when the scope ends, also by an exception.
struct ArgumentListEnd {
    std::va_list& arguments;
    ~ArgumentListEnd() { va_end(arguments); }
};

/// A first pass computes the length, a second one writes the text. Consumes the argument list.
CMOKTString formatList(const char* format, std::va_list& arguments) {
    CMOKTString result;
    if (format == nullptr) return result;
    std::va_list again;
    va_copy(again, arguments);
    const ArgumentListEnd end{again};
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    if (length <= 0) return result;
    result.resize(static_cast<std::size_t>(length));
    std::vsnprintf(&result[0], result.capacity(), format, again);
    return result;
}

}  // namespace

// --- Case: ASCII letters alone, whatever the locale says

CMOKTString& CMOKTString::to_lower() {
    changeText(*this, [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return *this;
}

CMOKTString& CMOKTString::to_upper() {
    changeText(*this, [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return *this;
}

// --- Edit

CMOKTString& CMOKTString::erase(std::size_t start, std::size_t count) {
    const std::size_t erased = viewOf(*this, start, count).size();
    if (erased == 0) return *this;
    std::memmove(text + start, text + start + erased, textLength - start - erased);
    cutTo(textLength - erased);
    return *this;
}

CMOKTString& CMOKTString::replace_char(char from, char to, bool all) {
    if (all)
        std::replace(text, text + textLength, from, to);
    else if (const std::size_t first = find_first_of(from); first != npos)
        text[first] = to;
    return *this;
}

CMOKTString& CMOKTString::replace_all(const CMOKTString& from, const CMOKTString& to, bool all) {
    if (from.empty()) return *this;
    const std::string_view searched = viewOf(from);
    const std::string_view inserted = viewOf(to);
    std::string_view rest = viewOf(*this);
    const std::size_t matches = std::min<std::size_t>(countSeparate(rest, searched), all ? npos : 1);
    if (matches == 0) return *this;

    const std::size_t newLength = saturatingMultiplyAdd(textLength - matches * searched.size(), matches, inserted.size());
    char* buffer = newBuffer(newLength);
    char* target = buffer;
    for (std::size_t i = 0; i < matches; ++i) {
        const std::size_t kept = rest.find(searched);
        target = std::copy_n(rest.data(), kept, target);
        target = std::copy_n(inserted.data(), inserted.size(), target);
        rest.remove_prefix(kept + searched.size());
    }
    std::copy_n(rest.data(), rest.size(), target);
    adopt(buffer, newLength);
    return *this;
}

// --- Parts

CMOKTString CMOKTString::substr(std::size_t start, std::size_t count) const {
    return CMOKTString(*this, start, count);
}

CMOKTString CMOKTString::left(std::size_t count) const {
    return CMOKTString(*this, 0, count);
}

CMOKTString CMOKTString::right(std::size_t count) const {
    return CMOKTString(*this, textLength - std::min(count, textLength));
}

// --- Paths

CMOKTString CMOKTString::file_extension() const {
    // Kept (string-extension-of-folder): the last dot of the whole path counts, also in a folder's name; hosts build file names
    // from path and extension and would build others.
    return CMOKTString(*this, viewOf(*this).rfind('.'));
}

CMOKTString CMOKTString::directory_of() const {
    return CMOKTString(*this, 0, lastSeparator(viewOf(*this)) + 1);  // npos + 1 is 0
}

CMOKTString CMOKTString::file_name_of() const {
    return CMOKTString(*this, lastSeparator(viewOf(*this)) + 1);  // npos + 1 is 0
}

// --- Trim
// Kept (string-trim-all-white): a string of nothing but whitespace stays unchanged; hosts tell it from an empty one by length().

CMOKTString& CMOKTString::trim_left() {
    const std::size_t first = find_first_not_of(whitespace);
    return first == npos ? *this : erase(0, first);
}

CMOKTString& CMOKTString::trim_right() {
    const std::size_t last = find_last_not_of(whitespace);
    return last == npos ? *this : erase(last + 1);
}

// --- Format

CMOKTString CMOKTString::format(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const ArgumentListEnd end{arguments};
    return formatList(format, arguments);
}

CMOKTString CMOKTString::assign_format(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const ArgumentListEnd end{arguments};
    const CMOKTString result = formatList(format, arguments);
    assign(result);
    return result;
}

// --- Join

CMOKTString operator+(const CMOKTString& a, const CMOKTString& b) {
    return CMOKTString(a).append(b);
}

CMOKTString operator+(const CMOKTString& a, const char* b) {
    return CMOKTString(a).append(b);
}

CMOKTString operator+(const char* a, const CMOKTString& b) {
    return CMOKTString(a).append(b);
}

CMOKTString operator+(const CMOKTString& a, char b) {
    return CMOKTString(a).append(1, b);
}

CMOKTString operator+(char a, const CMOKTString& b) {
    return CMOKTString(a).append(b);
}
