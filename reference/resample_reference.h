#pragma once

#include "operations/frame/operation_frame.h"
#include "texture_enums.h"

namespace moktexture {

/// resampleLevel() with each destination pixel computed independently. Data pointers are not null and no size is 0.
template <typename T>
void referenceResampleLevel(const LevelView<const T>& source, const LevelView<T>& destination, EResizeMode mode);

}  // namespace moktexture
