#include "amtc/level_resources.h"

#include <algorithm>
#include <thread>

namespace moktexture::amtc {

LevelResources LevelResources::ofThisMachine() {
    return {detectProcessorLevel(), std::max(std::thread::hardware_concurrency(), 1u)};
}

}  // namespace moktexture::amtc
