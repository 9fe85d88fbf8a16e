#pragma once

#include <cstdint>

#include "core/io/byte_stream.h"
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

/// Mode and limits of a read. A lenient reader that refuses a file leaves what it has read in the header, and no buffer.
struct ReadPolicy {
    ReadMode mode;
    LoadLimits limits;

    static ReadPolicy strict(const LoadLimits& limits) { return {ReadMode::strict, limits}; }
    /// Of either lenient mode: limits no size, but the number of metadata blocks.
    static ReadPolicy lenient(ReadMode mode);

    bool isStrict() const { return mode == ReadMode::strict; }
};

/// The status of a source that returned fewer bytes than requested.
inline ELoadStatus truncatedStatus(const ByteReader& source) {
    return source.failed() ? eLoadUnreadable : eLoadTruncated;
}

/// eLoadTooLarge if a size in the header does not fit in 32 bits or exceeds the policy's limits.
ELoadStatus validateSizes(const CMOKTextureHeader& header, const ReadPolicy& policy);

/// validateSizes(); a strict policy also refuses a header without pixels (eLoadUnsupported: a count of 0, or an unknown format)
/// and a source with fewer than `neededBytes` left.
ELoadStatus validatePixelData(const CMOKTextureHeader& header, const ByteReader& source, std::uint64_t neededBytes,
                              const ReadPolicy& policy);

}  // namespace moktexture
