#include <gtest/gtest.h>

#include <string>
#include <vector>

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
    for (unsigned int i = 0; i < 17; ++i)
        EXPECT_EQ(CMOKTArray<unsigned int>(array)[i], i);
}

TEST(ContainerArray, RemoveOutOfRangeDropsTheLastElement) {
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
    EXPECT_EQ(empty.Remove(0), eMOKTFail);
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
    CMOKTArray<unsigned int> numbers;
    numbers.SetCapacity(32);
    EXPECT_EQ(numbers[15] + numbers[31] + CMOKTArray<unsigned int>()[15], 0u);
    while (array.GetSize() < 40)  // grows twice, with the source in the elements that are freed
        array.Append(array[0]);
    EXPECT_EQ(payloadOf(array[16]) + payloadOf(array[32]) + payloadOf(array[39]), "keptkeptkept");
}

TEST(MetaDataBlocks, CopiesAreDeep) {
    MetaDataBlock source = makeBlock("payload", 7, 5), copy(source), assigned = makeBlock("old"), withoutPayload;
    assigned = source;
    source.data[0] = 'X';
    EXPECT_EQ(payloadOf(copy) + payloadOf(assigned), "payloadpayload");
    EXPECT_EQ(assigned.fourCC, 5u);
    EXPECT_EQ(assigned.key, 7u);
    withoutPayload.dataSize = 9;
    assigned = withoutPayload;
    EXPECT_EQ(assigned.data, nullptr);
    EXPECT_EQ(assigned.dataSize, 9u);
    EXPECT_NE(MetaDataBlock(makeBlock("")).data, nullptr);
}

TEST(ContainerMap, KeepsTheOrderOfInsertion) {
    OuterMap outer;
    for (unsigned int key : {30u, 10u, 20u, 10u})
        outer[key][key + 1] = makeBlock(std::to_string(outer[key].GetSize()));
    const OuterMap copy(outer);
    outer.Clear();
    EXPECT_EQ(lettersOf(copy), "0|1|0|");
    EXPECT_EQ(copy.GetIndexOf(20), 2u);
    EXPECT_EQ(copy.GetIndexOf(99), 3u);
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
    EXPECT_EQ((std::vector{map.Exists(10), map.Exists(11), map.Exists(12)}), (std::vector{false, true, false}));
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

}  // namespace
