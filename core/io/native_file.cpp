// The native file, version 3. All numbers are little-endian; nothing is aligned or padded.
//
//   offset  bytes
//        0      4  version         "MOK\x03"
//        4      4  flags           1: file compressed (set by the application; no file is), 2: premultiplied
//        8      8  pixelFormat     id of a PixelType
//       16      4  colourSpace     EMOKTColourSpace
//       20      4  channelType     EMOKTVariableType
//       24      4  height          of level 0; the height precedes the width
//       28      4  width
//       32      4  depth
//       36      4  numArrayMembers
//       40      4  numFaces
//       44      4  numMIPLevels
//       48      4  metaDataSize    M: bytes of the metadata blocks
//       52      M  metadata blocks, each
//                     +0       4  fourCC     the owner's tag
//                     +4       4  key        the owner's key
//                     +8       4  dataSize   S
//                    +12       S  payload
//     52+M         pixel data: the texture's buffer, getDataSize() bytes
//
// Blocks are read until the accepted ones reach M bytes. The pixels start after the last accepted block, even if that is
// not 52+M.

#include "core/io/native_file.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

#include "core/texture/TextureInternals.h"

namespace moktexture {
namespace {

constexpr std::uint32_t recordSize = sizeof(MOKTextureHeaderV3);

/// The fields of a metadata block in front of its payload.
struct BlockHeader {
    std::uint32_t fourCC;
    std::uint32_t key;
    std::uint32_t dataSize;
};
static_assert(sizeof(BlockHeader) == 12);

/// eLoadOk if the first `length` bytes of a file, at most 4, are those of the native layout.
ELoadStatus validateFirstWord(std::uint32_t word, std::size_t length) {
    constexpr std::uint32_t magic = MOKTextureHeaderV3::magic;
    if (length < sizeof(word)) {
        const std::uint32_t mask = (1u << (8 * length)) - 1;
        return length > 0 && word == (magic & mask) ? eLoadTruncated : eLoadUnknown;
    }
    return word == magic ? eLoadOk : eLoadUnknown;
}

/// Reads the record. A lenient reader keeps the default of every byte that a short file lacks.
ELoadStatus readRecord(ByteReader& source, const ReadPolicy& policy, MOKTextureHeaderV3& record) {
    std::uint32_t word = 0;
    const std::size_t length = source.read(&word, sizeof(word));
    if (source.failed()) return eLoadUnreadable;
    const ELoadStatus status = validateFirstWord(word, length);
    if (status != eLoadOk) return status;
    source.seek(0);
    // Kept (native-short-file-loads): for a constructor, a file that ends within its record or its pixels still gives a texture;
    // hosts of the constructors test getDataPtr() for null and nothing else.
    if (!source.readAll(&record, recordSize) && policy.isStrict()) return truncatedStatus(source);
    return eLoadOk;
}

/// Validates the sizes in a record, before memory is allocated for them. `header` holds the record with a `metaDataSize` of 0.
ELoadStatus validateRecord(const ByteReader& source, const ReadPolicy& policy, const MOKTextureHeaderV3& record,
                           const CMOKTextureHeader& header) {
    if (record.metaDataSize > policy.limits.maxMetaDataSize) return eLoadTooLarge;
    const ELoadStatus status = validateSizes(header, policy);
    if (status != eLoadOk || !policy.isStrict()) return status;
    if (record.numMIPLevels == 0 || record.numArrayMembers == 0 || record.numFaces == 0) return eLoadCorrupt;
    const std::uint64_t needed = std::uint64_t{record.metaDataSize} + header.getDataSize();
    return source.remaining() < needed ? truncatedStatus(source) : eLoadOk;
}

/// Validates a block that would end `end` bytes past the start of the metadata, before memory is allocated for its payload.
ELoadStatus validateBlock(const ByteReader& source, ReadMode mode, const BlockHeader& block, std::uint64_t end,
                          std::uint32_t declaredSize) {
    const bool overruns = end > declaredSize;
    if (overruns && mode == ReadMode::strict) return eLoadCorrupt;
    // Kept (native-empty-block-ends-load): in a file, unlike in a memory image, a block without payload ends the load without
    // pixels; hosts recognise by the null getDataPtr() that such a file, whose save had failed, is incomplete.
    if (block.dataSize == 0 && mode != ReadMode::lenientMemory) return eLoadCorrupt;
    if (block.dataSize > source.remaining()) return eLoadTruncated;
    const bool isAdded = !overruns || mode == ReadMode::lenientMemory;
    return isAdded && end > std::numeric_limits<std::uint32_t>::max() ? eLoadTooLarge : eLoadOk;
}

/// Reads the payload of a block and adds the block to the header.
ELoadStatus readPayload(ByteReader& source, const BlockHeader& blockHeader, CMOKTextureHeader& header) {
    MetaDataBlock block;
    block.fourCC = blockHeader.fourCC;
    block.key = blockHeader.key;
    block.data = new unsigned char[blockHeader.dataSize];
    block.dataSize = blockHeader.dataSize;
    if (!source.readAll(block.data, block.dataSize)) return truncatedStatus(source);
    header.addMetaData(block);
    return eLoadOk;
}

/// Reads the blocks into the header, which counts their sizes up from a `metaDataSize` of 0, and leaves the source where the
/// pixels start.
ELoadStatus readMetaData(ByteReader& source, const ReadPolicy& policy, std::uint32_t declaredSize, CMOKTextureHeader& header) {
    std::uint64_t accepted = 0;
    for (std::uint32_t count = 0; accepted < declaredSize; ++count) {
        if (count == policy.limits.maxMetaDataBlocks) return eLoadTooLarge;
        const std::uint64_t start = source.position();
        BlockHeader block;
        if (!source.readAll(&block, sizeof(block))) return truncatedStatus(source);
        const std::uint64_t end = accepted + sizeof(block) + block.dataSize;
        ELoadStatus status = validateBlock(source, policy.mode, block, end, declaredSize);
        if (status != eLoadOk) return status;
        if (end > declaredSize && policy.mode == ReadMode::lenientFile) {
            // Kept (native-overrun-block-dropped): a block of a file that overruns the declared size is dropped, and the pixels
            // are read from its start; a file whose metaDataSize falls short of its blocks would load other pixels.
            source.seek(start);
            break;
        }
        status = readPayload(source, block, header);
        if (status != eLoadOk) return status;
        accepted = end;
    }
    return eLoadOk;
}

/// Kept (empty-write-fails): a write of 0 bytes counts as failed, in native, KTX and legacy files: hosts read "nothing was saved"
/// from the result for a texture without pixels, though its file is complete.
bool writeBytes(ByteWriter& target, const void* bytes, std::size_t size) {
    return bytes != nullptr && size != 0 && target.write(bytes, size);
}

bool writeBlock(ByteWriter& target, const MetaDataBlock& block) {
    const BlockHeader blockHeader = {block.fourCC, block.key, block.dataSize};
    const bool headerWritten = target.write(&blockHeader, sizeof(blockHeader));
    return writeBytes(target, block.data, block.dataSize) && headerWritten;
}

}  // namespace

ELoadStatus readPixelData(ByteReader& source, CMOKTexture& texture) {
    TextureInternals::allocate(texture);
    const std::size_t size = static_cast<std::size_t>(TextureInternals::dataSize(texture));
    return source.readAll(TextureInternals::data(texture), size) ? eLoadOk : truncatedStatus(source);
}

bool writePixelData(const CMOKTexture& texture, ByteWriter& target) {
    return writeBytes(target, TextureInternals::data(texture), static_cast<std::size_t>(TextureInternals::dataSize(texture)));
}

ELoadStatus readNativeFile(ByteReader& source, const ReadPolicy& policy, CMOKTexture& texture) {
    MOKTextureHeaderV3 record;
    ELoadStatus status = readRecord(source, policy, record);
    if (status != eLoadOk) return status;

    MOKTextureHeaderV3 recordWithoutMetaData = record;
    recordWithoutMetaData.metaDataSize = 0;
    CMOKTextureHeader header(recordWithoutMetaData, 0, nullptr);
    status = validateRecord(source, policy, record, header);
    if (status != eLoadOk) return status;

    status = readMetaData(source, policy, record.metaDataSize, header);
    if (status == eLoadTooLarge) return status;
    texture.CMOKTextureHeader::Swap(header);
    if (status != eLoadOk) {
        TextureInternals::setDataSize(texture, texture.getDataSize());
        return status;
    }
    return readPixelData(source, texture);
}

bool writeNativeFile(const CMOKTexture& texture, ByteWriter& target) {
    const MOKTextureHeaderV3 record = texture.getFileHeader();
    // A target that rejects the record rejects the pixels too.
    target.write(&record, sizeof(record));
    // Kept (native-metadata-size-not-reconciled): the blocks come from the map and `metaDataSize` from the record, even where the
    // two differ; a host that filled the record itself gets exactly that record in its file.
    bool written = true;
    const auto& owners = texture.getMetaDataMap();
    for (unsigned int owner = 0; owner < owners.GetSize(); ++owner) {
        const auto& blocks = *owners.GetDataAtIndex(owner);
        for (unsigned int i = 0; i < blocks.GetSize(); ++i)
            written = writeBlock(target, *blocks.GetDataAtIndex(i)) && written;
    }
    return writePixelData(texture, target) && written;
}

}  // namespace moktexture
