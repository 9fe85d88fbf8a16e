#pragma once

#include <vector>

#include "MOKTexLib.h"
#include "core/texture/TextureInternals.h"
#include "support/test_images.h"

/// Random textures and their bytes, for the tests of whole conversions.
namespace samples {

using namespace moktexture;

using Bytes = std::vector<std::uint8_t>;

struct Shape {
    std::uint32_t width, height, depth = 1, levels = 1, members = 1, faces = 1;
};

/// Large textures are left empty.
inline CMOKTexture textureOf(PixelType format, const Shape& shape, EMOKTColourSpace colourSpace = eColourSpaceLinear,
                             EMOKTVariableType channelType = eVarUByteNorm) {
    const CMOKTextureHeader header(format.id, shape.height, shape.width, shape.depth, shape.levels, shape.members, shape.faces,
                                   colourSpace, channelType, true);
    const bool isLarge = header.getDataSize() > 1u << 20;
    return CMOKTexture(header, isLarge ? nullptr : testimages::randomBytes(header.getDataSize(), 3).data());
}

inline Bytes bytesOf(const CMOKTexture& texture) {
    const unsigned char* data = TextureInternals::data(texture);
    return Bytes(data, data + TextureInternals::dataSize(texture));
}

inline Bytes levelOf(const CMOKTexture& texture, std::uint32_t level, std::uint32_t member, std::uint32_t face) {
    const auto* data = static_cast<const std::uint8_t*>(texture.getDataPtr(level, member, face));
    return Bytes(data, data + texture.getDataSize(static_cast<int>(level), false, false));
}

}  // namespace samples
