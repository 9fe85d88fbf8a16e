#pragma once

#include <cstdint>

/// @file
/// The part of a DDS file's head that describes its pixels, and what it means to Direct3D's numbers.

namespace moktexture {

/// The pixel format as it stands in a file.
struct DDSPixelFormat {
    std::uint32_t size = 32;
    std::uint32_t flags = 0;
    std::uint32_t fourCC = 0;
    std::uint32_t bits = 0;
    std::uint32_t redMask = 0;
    std::uint32_t greenMask = 0;
    std::uint32_t blueMask = 0;
    std::uint32_t alphaMask = 0;
};
static_assert(sizeof(DDSPixelFormat) == 32);

/// What a reader is to do with a pixel format.
struct DDSFormatDecision {
    enum class Action {
        keep,    ///< an unknown layout: the texture keeps its format
        set,     ///< set the number, and go on whether or not it is known
        insist,  ///< set the number, and refuse the file if it is unknown
        refuse
    };
    Action action;
    std::uint32_t number = 0;  ///< a D3DFORMAT or FourCC
};

DDSFormatDecision decideFormat(const DDSPixelFormat& format);

/// Fills in the pixel format to write for a D3DFORMAT or FourCC; false if there is none.
bool describeNumber(std::uint32_t number, DDSPixelFormat& format);

}  // namespace moktexture
