#include "dxtn/dxtn_kernels.h"

#if MOKTEX_X86_KERNELS

#include "dxtn/dxtn_sse41_blocks.h"

namespace moktexture::dxtn {

const EncoderKernel sse41Encoder = {"SSE4.1", encodeImage<FourLanes>};

}  // namespace moktexture::dxtn

#endif
