#pragma once

/// @file
/// MOKTexLib: load, convert, process and save textures. This header includes the whole interface.
///
/// **A texture** (CMOKTexture) is a header and one buffer of pixels. The header (CMOKTextureHeader) holds width, height and depth
/// in pixels, the numbers of MIP levels, array layers and faces (6 for a cube map), the pixel format (PixelType), the type of a
/// channel (EMOKTVariableType), the colour space, and metadata. "Array member" in the names of functions means array layer.
///
/// **Order of the buffer**, outermost first. Subresources follow each other without a gap:
///
///     MIP level 0                                                         MIP level 1        ...
///     layer 0                                    layer 1 ...              layer 0 ...
///     face 0              face 1 ... face 5      face 0 ...               face 0 ...
///     slice 0 | slice 1 | ...
///     row 0 | row 1 | ...
///     pixel 0 | pixel 1 | ...
///
/// A *subresource* is one face of one layer at one level. It starts at getDataPtr(level, layer, face) and has
/// getDataSize(level, false, false) bytes. Level L has max(width >> L, 1) by max(height >> L, 1) by max(depth >> L, 1) pixels:
/// getWidth(L), getHeight(L), getDepth(L).
///
/// **Address of a pixel** of an uncompressed format of P = getBitsPerPixel() / 8 bytes per pixel, rows being unpadded:
///
///     getDataPtr(level, layer, face) + ((z * getHeight(level) + y) * getWidth(level) + x) * P
///
/// Channels that are as wide as their type lie in the order of the format's letters: PixelTypeRGBA8 with eVarUByteNorm has red in
/// the first byte. Other channels are fields of one little-endian word, the first letter in its highest bits. A compressed format
/// has blocks in place of pixels, for a width and height rounded up to the format's block; their order is the codec's.
///
/// **All pixels** of an RGBA8 texture:
///
/// @code
/// /// Sum of the red channel over all levels, layers and faces.
/// std::uint64_t sumOfRed(const moktexture::CMOKTexture& texture) {
///     std::uint64_t sum = 0;
///     for (std::uint32_t level = 0; level < texture.getNumMIPLevels(); ++level)
///         for (std::uint32_t layer = 0; layer < texture.getNumArrayMembers(); ++layer)
///             for (std::uint32_t face = 0; face < texture.getNumFaces(); ++face) {
///                 const auto* pixels = static_cast<const std::uint8_t*>(texture.getDataPtr(level, layer, face));
///                 const std::uint32_t size = texture.getDataSize(static_cast<int>(level), false, false);
///                 for (std::uint32_t i = 0; i < size; i += 4)
///                     sum += pixels[i];
///             }
///     return sum;
/// }
/// @endcode
///
/// **Threads**: an object belongs to one thread at a time, for reading as well, since getters of metadata may insert entries.
/// Different objects may be used by different threads at the same time, and so may all functions. No function keeps a thread
/// running after it returns.
///
/// **Failure** is a returned value. The only exception is `std::bad_alloc`. The process ends only where the MOKTC encoder cannot
/// start a thread: see Transcode().

#include "CMOKTArray.h"
#include "CMOKTMap.h"
#include "CMOKTString.h"
#include "CMOKTexture.h"
#include "CMOKTextureHeader.h"
#include "EMOKTError.h"
#include "MOKTextureHeaderV3.h"
#include "MetaDataBlock.h"
#include "PixelType.h"
#include "compressed_format_id.h"
#include "format_info.h"
#include "image_operations.h"
#include "moktex_export.h"
#include "texture_enums.h"
#include "texture_io.h"
#include "transcode.h"
