#pragma once

#include "core/processor_level.h"
#include "dxtn/dxtn_kernels.h"

namespace moktexture::dxtn {

/// The form of the encoder that a processor of this level runs.
const EncoderKernel& encoderFor(ProcessorLevel level);

}  // namespace moktexture::dxtn
