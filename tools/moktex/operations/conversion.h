#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_format.h"
#include "moktex/operations/image_operation.h"
#include "moktex/operations/row_bands.h"

namespace moktextool {

struct Console;

/// A requested size; 0 by 0 asks for the nearest powers of two.
struct ResizeRequest {
    std::uint32_t width;
    std::uint32_t height;
};

/// What `moktex convert` does with each input.
struct ConversionRequest {
    std::optional<TextureFormat> format;  ///< none: that of the input
    std::optional<Quality> quality;
    std::vector<OperationPointer> operations;  ///< in order, applied after the change of size
    moktexture::EResizeMode mipFilter = moktexture::eResizeLinear;
    std::optional<ResizeRequest> resize;
    moktexture::EResizeMode resizeFilter = moktexture::eResizeLinear;
    std::optional<EMOKTColourSpace> assignedColourSpace;  ///< of the input; the values stay
    std::optional<EMOKTColourSpace> colourSpace;          ///< of the output; the curve is applied
    bool linearLight = true;                              ///< average colours marked as sRGB in linear light
    bool weightsByAlpha = true;                           ///< let a pixel's colour count by its alpha where pixels are averaged
    bool dither = false;
    std::uint32_t level = 0, layer = 0, face = 0;     ///< the image to write as a picture
    std::optional<moktexture::ELegacyApi> legacyApi;  ///< set to write the legacy layout
    bool overwrites = false;                          ///< an existing output is replaced
    std::uint64_t bandPixels = defaultBandPixels;     ///< of one step of the work; changes no byte
    moktexture::EContainerLayout layout = moktexture::eLayoutStandard;
};

/// Converts one file to another. Every request that cannot be met is refused by a Failure before the conversion starts.
void convertFile(const ConversionRequest& request, const std::string& input, const std::string& output, Console& console);

}  // namespace moktextool
