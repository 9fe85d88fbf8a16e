#pragma once

#include <cstdint>
#include <functional>

#include "moktex/formats/Image.h"

/// @file
/// Work on images by bands of rows, so that the library needs only a few MiB beside an image of any size.

namespace moktextool {

/// Default number of pixels in a band: about what a processor's cache holds.
inline constexpr std::uint64_t defaultBandPixels = std::uint64_t{1} << 18;

/// Rows that follow each other, counted through all slices.
struct RowBand {
    std::uint64_t first;
    std::uint32_t count;
};

/// How an image is cut into bands.
struct BandCut {
    std::uint64_t rows;
    std::uint32_t width;
    std::uint64_t bandPixels = defaultBandPixels;
    std::uint32_t step = 1;  ///< all bands but the last have a multiple of these rows
};

/// Calls `work` for every band, from several threads at once, in no order. The first exception stops the work and is thrown
/// again.
void forEachBand(const BandCut& cut, const std::function<void(const RowBand&)>& work);

/// A texture of `count` rows of one slice, with room for pixels.
moktexture::CMOKTexture makeBand(const TextureFormat& format, std::uint32_t width, std::uint32_t count,
                                 EMOKTColourSpace colourSpace, bool isPremultiplied = false);
/// Copies rows of an image to a new band.
/// @param rowOf  the image's row for each of the band's
moktexture::CMOKTexture gatherBand(const Image& image, std::uint32_t count, EMOKTColourSpace colourSpace,
                                   const std::function<std::uint64_t(std::uint32_t)>& rowOf);
moktexture::CMOKTexture copyBand(const Image& image, const RowBand& band, EMOKTColourSpace colourSpace);

}  // namespace moktextool
