#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "MOKTexLib.h"
#include "core/texture/TextureInternals.h"
#include "support/test_images.h"

/// Layouts, random textures and their bytes.
namespace samples {

using namespace moktexture;

using Bytes = std::vector<std::uint8_t>;

constexpr PixelType rgba8 = PixelTypeRGBA8, rgb565{'r', 'g', 'b', 0, 5, 6, 5, 0};
constexpr EMOKTVariableType u8 = eVarUByteNorm, u16 = eVarUShortNorm, u32 = eVarUIntNorm, real = eVarFloat;
constexpr EMOKTVariableType s8 = eVarSByteNorm, s16 = eVarSShortNorm, s32 = eVarSIntNorm;

struct Shape {
    std::uint32_t width, height, depth = 1, levels = 1, layers = 1, faces = 1;
};

/// Large textures are left empty.
inline CMOKTexture textureOf(PixelType format, const Shape& shape, EMOKTColourSpace colourSpace = eColourSpaceLinear,
                             EMOKTVariableType channelType = eVarUByteNorm) {
    const CMOKTextureHeader header(format.id, shape.height, shape.width, shape.depth, shape.levels, shape.layers, shape.faces,
                                   colourSpace, channelType, true);
    return CMOKTexture(header,
                       header.getDataSize() > 1u << 20 ? nullptr : testimages::randomBytes(header.getDataSize(), 3).data());
}

inline Bytes bytesOf(const CMOKTexture& texture) {
    const unsigned char* data = TextureInternals::data(texture);
    return Bytes(data, data + TextureInternals::dataSize(texture));
}

}  // namespace samples
