#include "moktc/amtc/driver/level_resources.h"

#include <algorithm>
#include <thread>

namespace moktexture::amtc {

LevelResources LevelResources::ofThisMachine() {
    return {detectInstructionSet(), std::max(std::thread::hardware_concurrency(), 1u)};
}

}  // namespace moktexture::amtc
