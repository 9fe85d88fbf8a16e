#include "transcode/convert_layout.h"

#include <algorithm>
#include <cstring>

#include "core/base/instruction_set.h"
#include "core/texture/TextureInternals.h"
#include "core/texture/subresources.h"

/// @file
/// Conversion between uncompressed layouts.
///
/// What a conversion means is defined pixel by pixel by PixelCodec: read each channel as a float, write it into the destination's
/// channel, then, if the colour spaces differ, read the written colour channels back, apply the curve and write them again. Each
/// of the faster forms does some of this work once, before the pixel loop, and gives the same bytes:
///
///     form           work per pixel                                 preparation            speed, ns per pixel
///     pixelByPixel   all decisions and float operations             none                   40 to 100, 500 with a curve
///     perChannel     float operations of each channel               0.5 to 50 us           20 to 50, 70 to 300 with a curve
///     tables         one look-up per channel or source byte         4 to 100 us            0.5 to 5
///     byteShuffle    one byte shuffle for 1 to 16 pixels            as the tables          0.2 to 0.6
///
/// (512 by 512 pixels on one core of a shared x86-64 server; the order of magnitude is what matters.) The pair of layouts
/// decides, and the number of pixels, since a few pixels are converted before a table is filled:
///
///     if a layout has errors or an unknown type, or pixels are few:            pixelByPixel
///     else if some destination channel mixes source channels, or a source
///             channel has more than 8 bits, or channels share bits:            perChannel
///     else if each destination byte is a source byte or a constant, and the
///             processor has SSE4.1:                                            byteShuffle
///     else:                                                                    tables

namespace moktexture {

namespace {

/// Trades preparation against speed: filling tables takes about as long as converting this many pixels one by one. No byte
/// depends on it.
constexpr std::uint64_t pixelsForPreparation = 256;

/// Pixels of one face of a level that both textures hold.
std::uint32_t pixelsOfLevel(const CMOKTextureHeader& from, const CMOKTextureHeader& to, std::uint32_t level,
                            const PixelCodec& fromCodec, const PixelCodec& toCodec) {
    const int number = static_cast<int>(level);
    const unsigned int sourceBytes = fromCodec.getBytesPerPixel();
    const unsigned int destinationBytes = toCodec.getBytesPerPixel();
    std::uint32_t pixels = from.getTextureSize(number, false, false);
    if (sourceBytes != 0) pixels = std::min(pixels, from.getDataSize(number, false, false) / sourceBytes);
    if (destinationBytes != 0) pixels = std::min(pixels, to.getDataSize(number, false, false) / destinationBytes);
    return pixels;
}

SubresourceCounts commonCounts(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    const SubresourceCounts first = subresourceCounts(a);
    const SubresourceCounts second = subresourceCounts(b);
    return {std::min(first.layers, second.layers), std::min(first.faces, second.faces), std::min(first.levels, second.levels)};
}

}  // namespace

LayoutConversion::LayoutConversion(const ConversionRequest& request)
    : fromCodec(request.from), toCodec(request.to), targetSpace(request.target), sourceSpace(request.source) {
    if (areConvertible(fromCodec, toCodec) && request.pixels >= pixelsForPreparation) prepare(request);
}

void LayoutConversion::prepare(const ConversionRequest& request) {
    tables = TableConversion::make(request);
    if (!tables) {
        plan.emplace(request);
        chosenForm = ConversionForm::perChannel;
        return;
    }
    chosenForm = ConversionForm::tables;
    if (request.instructionSet >= InstructionSet::sse41) shuffle = makeByteShuffle(*tables);
    if (shuffle) chosenForm = ConversionForm::byteShuffle;
}

void LayoutConversion::convert(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    std::size_t done = 0;
    switch (chosenForm) {
        case ConversionForm::pixelByPixel:
            return convertPixelByPixel(from, to, pixels);
        case ConversionForm::perChannel:
            return plan->convert(from, to, pixels);
        case ConversionForm::byteShuffle:
#if MOKTEX_X86_KERNELS
            done = shuffleBytesSSE41(*shuffle, from, to, pixels);
#endif
            [[fallthrough]];
        case ConversionForm::tables:
            tables->convert(from + done * tables->sourceBytes, to + done * tables->destinationBytes, pixels - done);
    }
}

void LayoutConversion::convertPixelByPixel(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) {
    const bool haveErrors = fromCodec.errorFlags != 0 || toCodec.errorFlags != 0;
    const std::size_t sourceBytes = fromCodec.getBytesPerPixel();
    const std::size_t destinationBytes = toCodec.getBytesPerPixel();
    for (std::size_t i = 0; i < pixels; ++i) {
        fromCodec.loadPixel(from + i * sourceBytes);
        toCodec.convertFrom(fromCodec);
        if (!haveErrors) toCodec.convertColourSpace(targetSpace, sourceSpace);
        std::memcpy(to + i * destinationBytes, toCodec.pixelBytes(), std::min(destinationBytes, PixelCodec::bufferSize));
    }
}

std::uint64_t convertiblePixels(const CMOKTextureHeader& from, const CMOKTextureHeader& to, const PixelCodec& fromCodec,
                                const PixelCodec& toCodec) {
    const SubresourceCounts counts = commonCounts(from, to);
    std::uint64_t pixels = 0;
    for (std::uint32_t level = 0; level < counts.levels; ++level)
        pixels += pixelsOfLevel(from, to, level, fromCodec, toCodec);
    return pixels * counts.layers * counts.faces;
}

int convertLayout(const CMOKTexture& from, CMOKTexture& to, PixelCodec& fromCodec, PixelCodec& toCodec, EMOKTColourSpace target,
                  EMOKTColourSpace source) {
    if (!TextureInternals::hasValidPixelData(from) || !TextureInternals::hasValidPixelData(to)) return 0;
    const std::uint64_t pixels = convertiblePixels(from, to, fromCodec, toCodec);
    LayoutConversion conversion({fromCodec, toCodec, target, source, pixels, detectInstructionSet()});
    forEachSubresource(from, commonCounts(from, to), [&](const Subresource& subresource) {
        const auto [layer, face, level, size] = subresource;
        conversion.convert(static_cast<const std::uint8_t*>(from.getDataPtr(level, layer, face)),
                           static_cast<std::uint8_t*>(to.getDataPtr(level, layer, face)),
                           pixelsOfLevel(from, to, level, fromCodec, toCodec));
    });
    return static_cast<int>(pixels * toCodec.getBytesPerPixel());
}

}  // namespace moktexture
