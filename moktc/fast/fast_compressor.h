#pragma once

#include <cstdint>

#include "moktc/fast/fast_kernels.h"

namespace moktexture::moktc {

/// Encodes one first-generation surface of `width * height` RGBA8 pixels, multiples of the block, in twiddled order and returns
/// its bytes; 0 if there is no whole block. Translucency comes from the pixels, whatever `hasAlpha` says. `wideFootprint` seeks
/// start colours around the block too, at 4 bits per pixel. `iterations` is the number of passes; all forms of kernels and all
/// numbers of threads give the same bytes.
std::uint32_t CompressMOKTCFast(const void* pixels, void* out, std::uint32_t width, std::uint32_t height, bool hasAlpha,
                                bool wideFootprint, bool is2bpp, std::uint32_t iterations, const FastKernels& kernels,
                                std::uint32_t threads);

}  // namespace moktexture::moktc
