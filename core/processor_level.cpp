#include "core/processor_level.h"

namespace moktexture {

ProcessorLevel detectProcessorLevel() {
#if defined(__x86_64__) || defined(_M_X64)
    if (__builtin_cpu_supports("avx2")) return ProcessorLevel::avx2;
    if (__builtin_cpu_supports("sse4.1")) return ProcessorLevel::sse41;
#endif
    return ProcessorLevel::baseline;
}

}  // namespace moktexture
