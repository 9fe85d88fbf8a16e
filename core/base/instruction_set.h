#pragma once

namespace moktexture {

/// Instruction sets that fast forms are built for, each containing the ones before it.
enum class InstructionSet { baseline, sse41, avx2 };

/// The highest level that this processor and operating system offer.
InstructionSet detectInstructionSet();

}  // namespace moktexture
