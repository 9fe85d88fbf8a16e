#include "moktex/operations/container_format.h"

#include <array>

using namespace moktexture;

namespace moktextool {

namespace {

struct Candidate {
    TextureFormat format;
    unsigned int bits;  ///< the widest channel that it keeps
    bool keepsFloats;
};

// clang-format off
/// From small to large; the last rows lose bits.
constexpr std::array candidates = {
    // format                                                              bits  floats
    Candidate{rgba8Format,                                                 8,    false},
    Candidate{{PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8), eVarUByteNorm},  8,    false},
    Candidate{{PixelType('a', 'r', 'g', 'b', 8, 8, 8, 8), eVarUIntNorm},   8,    false},
    Candidate{rgba16Format,                                                16,   false},
    Candidate{{PixelTypeRGBA16, eVarFloat},                                16,   true },
    Candidate{rgbaFloatFormat,                                             32,   true },
};
// clang-format on

bool keepsValues(const Candidate& candidate, const TextureFormat& source) {
    if (source.channelType == eVarFloat) return candidate.keepsFloats && candidate.bits >= widestChannel(source);
    // Floats of 16 bits keep 11 of them.
    const unsigned int bits = candidate.format.channelType == eVarFloat && candidate.bits == 16 ? 11 : candidate.bits;
    return bits >= widestChannel(source) && (!isSigned(source.channelType) || candidate.keepsFloats);
}

}  // namespace

TextureFormat formatHeldBy(const OutputTarget& target, const CMOKTextureHeader& header) {
    const TextureFormat source = formatOf(header);
    if (isCompressed(source.pixelType) || holds(target, header)) return source;
    CMOKTextureHeader wanted = header;
    for (const bool mustKeepValues : {true, false}) {
        for (const Candidate& candidate : candidates) {
            if (mustKeepValues && !keepsValues(candidate, source)) continue;
            wanted.setPixelFormat(candidate.format.pixelType);
            wanted.setChannelType(candidate.format.channelType);
            if (holds(target, wanted)) return candidate.format;
        }
    }
    return source;
}

}  // namespace moktextool
