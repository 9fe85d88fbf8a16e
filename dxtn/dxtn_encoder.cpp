#include "dxtn/dxtn.h"
#include "dxtn/dxtn_block.h"
#include "dxtn/dxtn_kernels.h"

// The encoder's method, the same in all kernels. Blocks are independent and encoded in one pass:
//
//   for each block:
//       modes 2, 3:  alpha block = the top 4 bits of each pixel's alpha
//       modes 4, 5:  a0, a1 = greatest and smallest alpha; each pixel takes the nearest of the eight steps between them
//       transparent = mode 1: the pixels of alpha 0
//       by the number of different colours in 5-6-5 form:
//           1, 2:    they are the endpoints
//           more:    endpoints along the principal axis of the colours (dxtn_axis_lanes.h)
//
// The order of the endpoints selects four colours or, in a block with transparent pixels, three and transparent black: in that
// case c0 is the smaller one. There is no refit of endpoints after the indices are known.
//
// The axis takes most of the time. It is computed for several blocks side by side: blocks of more than two colours wait in a
// batch until it is full. The kernels differ in the width of that batch and in how they do the rest.

namespace moktexture {
namespace dxtn {

const EncoderKernel& encoderFor([[maybe_unused]] InstructionSet instructionSet) {
#if MOKTEX_X86_KERNELS
    if (instructionSet == InstructionSet::avx2) return avx2Encoder;
    if (instructionSet == InstructionSet::sse41) return sse41Encoder;
#endif
    return baselineEncoder;
}

}  // namespace dxtn

std::uint32_t CompressDXTn(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           const DXTMode* mode) {
    using namespace dxtn;
    if (width == nullptr || height == nullptr || mode == nullptr) return 0;
    const std::uint32_t size = *width * *height >> (*mode == 1 ? 1 : 0);
    if (pixels == nullptr || out == nullptr) return size;
    if (!isWholeBlocks(*width, *height, *mode)) return 0;
    const EncoderKernel& kernel = encoderFor(detectInstructionSet());
    kernel.encode(packedImage(pixels, *width, *height), static_cast<std::uint8_t*>(out), *mode);
    return size;
}

}  // namespace moktexture
