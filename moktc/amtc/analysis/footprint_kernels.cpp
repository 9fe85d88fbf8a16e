#include "moktc/amtc/analysis/footprint_kernels.h"

#include <numeric>
#include <span>

namespace moktexture::amtc {

namespace {

// clang-format off
// One axis of a kernel, for blocks of 4 and of 8 pixels. The entry in the middle is the footprint's centre.
constexpr std::array<int,  9> sharpBy4  = {-32, 8, 28, 64, 127, 64, 28, 8, -32};
constexpr std::array<int, 17> sharpBy8  = {-24, -6, 7, 9, 12, 23, 29, 48, 80, 48, 29, 23, 12, 9, 7, -6, -24};
constexpr std::array<int,  9> smoothBy4 = {8, 16, 32, 64, 127, 64, 32, 16, 8};
constexpr std::array<int, 17> smoothBy8 = {1, 1, 2, 4, 8, 16, 32, 64, 127, 64, 32, 16, 8, 4, 2, 1, 1};
// clang-format on

using KernelAxis = std::span<const int>;

FootprintKernel separableKernel(KernelAxis vertical, KernelAxis horizontal) {
    const int sum =
        std::accumulate(vertical.begin(), vertical.end(), 0) * std::accumulate(horizontal.begin(), horizontal.end(), 0);
    FootprintKernel kernel{};
    std::size_t pixel = 0;
    for (const int down : vertical)
        for (const int across : horizontal)
            kernel[pixel++] = static_cast<float>(down * across) / static_cast<float>(sum);
    return kernel;
}

KernelAxis sharpAxis(std::size_t blockSide) {
    return blockSide == 8 ? KernelAxis(sharpBy8) : KernelAxis(sharpBy4);
}

KernelAxis smoothAxis(std::size_t blockSide) {
    return blockSide == 8 ? KernelAxis(smoothBy8) : KernelAxis(smoothBy4);
}

FootprintMask centreOf(const AmtcLevelSettings& settings) {
    FootprintMask mask{};
    const std::size_t top = settings.blockHeight / 2u, left = settings.blockWidth / 2u;
    for (std::size_t row = top; row < top + settings.blockHeight; ++row)
        for (std::size_t column = left; column < left + settings.blockWidth; ++column)
            mask[row * settings.footprintWidth + column] = 1;
    return mask;
}

}  // namespace

FootprintKernels makeFootprintKernels(const AmtcLevelSettings& settings) {
    return {separableKernel(sharpAxis(settings.blockHeight), sharpAxis(settings.blockWidth)),
            separableKernel(smoothAxis(settings.blockHeight), smoothAxis(settings.blockWidth)), centreOf(settings)};
}

}  // namespace moktexture::amtc
