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
                         const CodecArguments& arguments) {
    return DecompressDXTn(blocks, pixels, width, height, &arguments.mode);
}

std::uint32_t encodeDXTn(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                         const CodecArguments& arguments, ECompressorQuality) {
    return CompressDXTn(pixels, blocks, width, height, &arguments.mode);
}

std::uint32_t decodeMOKTC(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                          const CodecArguments& arguments) {
    return DecompressMOKTC(blocks, pixels, width, height, arguments.is2bpp ? 1 : 0, &arguments.mode);
}

std::uint32_t encodeMOKTC(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                          const CodecArguments& arguments, ECompressorQuality quality) {
    return CompressMOKTC(pixels, blocks, width, height, arguments.hasAlpha, arguments.is2bpp, arguments.mode, quality);
}

std::uint32_t decodeETC1(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                         const CodecArguments&) {
    return DecompressETC1(blocks, pixels, width, height);
}

std::uint32_t encodeETC1(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                         const CodecArguments&, ECompressorQuality quality) {
    return CompressETC1(pixels, blocks, width, height, quality);
}

std::uint32_t decodePackedYUV(const void* groups, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                              const CodecArguments& arguments) {
    return static_cast<std::uint32_t>(decodeYUV(groups, pixels, width, height, &arguments.mode));
}

std::uint32_t encodePackedYUV(const void* pixels, void* groups, const std::uint32_t* width, const std::uint32_t* height,
                              const CodecArguments& arguments, ECompressorQuality) {
    return static_cast<std::uint32_t>(encodeYUV(pixels, groups, width, height, &arguments.mode));
}

std::uint32_t decodeOneBit(const void* bits, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                           const CodecArguments&) {
    return static_cast<std::uint32_t>(decode1bpp(bits, pixels, width, height));
}

std::uint32_t encodeOneBit(const void* pixels, void* bits, const std::uint32_t* width, const std::uint32_t* height,
                           const CodecArguments&, ECompressorQuality) {
    return static_cast<std::uint32_t>(encode1bpp(pixels, bits, width, height));
}

constexpr LevelDecoder noDecoder = nullptr;
constexpr LevelEncoder noEncoder = nullptr;

// Row: the format of that number. Columns: format, decoder, encoder, arguments of both, whether the decoder deals with levels
// below the format's block by itself. The last row serves every number that is no format.
// Kept: the encoder of the second generation is told of no alpha, unlike that of the first. The flag is passed as it is and
// plays no part in what is written: files of both generations hold the alpha of their pixels.
// clang-format off
constexpr std::array<LevelCodec, eFmtUnknown + 1> codecs = {{
    {eFmtMOKTC2bppRGB,  decodeMOKTC,     encodeMOKTC,     {0, true,  false}, true },
    {eFmtMOKTC2bppRGBA, decodeMOKTC,     encodeMOKTC,     {0, true,  true }, true },
    {eFmtMOKTC4bppRGB,  decodeMOKTC,     encodeMOKTC,     {0, false, false}, true },
    {eFmtMOKTC4bppRGBA, decodeMOKTC,     encodeMOKTC,     {0, false, true }, true },
    {eFmtMOKTCII2bpp,   decodeMOKTC,     encodeMOKTC,     {1, true,  false}, true },
    {eFmtMOKTCII4bpp,   decodeMOKTC,     encodeMOKTC,     {1, false, false}, true },
    {eFmtETC1,          decodeETC1,      encodeETC1,      {0},               false},
    {eFmtDXT1,          decodeDXTn,      encodeDXTn,      {1},               false},
    {eFmtDXT2,          decodeDXTn,      encodeDXTn,      {2},               false},
    {eFmtDXT3,          decodeDXTn,      encodeDXTn,      {3},               false},
    {eFmtDXT4,          decodeDXTn,      encodeDXTn,      {4},               false},
    {eFmtDXT5,          decodeDXTn,      encodeDXTn,      {5},               false},
    {eFmtBC4,           noDecoder,       noEncoder,       {0},               false},
    {eFmtBC5,           noDecoder,       noEncoder,       {0},               false},
    {eFmtBC6,           noDecoder,       noEncoder,       {0},               false},
    {eFmtBC7,           noDecoder,       noEncoder,       {0},               false},
    {eFmtUYVY,          decodePackedYUV, encodePackedYUV, {eFmtUYVY},        false},
    {eFmtYUY2,          decodePackedYUV, encodePackedYUV, {eFmtYUY2},        false},
    {eFmtBW1bpp,        decodeOneBit,    encodeOneBit,    {0},               true },
    {eFmtRGB9E5,        noDecoder,       noEncoder,       {0},               false},
    {eFmtRGBG8888,      noDecoder,       noEncoder,       {0},               false},
    {eFmtGRGB8888,      noDecoder,       noEncoder,       {0},               false},
    {eFmtETC2RGB,       noDecoder,       noEncoder,       {0},               false},
    {eFmtETC2RGBA,      noDecoder,       noEncoder,       {0},               false},
    {eFmtETC2RGBA1,     noDecoder,       noEncoder,       {0},               false},
    {eFmtEACR11U,       noDecoder,       noEncoder,       {0},               false},
    {eFmtEACR11S,       noDecoder,       noEncoder,       {0},               false},
    {eFmtEACRG11U,      noDecoder,       noEncoder,       {0},               false},
    {eFmtEACRG11S,      noDecoder,       noEncoder,       {0},               false},
    {eFmtUnknown,       noDecoder,       noEncoder,       {0},               false},
}};
// clang-format on

constexpr bool rowsStandInOrder() {
    for (std::size_t row = 0; row < codecs.size(); ++row) {
        if (codecs[row].format != row) return false;
    }
    return true;
}
static_assert(rowsStandInOrder());

}  // namespace

const LevelCodec& levelCodec(const PixelType& format) {
    return format.id < eFmtUnknown ? codecs[format.id] : codecs[eFmtUnknown];
}

}  // namespace moktexture
