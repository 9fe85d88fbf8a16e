// Every allocation of every container operation fails once; the object must be as it was, and nothing may leak.
//
// The allocator of this whole test program is replaced for that.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "CMOKTMap.h"
#include "CMOKTString.h"
#include "MetaDataBlock.h"

namespace {

/// Allocations that still succeed before one fails; below 0 none fails.
thread_local int allocationsLeft = -1;

void* allocateUnlessDue(std::size_t size) {
    if (allocationsLeft == 0) throw std::bad_alloc();
    if (allocationsLeft > 0) --allocationsLeft;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return allocateUnlessDue(size);
}
void* operator new[](std::size_t size) {
    return allocateUnlessDue(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using InnerMap = CMOKTMap<unsigned int, MetaDataBlock>;
using OuterMap = CMOKTMap<unsigned int, InnerMap>;

/// Runs `operation` with its first, second, … allocation failing until it succeeds.
/// @return how often it failed; `describe` is the same after each failure.
template <class Operation, class Describe>
int failEachAllocation(Operation operation, Describe describe) {
    const std::string before = describe();
    for (int allowed = 0;; ++allowed) {
        allocationsLeft = allowed;
        try {
            operation();
            allocationsLeft = -1;
            return allowed;
        } catch (const std::bad_alloc&) {
            allocationsLeft = -1;
            EXPECT_EQ(describe(), before) << "after failure of allocation " << allowed;
        }
    }
}

std::string describe(const OuterMap& map) {
    std::string text;
    for (unsigned int i = 0; i < map.GetSize(); ++i) {
        const InnerMap& inner = *map.GetDataAtIndex(i);
        for (unsigned int k = 0; k < inner.GetSize(); ++k)
            text += std::to_string(inner.GetDataAtIndex(k)->data[0]) + ' ';
        text += '|';
    }
    return text;
}

/// `outerCount` maps of three blocks each.
OuterMap makeMap(unsigned int outerCount) {
    OuterMap map;
    for (unsigned int i = 0; i < outerCount; ++i) {
        for (unsigned int k = 0; k < 3; ++k) {
            MetaDataBlock& block = map[100 + i][100 + k];
            block.dataSize = 1;
            block.data = new unsigned char[1]{static_cast<unsigned char>(10 * i + k)};
        }
    }
    return map;
}

TEST(ContainerAllocation, FailureLeavesMapsAsTheyWere) {
    OuterMap map = makeMap(16);
    const OuterMap other = makeMap(2);
    const auto state = [&map] { return describe(map); };
    EXPECT_GT(failEachAllocation([&] { OuterMap copy(map); }, state), 0);
    EXPECT_GT(failEachAllocation([&] { map[100].Remove(100); }, state), 0);
    EXPECT_GT(failEachAllocation([&] { map[7]; }, state), 0) << "grows both arrays";
    EXPECT_EQ(map.GetSize(), 17u);
    EXPECT_EQ(map[7].GetSize(), 0u);
    EXPECT_GT(failEachAllocation([&] { map = other; }, state), 0);
    EXPECT_EQ(state(), describe(other));
}

TEST(ContainerAllocation, FailureLeavesStringsAsTheyWere) {
    CMOKTString string;
    const CMOKTString other("other text");
    const auto state = [&string] {
        return string.c_str() + std::to_string(string.length()) + ' ' + std::to_string(string.capacity());
    };
    const std::pair<const char*, void (*)(CMOKTString&, const CMOKTString&)> rows[] = {
        {"assign", [](CMOKTString& s, const CMOKTString& o) { s = o; }},
        {"fill", [](CMOKTString& s, const CMOKTString&) { s.assign(9, 'x'); }},
        {"append", [](CMOKTString& s, const CMOKTString& o) { s.append(o); }},
        {"clear", [](CMOKTString& s, const CMOKTString&) { s.clear(); }},
        {"reserve", [](CMOKTString& s, const CMOKTString&) { s.reserve(9); }},
        {"resize", [](CMOKTString& s, const CMOKTString&) { s.resize(9, 'x'); }},
        {"replace_all", [](CMOKTString& s, const CMOKTString& o) { s.replace_all("a", o); }},
        {"assign_format", [](CMOKTString& s, const CMOKTString& o) { s.assign_format("%s!", o.c_str()); }},
        {"join", [](CMOKTString& s, const CMOKTString& o) { s = o + "x" + o; }},
    };
    for (const auto& [name, change] : rows) {
        string = CMOKTString("aba");
        string.append("c");
        EXPECT_GT(failEachAllocation([&, change = change] { change(string, other); }, state), 0) << name;
    }
}

}  // namespace
