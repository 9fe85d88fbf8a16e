#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace moktexture::amtc {

inline constexpr std::int32_t largestSide = 4096;

/// The MIP level being encoded: the top left `Width` by `Height` pixels (RGBA8, red in the lowest byte) of rows with a constant
/// stride. The system commits its pages on first use, so that a small texture uses little of its 64 MiB.
struct AmtcImage {
    std::int32_t Width;
    std::int32_t Height;
    std::uint32_t Pixels[largestSide][largestSide];
};
static_assert(sizeof(AmtcImage) == 0x4000008);

struct FreeWorkImage {
    void operator()(AmtcImage* image) const { std::free(image); }
};
using WorkImage = std::unique_ptr<AmtcImage, FreeWorkImage>;

/// A zeroed work image, null if memory is short.
inline WorkImage makeWorkImage() {
    return WorkImage(static_cast<AmtcImage*>(std::calloc(1, sizeof(AmtcImage))));
}

}  // namespace moktexture::amtc
