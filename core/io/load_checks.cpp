#include "core/io/load_checks.h"

#include <algorithm>

#include "core/texture/data_size.h"

namespace moktexture {
namespace {

bool exceeds(const CMOKTextureHeader& header, const LoadLimits& limits) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    return std::max({record.width, record.height, record.depth}) > limits.maxEdge || record.numMIPLevels > limits.maxLevels ||
           record.numArrayMembers > limits.maxMembers || header.getDataSize() > limits.maxTotalSize;
}

}  // namespace

ELoadStatus validateSizes(const CMOKTextureHeader& header, const ByteReader& source, std::uint64_t needed,
                          const LoadLimits* limits) {
    if (!sizesFit32Bits(header)) return eLoadTooLarge;
    if (limits == nullptr) return eLoadOk;
    if (exceeds(header, *limits)) return eLoadTooLarge;
    // A count of 0, or a format that has no name here: files of other makers have both.
    if (header.getDataSize() == 0) return eLoadUnsupported;
    return source.remaining() < needed ? endedEarly(source) : eLoadOk;
}

}  // namespace moktexture
