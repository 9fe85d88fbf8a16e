#pragma once

#include "texture_enums.h"

namespace moktexture {

/// Maps one surface of one level to another size, by points: one source position for each destination pixel, no averaging of
/// areas. T is an element of an operable texture, four to a pixel; source and destination do not overlap.
/// @return false if a pointer is null. True for an unknown mode and where a size is 0, which write nothing.
template <typename T>
bool resampleLevel(const T* source, T* destination, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                   unsigned int dstWidth, unsigned int dstHeight, unsigned int dstDepth, EResizeMode mode);

/// The plain form of resampleLevel(): each destination pixel by itself. The filters of resampleLevel() share work between pixels
/// and give the same bits.
template <typename T>
bool resampleLevelPlain(const T* source, T* destination, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcDepth,
                        unsigned int dstWidth, unsigned int dstHeight, unsigned int dstDepth, EResizeMode mode);

}  // namespace moktexture
