#include <array>

#include "dxtn/dxtn.h"
#include "etc1/etc1.h"
#include "moktc/moktc.h"
#include "transcode/pixels/packed_codecs.h"
#include "transcode/stages.h"

namespace moktexture {

namespace {

std::uint32_t generationOf(const FormatInfo& format) {
    return (format.codecVariant & eMOKTCSecondGeneration) != 0 ? 1 : 0;
}

std::uint32_t decodeMOKTC(const void* blocks, const ImageView& image, const FormatInfo& format) {
    const std::uint32_t generation = generationOf(format);
    return DecompressMOKTC(blocks, image.pixels, &image.width, &image.height, format.bitsPerPixel == 2 ? 1 : 0, &generation);
}

std::uint32_t encodeMOKTC(const ConstImageView& image, void* blocks, const FormatInfo& format, ECompressorQuality quality) {
    const bool hasAlpha = (format.codecVariant & eMOKTCHasAlpha) != 0;
    return CompressMOKTC(image.pixels, blocks, &image.width, &image.height, hasAlpha, format.bitsPerPixel == 2,
                         generationOf(format), quality);
}

std::uint32_t decodeETC1(const void* blocks, const ImageView& image, const FormatInfo&) {
    return DecompressETC1(blocks, image.pixels, &image.width, &image.height);
}

std::uint32_t encodeETC1(const ConstImageView& image, void* blocks, const FormatInfo&, ECompressorQuality quality) {
    return CompressETC1(image.pixels, blocks, &image.width, &image.height, quality);
}

std::uint32_t decodeDXTn(const void* blocks, const ImageView& image, const FormatInfo& format) {
    return DecompressDXTn(blocks, image.pixels, &image.width, &image.height, &format.codecVariant);
}

std::uint32_t encodeDXTn(const ConstImageView& image, void* blocks, const FormatInfo& format, ECompressorQuality) {
    return CompressDXTn(image.pixels, blocks, &image.width, &image.height, &format.codecVariant);
}

std::uint32_t decodePackedYUV(const void* groups, const ImageView& image, const FormatInfo& format) {
    const std::uint32_t number = format.format;
    return static_cast<std::uint32_t>(decodeYUV(groups, image.pixels, &image.width, &image.height, &number));
}

std::uint32_t encodePackedYUV(const ConstImageView& image, void* groups, const FormatInfo& format, ECompressorQuality) {
    const std::uint32_t number = format.format;
    return static_cast<std::uint32_t>(encodeYUV(image.pixels, groups, &image.width, &image.height, &number));
}

std::uint32_t decodeOneBit(const void* bits, const ImageView& image, const FormatInfo&) {
    return static_cast<std::uint32_t>(decode1bpp(bits, image.pixels, &image.width, &image.height));
}

std::uint32_t encodeOneBit(const ConstImageView& image, void* bits, const FormatInfo&, ECompressorQuality) {
    return static_cast<std::uint32_t>(encode1bpp(image.pixels, bits, &image.width, &image.height));
}

// Row: the codec of that number of EFormatCodec.
// clang-format off
constexpr std::array<LevelCodec, eCodecOneBit + 1> codecs = {{
    // decoder         encoder
    {nullptr,          nullptr        },  // eCodecNone
    {decodeMOKTC,      encodeMOKTC    },  // eCodecMOKTC
    {decodeETC1,       encodeETC1     },  // eCodecETC1
    {decodeDXTn,       encodeDXTn     },  // eCodecDXTn
    {decodePackedYUV,  encodePackedYUV},  // eCodecPackedYUV
    {decodeOneBit,     encodeOneBit   },  // eCodecOneBit
}};
// clang-format on

}  // namespace

const LevelCodec& levelCodec(EFormatCodec codec) {
    return codecs[codec];
}

}  // namespace moktexture
