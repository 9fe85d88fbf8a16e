#include "core/io/native_file.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

#include "core/texture/TextureInternals.h"
#include "core/texture/data_size.h"

namespace moktexture {
namespace {

static_assert(std::endian::native == std::endian::little, "files are read and written as they lie in memory");

constexpr std::uint32_t recordSize = sizeof(MOKTextureHeaderV3);
constexpr std::uint32_t blockHeadSize = 12;

/// Most metadata blocks that the constructors take: finding a key is a linear search, so that time grows with the square.
constexpr std::uint32_t maxBlocksOfConstructors = 65536;

constexpr LoadLimits noLimits = {
    .maxEdge = std::numeric_limits<std::uint32_t>::max(),
    .maxLevels = maxMIPLevels,
    .maxMembers = std::numeric_limits<std::uint32_t>::max(),
    .maxMetaDataSize = std::numeric_limits<std::uint32_t>::max(),
    .maxMetaDataBlocks = maxBlocksOfConstructors,
    .maxTotalSize = std::numeric_limits<std::uint32_t>::max(),
};

ELoadStatus endedEarly(const ByteReader& source) {
    return source.failed() ? eLoadUnreadable : eLoadTruncated;
}

/// Tells what a file with that first word of `length` bytes, at most 4, is; eLoadOk for the native layout.
ELoadStatus judgeFirstWord(std::uint32_t word, std::size_t length) {
    constexpr std::uint32_t magic = MOKTextureHeaderV3::magic;
    if (length < sizeof(word)) {
        const std::uint32_t mask = (1u << (8 * length)) - 1;
        return length > 0 && word == (magic & mask) ? eLoadTruncated : eLoadUnknown;
    }
    return word == magic ? eLoadOk : eLoadUnknown;
}

/// Reads the record; a short one keeps the defaults of what is missing, byte by byte, unless the rules want it complete.
ELoadStatus readRecord(ByteReader& source, const NativeReadRules& rules, MOKTextureHeaderV3& record) {
    std::uint32_t word = 0;
    const std::size_t length = source.read(&word, sizeof(word));
    if (source.failed()) return eLoadUnreadable;
    const ELoadStatus status = judgeFirstWord(word, length);
    if (status != eLoadOk) return status;
    source.seek(0);
    if (!source.readAll(&record, recordSize) && rules.complete) return endedEarly(source);
    return eLoadOk;
}

bool exceeds(const MOKTextureHeaderV3& record, const LoadLimits& limits) {
    return std::max({record.width, record.height, record.depth}) > limits.maxEdge || record.numMIPLevels > limits.maxLevels ||
           record.numArrayMembers > limits.maxMembers || record.metaDataSize > limits.maxMetaDataSize;
}

/// Judges the sizes in a record, whose metadata is still declared in it, before memory is taken for them.
ELoadStatus validateSizes(const ByteReader& source, const NativeReadRules& rules, const MOKTextureHeaderV3& record,
                          const CMOKTextureHeader& header) {
    if (exceeds(record, rules.limits) || !sizesFit32Bits(header)) return eLoadTooLarge;
    const std::uint64_t dataSize = header.getDataSize();
    if (dataSize > rules.limits.maxTotalSize) return eLoadTooLarge;
    if (!rules.complete) return eLoadOk;
    if (record.numMIPLevels == 0 || record.numArrayMembers == 0 || record.numFaces == 0) return eLoadCorrupt;
    return source.remaining() < record.metaDataSize + dataSize ? eLoadTruncated : eLoadOk;
}

/// What stands before a block's payload in a file.
struct BlockHead {
    std::uint32_t fourCC;
    std::uint32_t key;
    std::uint32_t dataSize;
};
static_assert(sizeof(BlockHead) == blockHeadSize);

/// Judges a block that would end `end` bytes behind the metadata's start, before memory is taken for it.
ELoadStatus judgeBlock(const ByteReader& source, const NativeReadRules& rules, const BlockHead& head, std::uint64_t end,
                       std::uint32_t declaredSize) {
    if (end > declaredSize && rules.overrun == NativeReadRules::Overrun::refuse) return eLoadCorrupt;
    // Kept: in a file, a block without a payload ends the load, as it makes the save report failure.
    if (head.dataSize == 0 && !rules.emptyBlocks) return eLoadCorrupt;
    if (head.dataSize > source.remaining()) return eLoadTruncated;
    const bool isAdded = end <= declaredSize || rules.overrun == NativeReadRules::Overrun::accept;
    return isAdded && end > std::numeric_limits<std::uint32_t>::max() ? eLoadTooLarge : eLoadOk;
}

/// Adds the block whose head was read to the header.
ELoadStatus readPayload(ByteReader& source, const BlockHead& head, CMOKTextureHeader& header) {
    MetaDataBlock block;
    block.fourCC = head.fourCC;
    block.key = head.key;
    block.data = new unsigned char[head.dataSize];
    block.dataSize = head.dataSize;
    if (!source.readAll(block.data, block.dataSize)) return endedEarly(source);
    header.addMetaData(block);
    return eLoadOk;
}

/// Reads the blocks into the header, whose `metaDataSize` they rebuild from 0, and leaves the source where the pixels start.
ELoadStatus readMetaData(ByteReader& source, const NativeReadRules& rules, std::uint32_t declaredSize,
                         CMOKTextureHeader& header) {
    std::uint64_t accepted = 0;
    for (std::uint32_t count = 0; accepted < declaredSize; ++count) {
        if (count == rules.limits.maxMetaDataBlocks) return eLoadTooLarge;
        const std::uint64_t start = source.position();
        BlockHead head;
        if (!source.readAll(&head, blockHeadSize)) return endedEarly(source);
        const std::uint64_t end = accepted + blockHeadSize + head.dataSize;
        ELoadStatus status = judgeBlock(source, rules, head, end, declaredSize);
        if (status != eLoadOk) return status;
        if (end > declaredSize && rules.overrun == NativeReadRules::Overrun::drop) {
            // Kept: a block that overruns the declared size is dropped, and the pixels are read from its start.
            source.seek(start);
            break;
        }
        status = readPayload(source, head, header);
        if (status != eLoadOk) return status;
        accepted = end;
    }
    return eLoadOk;
}

ELoadStatus readPixels(ByteReader& source, CMOKTexture& texture) {
    TextureInternals::allocate(texture);
    const std::size_t size = static_cast<std::size_t>(TextureInternals::dataSize(texture));
    return source.readAll(TextureInternals::data(texture), size) ? eLoadOk : endedEarly(source);
}

/// Writes one piece of a file.
/// Kept: a piece of 0 bytes counts as not written, so that a texture without pixels, or with an empty block, is "not saved"
/// though its file is complete.
bool writePiece(ByteWriter& target, const void* bytes, std::size_t size) {
    return bytes != nullptr && size != 0 && target.write(bytes, size);
}

bool writeBlock(ByteWriter& target, const MetaDataBlock& block) {
    const std::uint32_t head[3] = {block.fourCC, block.key, block.dataSize};
    const bool headWritten = writePiece(target, head, sizeof(head));
    return writePiece(target, block.data, block.dataSize) && headWritten;
}

}  // namespace

NativeReadRules NativeReadRules::strict(const LoadLimits& limits) {
    LoadLimits bounded = limits;
    bounded.maxLevels = std::min(limits.maxLevels, maxMIPLevels);
    return {.complete = true, .overrun = Overrun::refuse, .emptyBlocks = false, .limits = bounded};
}

// Kept: a file that ends within its record or its pixels still gives a texture; callers test nothing but the buffer.
NativeReadRules NativeReadRules::fileConstructor() {
    return {.complete = false, .overrun = Overrun::drop, .emptyBlocks = false, .limits = noLimits};
}

NativeReadRules NativeReadRules::memoryConstructor() {
    return {.complete = false, .overrun = Overrun::accept, .emptyBlocks = true, .limits = noLimits};
}

ELoadStatus readNativeFile(ByteReader& source, const NativeReadRules& rules, CMOKTexture& texture) {
    MOKTextureHeaderV3 record;
    ELoadStatus status = readRecord(source, rules, record);
    if (status != eLoadOk) return status;

    MOKTextureHeaderV3 recordWithoutMetaData = record;
    recordWithoutMetaData.metaDataSize = 0;
    CMOKTextureHeader header(recordWithoutMetaData, 0, nullptr);
    status = validateSizes(source, rules, record, header);
    if (status != eLoadOk) return status;

    status = readMetaData(source, rules, record.metaDataSize, header);
    if (status == eLoadTooLarge) return status;
    texture.CMOKTextureHeader::Swap(header);
    if (status != eLoadOk) {
        TextureInternals::setDataSize(texture, texture.getDataSize());
        return status;
    }
    return readPixels(source, texture);
}

bool writeNativeFile(const CMOKTexture& texture, ByteWriter& target) {
    const MOKTextureHeaderV3 record = texture.getFileHeader();
    // What follows tells of a failure here.
    target.write(&record, sizeof(record));
    // Kept: the blocks come from the map and `metaDataSize` from the record, and nothing reconciles them: files stay as the
    // header counted them, even where readers then take pixels for metadata.
    bool written = true;
    const auto& owners = texture.getMetaDataMap();
    for (unsigned int owner = 0; owner < owners.GetSize(); ++owner) {
        const auto& blocks = *owners.GetDataAtIndex(owner);
        for (unsigned int i = 0; i < blocks.GetSize(); ++i)
            written = writeBlock(target, *blocks.GetDataAtIndex(i)) && written;
    }
    const std::size_t size = static_cast<std::size_t>(TextureInternals::dataSize(texture));
    return writePiece(target, TextureInternals::data(texture), size) && written;
}

}  // namespace moktexture
