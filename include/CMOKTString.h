#pragma once

#include <cstdarg>
#include <cstddef>

#include "moktex_export.h"

// Compilers check format strings and their arguments; on Windows too with the length modifiers of the C standard.
#if defined(__MINGW32__)
#define MOKTEX_PRINTF(text, first) __attribute__((format(gnu_printf, text, first)))
#elif defined(__GNUC__)
#define MOKTEX_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define MOKTEX_PRINTF(text, first)
#endif

/// Owned character string of the exported interface: bytes, always terminated by a zero byte.
///
/// Arguments have the order of `std::string`. The index of `operator[]` is not checked; all other functions clamp positions and
/// counts to the string, and treat a null `const char*` as an empty string. A count of `npos` means up to the zero byte.
/// Allocation raises `std::bad_alloc`, with the string unchanged. An object belongs to one thread at a time. The results of
/// c_str(), data() and operator[] are valid until the string is changed; swap() transfers them.
///
/// Every function that lengthens the string allocates a new buffer of exactly the length needed, even after reserve(); only
/// assignment uses the reserved capacity.
class MOKTEX_API CMOKTString {
public:
    /// As a result: not found. As a count: up to the end.
    static constexpr std::size_t npos = ~std::size_t{0};

    CMOKTString();
    /// `count` bytes of `chars`, or all of it with npos. Null gives an empty string.
    CMOKTString(const char* chars, std::size_t count = npos);
    /// `count` bytes of `string` from `start`, clamped to its length.
    CMOKTString(const CMOKTString& string, std::size_t start, std::size_t count = npos);
    CMOKTString(const CMOKTString& string);
    CMOKTString(std::size_t count, char character);
    explicit CMOKTString(char character);
    virtual ~CMOKTString();

    CMOKTString& operator=(const CMOKTString& string);
    /// Null empties the string.
    CMOKTString& operator=(const char* chars);

    /// @name Assignment. The sources may lie inside this string. Null with `assign(const char*)` empties it.
    /// @{
    CMOKTString& assign(const char* chars, std::size_t count);
    CMOKTString& assign(const CMOKTString& string);
    CMOKTString& assign(const CMOKTString& string, std::size_t start, std::size_t count);
    CMOKTString& assign(std::size_t count, char character);
    CMOKTString& assign(const char* chars);
    /// @}

    /// @name Appending. Null with `append(const char*)`, and a start beyond the end, do nothing.
    /// @{
    CMOKTString& append(const char* chars, std::size_t count);
    CMOKTString& append(const CMOKTString& string);
    CMOKTString& append(const CMOKTString& string, std::size_t start, std::size_t count);
    CMOKTString& append(std::size_t count, char character);
    CMOKTString& append(const char* chars);
    /// @}

    const char* c_str() const;
    const char* data() const;
    /// Bytes without the terminator.
    std::size_t length() const;
    std::size_t size() const;
    /// Bytes allocated, the terminator's included.
    std::size_t capacity() const;
    /// 0x7FFFFFFF.
    std::size_t max_size() const;
    bool empty() const;
    char& operator[](std::size_t index);
    const char& operator[](std::size_t index) const;
    /// Copies up to `count` bytes from `start` to `buffer`, without a terminator. Nothing is copied to a null buffer.
    /// @return the number of bytes copied.
    std::size_t copy(char* buffer, std::size_t count, std::size_t start = 0) const;

    /// Empties the string and frees its buffer.
    void clear();
    /// Reallocates to `newLength` + 1 bytes if capacity() is not above `newLength`.
    void reserve(std::size_t newLength = 0);
    /// Truncates the string, or appends `character` up to the new length.
    void resize(std::size_t newLength, char character = 0);
    void swap(CMOKTString& other) noexcept;

    /// @name Comparison: negative, 0 or positive. Bytes are unsigned in the forms over the whole string, and signed in the forms
    /// with a range; ranges are clamped to the string.
    /// @{
    int compare(const CMOKTString& string) const;
    int compare(const char* chars) const;
    int compare(std::size_t start, std::size_t count, const CMOKTString& string) const;
    int compare(std::size_t start, std::size_t count, const CMOKTString& string, std::size_t stringStart,
                std::size_t stringCount) const;
    int compare(std::size_t start, std::size_t count, const char* chars) const;
    int compare(std::size_t start, std::size_t count, const char* chars, std::size_t charsCount) const;
    bool operator==(const CMOKTString& string) const;
    bool operator==(const char* chars) const;
    bool operator!=(const CMOKTString& string) const;
    bool operator!=(const char* chars) const;
    bool operator<(const CMOKTString& string) const;
    /// @}

    /// @name Search forward from `start`; npos if nothing is found or `start` is at or past the end.
    /// @{
    std::size_t find(const char* chars, std::size_t start, std::size_t count) const;
    std::size_t find_first_of(char character, std::size_t start = 0) const;
    std::size_t find_first_of(const char* chars, std::size_t start = 0) const;
    std::size_t find_first_of(const char* chars, std::size_t start, std::size_t count) const;
    std::size_t find_first_of(const CMOKTString& string, std::size_t start = 0) const;
    std::size_t find_first_not_of(char character, std::size_t start = 0) const;
    std::size_t find_first_not_of(const char* chars, std::size_t start = 0) const;
    std::size_t find_first_not_of(const char* chars, std::size_t start, std::size_t count) const;
    std::size_t find_first_not_of(const CMOKTString& string, std::size_t start = 0) const;
    /// @}

    /// @name Search backward. `fromEnd` counts from the end: the search starts at length() - `fromEnd` - 1 and moves down.
    /// @{
    std::size_t find_last_of(char character, std::size_t fromEnd = 0) const;
    std::size_t find_last_of(const char* chars, std::size_t fromEnd = 0) const;
    std::size_t find_last_of(const char* chars, std::size_t fromEnd, std::size_t count) const;
    std::size_t find_last_of(const CMOKTString& string, std::size_t fromEnd = 0) const;
    std::size_t find_last_not_of(char character, std::size_t fromEnd = 0) const;
    std::size_t find_last_not_of(const char* chars, std::size_t fromEnd = 0) const;
    std::size_t find_last_not_of(const char* chars, std::size_t fromEnd, std::size_t count) const;
    std::size_t find_last_not_of(const CMOKTString& string, std::size_t fromEnd = 0) const;
    /// @}

    /// @name Number of positions at and after `start` where the text occurs, overlaps included. An empty text occurs everywhere.
    /// @{
    std::size_t count_of(char character, std::size_t start = 0) const;
    std::size_t count_of(const char* chars, std::size_t start = 0) const;
    std::size_t count_of(const char* chars, std::size_t start, std::size_t count) const;
    std::size_t count_of(const CMOKTString& string, std::size_t start = 0) const;
    /// @}

    /// @name First position at or after `start` where the text occurs, or length().
    /// @{
    int find_next(char character, std::size_t start = 0) const;
    int find_next(const char* chars, std::size_t start = 0) const;
    int find_next(const char* chars, std::size_t start, std::size_t count) const;
    int find_next(const CMOKTString& string, std::size_t start = 0) const;
    /// @}

    /// @name First position, going down from `start`, where the text occurs, or -1. A match at position 0 is not reported.
    /// @{
    int find_previous(char character, std::size_t start = npos) const;
    int find_previous(const char* chars, std::size_t start = npos) const;
    int find_previous(const char* chars, std::size_t start, std::size_t count) const;
    int find_previous(const CMOKTString& string, std::size_t start = npos) const;
    /// @}

    /// Changes ASCII letters in place, up to the first zero byte.
    CMOKTString& to_lower();
    CMOKTString& to_upper();

    CMOKTString& erase(std::size_t start = 0, std::size_t count = npos);
    /// Changes every `from` to `to`, or only the first.
    CMOKTString& replace_char(char from, char to, bool all = true);
    /// Changes every `from` to `to`, or only the first. The search continues after the inserted text. An empty `from` changes
    /// nothing.
    CMOKTString& replace_all(const CMOKTString& from, const CMOKTString& to, bool all = true);

    CMOKTString substr(std::size_t start = 0, std::size_t count = npos) const;
    /// The first `count` bytes, or the whole string if it has no more.
    CMOKTString left(std::size_t count) const;
    /// The last `count` bytes, or the whole string if it has no more.
    CMOKTString right(std::size_t count) const;

    /// The part from the last '.', included, even if that is in a folder's name; "" if there is none.
    CMOKTString file_extension() const;
    /// The part up to the last '/', included, or else the last '\'; "" if there is neither.
    CMOKTString directory_of() const;
    /// The part after the last '/', or else the last '\'; the whole string if there is neither.
    CMOKTString file_name_of() const;

    /// Removes leading or trailing spaces, tabs and line ends. A string of nothing else stays unchanged.
    CMOKTString& trim_left();
    CMOKTString& trim_right();

    /// Builds a string as `std::vsnprintf` does. Null, or a format error, gives "".
    static CMOKTString format(const char* format, ...) MOKTEX_PRINTF(1, 2);
    /// Assigns the formatted text, whose arguments may lie inside this string, and returns a copy.
    CMOKTString assign_format(const char* format, ...) MOKTEX_PRINTF(2, 3);

private:
    /// Allocates a buffer for `length` bytes and the terminator, which is set.
    static char* newBuffer(std::size_t length);
    /// Takes ownership of a buffer for `newLength` bytes and frees the old one.
    void adopt(char* buffer, std::size_t newLength) noexcept;
    void cutTo(std::size_t newLength) noexcept;

    char* text;
    std::size_t textLength;
    std::size_t allocated;
};

/// @name Concatenation. A null `const char*` is empty. Raises `std::bad_alloc`.
/// @{
MOKTEX_API CMOKTString operator+(const CMOKTString& a, const CMOKTString& b);
MOKTEX_API CMOKTString operator+(const CMOKTString& a, const char* b);
MOKTEX_API CMOKTString operator+(const char* a, const CMOKTString& b);
MOKTEX_API CMOKTString operator+(const CMOKTString& a, char b);
MOKTEX_API CMOKTString operator+(char a, const CMOKTString& b);
/// @}

static_assert(sizeof(CMOKTString) == 32);
