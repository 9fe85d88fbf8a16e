#include "formats/standard/zstandard.h"

#ifdef MOKTEX_HAS_ZSTANDARD
#include <zstd.h>

namespace moktexture {

bool hasZstandard() {
    return true;
}

bool decompressZstandard(std::span<const unsigned char> frame, std::span<unsigned char> target) {
    return ZSTD_decompress(target.data(), target.size(), frame.data(), frame.size()) == target.size();
}

}  // namespace moktexture

#else

namespace moktexture {

bool hasZstandard() {
    return false;
}

bool decompressZstandard(std::span<const unsigned char>, std::span<unsigned char>) {
    return false;
}

}  // namespace moktexture

#endif
