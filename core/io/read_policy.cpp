#include "core/io/read_policy.h"

#include <algorithm>
#include <limits>

#include "core/texture/data_size.h"

namespace moktexture {
namespace {

/// Most metadata blocks that the constructors accept: a key is found by linear search, so the time grows with the square.
constexpr std::uint32_t maxBlocksOfConstructors = 65536;

bool exceeds(const CMOKTextureHeader& header, const LoadLimits& limits) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    return std::max({record.width, record.height, record.depth}) > limits.maxEdge || record.numMIPLevels > limits.maxLevels ||
           record.numArrayMembers > limits.maxMembers || header.getDataSize() > limits.maxTotalSize;
}

}  // namespace

ReadPolicy ReadPolicy::lenient(ReadMode mode) {
    constexpr std::uint32_t unlimited = std::numeric_limits<std::uint32_t>::max();
    return {mode,
            {.maxEdge = unlimited,
             .maxLevels = unlimited,
             .maxMembers = unlimited,
             .maxMetaDataSize = unlimited,
             .maxMetaDataBlocks = maxBlocksOfConstructors,
             .maxTotalSize = unlimited}};
}

ELoadStatus validateSizes(const CMOKTextureHeader& header, const ReadPolicy& policy) {
    return sizesFit32Bits(header) && !exceeds(header, policy.limits) ? eLoadOk : eLoadTooLarge;
}

ELoadStatus validatePixelData(const CMOKTextureHeader& header, const ByteReader& source, std::uint64_t neededBytes,
                              const ReadPolicy& policy) {
    const ELoadStatus status = validateSizes(header, policy);
    if (status != eLoadOk || !policy.isStrict()) return status;
    if (header.getDataSize() == 0) return eLoadUnsupported;
    return source.remaining() < neededBytes ? truncatedStatus(source) : eLoadOk;
}

}  // namespace moktexture
