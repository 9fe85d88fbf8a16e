#pragma once

#include <cstdint>
#include <vector>

#include "core/texture/TextureInternals.h"
#include "formats/standard/published_format.h"
#include "formats/standard/stored_texture.h"
#include "support/test_images.h"
#include "texture_io.h"

/// Textures of every published format and shape.
namespace sampletextures {

using namespace moktexture;
using Bytes = std::vector<unsigned char>;

struct Shape {
    const char* name;
    std::uint32_t width, height, depth, levels, layers, faces;
};

// clang-format off
inline constexpr Shape shapes[] = {
    // Name            Width  Height  Depth  Levels  Layers  Faces
    {"one level",      8,     8,      1,     1,      1,      1},
    {"odd, chain",     13,    7,      1,     4,      1,      1},
    {"row",            5,     1,      1,     1,      1,      1},
    {"cube",           6,     6,      1,     3,      1,      6},
    {"array",          9,     5,      1,     2,      3,      1},
    {"cube array",     4,     4,      1,     3,      2,      6},
    {"volume",         7,     5,      3,     3,      1,      1},
};
// clang-format on

/// A texture with random bytes.
inline CMOKTexture makeTexture(const PublishedFormat& format, const Shape& shape, EMOKTColourSpace space = eColourSpaceLinear) {
    const CMOKTextureHeader header(format.pixelFormat.id, shape.height, shape.width, shape.depth, shape.levels, shape.layers,
                                   shape.faces, space, format.channelType, false);
    CMOKTexture texture = makeStoredTexture(header);
    testimages::Random(format.pixelFormat.id + shape.width)
        .fill({TextureInternals::data(texture), static_cast<std::size_t>(TextureInternals::dataSize(texture))});
    return texture;
}

inline Bytes pixelsOf(const CMOKTexture& texture) {
    const unsigned char* data = TextureInternals::data(texture);
    return Bytes(data, data + TextureInternals::dataSize(texture));
}

}  // namespace sampletextures
