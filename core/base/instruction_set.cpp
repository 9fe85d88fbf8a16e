#include "core/base/instruction_set.h"

namespace moktexture {

InstructionSet detectInstructionSet() {
#if MOKTEX_X86_KERNELS
    if (__builtin_cpu_supports("avx2")) return InstructionSet::avx2;
    if (__builtin_cpu_supports("sse4.1")) return InstructionSet::sse41;
#endif
    return InstructionSet::baseline;
}

}  // namespace moktexture
