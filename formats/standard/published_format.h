#pragma once

#include <cstdint>
#include <span>

#include "PixelType.h"
#include "texture_enums.h"

/// @file
/// Pixel formats as the published containers name them: OpenGL numbers in KTX 1.1, VkFormat in KTX 2, DXGI_FORMAT in DDS.

namespace moktexture {

/// A pair of numbers, for values that are stored linear and in sRGB; 0 where the interface has none.
struct PublishedNumbers {
    std::uint32_t linear;
    std::uint32_t sRGB;

    std::uint32_t forSpace(EMOKTColourSpace space) const { return space == eColourSpaceSRGB ? sRGB : linear; }
};

/// A pixel format with its numbers. A compressed format has a `glType` and `glFormat` of 0.
struct PublishedFormat {
    PixelType pixelFormat;
    EMOKTVariableType channelType;
    std::uint32_t glType;
    std::uint32_t glFormat;
    std::uint32_t glBaseFormat;
    PublishedNumbers glInternal;
    PublishedNumbers vulkan;
    PublishedNumbers dxgi;
};

/// All rows. Where two rows share a number, the first one is what readers take.
std::span<const PublishedFormat> publishedFormats();

/// A row, and which of its two numbers was asked for.
struct PublishedMatch {
    const PublishedFormat* format = nullptr;
    EMOKTColourSpace colourSpace = eColourSpaceLinear;
};

/// Whether two formats store the same pixels in the same bits, such as `bgra8888` in bytes and `argb8888` in a word, 5:6:5 bits
/// with any type that is unsigned and normalised, or DXT2 and DXT3.
bool haveSameBits(PixelType format, EMOKTVariableType type, PixelType otherFormat, EMOKTVariableType otherType);

/// The row of a header's pixel format and channel type, else one that has the same bits; null if the published containers have no
/// number for it. A compressed format matches with any unsigned channel type, its signed variant with a signed one.
const PublishedFormat* findPublished(PixelType pixelFormat, EMOKTVariableType channelType);

/// @name Rows by the numbers of a file; a null `format` if no row has them.
/// @{
PublishedMatch findByVulkan(std::uint32_t vkFormat);
PublishedMatch findByDXGI(std::uint32_t dxgiFormat);
/// A compressed format by `glInternalFormat`, with a `glFormat` of 0. Otherwise by `glType` and `glFormat`; the colour
/// space comes from `glInternalFormat`, which may be sized or unsized.
PublishedMatch findByOpenGL(std::uint32_t glType, std::uint32_t glFormat, std::uint32_t glInternalFormat);
/// @}

/// Unit in which files store a format. One pixel for uncompressed layouts, the smallest level for first-generation MOKTC;
/// 0 bytes for unknown formats.
struct StoredBlock {
    std::uint32_t width, height;  ///< in pixels
    std::uint32_t bytes;
};
StoredBlock storedBlock(PixelType pixelFormat);

}  // namespace moktexture
