#pragma once

#include <cstdint>

#include "core/base/image_view.h"
#include "moktc/block/block_variant.h"

namespace moktexture::moktc {

/// One level to encode in the first generation.
struct FastRequest {
    ConstImageView image;  ///< sides are multiples of the block
    Rate rate;
    bool wideFootprint = true;  ///< 4 bpp: start colours come from twice the block's sides instead of the block alone
    /// More passes: closer fits; the time grows linearly. The encoded bytes depend on it.
    std::uint32_t passes = 8;
    std::uint32_t threads = 1;  ///< at most; the result does not depend on it
};

/// Encodes a level in twiddled order to `blocks`, 8 bytes per block. False, without writing, if the image has no whole block.
bool encodeFast(const FastRequest& request, std::uint8_t* blocks);

/// encodeFast() for `width * height` RGBA8 pixels with `iterations` passes on all processors. Returns the bytes written; 0 if the
/// image has no whole block. `hasAlpha` has no effect.
std::uint32_t CompressMOKTCFast(const void* pixels, void* out, std::uint32_t width, std::uint32_t height, bool hasAlpha,
                                bool wideFootprint, bool is2bpp, std::uint32_t iterations);

}  // namespace moktexture::moktc
