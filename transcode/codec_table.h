#pragma once

#include <cstdint>

#include "PixelType.h"
#include "texture_enums.h"

namespace moktexture {

/// What the table tells a codec about its format.
struct CodecArguments {
    std::uint32_t mode;     ///< DXTn: the DXTMode; packed YUV: the format's number; MOKTC: 0 or 1 for the generation
    bool is2bpp = false;    ///< MOKTC
    bool hasAlpha = false;  ///< MOKTC: what its encoder is told
};

// Kept: codecs know no depth. Of a 3D level the first slice alone is coded, and Transcode() to such a format reports failure.

/// Decodes one slice of `*width * *height` pixels to RGBA8 and returns the codec's own count, which need not be bytes.
using LevelDecoder = std::uint32_t (*)(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                                       const CodecArguments& arguments);

/// Encodes one slice of `*width * *height` RGBA8 pixels and returns the bytes written, 0 if it refuses.
using LevelEncoder = std::uint32_t (*)(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                                       const CodecArguments& arguments, ECompressorQuality quality);

/// How the levels of a compressed format are decoded and encoded.
struct LevelCodec {
    CompressedFormatId format;
    LevelDecoder decode;  ///< null: the pixels stay zeroed
    LevelEncoder encode;  ///< null: the blocks stay zeroed and nothing is counted
    CodecArguments arguments;
    bool decodesSmallLevels;  ///< the decoder needs no padded destination for levels below the format's block
};

/// The row of a compressed format; one without codecs for numbers of no format.
const LevelCodec& levelCodec(const PixelType& format);

}  // namespace moktexture
