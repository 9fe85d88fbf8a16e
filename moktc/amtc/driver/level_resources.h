#pragma once

#include <cstdint>

#include "core/base/instruction_set.h"

namespace moktexture::amtc {

/// What an encoding may use of the machine. It changes the time that it takes and never a byte of the result.
struct LevelResources {
    InstructionSet instructionSet;
    std::uint32_t processors;  ///< threads that run at once, at least 1

    static LevelResources ofThisMachine();
};

}  // namespace moktexture::amtc
