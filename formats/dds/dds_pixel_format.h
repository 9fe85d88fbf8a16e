#pragma once

#include <cstdint>

/// @file
/// The pixel format in the header of a DDS file, and the Direct3D number that it maps to.

namespace moktexture {

/// The pixel format as it is stored in a file.
struct DDSPixelFormat {
    std::uint32_t size = 32;
    std::uint32_t flags = 0;   ///< DDPF_...
    std::uint32_t fourCC = 0;  ///< with DDPF_FOURCC: a FourCC, or the number of a D3DFORMAT
    std::uint32_t bits = 0;    ///< per pixel
    std::uint32_t redMask = 0;
    std::uint32_t greenMask = 0;
    std::uint32_t blueMask = 0;
    std::uint32_t alphaMask = 0;
};
static_assert(sizeof(DDSPixelFormat) == 32);

/// What a reader does with a pixel format.
struct DDSFormatDecision {
    enum class Action {
        keep,         ///< an unknown layout: the texture keeps its format
        set,          ///< set the number, and go on whether or not it is known
        setOrRefuse,  ///< set the number, and refuse the file if it is unknown
        refuse        ///< refuse the file
    };
    Action action;
    std::uint32_t number = 0;  ///< a D3DFORMAT or FourCC
};

DDSFormatDecision decideFormat(const DDSPixelFormat& format);

/// Fills in the pixel format to write for a D3DFORMAT or FourCC; false if there is none.
bool makePixelFormat(std::uint32_t number, DDSPixelFormat& format);

}  // namespace moktexture
