#include "transcode/convert_layout.h"

#include <algorithm>
#include <cstdint>

#include "core/base/instruction_set.h"
#include "core/texture/TextureInternals.h"
#include "transcode/pixels/layout_conversion.h"

namespace moktexture {

namespace {

/// Pixels of a level that both textures hold.
std::uint32_t pixelsOfLevel(const CMOKTexture& from, const CMOKTexture& to, int level, unsigned int sourceBytes,
                            unsigned int destinationBytes) {
    std::uint32_t pixels = from.getTextureSize(level, false, false);
    if (sourceBytes != 0) pixels = std::min(pixels, from.getDataSize(level, false, false) / sourceBytes);
    if (destinationBytes != 0) pixels = std::min(pixels, to.getDataSize(level, false, false) / destinationBytes);
    return pixels;
}

}  // namespace

int convertLayout(const CMOKTexture& from, CMOKTexture& to, PixelCodec& fromCodec, PixelCodec& toCodec, EMOKTColourSpace target,
                  EMOKTColourSpace source) {
    if (!TextureInternals::hasValidPixelData(from) || !TextureInternals::hasValidPixelData(to)) return 0;
    const unsigned int sourceBytes = fromCodec.getBytesPerPixel();
    const unsigned int destinationBytes = toCodec.getBytesPerPixel();
    const std::uint32_t members = std::min(from.getNumArrayMembers(), to.getNumArrayMembers());
    const std::uint32_t faces = std::min(from.getNumFaces(), to.getNumFaces());
    const std::uint32_t levels = std::min(from.getNumMIPLevels(), to.getNumMIPLevels());
    LayoutConversion conversion(fromCodec, toCodec, target, source, from.getTextureSize(), detectInstructionSet());

    std::uint32_t converted = 0;
    for (std::uint32_t member = 0; member < members; ++member) {
        for (std::uint32_t face = 0; face < faces; ++face) {
            for (std::uint32_t level = 0; level < levels; ++level) {
                const auto* pixels = static_cast<const std::uint8_t*>(from.getDataPtr(level, member, face));
                auto* results = static_cast<std::uint8_t*>(to.getDataPtr(level, member, face));
                const std::uint32_t count = pixelsOfLevel(from, to, static_cast<int>(level), sourceBytes, destinationBytes);
                conversion.convert(pixels, results, count);
                converted += count;
            }
        }
    }
    return static_cast<int>(converted * destinationBytes);
}

}  // namespace moktexture
