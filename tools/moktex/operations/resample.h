#pragma once

#include <cstdint>

#include "moktex/formats/Image.h"
#include "moktex/operations/row_bands.h"

namespace moktextool {

/// How pixels are averaged.
struct ResampleSettings {
    moktexture::EResizeMode mode = moktexture::eResizeLinear;
    bool linearLight = false;    ///< the colours are sRGB and are averaged as linear light
    bool weightsByAlpha = true;  ///< a pixel's colour counts by its alpha, so that transparent pixels give no fringe
    std::uint64_t bandPixels = defaultBandPixels;
};

/// An image of another size, in the same format: RGBA8, RGBA16 or float RGBA. See makeTaps() for the filters. Alpha is averaged
/// as it is stored. Integers are rounded to the nearest and clamped, floats are not clamped.
Image resample(const Image& source, const ImageSize& size, const ResampleSettings& settings);

}  // namespace moktextool
