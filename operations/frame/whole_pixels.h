#pragma once

#include <cstddef>
#include <type_traits>

#include "operations/frame/channel_elements.h"

namespace moktexture {

/// A pixel that is moved and not looked at: 4, 8 or 16 bytes.
template <std::size_t Size>
struct WholePixel {
    std::byte bytes[Size];
};

/// The elements of a level as pixels. 32-bit integers and floats give the same type.
template <typename T>
auto* wholePixels(T* elements) {
    using Pixel = WholePixel<channelsPerPixel * sizeof(T)>;
    return reinterpret_cast<std::conditional_t<std::is_const_v<T>, const Pixel, Pixel>*>(elements);
}

}  // namespace moktexture
