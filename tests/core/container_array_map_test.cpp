#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "CMOKTArray.h"
#include "CMOKTMap.h"
#include "MetaDataBlock.h"

namespace {

using InnerMap = CMOKTMap<unsigned int, MetaDataBlock>;
using OuterMap = CMOKTMap<unsigned int, InnerMap>;

MetaDataBlock makeBlock(const std::string& payload) {
    MetaDataBlock block;
    block.key = static_cast<unsigned int>(payload.size());
    block.dataSize = static_cast<unsigned int>(payload.size());
    block.data = new unsigned char[payload.size()];
    std::memcpy(block.data, payload.data(), payload.size());
    return block;
}

std::string payloadOf(const MetaDataBlock& block) {
    return block.data == nullptr ? "(none)" : std::string(block.data, block.data + block.dataSize);
}

/// A map whose entries hold their key's letter: 'A' to the key 10, 'B' to 11 and so on.
InnerMap makeMap(unsigned int count) {
    InnerMap map;
    for (unsigned int i = 0; i < count; ++i)
        map[10 + i] = makeBlock(std::string(1, static_cast<char>('A' + i)));
    return map;
}

/// The payloads of the map's entries, one after the other.
std::string lettersOf(const InnerMap& map) {
    std::string letters;
    for (unsigned int i = 0; i < map.GetSize(); ++i)
        letters += payloadOf(*map.GetDataAtIndex(i));
    return letters;
}

std::vector<unsigned int> elementsOf(const CMOKTArray<unsigned int>& array) {
    std::vector<unsigned int> elements;
    for (unsigned int i = 0; i < array.GetSize(); ++i)
        elements.push_back(array[i]);
    return elements;
}

TEST(ContainerArray, GrowsByDoublingOrToWhatIsAsked) {
    CMOKTArray<unsigned int> array;
    for (unsigned int i = 0; i < 17; ++i) {
        EXPECT_EQ(array.GetCapacity(), 16u);
        EXPECT_EQ(array.Append(i), i);
    }
    EXPECT_EQ(array.GetCapacity(), 32u);
    for (const auto& [asked, capacity] : std::vector<std::pair<unsigned int, unsigned int>>{{32, 32}, {100, 100}, {101, 200}}) {
        EXPECT_EQ(array.SetCapacity(asked), eMOKTSuccess);
        EXPECT_EQ(array.GetCapacity(), capacity);
    }
    EXPECT_EQ(elementsOf(array), (std::vector<unsigned int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
    const CMOKTArray<unsigned int> copy(array);
    EXPECT_EQ(copy.GetCapacity(), 200u);
    EXPECT_EQ(elementsOf(copy), elementsOf(array));
}

TEST(ContainerArray, RemoveTakesAnIndexOutOfRangeForTheLast) {
    const struct {
        unsigned int index;
        std::vector<unsigned int> left;
    } rows[] = {{0, {8, 9}}, {1, {7, 9}}, {2, {7, 8}}, {3, {7, 8}}, {5, {7, 8}}, {0xFFFFFFFF, {7, 8}}};
    for (const auto& row : rows) {
        CMOKTArray<unsigned int> array;
        for (unsigned int value : {7u, 8u, 9u})
            array.Append(value);
        EXPECT_EQ(array.Remove(row.index), eMOKTSuccess);
        EXPECT_EQ(elementsOf(array), row.left) << row.index;
    }
    CMOKTArray<unsigned int> empty;
    EXPECT_EQ(empty.Remove(0), eMOKTFail);
    EXPECT_EQ(empty.Remove(0xFFFFFFFF), eMOKTFail);
    EXPECT_EQ(empty.RemoveLast(), eMOKTFail);
}

TEST(ContainerArray, RemoveOfTheLastGoesThroughTheVirtualOperation) {
    struct Counting : CMOKTArray<unsigned int> {
        unsigned int calls = 0;
        EMOKTError RemoveLast() override {
            ++calls;
            return CMOKTArray<unsigned int>::RemoveLast();
        }
    } array;
    for (unsigned int value : {7u, 8u, 9u})
        array.Append(value);
    array.Remove(2);
    EXPECT_EQ(array.calls, 1u);
    array.Remove(0);
    EXPECT_EQ(array.calls, 1u);
}

TEST(ContainerArray, ElementsBehindTheSizeAreLiveObjects) {
    CMOKTArray<MetaDataBlock> array;
    EXPECT_EQ(payloadOf(array[array.Append()]), "(none)");
    array[0] = makeBlock("kept");
    array.RemoveLast();
    EXPECT_EQ(array.Append(), 0u);
    EXPECT_EQ(payloadOf(array[0]), "kept");
    array[15] = makeBlock("behind");  // freed with the store
    CMOKTArray<unsigned int> numbers;
    EXPECT_EQ(numbers[15], 0u);
    numbers.SetCapacity(32);
    EXPECT_EQ(numbers[31], 0u);
}

TEST(ContainerArray, AppendTakesAnElementOfItsOwn) {
    CMOKTArray<MetaDataBlock> array;
    array.Append(makeBlock("own"));
    while (array.GetSize() < 40)  // grows twice on the way
        array.Append(array[0]);
    EXPECT_EQ(payloadOf(array[16]) + payloadOf(array[32]) + payloadOf(array[39]), "ownownown");
}

TEST(MetaDataBlocks, CopiesShareNothing) {
    MetaDataBlock source = makeBlock("payload");
    source.fourCC = 5;
    MetaDataBlock copy(source), assigned = makeBlock("old");
    assigned = source;
    source.data[0] = 'X';
    EXPECT_EQ(payloadOf(copy) + payloadOf(assigned), "payloadpayload");
    EXPECT_EQ(assigned.fourCC + assigned.key, 12u);
    const MetaDataBlock& same = copy;
    copy = same;
    EXPECT_EQ(payloadOf(copy), "payload");
    MetaDataBlock withoutPayload;
    withoutPayload.dataSize = 9;
    assigned = withoutPayload;
    EXPECT_EQ(assigned.data, nullptr);
    EXPECT_EQ(assigned.dataSize, 9u);
    EXPECT_NE(MetaDataBlock(makeBlock("")).data, nullptr);
}

TEST(ContainerMap, KeepsTheOrderOfInsertion) {
    OuterMap outer;
    for (unsigned int key : {30u, 10u, 20u})
        outer[key][key + 1] = makeBlock(std::to_string(key));
    outer[10][11] = makeBlock("again");
    OuterMap copy(outer);
    outer.Clear();
    ASSERT_EQ(copy.GetSize(), 3u);
    const char* const expected[] = {"30", "again", "20"};
    for (unsigned int i = 0; i < 3; ++i)
        EXPECT_EQ(lettersOf(*copy.GetDataAtIndex(i)), expected[i]);
    EXPECT_EQ(copy.GetIndexOf(20), 2u);
    EXPECT_EQ(copy.GetIndexOf(99), 3u);
    for (unsigned int key = 100; key < 140; ++key)  // both arrays grow
        copy[key][0] = makeBlock("x");
    EXPECT_EQ(lettersOf(copy[30]) + lettersOf(copy[139]), "30x");
}

TEST(ContainerMap, RemoveFillsThePlaceFromTheEntryBeforeTheOldLast) {
    const struct {
        unsigned int count, key;
        EMOKTError result;
        const char* left;
    } rows[] = {
        {2, 10, eMOKTSuccess, "A"},
        {3, 10, eMOKTSuccess, "BB"},
        {3, 12, eMOKTSuccess, "AB"},
        {4, 10, eMOKTSuccess, "CBC"},
        {3, 99, eMOKTSuccess, "AB"},
        {3, 3, eMOKTFail, "ABC"},
        {1, 10, eMOKTSuccess, ""},
        {1, 99, eMOKTSuccess, ""},
        {1, 1, eMOKTFail, "A"},
        {0, 0, eMOKTFail, ""},
        {12, 12, eMOKTFail, "ABCDEFGHIJKL"},
        {16, 99, eMOKTSuccess, "ABCDEFGHIJKLMNO"},  // the place of the absent key lies behind the store
    };
    for (const auto& row : rows) {
        InnerMap map = makeMap(row.count);
        EXPECT_EQ(map.Remove(row.key), row.result) << row.count << ' ' << row.key;
        EXPECT_EQ(lettersOf(map), row.left) << row.count << ' ' << row.key;
    }
    InnerMap removedFirst = makeMap(3);
    removedFirst.Remove(10);
    EXPECT_TRUE(!removedFirst.Exists(10) && removedFirst.Exists(11) && !removedFirst.Exists(12));
}

TEST(ContainerMap, NewKeysGoBehindTheStaleEntries) {
    InnerMap map = makeMap(2);
    map.Clear();
    EXPECT_EQ(map.GetSize(), 0u);
    map[77] = makeBlock("new");
    EXPECT_EQ(map.GetSize(), 1u);
    EXPECT_EQ(lettersOf(map), "A");
    EXPECT_FALSE(map.Exists(77));
    EXPECT_EQ(payloadOf(map[77]), "(none)");  // not found, so there is a second one with a default value
    EXPECT_EQ(map.GetSize(), 2u);
    map[88];
    EXPECT_TRUE(map.Exists(77));
    EXPECT_EQ(lettersOf(InnerMap(map)), "ABnew");

    InnerMap removedAbsent = makeMap(4);
    removedAbsent.Remove(13);
    removedAbsent.Remove(99);  // fills the stale fourth place, which the next two keys bring back into the count
    removedAbsent[50];
    removedAbsent[51];
    EXPECT_EQ(lettersOf(removedAbsent), "ABCB");
}

}  // namespace
