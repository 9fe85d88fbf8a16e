#pragma once

#include "operations/frame/level_view.h"
#include "texture_enums.h"

namespace moktexture {

/// Maps one level to another size by sampling points; see resampling.h. T is the element of an operable texture. The levels do
/// not overlap.
/// @return false if a data pointer is null. True for an unknown mode and where a size is 0, which write nothing.
template <typename T>
bool resampleLevel(const LevelView<const T>& source, const LevelView<T>& destination, EResizeMode mode);

/// resampleLevel() of levels given by their parts.
template <typename T>
bool resampleLevel(const T* source, T* destination, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                   unsigned int dstWidth, unsigned int dstHeight, unsigned int dstDepth, EResizeMode mode) {
    return resampleLevel<T>(LevelView<const T>{source, {srcWidth, srcHeight, srcDepth}},
                            LevelView<T>{destination, {dstWidth, dstHeight, dstDepth}}, mode);
}

}  // namespace moktexture
