// Every allocation of an array fails once in every operation: the object must be as it was, and nothing may leak.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "CMOKTextureHeader.h"
#include "metadata_samples.h"

using namespace metadatasamples;
using moktexture::CMOKTextureHeader;

namespace {

/// Allocations of arrays that still succeed before one fails; below 0 none fails.
int allocationsLeft = -1;

}  // namespace

void* operator new[](std::size_t size) {
    void* const memory = allocationsLeft == 0 ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    if (allocationsLeft > 0) --allocationsLeft;
    return memory;
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

/// Runs `operation` with its first, second, … allocation failing until it succeeds.
/// @return how often it failed, or -1 if a failure changed `state`
template <class State, class Operation>
int failEachAllocation(State state, Operation operation) {
    const std::string before = state();
    for (int allowed = 0;; ++allowed) {
        allocationsLeft = allowed;
        try {
            operation();
            allocationsLeft = -1;
            return allowed;
        } catch (const std::bad_alloc&) {
            allocationsLeft = -1;
            if (state() != before) return -1;
        }
    }
}

TEST(AllocationFailure, LeavesArraysAndMapsAsTheyWere) {
    CMOKTArray<MetaDataBlock> array;
    OuterMap map;
    CMOKTextureHeader header;
    for (unsigned int i = 0; i < 16; ++i) {
        array.Append(makeBlock("x"));
        map[100 + i] = makeMap(3);
        header.addMetaData(makeBlock("x", 10 + i, 5));
    }
    const auto size = [&] { return std::to_string(array.GetSize()); };
    EXPECT_GT(failEachAllocation(size, [&] { array.Append(array[0]); }), 0);
    EXPECT_GT(failEachAllocation(size, [&] { array.Remove(0); }), 0);
    const auto letters = [&] { return lettersOf(map); };
    EXPECT_GT(failEachAllocation(letters, [&] { OuterMap copy(map); }), 0);
    EXPECT_GT(failEachAllocation(letters, [&] { map[100].Remove(10); }), 0);
    EXPECT_GT(failEachAllocation(letters, [&] { map[7]; }), 0) << "grows both arrays";
    EXPECT_EQ(map.GetSize(), 17u);
    EXPECT_GT(failEachAllocation(letters, [&] { map = OuterMap(); }), 0);
    const auto counted = [&] {
        return std::to_string(header.getMetaDataSize()) + lettersOf(*header.getMetaDataMap().GetDataAtIndex(0));
    };
    EXPECT_GT(failEachAllocation(counted, [&] { header.removeMetaData(5, 10); }), 0);
    EXPECT_GT(failEachAllocation(counted, [&] { header.addMetaData(makeBlock("new", 99, 5)); }), 0);
    EXPECT_GT(failEachAllocation(counted, [&] { header.setBorder(1, 2, 3); }), 0);
}

TEST(AllocationFailure, LeavesStringsAsTheyWere) {
    using S = CMOKTString;
    S string;
    const S other("other text");
    const auto state = [&] { return string.c_str() + std::to_string(string.length()) + ' ' + std::to_string(string.capacity()); };
    void (*const changes[])(S&, const S&) = {
        [](S& s, const S& o) { s = o; },
        [](S& s, const S&) { s.assign(9, 'x'); },
        [](S& s, const S& o) { s.append(o); },
        [](S& s, const S&) { s.clear(); },
        [](S& s, const S&) { s.reserve(9); },
        [](S& s, const S&) { s.resize(9, 'x'); },
        [](S& s, const S& o) { s.replace_all("a", o); },
        [](S& s, const S& o) { s.assign_format("%s!", o.c_str()); },
        [](S& s, const S& o) { s = o + "x" + o; },
    };
    for (const auto& change : changes) {
        string = "aba";
        string.append("c");  // leaves no room
        EXPECT_GT(failEachAllocation(state, [&] { change(string, other); }), 0) << &change - changes;
    }
}

}  // namespace
