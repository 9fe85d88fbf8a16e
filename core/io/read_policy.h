#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/io/byte_stream.h"
#include "core/texture/subresources.h"
#include "texture_io.h"

/// @file
/// How strictly a file is read, and the checks that readers of every layout make before they allocate memory for pixels.

namespace moktexture {

/// The function that reads. All modes refuse sizes that do not fit in 32 bits.
enum class ReadMode {
    strict,         ///< LoadTexture(): refuses whatever is incomplete, contradicts itself or exceeds the limits
    lenientFile,    ///< constructor from a path: what the file lacks keeps its default or is zero
    lenientMemory,  ///< constructor from a memory image of unknown length: as lenientFile, but accepts all metadata blocks
};

/// Most metadata blocks that the constructors accept: a key is found by linear search, so the time grows with the square.
inline constexpr std::uint32_t maxBlocksOfConstructors = 65536;

/// Mode and limits of a read. A lenient reader that refuses a file leaves what it has read in the header, and no buffer.
struct ReadPolicy {
    ReadMode mode;
    LoadLimits limits;

    static ReadPolicy strict(const LoadLimits& limits) { return {ReadMode::strict, limits}; }
    /// Of either lenient mode: limits no size, but the number of metadata blocks.
    static ReadPolicy lenient(ReadMode mode) {
        constexpr std::uint32_t unlimited = std::numeric_limits<std::uint32_t>::max();
        return {mode,
                {.maxEdge = unlimited,
                 .maxLevels = unlimited,
                 .maxMembers = unlimited,
                 .maxMetaDataSize = unlimited,
                 .maxMetaDataBlocks = maxBlocksOfConstructors,
                 .maxTotalSize = unlimited}};
    }

    bool isStrict() const { return mode == ReadMode::strict; }
};

/// The status of a source that returned fewer bytes than requested.
inline ELoadStatus truncatedStatus(const ByteReader& source) {
    return source.failed() ? eLoadUnreadable : eLoadTruncated;
}

/// Whether a dimension, a count or the size in bytes is above its limit.
inline bool exceedsLimits(const CMOKTextureHeader& header, const LoadLimits& limits) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    return std::max({record.width, record.height, record.depth}) > limits.maxEdge || record.numMIPLevels > limits.maxLevels ||
           record.numArrayMembers > limits.maxMembers || header.getDataSize() > limits.maxTotalSize;
}

/// eLoadTooLarge if a size in the header does not fit in 32 bits or exceeds the policy's limits.
inline ELoadStatus validateSizes(const CMOKTextureHeader& header, const ReadPolicy& policy) {
    return sizesFit32Bits(header) && !exceedsLimits(header, policy.limits) ? eLoadOk : eLoadTooLarge;
}

/// validateSizes(); a strict policy also refuses a header without pixels (eLoadUnsupported: a count of 0, or an unknown format)
/// and a source with fewer than `neededBytes` left.
inline ELoadStatus validatePixelData(const CMOKTextureHeader& header, const ByteReader& source, std::uint64_t neededBytes,
                                     const ReadPolicy& policy) {
    const ELoadStatus status = validateSizes(header, policy);
    if (status != eLoadOk || !policy.isStrict()) return status;
    if (header.getDataSize() == 0) return eLoadUnsupported;
    return source.remaining() < neededBytes ? truncatedStatus(source) : eLoadOk;
}

}  // namespace moktexture
