#include "transcode/codec_table.h"

#include <array>

#include "dxtn/dxtn.h"

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

constexpr LevelDecoder noDecoder = nullptr;
constexpr LevelEncoder noEncoder = nullptr;

// Row: the format of that number. Columns: format, decoder, encoder, arguments of both, whether the decoder deals with levels
// below the format's block by itself. The last row serves every number that is no format.
// clang-format off
constexpr std::array<LevelCodec, eFmtUnknown + 1> codecs = {{
    {eFmtMOKTC2bppRGB,  noDecoder,  noEncoder,  {0}, true },
    {eFmtMOKTC2bppRGBA, noDecoder,  noEncoder,  {0}, true },
    {eFmtMOKTC4bppRGB,  noDecoder,  noEncoder,  {0}, true },
    {eFmtMOKTC4bppRGBA, noDecoder,  noEncoder,  {0}, true },
    {eFmtMOKTCII2bpp,   noDecoder,  noEncoder,  {0}, true },
    {eFmtMOKTCII4bpp,   noDecoder,  noEncoder,  {0}, true },
    {eFmtETC1,          noDecoder,  noEncoder,  {0}, false},
    {eFmtDXT1,          decodeDXTn, encodeDXTn, {1}, false},
    {eFmtDXT2,          decodeDXTn, encodeDXTn, {2}, false},
    {eFmtDXT3,          decodeDXTn, encodeDXTn, {3}, false},
    {eFmtDXT4,          decodeDXTn, encodeDXTn, {4}, false},
    {eFmtDXT5,          decodeDXTn, encodeDXTn, {5}, false},
    {eFmtBC4,           noDecoder,  noEncoder,  {0}, false},
    {eFmtBC5,           noDecoder,  noEncoder,  {0}, false},
    {eFmtBC6,           noDecoder,  noEncoder,  {0}, false},
    {eFmtBC7,           noDecoder,  noEncoder,  {0}, false},
    {eFmtUYVY,          noDecoder,  noEncoder,  {0}, false},
    {eFmtYUY2,          noDecoder,  noEncoder,  {0}, false},
    {eFmtBW1bpp,        noDecoder,  noEncoder,  {0}, true },
    {eFmtRGB9E5,        noDecoder,  noEncoder,  {0}, false},
    {eFmtRGBG8888,      noDecoder,  noEncoder,  {0}, false},
    {eFmtGRGB8888,      noDecoder,  noEncoder,  {0}, false},
    {eFmtETC2RGB,       noDecoder,  noEncoder,  {0}, false},
    {eFmtETC2RGBA,      noDecoder,  noEncoder,  {0}, false},
    {eFmtETC2RGBA1,     noDecoder,  noEncoder,  {0}, false},
    {eFmtEACR11U,       noDecoder,  noEncoder,  {0}, false},
    {eFmtEACR11S,       noDecoder,  noEncoder,  {0}, false},
    {eFmtEACRG11U,      noDecoder,  noEncoder,  {0}, false},
    {eFmtEACRG11S,      noDecoder,  noEncoder,  {0}, false},
    {eFmtUnknown,       noDecoder,  noEncoder,  {0}, false},
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
