#include "core/base/instruction_set.h"

namespace moktexture {

InstructionSet detectInstructionSet() {
#if defined(__x86_64__) || defined(_M_X64)
    if (__builtin_cpu_supports("avx2")) return InstructionSet::avx2;
    if (__builtin_cpu_supports("sse4.1")) return InstructionSet::sse41;
#endif
    return InstructionSet::baseline;
}

}  // namespace moktexture
