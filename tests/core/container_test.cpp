#include <gtest/gtest.h>

#include <array>
#include <new>
#include <string>

#include "CMOKTString.h"
#include "metadata_samples.h"

using namespace metadatasamples;

namespace {

TEST(ContainerArray, CapacityDoublesOrGrowsToTheRequest) {
    CMOKTArray<unsigned int> array;
    for (unsigned int i = 0; i < 17; ++i) {
        EXPECT_EQ(array.GetCapacity(), 16u);
        EXPECT_EQ(array.Append(i), i);
    }
    for (const auto& [asked, capacity] : {std::pair{0u, 32u}, {32u, 32u}, {100u, 100u}, {101u, 200u}}) {
        EXPECT_EQ(array.SetCapacity(asked), eMOKTSuccess);
        EXPECT_EQ(CMOKTArray<unsigned int>(array).GetCapacity(), capacity);
    }
    EXPECT_EQ(CMOKTArray<unsigned int>(array)[16], 16u);
}

TEST(ContainerArray, RemoveOutOfRangeDropsTheLastElement) {
    struct Counting : CMOKTArray<unsigned int> {
        unsigned int calls = 0;
        EMOKTError RemoveLast() override { return ++calls, CMOKTArray<unsigned int>::RemoveLast(); }
    };
    // Index, and the two elements left of 7, 8 and 9.
    for (const auto& [index, first, second] : {std::array{0u, 8u, 9u}, {1, 7, 9}, {2, 7, 8}, {3, 7, 8}, {0xFFFFFFFF, 7, 8}}) {
        Counting array;
        for (unsigned int value : {7u, 8u, 9u})
            array.Append(value);
        EXPECT_EQ(array.Remove(index), eMOKTSuccess);
        EXPECT_EQ((std::array{array.GetSize(), array[0], array[1]}), (std::array{2u, first, second})) << index;
        EXPECT_EQ(array.calls, index == 2 ? 1u : 0u) << "through the virtual operation";
    }
    CMOKTArray<unsigned int> empty;
    EXPECT_EQ(empty.Remove(0xFFFFFFFF), eMOKTFail);
    EXPECT_EQ(empty.RemoveLast(), eMOKTFail);
}

TEST(ContainerArray, ElementsBeyondTheSizeAreLiveObjects) {
    CMOKTArray<MetaDataBlock> array;
    EXPECT_EQ(payloadOf(array[array.Append()]), "(none)");
    array[0] = makeBlock("kept");
    array.RemoveLast();
    EXPECT_EQ(array.Append(), 0u);
    EXPECT_EQ(payloadOf(array[0]), "kept");
    array[15] = makeBlock("behind");  // freed with the elements
    while (array.GetSize() < 40)      // grows twice, with the source in the elements that are freed
        array.Append(array[0]);
    EXPECT_EQ(payloadOf(array[16]) + payloadOf(array[32]) + payloadOf(array[39]), "keptkeptkept");
}

TEST(ContainerMap, RemoveOverwritesTheEntryWithTheOneBeforeTheLast) {
    // clang-format off
    const struct { unsigned int count, key; EMOKTError result; const char* left; } rows[] = {
        {2, 10, eMOKTSuccess, "A"}, {3, 10, eMOKTSuccess, "BB"}, {3, 12, eMOKTSuccess, "AB"}, {4, 10, eMOKTSuccess, "CBC"},
        {3, 99, eMOKTSuccess, "AB"}, {1, 10, eMOKTSuccess, ""},  // absent, the only one
        {3, 3, eMOKTFail, "ABC"}, {1, 1, eMOKTFail, "A"}, {0, 0, eMOKTFail, ""}, {12, 12, eMOKTFail, "ABCDEFGHIJKL"},
        {16, 99, eMOKTSuccess, "ABCDEFGHIJKLMNO"}};  // absent, its index beyond the allocated elements
    // clang-format on
    InnerMap map;
    for (const auto& [count, key, result, left] : rows) {
        map = makeMap(count);
        EXPECT_EQ(map.Remove(key), result) << left;
        EXPECT_EQ(lettersOf(map), left) << left;
    }
    map = makeMap(3);
    map.Remove(10);
    EXPECT_EQ((std::array{map.Exists(10), map.Exists(11), map.Exists(12)}), (std::array{false, true, false}));
}

TEST(ContainerMap, NewKeysAreAppendedBehindStaleEntries) {
    InnerMap map = makeMap(2), absent = makeMap(4), behind = makeMap(3);
    map.Clear();
    map[77] = makeBlock("new");
    EXPECT_EQ(lettersOf(map), "A");
    EXPECT_FALSE(map.Exists(77));
    EXPECT_EQ(payloadOf(map[77]), "(none)");  // not found, so there is a second one with a default value
    map[88];
    EXPECT_TRUE(map.Exists(77));
    EXPECT_EQ(lettersOf(InnerMap(map)), "ABnew");
    absent.Remove(13);
    absent.Remove(99);  // overwrites the stale fourth entry, which the next two keys bring back into the count
    absent[50], absent[51];
    EXPECT_EQ(lettersOf(absent), "ABCB");
    behind.Remove(99);  // overwrites the entry that the next key gets
    EXPECT_EQ(payloadOf(behind[50]), "(none)");
}

// --- Strings

using S = CMOKTString;
constexpr std::size_t npos = S::npos;
const char* const nothing = nullptr;
using Four = std::array<int, 4>;
constexpr auto at = [](auto result) { return static_cast<int>(result); };

/// The bytes of a string whose length, terminator and buffer agree.
std::string bytesOf(const S& string) {
    EXPECT_EQ(string.c_str()[string.length()], 0);
    EXPECT_GT(string.capacity(), string.length());
    return std::string(string.data(), string.length());
}

TEST(ContainerString, ConstructsEditsExtractsAndFormats) {
    const S letters("abcdef");
    const std::string longText(5000, 'y');
    const auto changed = [](void (*change)(S & s)) {
        S string("abcabd");
        return change(string), string;
    };
    // clang-format off
    const std::pair<S, std::string> rows[] = {
        {S(nothing, 3), ""}, {S("ab\0cd", 5), std::string("ab\0cd", 5)}, {S(3, 'x'), "xxx"}, {S('x'), "x"}, {S(letters, 4), "ef"},
        {S(letters, 4, npos - 1), "ef"}, {S(letters, 7, 1), ""}, {letters.substr(1, 2), "bc"}, {letters.left(2), "ab"},
        {letters.left(npos), "abcdef"}, {letters.right(2), "ef"}, {letters.right(npos), "abcdef"},
        {letters + S("g") + "h" + 'i', "abcdefghi"}, {'_' + ("0" + letters), "_0abcdef"},
        {S("aZ\xC4[`{1", 7).to_lower(), "az\xC4[`{1"}, {S("aZ\xE4\0b", 5).to_upper(), std::string("AZ\xE4\0b", 5)},
        {S("abcdef").erase(2, 3), "abf"}, {S("abcdef").erase(6, 1).erase(npos, npos), "abcdef"},
        {S("abab").replace_char('a', 'x'), "xbxb"}, {S("abab").replace_char('a', 'x', false), "xbab"},
        {S("aaaaa").replace_all("aa", "b"), "bba"}, {S("abab").replace_all("a", "aa"), "aabaab"},
        {S("abab").replace_all("ab", ""), ""}, {S("abab").replace_all("", "x"), "abab"},
        {S("abab").replace_all("ab", "xyz", false), "xyzab"}, {S(" \t\r\n a b ").trim_left(), "a b "},
        {S(" a b \t\r\n").trim_right(), " a b"}, {S("\v ").trim_left(), "\v "}, {S(" \t ").trim_left().trim_right(), " \t "},
        {S("a/b\\c.tar.gz").file_extension(), ".gz"}, {S("a.d/c").file_extension(), ".d/c"}, {S("c").file_extension(), ""},
        {S("a/b\\c").directory_of(), "a/"}, {S("a\\b\\c").directory_of(), "a\\b\\"}, {S("c").directory_of(), ""},
        {S("a/b\\c").file_name_of(), "b\\c"}, {S("a\\b\\c").file_name_of(), "c"}, {S("c").file_name_of(), "c"},
        {S::format("%d-%s-%5.2f-%zu", -3, "x", 1.5, std::size_t{9}), "-3-x- 1.50-9"},
        {S::format("%s", longText.c_str()), longText}, {S::format(nothing), ""},
        // A string's own text as the source.
        {changed([](S& s) { s = *&s; }), "abcabd"}, {changed([](S& s) { s = s.c_str() + 2; }), "cabd"},
        {changed([](S& s) { s = nothing; }), ""}, {changed([](S& s) { s.append(s.c_str() + 4); }), "abcabdbd"},
        {changed([](S& s) { s.replace_all("ab", s); }), "abcabdcabcabdd"},
        {changed([](S& s) { s.append(s, 7, 1).append(nothing).append(nothing, 4); }), "abcabd"},
        {changed([](S& s) { s.assign_format("<%s|%s>", s.c_str(), s.c_str() + 3); }), "<abcabd|abd>"}};
    // clang-format on
    for (const auto& [result, expected] : rows)
        EXPECT_EQ(bytesOf(result), expected);
    char buffer[4] = "...";
    EXPECT_EQ(letters.copy(buffer, 2, 1) * 10 + letters.copy(buffer + 1, npos, 5), 21u);
    EXPECT_EQ(buffer, S("bf."));
    EXPECT_EQ(letters.copy(buffer, 2, 7) + letters.copy(nullptr, 2), 0u);
}

TEST(ContainerString, GrowsToExactlyTheLengthNeeded) {
    // clang-format off
    const struct { void (*change)(S& s); std::size_t capacity; const char* text; } steps[] = {
        {[](S&) {}, 1, ""}, {[](S& s) { s.append("abcd").append(2, 'e'); }, 7, "abcdee"},
        {[](S& s) { s.assign("xyz"); }, 7, "xyz"}, {[](S& s) { s.reserve(6); }, 7, "xyz"}, {[](S& s) { s.reserve(7); }, 8, "xyz"},
        {[](S& s) { s.append(s, 1, 1); }, 5, "xyzy"}, {[](S& s) { s.resize(6, '.'); }, 7, "xyzy.."},
        {[](S& s) { s.resize(2); }, 7, "xy"}, {[](S& s) { s.clear(); }, 1, ""}};
    // clang-format on
    S string;
    for (const auto& [change, capacity, text] : steps) {
        change(string);
        EXPECT_EQ(bytesOf(string) + ' ' + std::to_string(string.capacity()), text + (' ' + std::to_string(capacity)));
    }
    string = "ab";
    for (void (*const grow)(S & s) :
         {+[](S& s) { s.reserve(npos); }, +[](S& s) { s.append(npos - 1, 'x'); }, +[](S& s) { s.resize(npos); }})
        EXPECT_THROW(grow(string), std::bad_alloc);
    EXPECT_EQ(bytesOf(string), "ab");
}

TEST(ContainerString, ComparesWholeStringsUnsignedAndRangesSigned) {
    const S string("abcdef"), high("\xE9"), low("z");
    // clang-format off
    const std::pair<int, int> rows[] = {
        {high.compare(low), 1}, {high.compare("z"), 1}, {string.compare("abcdefg"), -1}, {string.compare(nothing), 1},
        {high.compare(0, npos, low), -1}, {high.compare(0, 1, low, 0, 1), -1}, {string.compare(2, 1, string, 2, npos), -1},
        {high.compare(0, npos, "z"), -1}, {string.compare(2, 2, "cd"), 0}, {string.compare(2, npos, "cd"), 1},
        {high.compare(0, 1, "z", 1), -1}, {string.compare(2, 2, "cdx", 2), 0}, {string.compare(9, 2, nothing, 5), 0},
        {low < high, 1}, {string == "abcdef", 1}, {string != "abc", 1}, {S() == nothing, 1}, {string != high, 1}};
    // clang-format on
    for (const auto& [result, sign] : rows)
        EXPECT_EQ((result > 0) - (result < 0), sign) << "row " << (&result - &rows[0].first) / 2;
}

/// The results of a search for a set or text of two letters in its four forms: the first letter, both, the first, both.
template <class Search>
Four inForms(Search search, const char* chars, std::size_t position) {
    return {at(search(chars[0], position)), at(search(chars, position)), at(search(chars, position, 1)),
            at(search(S(chars), position))};
}

TEST(ContainerString, SearchesForSetsAndTexts) {
    const S s("abcabcab"), empty;
    // Positions count from the end in the searches for the last.
    EXPECT_EQ(inForms([&](auto... a) { return s.find_first_of(a...); }, "cb", 3), (Four{5, 4, 5, 4}));
    EXPECT_EQ(inForms([&](auto... a) { return s.find_first_not_of(a...); }, "ab", 3), (Four{4, 5, 4, 5}));
    EXPECT_EQ(inForms([&](auto... a) { return s.find_last_of(a...); }, "ab", 2), (Four{3, 4, 3, 4}));
    EXPECT_EQ(inForms([&](auto... a) { return s.find_last_not_of(a...); }, "cb", 2), (Four{4, 3, 4, 3}));
    EXPECT_EQ(inForms([&](auto... a) { return s.count_of(a...); }, "bc", 2), (Four{2, 1, 2, 1}));
    EXPECT_EQ(inForms([&](auto... a) { return s.find_next(a...); }, "bc", 5), (Four{7, 8, 7, 8}));
    EXPECT_EQ(inForms([&](auto... a) { return s.find_previous(a...); }, "ac", 5), (Four{3, -1, 3, -1}));
    // clang-format off
    const std::pair<int, int> rows[] = {
        {at(s.find("cabX", 3, 3)), 5}, {at(s.find("cab", 6, npos)), -1}, {at(s.find("", 8, 0)), -1},
        {at(s.find_first_of(nothing)), -1}, {at(s.find_first_of('b', 7)), 7}, {at(s.find_first_of('b', 8)), -1},
        {at(s.find_first_not_of('a', npos)), -1}, {at(empty.find_last_of('a')), -1}, {at(s.find_last_of('a', 7)), 0},
        {at(s.find_last_of('a', 8)), -1}, {at(s.find_last_not_of('a', 7)), -1}, {at(s.find_last_not_of('b', 8)), -1},
        {at(S("aaaa").count_of("aa")), 3}, {at(s.count_of('b', 8)), 0}, {s.find_next("abc", 3), 3}, {s.find_next('b', npos), 8},
        {s.find_previous("ab"), 6}, {s.find_previous("ab", 2), -1}, {empty.find_previous('a'), -1}};
    // clang-format on
    for (const auto& [found, expected] : rows)
        EXPECT_EQ(found, expected) << "row " << (&found - &rows[0].first) / 2;
}

}  // namespace
