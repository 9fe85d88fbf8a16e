#pragma once

#include "moktc/amtc/evaluation/pixel_evaluation.h"

/// @file
/// The modulation word of one block, fixed against the final colours around it.

namespace moktexture::amtc {

/// A block's footprint with all that decodes it.
struct LocalPixels {
    const BlendTable& table;
    const Footprint& footprint;
    const NeighbourColours& colours;
};

/// A modulation word, and the squared error of the block's own pixels under it.
struct LocalModulation {
    std::uint32_t word = 0;
    std::uint32_t error = 0;
};

/// 4 bits per pixel.
LocalModulation chooseIndices(const LocalPixels& local);
/// 2 bits per pixel, one bit a pixel: region modes 8 and 12.
LocalModulation chooseDirectBits(const LocalPixels& local);
/// 2 bits per pixel, samples on a checkerboard: the other region modes.
LocalModulation chooseSamples(const LocalPixels& local, std::uint32_t mode);

/// Ends the process with a message if a sample of one bit has another level than 0 or 3, as none has.
void requireOneBitLevel(std::uint32_t level);
/// How the pixels without samples get their weights in a region mode that has samples; any other ends the process with a message.
ModulationClass meanClassOf(std::uint32_t mode);

}  // namespace moktexture::amtc
