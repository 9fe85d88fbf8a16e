#pragma once

#include <cstdint>

#include "format_info.h"
#include "texture_enums.h"

namespace moktexture {

// Kept: of a 3D level only the first slice is coded. Transcode() of a volume to a compressed format reports
// failure, because the encoder's count then falls short of the data size.

/// Decodes one slice of `*width * *height` pixels to RGBA8 and returns the codec's own count, which need not be bytes.
using LevelDecoder = std::uint32_t (*)(const void* blocks, void* pixels, const std::uint32_t* width, const std::uint32_t* height,
                                       const FormatInfo& format);

/// Encodes one slice of `*width * *height` RGBA8 pixels and returns the bytes written, 0 if it refuses.
using LevelEncoder = std::uint32_t (*)(const void* pixels, void* blocks, const std::uint32_t* width, const std::uint32_t* height,
                                       const FormatInfo& format, ECompressorQuality quality);

/// A codec as the stages of Transcode() call it.
struct LevelCodec {
    LevelDecoder decode;  ///< null: the pixels stay zero
    LevelEncoder encode;  ///< null: the blocks stay zero and nothing is counted
};

/// The codec of a format; one without functions for eCodecNone.
const LevelCodec& levelCodec(EFormatCodec codec);

}  // namespace moktexture
