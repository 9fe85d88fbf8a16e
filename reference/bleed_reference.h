#pragma once

#include "operations/frame/operation_frame.h"

namespace moktexture {

/// bleedLevel() with each box summed separately, in floats, by slices, then rows, then pixels, with alpha tested at every pixel.
template <typename T>
void referenceBleedLevel(const LevelView<T>& level);

}  // namespace moktexture
