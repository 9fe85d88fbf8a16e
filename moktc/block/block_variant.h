#pragma once

#include <cstdint>

namespace moktexture::moktc {

/// Bits per pixel.
enum class Rate : std::uint8_t { twoBpp = 2, fourBpp = 4 };

enum class Generation : std::uint8_t { first = 0, second = 1 };

/// Which of the four MOKTC block formats a stream of blocks has.
struct BlockVariant {
    Rate rate;
    Generation generation;

    constexpr bool is2bpp() const { return rate == Rate::twoBpp; }
    constexpr bool isSecondGeneration() const { return generation == Generation::second; }
    bool operator==(const BlockVariant&) const = default;
};

}  // namespace moktexture::moktc
