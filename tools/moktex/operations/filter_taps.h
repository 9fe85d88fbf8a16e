#pragma once

#include <cstdint>
#include <vector>

#include "MOKTexLib.h"

namespace moktextool {

/// The pixels of one axis that each pixel of the result is made of, with weights that sum to 1.
struct FilterTaps {
    struct Run {
        std::uint32_t first;    ///< the first source pixel
        std::uint32_t count;    ///< source pixels that follow each other
        std::size_t weightsAt;  ///< index in `weights` of the first pixel's weight
    };
    std::vector<Run> runs;  ///< one for each pixel of the result
    std::vector<float> weights;
};

/// The taps from `source` to `target` pixels. Pixel centres lie at half-integers on both axes, and the edge is repeated.
///
/// | mode    | reducing                                   | enlarging                      |
/// | nearest | the pixel under the centre                 | the same                       |
/// | linear  | the mean of the area that a pixel covers   | between the two nearest pixels |
/// | cubic   | Catmull-Rom, widened by the ratio          | Catmull-Rom over four pixels   |
FilterTaps makeTaps(std::uint32_t source, std::uint32_t target, moktexture::EResizeMode mode);

}  // namespace moktextool
