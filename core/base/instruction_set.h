#pragma once

/// 1 where the kernels of x86-64 are built, 0 on other processors, which run the scalar forms. Guards every use of intrinsics.
#if defined(__x86_64__)
#define MOKTEX_X86_KERNELS 1
#else
#define MOKTEX_X86_KERNELS 0
#endif

namespace moktexture {

/// Instruction sets that fast forms are built for, each containing the ones before it. `baseline` is SSE2 on x86-64 and the
/// scalar form elsewhere.
enum class InstructionSet { baseline, sse41, avx2 };

/// The largest instruction set that this processor and operating system offer.
inline InstructionSet detectInstructionSet() {
#if MOKTEX_X86_KERNELS
    if (__builtin_cpu_supports("avx2")) return InstructionSet::avx2;
    if (__builtin_cpu_supports("sse4.1")) return InstructionSet::sse41;
#endif
    return InstructionSet::baseline;
}

}  // namespace moktexture
