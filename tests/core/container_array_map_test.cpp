#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "metadata_samples.h"

using namespace metadatasamples;

namespace {

TEST(ContainerArray, GrowsByDoublingOrToWhatIsAsked) {
    CMOKTArray<unsigned int> array;
    for (unsigned int i = 0; i < 17; ++i)
        EXPECT_TRUE(array.GetCapacity() == 16 && array.Append(i) == i);
    for (const auto& [asked, capacity] : {std::pair{0u, 32u}, {32u, 32u}, {100u, 100u}, {101u, 200u}})
        EXPECT_TRUE(array.SetCapacity(asked) == eMOKTSuccess && CMOKTArray<unsigned int>(array).GetCapacity() == capacity);
    for (unsigned int i = 0; i < 17; ++i)
        EXPECT_EQ(CMOKTArray<unsigned int>(array)[i], i);
}

TEST(ContainerArray, RemoveTakesAnIndexOutOfRangeForTheLast) {
    struct Counting : CMOKTArray<unsigned int> {
        unsigned int calls = 0;
        EMOKTError RemoveLast() override { return ++calls, CMOKTArray<unsigned int>::RemoveLast(); }
    };
    // clang-format off
    const struct { unsigned int index; std::vector<unsigned int> left; } rows[] = {
        {0, {8, 9}}, {1, {7, 9}}, {2, {7, 8}}, {3, {7, 8}}, {5, {7, 8}}, {0xFFFFFFFF, {7, 8}}};
    // clang-format on
    for (const auto& row : rows) {
        Counting array;
        for (unsigned int value : {7u, 8u, 9u})
            array.Append(value);
        EXPECT_EQ(array.Remove(row.index), eMOKTSuccess);
        EXPECT_EQ(std::vector<unsigned int>(&array[0], &array[0] + array.GetSize()), row.left) << row.index;
        EXPECT_EQ(array.calls, row.index == 2 ? 1u : 0u) << "through the virtual operation";
    }
    CMOKTArray<unsigned int> empty;
    EXPECT_TRUE(empty.Remove(0) == eMOKTFail && empty.Remove(0xFFFFFFFF) == eMOKTFail && empty.RemoveLast() == eMOKTFail);
}

TEST(ContainerArray, ElementsBehindTheSizeAreLiveObjectsAndMayBeAppended) {
    CMOKTArray<MetaDataBlock> array;
    EXPECT_EQ(payloadOf(array[array.Append()]), "(none)");
    array[0] = makeBlock("kept");
    array.RemoveLast();
    EXPECT_TRUE(array.Append() == 0 && payloadOf(array[0]) == "kept");
    array[15] = makeBlock("behind");  // freed with the store
    CMOKTArray<unsigned int> numbers;
    numbers.SetCapacity(32);
    EXPECT_TRUE(numbers[15] == 0 && numbers[31] == 0 && CMOKTArray<unsigned int>()[15] == 0);
    while (array.GetSize() < 40)  // grows twice on the way, with the source in the store that goes
        array.Append(array[0]);
    EXPECT_EQ(payloadOf(array[16]) + payloadOf(array[32]) + payloadOf(array[39]), "keptkeptkept");
}

TEST(MetaDataBlocks, CopiesShareNothing) {
    MetaDataBlock source = makeBlock("payload", 7, 5), copy(source), assigned = makeBlock("old"), withoutPayload;
    assigned = source;
    source.data[0] = 'X';
    EXPECT_EQ(payloadOf(copy) + payloadOf(assigned), "payloadpayload");
    EXPECT_TRUE(assigned.fourCC == 5 && assigned.key == 7);
    withoutPayload.dataSize = 9;
    assigned = withoutPayload;
    EXPECT_TRUE(assigned.data == nullptr && assigned.dataSize == 9 && MetaDataBlock(makeBlock("")).data != nullptr);
}

TEST(ContainerMap, KeepsTheOrderOfInsertion) {
    OuterMap outer;
    for (unsigned int key : {30u, 10u, 20u, 10u})
        outer[key][key + 1] = makeBlock(std::to_string(outer[key].GetSize()));
    const OuterMap copy(outer);
    outer.Clear();
    EXPECT_TRUE(lettersOf(copy) == "0|1|0|" && copy.GetIndexOf(20) == 2 && copy.GetIndexOf(99) == 3);
}

TEST(ContainerMap, RemoveFillsThePlaceFromTheEntryBeforeTheOldLast) {
    // clang-format off
    const struct { unsigned int count, key; EMOKTError result; const char* left; } rows[] = {
        {2, 10, eMOKTSuccess, "A"}, {3, 10, eMOKTSuccess, "BB"}, {3, 12, eMOKTSuccess, "AB"}, {4, 10, eMOKTSuccess, "CBC"},
        {3, 99, eMOKTSuccess, "AB"}, {1, 10, eMOKTSuccess, ""},  // absent, the only one
        {3, 3, eMOKTFail, "ABC"}, {1, 1, eMOKTFail, "A"}, {0, 0, eMOKTFail, ""}, {12, 12, eMOKTFail, "ABCDEFGHIJKL"},
        {16, 99, eMOKTSuccess, "ABCDEFGHIJKLMNO"}};  // absent, its place behind the store
    // clang-format on
    InnerMap map;
    for (const auto& [count, key, result, left] : rows) {
        map = makeMap(count);
        EXPECT_TRUE(map.Remove(key) == result && lettersOf(map) == left) << left;
    }
    map = makeMap(3);
    map.Remove(10);
    EXPECT_TRUE(!map.Exists(10) && map.Exists(11) && !map.Exists(12));
}

TEST(ContainerMap, NewKeysGoBehindTheStaleEntries) {
    InnerMap map = makeMap(2), absent = makeMap(4), behind = makeMap(3);
    map.Clear();
    map[77] = makeBlock("new");
    EXPECT_TRUE(lettersOf(map) == "A" && !map.Exists(77));
    EXPECT_EQ(payloadOf(map[77]), "(none)");  // not found, so there is a second one with a default value
    map[88];
    EXPECT_TRUE(map.Exists(77) && lettersOf(InnerMap(map)) == "ABnew");
    absent.Remove(13);
    absent.Remove(99);  // fills the stale fourth place, which the next two keys bring back into the count
    absent[50], absent[51];
    EXPECT_EQ(lettersOf(absent), "ABCB");
    behind.Remove(99);  // fills the place that the next key takes
    EXPECT_EQ(payloadOf(behind[50]), "(none)");
}

}  // namespace
