#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "CMOKTexture.h"
#include "transcode/pixels/byte_shuffle.h"
#include "transcode/pixels/conversion_plan.h"
#include "transcode/pixels/table_conversion.h"

namespace moktexture {

/// The ways to convert pixels from one layout to another, slowest first. All give the same bytes.
enum class ConversionForm {
    pixelByPixel,  ///< PixelCodec::convertFrom(): any layouts, without preparation
    perChannel,    ///< ConversionPlan: any layouts without errors
    tables,        ///< TableConversion: source channels of at most 8 bits that are not mixed
    byteShuffle,   ///< ByteShuffle: each destination byte is a source byte or a constant; needs SSE4.1
};

/// A conversion in the fastest form that the pair of layouts allows.
class LayoutConversion {
public:
    explicit LayoutConversion(const ConversionRequest& request);

    ConversionForm form() const { return chosenForm; }
    void convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels);

private:
    void prepare(const ConversionRequest& request);
    void convertPixelByPixel(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels);

    PixelCodec fromCodec;
    PixelCodec toCodec;
    EMOKTColourSpace targetSpace;
    EMOKTColourSpace sourceSpace;
    ConversionForm chosenForm = ConversionForm::pixelByPixel;
    std::optional<ConversionPlan> plan;
    std::optional<TableConversion> tables;
    std::optional<ByteShuffle> shuffle;
};

/// How many pixels convertLayout() converts between textures of these headers: of each subresource that both have, the pixels
/// that both hold.
std::uint64_t convertiblePixels(const CMOKTextureHeader& from, const CMOKTextureHeader& to, const PixelCodec& fromCodec,
                                const PixelCodec& toCodec);

/// Converts all pixels of `from` into `to`, which has the same size, layers, faces and levels and a buffer of its own.
/// @param fromCodec, toCodec  the textures' layouts
/// @param target, source  colour spaces: where they differ, the colour channels of the result go through the curve
/// @return bytes per destination pixel times pixels converted, wrapped at 32 bits.
/// No pixel outside either level is touched, whatever the headers say; textures without valid pixel data give 0.
int convertLayout(const CMOKTexture& from, CMOKTexture& to, PixelCodec& fromCodec, PixelCodec& toCodec, EMOKTColourSpace target,
                  EMOKTColourSpace source);

}  // namespace moktexture
