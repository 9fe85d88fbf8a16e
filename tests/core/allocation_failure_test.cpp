// Every array allocation of every operation fails once: the object must be unchanged, and nothing may leak.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "CMOKTextureHeader.h"
#include "metadata_samples.h"

using namespace metadatasamples;
using moktexture::CMOKTextureHeader;

/// Allocations of arrays that still succeed before one fails; below 0 none fails.
static int allocationsLeft = -1;

void* operator new[](std::size_t size) {
    void* const memory = allocationsLeft == 0 ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    if (allocationsLeft > 0) --allocationsLeft;
    return memory;
}
// clang-format off
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
// clang-format on

namespace {

/// Runs each operation with its first, second, … allocation failing until it succeeds; a failure must leave `state` unchanged.
void failEachAllocation(const std::function<std::string()>& state, const std::vector<std::function<void()>>& operations) {
    for (const auto& operation : operations) {
        const std::string before = state();
        for (int allowed = 0, isDone = 0; !isDone; ++allowed) {
            allocationsLeft = allowed;
            try {
                operation();
                isDone = 1;
            } catch (const std::bad_alloc&) {
            }
            allocationsLeft = -1;
            EXPECT_TRUE(isDone ? allowed > 0 : state() == before) << &operation - operations.data() << ' ' << allowed;
        }
    }
}

TEST(AllocationFailure, LeavesArraysAndMapsUnchanged) {
    CMOKTArray<MetaDataBlock> array;
    OuterMap map;
    CMOKTextureHeader header;
    for (unsigned int i = 0; i < 16; ++i) {
        array.Append(makeBlock("x"));
        map[100 + i] = makeMap(3);
        header.addMetaData(makeBlock("x", 10 + i, 5));
    }
    // clang-format off
    failEachAllocation([&] { return std::to_string(array.GetSize()); },
                       {[&] { array.Append(array[0]); }, [&] { array.Remove(0); }});
    failEachAllocation([&] { return lettersOf(map); },  // the third grows both arrays
                       {[&] { OuterMap copy(map); }, [&] { map[100].Remove(10); }, [&] { map[7]; }, [&] { map = OuterMap(); }});
    failEachAllocation(
        [&] { return std::to_string(header.getMetaDataSize()) + lettersOf(*header.getMetaDataMap().GetDataAtIndex(0)); },
        {[&] { header.removeMetaData(5, 10); }, [&] { header.addMetaData(makeBlock("new", 99, 5)); },
         [&] { header.setBorder(1, 2, 3); }});
    // clang-format on
}

TEST(AllocationFailure, LeavesStringsUnchanged) {
    CMOKTString s;
    const CMOKTString o("other text");
    // Each operation exceeds the capacity that the one before leaves.
    failEachAllocation(
        [&] { return s.c_str() + std::to_string(s.length()) + ' ' + std::to_string(s.capacity()); },
        {[&] { s.assign(9, 'x'); }, [&] { s.append(o); }, [&] { s.reserve(99); }, [&] { s.resize(200, 'x'); }, [&] { s.clear(); },
         [&] { s = o; }, [&] { s.replace_all("t", o); },
         [&] { s.assign_format("%s, %s, %s, %s", o.c_str(), o.c_str(), o.c_str(), o.c_str()); }, [&] { s = o + "x" + o; }});
}

}  // namespace
