#pragma once

#include <cstdint>
#include <string>

#include "MOKTexLib.h"

/// @file
/// Sizes of textures in 64 bits. Those of CMOKTextureHeader wrap at 32 bits.

namespace moktextool {

struct ImageSize {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    std::uint32_t depth = 1;
};
bool operator==(const ImageSize& a, const ImageSize& b);
/// The size of a MIP level below an image of that size, at least 1 by 1 by 1. Levels count modulo 32, as in the library.
ImageSize levelSize(const ImageSize& size, std::uint32_t level);

unsigned int bitsPerPixel(moktexture::PixelType format);

/// Bytes of one level of one face and layer, sides rounded up to whole blocks.
std::uint64_t imageSize(moktexture::PixelType format, const ImageSize& size);

/// The size of level 0 of a texture.
ImageSize sizeOf(const moktexture::CMOKTextureHeader& header);

/// Bytes of all levels, faces and layers.
std::uint64_t textureSize(const moktexture::CMOKTextureHeader& header);

/// Whether a CMOKTexture can hold the texture: all levels of a face take at most 2^32 - 1 bits, all faces of all layers at most
/// 2^32 - 1 bytes.
bool fitsTexture(const moktexture::CMOKTextureHeader& header);

/// What is too large and the limit, for a message: "it takes 576000000 bytes as rgba8888, and textures hold at most ...".
std::string limitText(const moktexture::CMOKTextureHeader& header);

}  // namespace moktextool
