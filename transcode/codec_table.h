#pragma once

#include <cstdint>

#include "core/base/image_view.h"
#include "format_info.h"
#include "texture_enums.h"

namespace moktexture {

// Kept (codecs-take-one-slice): codecs know no depth. Of a 3D level the first slice alone is coded, and Transcode() to a
// compressed format reports failure, because the encoder's count is below the data size.

/// Decodes one slice to an RGBA8 image and returns the codec's own count, which need not be bytes.
using LevelDecoder = std::uint32_t (*)(const void* blocks, const ImageView& image, const FormatInfo& format);

/// Encodes one slice and returns the bytes written, 0 if the codec refuses the image.
using LevelEncoder = std::uint32_t (*)(const ConstImageView& image, void* blocks, const FormatInfo& format,
                                       ECompressorQuality quality);

/// A codec as the stages of Transcode() call it. The rows of its images follow each other without a gap.
struct LevelCodec {
    LevelDecoder decode;  ///< null: the pixels stay zero
    LevelEncoder encode;  ///< null: the blocks stay zero and nothing is counted
};

/// The codec of that number; one without functions for eCodecNone.
const LevelCodec& levelCodec(EFormatCodec codec);

}  // namespace moktexture
