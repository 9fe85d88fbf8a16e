#include "transcode/codec_table.h"

#include <array>

#include "dxtn/dxtn.h"
#include "etc1/etc1.h"
#include "moktc/moktc.h"
#include "transcode/pixels/one_bit.h"
#include "transcode/pixels/packed_yuv.h"

namespace moktexture {

namespace {

std::uint32_t decodeDXTn(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                         const FormatInfo& format) {
    return DecompressDXTn(blocks, pixels, width, height, &format.codecVariant);
}

std::uint32_t encodeDXTn(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                         const FormatInfo& format, ECompressorQuality) {
    return CompressDXTn(pixels, blocks, width, height, &format.codecVariant);
}

std::uint32_t decodeMOKTC(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                          const FormatInfo& format) {
    const std::uint32_t generation = (format.codecVariant & eMOKTCSecondGeneration) != 0 ? 1 : 0;
    return DecompressMOKTC(blocks, pixels, width, height, format.bitsPerPixel == 2 ? 1 : 0, &generation);
}

std::uint32_t encodeMOKTC(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                          const FormatInfo& format, ECompressorQuality quality) {
    const bool hasAlpha = (format.codecVariant & eMOKTCHasAlpha) != 0;
    const std::uint32_t generation = (format.codecVariant & eMOKTCSecondGeneration) != 0 ? 1 : 0;
    return CompressMOKTC(pixels, blocks, width, height, hasAlpha, format.bitsPerPixel == 2, generation, quality);
}

std::uint32_t decodeETC1(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                         const FormatInfo&) {
    return DecompressETC1(blocks, pixels, width, height);
}

std::uint32_t encodeETC1(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                         const FormatInfo&, ECompressorQuality quality) {
    return CompressETC1(pixels, blocks, width, height, quality);
}

std::uint32_t decodePackedYUV(const void* groups, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                              const FormatInfo& format) {
    const std::uint32_t number = format.format;
    return static_cast<std::uint32_t>(decodeYUV(groups, pixels, width, height, &number));
}

std::uint32_t encodePackedYUV(const void* pixels, void* groups, const std::uint32_t* width, const std::uint32_t* height,
                              const FormatInfo& format, ECompressorQuality) {
    const std::uint32_t number = format.format;
    return static_cast<std::uint32_t>(encodeYUV(pixels, groups, width, height, &number));
}

std::uint32_t decodeOneBit(const void* bits, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                           const FormatInfo&) {
    return static_cast<std::uint32_t>(decode1bpp(bits, pixels, width, height));
}

std::uint32_t encodeOneBit(const void* pixels, void* bits, const std::uint32_t* width, const std::uint32_t* height,
                           const FormatInfo&, ECompressorQuality) {
    return static_cast<std::uint32_t>(encode1bpp(pixels, bits, width, height));
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
