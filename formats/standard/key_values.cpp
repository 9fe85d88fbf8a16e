#include "formats/standard/key_values.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "core/texture/subresources.h"

namespace moktexture {
namespace {

constexpr std::uint64_t paddedTo4(std::uint64_t size) {
    return (size + 3) / 4 * 4;
}

/// Splits the bytes of a pair at the key's zero byte; false if there is none.
bool split(std::string&& bytes, KeyValue& pair) {
    const std::size_t end = bytes.find('\0');
    if (end == std::string::npos || end == 0) return false;
    pair.key = bytes.substr(0, end);
    pair.value = bytes.substr(end + 1);
    return true;
}

template <class Visit>
void forEachBlock(const CMOKTextureHeader& header, Visit visit) {
    const auto& map = header.getMetaDataMap();
    for (unsigned int owner = 0; owner < map.GetSize(); ++owner) {
        const auto& blocks = *map.GetDataAtIndex(owner);
        for (unsigned int i = 0; i < blocks.GetSize(); ++i)
            visit(*blocks.GetDataAtIndex(i));
    }
}

/// Fields in front of a block's payload.
struct BlockFields {
    std::uint32_t fourCC, key, dataSize;
};

/// Adds the blocks in `bytes` to the header; false, with some added, if they do not fill it exactly.
bool addBlocks(std::string_view bytes, std::uint32_t maxBlocks, CMOKTextureHeader& header) {
    for (std::uint32_t count = 0; !bytes.empty(); ++count) {
        BlockFields fields;
        if (bytes.size() < sizeof(fields) || count == maxBlocks) return false;
        std::memcpy(&fields, bytes.data(), sizeof(fields));
        bytes.remove_prefix(sizeof(fields));
        if (fields.dataSize == 0 || fields.dataSize > bytes.size()) return false;
        MetaDataBlock block;
        block.fourCC = fields.fourCC;
        block.key = fields.key;
        block.data = new unsigned char[fields.dataSize];
        block.dataSize = fields.dataSize;
        std::memcpy(block.data, bytes.data(), fields.dataSize);
        header.addMetaData(block);
        bytes.remove_prefix(fields.dataSize);
    }
    return true;
}

/// How orientation strings write an axis. A texture without an orientation has the default direction.
struct AxisLetters {
    EMOKTAxis axis;
    char axisLetter, otherDirection, defaultDirection;
    EMOKTOrientation other;
};

// clang-format off
constexpr AxisLetters axes[] = {
    // Axis     Letter  Other  Default  Flag of the other direction
    {eAxisX,    'S',    'l',   'r',     eOrientLeft},
    {eAxisY,    'T',    'u',   'd',     eOrientUp},
    {eAxisZ,    'R',    'o',   'i',     eOrientOut},
};
// clang-format on

char directionLetter(const CMOKTextureHeader& header, const AxisLetters& letters) {
    return header.getOrientation(letters.axis) == letters.other ? letters.otherDirection : letters.defaultDirection;
}

}  // namespace

void appendWord(std::string& bytes, std::uint32_t word) {
    bytes.append(reinterpret_cast<const char*>(&word), sizeof(word));
}

ELoadStatus readKeyValues(ByteReader& source, std::uint64_t size, bool swapsBytes, const LoadLimits& limits, KeyValues& pairs) {
    if (size > limits.maxMetaDataSize) return eLoadTooLarge;
    if (size > source.remaining()) return eLoadTruncated;
    const std::uint64_t end = source.position() + size;
    while (source.position() < end) {
        std::uint32_t length = 0;
        if (pairs.size() == limits.maxMetaDataBlocks) return eLoadTooLarge;
        if (end - source.position() < sizeof(length)) return eLoadCorrupt;
        if (!source.readAll(&length, sizeof(length))) return eLoadUnreadable;
        if (swapsBytes) length = __builtin_bswap32(length);
        if (length > end - source.position()) return eLoadCorrupt;
        std::string bytes(length, '\0');
        if (!source.readAll(bytes.data(), length)) return eLoadUnreadable;
        if (!split(std::move(bytes), pairs.emplace_back())) return eLoadCorrupt;
        // Some writers leave the padding of the last pair out.
        source.seek(std::min(source.position() + paddedTo4(length) - length, end));
    }
    return eLoadOk;
}

std::string encodeKeyValues(const KeyValues& pairs) {
    std::string bytes;
    for (const KeyValue& pair : pairs) {
        const std::size_t length = pair.key.size() + 1 + pair.value.size();
        appendWord(bytes, static_cast<std::uint32_t>(length));
        bytes.append(pair.key).append(1, '\0').append(pair.value);
        bytes.resize(bytes.size() + paddedTo4(length) - length, '\0');
    }
    return bytes;
}

std::string_view valueOf(const KeyValues& pairs, std::string_view key) {
    for (const KeyValue& pair : pairs) {
        if (pair.key == key) return pair.value;
    }
    return {};
}

std::string_view textOf(const KeyValues& pairs, std::string_view key) {
    std::string_view text = valueOf(pairs, key);
    if (!text.empty() && text.back() == '\0') text.remove_suffix(1);
    return text;
}

void applyOrientation(std::string_view text, CMOKTextureHeader& header) {
    if (text.empty()) return;
    unsigned int orientation = 0;
    const bool isKTX1 = text.find('=') != std::string_view::npos;
    for (std::size_t axis = 0; axis < std::size(axes); ++axis) {
        const AxisLetters& letters = axes[axis];
        std::size_t position = axis;
        if (isKTX1) {
            const char group[] = {letters.axisLetter, '='};
            position = text.find(std::string_view(group, sizeof(group)));
            if (position == std::string_view::npos) continue;
            position += sizeof(group);
        }
        if (position < text.size() && text[position] == letters.otherDirection) orientation |= letters.other;
    }
    if (orientation != 0) header.setOrientation(static_cast<EMOKTOrientation>(orientation));
}

std::string orientationKTX1(const CMOKTextureHeader& header) {
    std::string text;
    for (const AxisLetters& letters : axes)
        text.append(text.empty() ? "" : ",")
            .append(1, letters.axisLetter)
            .append(1, '=')
            .append(1, directionLetter(header, letters));
    return text;
}

std::string orientationKTX2(const CMOKTextureHeader& header) {
    std::string text;
    for (const AxisLetters& letters : axes) {
        const bool hasAxis = letters.axis == eAxisX || (letters.axis == eAxisY ? header.getHeight() > 1 : header.getDepth() > 1);
        if (hasAxis) text.append(1, directionLetter(header, letters));
    }
    return text;
}

std::string encodeHeader(const CMOKTextureHeader& header) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    std::string bytes(reinterpret_cast<const char*>(&record), sizeof(record));
    forEachBlock(header, [&](const MetaDataBlock& block) {
        // A block without a payload does not reload from a native file either.
        if (block.dataSize == 0 || block.data == nullptr) return;
        appendWord(bytes, block.fourCC);
        appendWord(bytes, block.key);
        appendWord(bytes, block.dataSize);
        bytes.append(reinterpret_cast<const char*>(block.data), block.dataSize);
    });
    return bytes;
}

bool decodeHeader(std::string_view stored, const LoadLimits& limits, CMOKTextureHeader& header) {
    MOKTextureHeaderV3 record;
    if (stored.size() < sizeof(record)) return false;
    std::memcpy(&record, stored.data(), sizeof(record));
    if (record.version != MOKTextureHeaderV3::magic) return false;
    record.metaDataSize = 0;
    CMOKTextureHeader whole(record, 0, nullptr);
    if (!addBlocks(stored.substr(sizeof(record)), limits.maxMetaDataBlocks, whole)) return false;
    header.Swap(whole);
    return true;
}

bool describeSameImage(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    const auto comparable = [](const CMOKTextureHeader& header) {
        MOKTextureHeaderV3 record = header.getFileHeader();
        if (isCompressed(record.pixelFormat)) record.channelType = record.channelType < eVarFloat ? record.channelType % 2 : 0;
        record.metaDataSize = 0;
        return record;
    };
    const MOKTextureHeaderV3 first = comparable(a), second = comparable(b);
    return std::memcmp(&first, &second, sizeof(first)) == 0;
}

bool describeTheSame(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    return describeSameImage(a, b) &&
           encodeHeader(a).substr(sizeof(MOKTextureHeaderV3)) == encodeHeader(b).substr(sizeof(MOKTextureHeaderV3));
}

}  // namespace moktexture
