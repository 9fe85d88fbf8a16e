#include "CMOKTString.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "core/containers/string_views.h"

using moktexture::viewOf;

namespace {

/// memmove that takes null pointers with a count of 0.
void copyBytes(char* target, const char* source, std::size_t count) {
    if (count > 0) std::memmove(target, source, count);
}

/// `a` + `b`, or npos, for which newBuffer() throws, if that overflows.
std::size_t saturatingSum(std::size_t a, std::size_t b) {
    return a < CMOKTString::npos - b ? a + b : CMOKTString::npos;
}

}  // namespace

char* CMOKTString::newBuffer(std::size_t length) {
    if (length == npos) throw std::bad_array_new_length();
    char* buffer = new char[length + 1];
    buffer[length] = 0;
    return buffer;
}

void CMOKTString::adopt(char* buffer, std::size_t newLength) noexcept {
    delete[] text;
    text = buffer;
    textLength = newLength;
    allocated = newLength + 1;
}

void CMOKTString::cutTo(std::size_t newLength) noexcept {
    text[newLength] = 0;
    textLength = newLength;
}

// --- Construction. The first assignment to a string without a buffer allocates it.

CMOKTString::CMOKTString() : text(newBuffer(0)), textLength(0), allocated(1) {}

CMOKTString::CMOKTString(const char* chars, std::size_t count) : text(nullptr), textLength(0), allocated(0) {
    assign(chars, count);
}

CMOKTString::CMOKTString(const CMOKTString& string, std::size_t start, std::size_t count)
    : text(nullptr), textLength(0), allocated(0) {
    assign(string, start, count);
}

CMOKTString::CMOKTString(const CMOKTString& string) : text(nullptr), textLength(0), allocated(0) {
    assign(string);
}

CMOKTString::CMOKTString(std::size_t count, char character) : text(nullptr), textLength(0), allocated(0) {
    assign(count, character);
}

CMOKTString::CMOKTString(char character) : CMOKTString(std::size_t{1}, character) {}

CMOKTString::~CMOKTString() {
    delete[] text;
}

// --- Assignment. The source may lie in this string's buffer, which is therefore freed last.

CMOKTString& CMOKTString::operator=(const CMOKTString& string) {
    return assign(string);
}

CMOKTString& CMOKTString::operator=(const char* chars) {
    return assign(chars);
}

CMOKTString& CMOKTString::assign(const char* chars, std::size_t count) {
    const std::string_view source = viewOf(chars, count);
    if (source.size() < allocated) {
        copyBytes(text, source.data(), source.size());
        cutTo(source.size());
    } else {
        char* buffer = newBuffer(source.size());
        copyBytes(buffer, source.data(), source.size());
        adopt(buffer, source.size());
    }
    return *this;
}

CMOKTString& CMOKTString::assign(const CMOKTString& string) {
    return assign(string.text, string.textLength);
}

CMOKTString& CMOKTString::assign(const CMOKTString& string, std::size_t start, std::size_t count) {
    const std::string_view part = viewOf(string, start, count);
    return assign(part.data(), part.size());
}

CMOKTString& CMOKTString::assign(std::size_t count, char character) {
    if (count >= allocated) adopt(newBuffer(count), count);
    std::fill_n(text, count, character);
    cutTo(count);
    return *this;
}

CMOKTString& CMOKTString::assign(const char* chars) {
    return assign(chars, npos);
}

// --- Appending

CMOKTString& CMOKTString::append(const char* chars, std::size_t count) {
    const std::string_view added = viewOf(chars, count);
    if (added.empty()) return *this;
    // Kept (string-exact-growth): no spare capacity is allocated, and that of reserve() is not used: capacity() is length() + 1
    // after every growth, and hosts that pass on data() and capacity() pass no stale bytes.
    const std::size_t newLength = saturatingSum(textLength, added.size());
    char* buffer = newBuffer(newLength);
    copyBytes(buffer, text, textLength);
    copyBytes(buffer + textLength, added.data(), added.size());
    adopt(buffer, newLength);
    return *this;
}

CMOKTString& CMOKTString::append(const CMOKTString& string) {
    return append(string.text, string.textLength);
}

CMOKTString& CMOKTString::append(const CMOKTString& string, std::size_t start, std::size_t count) {
    const std::string_view part = viewOf(string, start, count);
    return append(part.data(), part.size());
}

CMOKTString& CMOKTString::append(std::size_t count, char character) {
    if (count == 0) return *this;
    const std::size_t newLength = saturatingSum(textLength, count);
    char* buffer = newBuffer(newLength);
    copyBytes(buffer, text, textLength);
    std::fill_n(buffer + textLength, count, character);
    adopt(buffer, newLength);
    return *this;
}

CMOKTString& CMOKTString::append(const char* chars) {
    return append(chars, npos);
}

// --- Access

const char* CMOKTString::c_str() const {
    return text;
}

const char* CMOKTString::data() const {
    return text;
}

std::size_t CMOKTString::length() const {
    return textLength;
}

std::size_t CMOKTString::size() const {
    return textLength;
}

std::size_t CMOKTString::capacity() const {
    return allocated;
}

std::size_t CMOKTString::max_size() const {
    return 0x7FFFFFFF;
}

bool CMOKTString::empty() const {
    return textLength == 0;
}

char& CMOKTString::operator[](std::size_t index) {
    return text[index];
}

const char& CMOKTString::operator[](std::size_t index) const {
    return text[index];
}

std::size_t CMOKTString::copy(char* buffer, std::size_t count, std::size_t start) const {
    if (buffer == nullptr) return 0;
    const std::string_view part = viewOf(*this, start, count);
    copyBytes(buffer, part.data(), part.size());
    return part.size();
}

// --- Size

void CMOKTString::clear() {
    adopt(newBuffer(0), 0);
}

void CMOKTString::reserve(std::size_t newLength) {
    if (newLength < allocated) return;
    char* buffer = newBuffer(newLength);
    copyBytes(buffer, text, textLength);
    const std::size_t oldLength = textLength;
    adopt(buffer, newLength);
    cutTo(oldLength);
}

void CMOKTString::resize(std::size_t newLength, char character) {
    if (newLength <= textLength)
        cutTo(newLength);
    else
        append(newLength - textLength, character);
}

void CMOKTString::swap(CMOKTString& other) noexcept {
    std::swap(text, other.text);
    std::swap(textLength, other.textLength);
    std::swap(allocated, other.allocated);
}
