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
    std::uint32_t width, height, depth = 1, levels = 1, layers = 1, faces = 1;
};

/// Large textures are left empty.
inline CMOKTexture textureOf(PixelType format, const Shape& shape, EMOKTColourSpace colourSpace = eColourSpaceLinear,
                             EMOKTVariableType channelType = eVarUByteNorm) {
    const CMOKTextureHeader header(format.id, shape.height, shape.width, shape.depth, shape.levels, shape.layers, shape.faces,
                                   colourSpace, channelType, true);
    const bool isLarge = header.getDataSize() > 1u << 20;
    return CMOKTexture(header, isLarge ? nullptr : testimages::randomBytes(header.getDataSize(), 3).data());
}

inline Bytes bytesOf(const CMOKTexture& texture) {
    const unsigned char* data = TextureInternals::data(texture);
    return Bytes(data, data + TextureInternals::dataSize(texture));
}

inline Bytes levelOf(const CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face) {
    const auto* data = static_cast<const std::uint8_t*>(texture.getDataPtr(level, layer, face));
    return Bytes(data, data + texture.getDataSize(static_cast<int>(level), false, false));
}

/// An RGBA8 image repeated from its origin until it fills the padded size.
inline Bytes tiled(const Bytes& pixels, std::uint32_t width, std::uint32_t height, std::uint32_t paddedWidth,
                   std::uint32_t paddedHeight) {
    Bytes result(std::size_t{paddedWidth} * paddedHeight * 4);
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = pixels[(i / 4 / paddedWidth % height * width + i / 4 % paddedWidth % width) * 4 + i % 4];
    return result;
}

}  // namespace samples
