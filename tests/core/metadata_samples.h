#pragma once

#include <algorithm>
#include <string>
#include <type_traits>

#include "CMOKTMap.h"
#include "MetaDataBlock.h"

/// Metadata blocks and maps with distinct content, and their content as text.
namespace metadatasamples {

using InnerMap = CMOKTMap<unsigned int, MetaDataBlock>;
using OuterMap = CMOKTMap<unsigned int, InnerMap>;

inline MetaDataBlock makeBlock(const std::string& payload, unsigned int key = 0, unsigned int fourCC = 0) {
    MetaDataBlock block;
    block.fourCC = fourCC, block.key = key, block.dataSize = static_cast<unsigned int>(payload.size());
    block.data = new unsigned char[payload.size()];
    std::copy(payload.begin(), payload.end(), block.data);
    return block;
}

inline std::string payloadOf(const MetaDataBlock& block) {
    return block.data == nullptr ? "(none)" : std::string(block.data, block.data + block.dataSize);
}

/// A map whose entries hold their key's letter: 'A' to the key 10, 'B' to 11 and so on.
inline InnerMap makeMap(unsigned int count) {
    InnerMap map;
    for (unsigned int i = 0; i < count; ++i)
        map[10 + i] = makeBlock(std::string(1, static_cast<char>('A' + i)));
    return map;
}

/// The payloads of a map's entries, one after the other; of a map of maps, each followed by a bar.
template <class Value>
std::string lettersOf(const CMOKTMap<unsigned int, Value>& map) {
    std::string letters;
    for (unsigned int i = 0; i < map.GetSize(); ++i)
        if constexpr (std::is_same_v<Value, InnerMap>)
            letters += lettersOf(*map.GetDataAtIndex(i)) + '|';
        else
            letters += payloadOf(*map.GetDataAtIndex(i));
    return letters;
}

}  // namespace metadatasamples
