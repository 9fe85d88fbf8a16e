#pragma once

#include <cstddef>
#include <cstdint>

#include "CMOKTexture.h"
#include "core/base/image_view.h"
#include "core/texture/data_size.h"
#include "core/texture/subresources.h"
#include "format_info.h"

/// @file
/// What the stages of Transcode() share: texture forms, sizes of levels, and the walk over a texture.

namespace moktexture {

/// A copy of the header, metadata included, in another form.
CMOKTextureHeader withFormat(const CMOKTextureHeader& header, PixelType format, EMOKTVariableType channelType,
                             EMOKTColourSpace colourSpace);

/// Bytes of an image of that size in RGBA8.
inline std::size_t rgba8Bytes(const LevelSize& size) {
    return size.pixelCount() * bytesPerRGBA8Pixel;
}

/// The size with width and height raised to the smallest that the format's codec takes; larger ones are not rounded up to blocks.
LevelSize paddedToSmallest(const LevelSize& size, const FormatInfo& format);

/// Calls `visit(level, member, face)` for every image of the texture: members outermost, then faces, then MIP levels.
template <class Visit>
void forEachSubresource(const CMOKTextureHeader& header, Visit&& visit) {
    const std::uint32_t members = header.getNumArrayMembers();
    const std::uint32_t faces = header.getNumFaces();
    const std::uint32_t levels = header.getNumMIPLevels();
    for (std::uint32_t member = 0; member < members; ++member) {
        for (std::uint32_t face = 0; face < faces; ++face) {
            for (std::uint32_t level = 0; level < levels; ++level)
                visit(level, member, face);
        }
    }
}

}  // namespace moktexture
