#include "dxtn/dxtn_kernels.h"

#if MOKTEX_X86_KERNELS

#include "dxtn/dxtn_sse41_blocks.h"

namespace {

/// Eight blocks side by side.
struct EightLanes {
    typedef float Floats __attribute__((vector_size(32)));
    typedef std::int32_t Integers __attribute__((vector_size(32)));
    static constexpr int count = 8;
    static Floats squareRoot(Floats values) { return _mm256_sqrt_ps(values); }
    static bool any(Integers mask) { return _mm256_movemask_ps(reinterpret_cast<__m256>(mask)) != 0; }
};

}  // namespace

namespace moktexture::dxtn {

const EncoderKernel avx2Encoder = {"AVX2", encodeImage<EightLanes>};

}  // namespace moktexture::dxtn

#endif
