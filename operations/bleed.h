#pragma once

#include <cstdint>

#include "core/texture/subresources.h"

namespace moktexture {

/// Pixels that colours bleed on each axis.
inline constexpr std::uint32_t bleedRadius = 4;

/// Gives the colours of fully transparent pixels the mean of the visible pixels (alpha not 0, NaN included) within bleedRadius on
/// each axis; those without a visible neighbour stay. T is an element of an operable texture, four to a pixel.
/// @return false if `data` is null or there is no memory for a copy of the level; nothing is thrown.
template <typename T>
bool bleedLevel(T* data, std::uint32_t width, std::uint32_t height, std::uint32_t depth);

/// The plain form of bleedLevel(): each box summed by itself, in floats, by slices, then rows, then pixels.
template <typename T>
bool bleedLevelPlain(T* data, std::uint32_t width, std::uint32_t height, std::uint32_t depth);

/// Whether bleedLevel() takes running sums: where no sum over a box reaches 2 to the 24, floats hold it exactly in any order.
template <typename T>
bool bleedsByRunningSums(const LevelSize& size);

}  // namespace moktexture
