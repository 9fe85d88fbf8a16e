#include <gtest/gtest.h>

#include <new>
#include <string>

#include "CMOKTString.h"

namespace {

constexpr std::size_t npos = CMOKTString::npos;
const char* const nothing = nullptr;

/// The bytes of a string whose length, terminator and buffer agree.
std::string bytesOf(const CMOKTString& string) {
    EXPECT_EQ(string.c_str()[string.length()], 0);
    EXPECT_GT(string.capacity(), string.length());
    return std::string(string.data(), string.length());
}

TEST(ContainerString, IsBuiltFromWhatExists) {
    const CMOKTString letters("abcdef");
    const struct {
        CMOKTString built;
        std::string expected;
    } rows[] = {
        {CMOKTString(), ""},
        {CMOKTString(nothing, 3), ""},
        {CMOKTString("ab\0cd", 5), std::string("ab\0cd", 5)},
        {CMOKTString(letters, 4), "ef"},
        {CMOKTString(letters, 4, npos - 1), "ef"},
        {CMOKTString(letters, 7, 1), ""},
        {CMOKTString(3, 'x'), "xxx"},
        {CMOKTString('x'), "x"},
        {letters.substr(1, 2), "bc"},
        {letters.left(2), "ab"},
        {letters.left(npos), "abcdef"},
        {letters.right(2), "ef"},
        {letters.right(npos), "abcdef"},
        {letters + CMOKTString("g") + "h" + 'i', "abcdefghi"},
        {'_' + ("0" + letters), "_0abcdef"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(bytesOf(row.built), row.expected);
        EXPECT_EQ(row.built.capacity() > 1, !row.expected.empty());
    }
}

TEST(ContainerString, TakesExactlyTheRoomItNeeds) {
    CMOKTString string;
    EXPECT_EQ(string.capacity(), 1u);
    string.append("abcd").append(2, 'e');
    EXPECT_EQ(string.capacity(), 7u);
    const char* buffer = string.data();
    string.assign("xyz");
    EXPECT_EQ(string.data(), buffer) << "assignment reuses the buffer";
    EXPECT_EQ(string.capacity(), 7u);
    string.reserve(6);
    EXPECT_EQ(string.data(), buffer);
    string.reserve(7);
    EXPECT_EQ(string.capacity(), 8u);
    EXPECT_EQ(bytesOf(string), "xyz");
    string.append(string, 1, 1);
    EXPECT_EQ(string.capacity(), 5u);
    string.resize(6, '.');
    EXPECT_EQ(bytesOf(string), "xyzy..");
    string.resize(2);
    EXPECT_EQ(bytesOf(string), "xy");
    string.clear();
    EXPECT_EQ(string.capacity(), 1u);
    EXPECT_THROW(string.reserve(npos), std::bad_alloc);
    string = "ab";
    EXPECT_THROW(string.append(npos - 1, 'x'), std::bad_alloc);
    EXPECT_THROW(string.resize(npos), std::bad_alloc);
    EXPECT_EQ(bytesOf(string), "ab");
}

TEST(ContainerString, TakesItsOwnTextAsSource) {
    const struct {
        void (*change)(CMOKTString& s);
        const char* expected;
    } rows[] = {
        {[](CMOKTString& s) { s = *&s; }, "abcabd"},
        {[](CMOKTString& s) { s = s.c_str() + 2; }, "cabd"},
        {[](CMOKTString& s) { s.append(s.c_str() + 4); }, "abcabdbd"},
        {[](CMOKTString& s) { s.append(s, 7, 1).append(nothing).append(nothing, 4); }, "abcabd"},
        {[](CMOKTString& s) { s.replace_all(s, s + s); }, "abcabdabcabd"},
        {[](CMOKTString& s) { s.replace_all("ab", s); }, "abcabdcabcabdd"},
        {[](CMOKTString& s) { s.assign_format("<%s|%s>", s.c_str(), s.c_str() + 3); }, "<abcabd|abd>"},
        {[](CMOKTString& s) { s = nothing; }, ""},
    };
    for (const auto& row : rows) {
        CMOKTString string("abcabd");
        row.change(string);
        EXPECT_EQ(bytesOf(string), row.expected);
    }
}

TEST(ContainerString, CopiesOutWhatExists) {
    const CMOKTString string("abcdef");
    char buffer[4] = "...";
    EXPECT_EQ(string.copy(buffer, 2, 1), 2u);
    EXPECT_STREQ(buffer, "bc.");
    EXPECT_EQ(string.copy(buffer, npos, 5), 1u);
    EXPECT_STREQ(buffer, "fc.");
    EXPECT_EQ(string.copy(buffer, 2, 7) + string.copy(nullptr, 2), 0u);
}

TEST(ContainerString, ComparesWholeStringsUnsignedAndRangesSigned) {
    const CMOKTString high("\xE9"), low("z");
    EXPECT_GT(high.compare(low), 0);
    EXPECT_GT(high.compare("z"), 0);
    EXPECT_TRUE(low < high);
    EXPECT_LT(high.compare(0, npos, low), 0);
    EXPECT_LT(high.compare(0, npos, "z"), 0);
    EXPECT_LT(high.compare(0, 1, "z", 1), 0);
    EXPECT_LT(high.compare(0, 1, low, 0, 1), 0);

    const CMOKTString string("abcdef");
    EXPECT_EQ(string.compare(2, 2, "cd"), 0);
    EXPECT_EQ(string.compare(2, 2, "cdx", 2), 0);
    EXPECT_GT(string.compare(2, npos, "cd"), 0);
    EXPECT_LT(string.compare(2, 1, string, 2, npos), 0);
    EXPECT_EQ(string.compare(9, 2, nothing, 5), 0);
    EXPECT_LT(string.compare("abcdefg"), 0);
    EXPECT_GT(string.compare(nothing), 0);
    EXPECT_TRUE(string == "abcdef" && string != "abc" && CMOKTString() == nothing && string != high);
}

/// The result of a search for one character, which all four forms must agree on.
template <class Search>
std::size_t inAllForms(Search search, char character, std::size_t position) {
    const char chars[] = {character, 'X', 0};
    const std::size_t found = static_cast<std::size_t>(search(character, position));
    EXPECT_EQ(static_cast<std::size_t>(search(chars, position, 1)), found);
    EXPECT_EQ(static_cast<std::size_t>(search(CMOKTString(chars, 1), position)), found);
    EXPECT_EQ(static_cast<std::size_t>(search(CMOKTString(chars, 1).c_str(), position)), found);
    return found;
}

TEST(ContainerString, SearchesForOneCharacterAgreeInAllForms) {
    const CMOKTString s("abcabcab");
    const auto firstOf = [&s](auto... a) { return s.find_first_of(a...); };
    const auto firstNotOf = [&s](auto... a) { return s.find_first_not_of(a...); };
    const auto lastOf = [&s](auto... a) { return s.find_last_of(a...); };
    const auto lastNotOf = [&s](auto... a) { return s.find_last_not_of(a...); };
    const auto countOf = [&s](auto... a) { return s.count_of(a...); };
    const auto next = [&s](auto... a) { return s.find_next(a...); };
    const auto previous = [&s](auto... a) { return s.find_previous(a...); };
    const struct {
        std::size_t position, firstOf, firstNotOf, lastOf, lastNotOf, countOf, next, previous;
    } rows[] = {
        // clang-format off
        // position, which counts from the end in the searches for the last; results, with npos for the 32-bit -1
        {0,    0,    1,    6,    7,    3, 0, npos},
        {1,    3,    1,    6,    5,    2, 3, npos},
        {4,    6,    4,    3,    2,    1, 6, 3},
        {7,    npos, 7,    0,    npos, 0, 8, 6},
        {8,    npos, npos, npos, npos, 0, 8, 6},
        {npos, npos, npos, npos, npos, 0, 8, 6},
        // clang-format on
    };
    for (const auto& row : rows) {
        EXPECT_EQ(inAllForms(firstOf, 'a', row.position), row.firstOf) << row.position;
        EXPECT_EQ(inAllForms(firstNotOf, 'a', row.position), row.firstNotOf) << row.position;
        EXPECT_EQ(inAllForms(lastOf, 'a', row.position), row.lastOf) << row.position;
        EXPECT_EQ(inAllForms(lastNotOf, 'a', row.position), row.lastNotOf) << row.position;
        EXPECT_EQ(inAllForms(countOf, 'a', row.position), row.countOf) << row.position;
        EXPECT_EQ(inAllForms(next, 'a', row.position), row.next) << row.position;
        EXPECT_EQ(inAllForms(previous, 'a', row.position), row.previous) << row.position;
    }
}

TEST(ContainerString, SearchesTakeSetsAndTexts) {
    const CMOKTString s("abcabcab"), empty;
    const struct {
        long long found, expected;
    } rows[] = {
        {static_cast<long long>(s.find("cabX", 3, 3)), 5},
        {static_cast<long long>(s.find("cab", 6, npos)), -1},
        {static_cast<long long>(s.find("", 8, 0)), -1},
        {static_cast<long long>(s.find_first_of("cb")), 1},
        {static_cast<long long>(s.find_first_of(nothing)), -1},
        {static_cast<long long>(s.find_first_not_of("ab", 3)), 5},
        {static_cast<long long>(s.find_last_of("bc", 3)), 4},
        {static_cast<long long>(empty.find_last_of('a')), -1},
        {static_cast<long long>(CMOKTString("aaaa").count_of("aa")), 3},
        {s.find_next("abc", 4), 8},
        {s.find_previous("ab", 5), 3},
        {s.find_previous("ab", 2), -1},
        {empty.find_previous('a'), -1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.found, row.expected) << "row " << &row - rows;
}

TEST(ContainerString, IsEditedInPlace) {
    const struct {
        CMOKTString result;
        std::string expected;
    } rows[] = {
        {CMOKTString("aZ\xC4[`{1", 7).to_lower(), "az\xC4[`{1"},
        {CMOKTString("aZ\xE4\0b", 5).to_upper(), std::string("AZ\xE4\0b", 5)},
        {CMOKTString("abcdef").erase(2, 3), "abf"},
        {CMOKTString("abcdef").erase(6, 1).erase(npos, npos), "abcdef"},
        {CMOKTString("abab").replace_char('a', 'x'), "xbxb"},
        {CMOKTString("abab").replace_char('a', 'x', false), "xbab"},
        {CMOKTString("aaaaa").replace_all("aa", "b"), "bba"},
        {CMOKTString("abab").replace_all("a", "aa"), "aabaab"},
        {CMOKTString("abab").replace_all("ab", "xyz", false), "xyzab"},
        {CMOKTString("abab").replace_all("ab", ""), ""},
        {CMOKTString("abab").replace_all("", "x"), "abab"},
        {CMOKTString(" \t\r\n a b ").trim_left(), "a b "},
        {CMOKTString(" a b \t\r\n").trim_right(), " a b"},
        {CMOKTString("\v ").trim_left(), "\v "},
        {CMOKTString(" \t ").trim_right(), " \t "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(bytesOf(row.result), row.expected);
}

TEST(ContainerString, CutsPaths) {
    const struct {
        const char *path, *extension, *directory, *name;
    } rows[] = {
        {"a/b\\c.tar.gz", ".gz", "a/", "b\\c.tar.gz"},
        {"a\\b\\c.mok", ".mok", "a\\b\\", "c.mok"},
        {"c", "", "", "c"},
        {"a.d/c", ".d/c", "a.d/", "c"},
        {"a/", "", "a/", ""},
        {"", "", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(bytesOf(CMOKTString(row.path).file_extension()), row.extension);
        EXPECT_EQ(bytesOf(CMOKTString(row.path).directory_of()), row.directory);
        EXPECT_EQ(bytesOf(CMOKTString(row.path).file_name_of()), row.name);
    }
}

TEST(ContainerString, FormatsTextOfAnyLength) {
    EXPECT_EQ(bytesOf(CMOKTString::format("%d-%s-%5.2f-%zu", -3, "x", 1.5, std::size_t{9})), "-3-x- 1.50-9");
    EXPECT_EQ(bytesOf(CMOKTString::format("%s", std::string(5000, 'y').c_str())), std::string(5000, 'y'));
    EXPECT_EQ(bytesOf(CMOKTString::format(nothing)), "");
}

}  // namespace
