#pragma once

#include "core/base/image_view.h"
#include "core/base/instruction_set.h"
#include "dxtn/dxtn.h"

namespace moktexture::dxtn {

/// The encoder for one instruction set. All give the same bytes.
struct EncoderKernel {
    const char* name;
    /// Encodes an image, whose sides are multiples of 4, in a mode from 1 to 5.
    void (*encode)(const ConstImageView& image, std::uint8_t* out, DXTMode mode);
};

extern const EncoderKernel baselineEncoder;
#if MOKTEX_X86_KERNELS
extern const EncoderKernel sse41Encoder;
extern const EncoderKernel avx2Encoder;
#endif

/// The encoder for a processor with this instruction set.
const EncoderKernel& encoderFor(InstructionSet instructionSet);

}  // namespace moktexture::dxtn
