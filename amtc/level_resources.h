#pragma once

#include <cstdint>

#include "core/processor_level.h"

namespace moktexture::amtc {

/// What an encoding may use of the machine. It changes the time that it takes and never a byte of the result.
struct LevelResources {
    ProcessorLevel processorLevel;
    std::uint32_t processors;  ///< threads that run at once, at least 1

    static LevelResources ofThisMachine();
};

}  // namespace moktexture::amtc
