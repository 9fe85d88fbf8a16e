#include "formats/mok_file.h"

#include <cstdint>

#include "formats/legacy/legacy_file.h"

namespace moktexture {

ELoadStatus readMOKFile(ByteReader& source, const NativeReadRules& rules, const LoadLimits* limits, CMOKTexture& texture) {
    std::uint32_t word = 0;
    const bool isWord = source.readAll(&word, sizeof(word));
    if (source.failed()) return eLoadUnreadable;
    source.seek(0);
    return isWord && isLegacyFirstWord(word) ? readLegacyFile(source, limits, texture) : readNativeFile(source, rules, texture);
}

}  // namespace moktexture
