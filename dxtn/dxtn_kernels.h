#pragma once

#include <cstddef>
#include <cstdint>

namespace moktexture::dxtn {

/// Encodes a whole image: `width * height` RGBA8 pixels, multiples of 4 and not 0, in a mode from 1 to 5.
using EncodeImage = void (*)(const std::uint8_t* pixels, std::uint8_t* out, std::size_t width, std::size_t height,
                             std::uint32_t mode);

/// The encoder's forms for one processor level. All give the same bytes.
struct EncoderKernel {
    const char* name;
    EncodeImage encode;
};

extern const EncoderKernel plainEncoder;
extern const EncoderKernel sse41Encoder;
extern const EncoderKernel avx2Encoder;

}  // namespace moktexture::dxtn
