#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_format.h"
#include "moktex/operations/image_operation.h"

namespace moktextool {

struct Console;

/// A wanted size; 0 by 0 asks for the nearest powers of two.
struct ResizeRequest {
    std::uint32_t width;
    std::uint32_t height;
};

/// What `moktex convert` is asked to do with each input.
struct ConversionRequest {
    std::optional<TextureFormat> format;  ///< none: that of the input
    std::optional<Quality> quality;
    std::vector<OperationPointer> operations;  ///< in their order, behind the change of size
    moktexture::EResizeMode mipFilter = moktexture::eResizeLinear;
    std::optional<ResizeRequest> resize;
    moktexture::EResizeMode resizeFilter = moktexture::eResizeLinear;
    std::optional<EMOKTColourSpace> assignedColourSpace;  ///< what the input is
    std::optional<EMOKTColourSpace> colourSpace;          ///< what the output is to be
    bool dither = false;
    std::uint32_t level = 0, layer = 0, face = 0;     ///< which image becomes a picture
    std::optional<moktexture::ELegacyApi> legacyApi;  ///< set to write the legacy layout
};

/// Converts one file to another. All that can be refused is refused before the work begins, by a Failure.
void convertFile(const ConversionRequest& request, const std::string& input, const std::string& output, Console& console);

}  // namespace moktextool
