#include "dxtn/dxtn_encoder_lanes.h"
#include "dxtn/dxtn_kernels.h"

namespace {

/// Four blocks side by side.
struct SSE41Lanes {
    typedef float Floats __attribute__((vector_size(16)));
    typedef std::int32_t Integers __attribute__((vector_size(16)));
    static constexpr int count = 4;
    static Floats squareRoot(Floats values) { return _mm_sqrt_ps(values); }
    static bool any(Integers mask) { return _mm_movemask_ps(reinterpret_cast<__m128>(mask)) != 0; }
};

}  // namespace

namespace moktexture::dxtn {

const EncoderKernel sse41Encoder = {"SSE4.1", encodeImage<SSE41Lanes>};

}  // namespace moktexture::dxtn
