// Comparing and searching.

#include <algorithm>
#include <string_view>

#include "CMOKTString.h"
#include "core/containers/string_views.h"

using moktexture::viewOf;
using std::string_view;

namespace {

int compareSigned(string_view a, string_view b) {
    const auto below = [](char x, char y) { return static_cast<signed char>(x) < static_cast<signed char>(y); };
    if (std::ranges::lexicographical_compare(a, b, below)) return -1;
    return std::ranges::lexicographical_compare(b, a, below) ? 1 : 0;
}

std::size_t findForward(string_view text, string_view searched, std::size_t start) {
    return start < text.size() ? text.find(searched, start) : string_view::npos;
}

/// Start of a backward search that skips the last `fromEnd` bytes of a string of `length`; `fromEnd` is below `length`.
std::size_t backwardStart(std::size_t length, std::size_t fromEnd) {
    return length - fromEnd - 1;
}

std::size_t findLastOf(string_view text, string_view set, std::size_t fromEnd) {
    // Kept (string-find-last-from-end): the start counts from the end of the string; hosts pass 0 for "from the last byte".
    return fromEnd < text.size() ? text.find_last_of(set, backwardStart(text.size(), fromEnd)) : string_view::npos;
}

std::size_t findLastNotOf(string_view text, string_view set, std::size_t fromEnd) {
    return fromEnd < text.size() ? text.find_last_not_of(set, backwardStart(text.size(), fromEnd)) : string_view::npos;
}

std::size_t countOf(string_view text, string_view counted, std::size_t start) {
    std::size_t count = 0;
    for (std::size_t at = findForward(text, counted, start); at != string_view::npos; at = findForward(text, counted, at + 1))
        ++count;
    return count;
}

int findNext(string_view text, string_view searched, std::size_t start) {
    return static_cast<int>(std::min(findForward(text, searched, start), text.size()));
}

int findPrevious(string_view text, string_view searched, std::size_t start) {
    if (text.empty()) return -1;
    const std::size_t at = text.rfind(searched, std::min(start, text.size() - 1));
    // Kept (string-find-previous-skips-first): a match at position 0 is not reported; hosts loop until -1, and a reported 0 would
    // make them search before the string.
    return at == 0 || at == string_view::npos ? -1 : static_cast<int>(at);
}

}  // namespace

// --- Comparison
// Kept (string-compare-signedness): bytes are unsigned in the forms over the whole string and signed in the forms with a range,
// so that the two order bytes from 0x80 on differently; tables that hosts sorted by one of them are searched by the same one.

int CMOKTString::compare(const CMOKTString& string) const {
    return viewOf(*this).compare(viewOf(string));
}

int CMOKTString::compare(const char* chars) const {
    return viewOf(*this).compare(viewOf(chars));
}

int CMOKTString::compare(std::size_t start, std::size_t count, const CMOKTString& string) const {
    return compareSigned(viewOf(*this, start, count), viewOf(string));
}

int CMOKTString::compare(std::size_t start, std::size_t count, const CMOKTString& string, std::size_t stringStart,
                         std::size_t stringCount) const {
    return compareSigned(viewOf(*this, start, count), viewOf(string, stringStart, stringCount));
}

int CMOKTString::compare(std::size_t start, std::size_t count, const char* chars) const {
    return compareSigned(viewOf(*this, start, count), viewOf(chars));
}

int CMOKTString::compare(std::size_t start, std::size_t count, const char* chars, std::size_t charsCount) const {
    return compareSigned(viewOf(*this, start, count), viewOf(chars, charsCount));
}

bool CMOKTString::operator==(const CMOKTString& string) const {
    return viewOf(*this) == viewOf(string);
}

bool CMOKTString::operator==(const char* chars) const {
    return viewOf(*this) == viewOf(chars);
}

bool CMOKTString::operator!=(const CMOKTString& string) const {
    return viewOf(*this) != viewOf(string);
}

bool CMOKTString::operator!=(const char* chars) const {
    return viewOf(*this) != viewOf(chars);
}

bool CMOKTString::operator<(const CMOKTString& string) const {
    return viewOf(*this) < viewOf(string);
}

// --- Searching forward

std::size_t CMOKTString::find(const char* chars, std::size_t start, std::size_t count) const {
    return findForward(viewOf(*this), viewOf(chars, count), start);
}

std::size_t CMOKTString::find_first_of(char character, std::size_t start) const {
    return viewOf(*this).find_first_of(viewOf(character), start);
}

std::size_t CMOKTString::find_first_of(const char* chars, std::size_t start) const {
    return viewOf(*this).find_first_of(viewOf(chars), start);
}

std::size_t CMOKTString::find_first_of(const char* chars, std::size_t start, std::size_t count) const {
    return viewOf(*this).find_first_of(viewOf(chars, count), start);
}

std::size_t CMOKTString::find_first_of(const CMOKTString& string, std::size_t start) const {
    return viewOf(*this).find_first_of(viewOf(string), start);
}

std::size_t CMOKTString::find_first_not_of(char character, std::size_t start) const {
    return viewOf(*this).find_first_not_of(viewOf(character), start);
}

std::size_t CMOKTString::find_first_not_of(const char* chars, std::size_t start) const {
    return viewOf(*this).find_first_not_of(viewOf(chars), start);
}

std::size_t CMOKTString::find_first_not_of(const char* chars, std::size_t start, std::size_t count) const {
    return viewOf(*this).find_first_not_of(viewOf(chars, count), start);
}

std::size_t CMOKTString::find_first_not_of(const CMOKTString& string, std::size_t start) const {
    return viewOf(*this).find_first_not_of(viewOf(string), start);
}

// --- Searching backward

std::size_t CMOKTString::find_last_of(char character, std::size_t fromEnd) const {
    return findLastOf(viewOf(*this), viewOf(character), fromEnd);
}

std::size_t CMOKTString::find_last_of(const char* chars, std::size_t fromEnd) const {
    return findLastOf(viewOf(*this), viewOf(chars), fromEnd);
}

std::size_t CMOKTString::find_last_of(const char* chars, std::size_t fromEnd, std::size_t count) const {
    return findLastOf(viewOf(*this), viewOf(chars, count), fromEnd);
}

std::size_t CMOKTString::find_last_of(const CMOKTString& string, std::size_t fromEnd) const {
    return findLastOf(viewOf(*this), viewOf(string), fromEnd);
}

std::size_t CMOKTString::find_last_not_of(char character, std::size_t fromEnd) const {
    return findLastNotOf(viewOf(*this), viewOf(character), fromEnd);
}

std::size_t CMOKTString::find_last_not_of(const char* chars, std::size_t fromEnd) const {
    return findLastNotOf(viewOf(*this), viewOf(chars), fromEnd);
}

std::size_t CMOKTString::find_last_not_of(const char* chars, std::size_t fromEnd, std::size_t count) const {
    return findLastNotOf(viewOf(*this), viewOf(chars, count), fromEnd);
}

std::size_t CMOKTString::find_last_not_of(const CMOKTString& string, std::size_t fromEnd) const {
    return findLastNotOf(viewOf(*this), viewOf(string), fromEnd);
}

// --- Counting, next and previous

std::size_t CMOKTString::count_of(char character, std::size_t start) const {
    return countOf(viewOf(*this), viewOf(character), start);
}

std::size_t CMOKTString::count_of(const char* chars, std::size_t start) const {
    return countOf(viewOf(*this), viewOf(chars), start);
}

std::size_t CMOKTString::count_of(const char* chars, std::size_t start, std::size_t count) const {
    return countOf(viewOf(*this), viewOf(chars, count), start);
}

std::size_t CMOKTString::count_of(const CMOKTString& string, std::size_t start) const {
    return countOf(viewOf(*this), viewOf(string), start);
}

int CMOKTString::find_next(char character, std::size_t start) const {
    return findNext(viewOf(*this), viewOf(character), start);
}

int CMOKTString::find_next(const char* chars, std::size_t start) const {
    return findNext(viewOf(*this), viewOf(chars), start);
}

int CMOKTString::find_next(const char* chars, std::size_t start, std::size_t count) const {
    return findNext(viewOf(*this), viewOf(chars, count), start);
}

int CMOKTString::find_next(const CMOKTString& string, std::size_t start) const {
    return findNext(viewOf(*this), viewOf(string), start);
}

int CMOKTString::find_previous(char character, std::size_t start) const {
    return findPrevious(viewOf(*this), viewOf(character), start);
}

int CMOKTString::find_previous(const char* chars, std::size_t start) const {
    return findPrevious(viewOf(*this), viewOf(chars), start);
}

int CMOKTString::find_previous(const char* chars, std::size_t start, std::size_t count) const {
    return findPrevious(viewOf(*this), viewOf(chars, count), start);
}

int CMOKTString::find_previous(const CMOKTString& string, std::size_t start) const {
    return findPrevious(viewOf(*this), viewOf(string), start);
}
