#pragma once

#include "core/base/instruction_set.h"
#include "dxtn/dxtn_kernels.h"

namespace moktexture::dxtn {

/// The form of the encoder that a processor of this level runs.
const EncoderKernel& encoderFor(InstructionSet level);

}  // namespace moktexture::dxtn
