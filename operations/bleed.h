#pragma once

#include <cstdint>

#include "operations/frame/operation_frame.h"

namespace moktexture {

/// Pixels that colours bleed on each axis.
inline constexpr std::uint32_t bleedRadius = 4;

/// Gives the colours of fully transparent pixels the mean of the visible pixels (alpha not 0, NaN included) within bleedRadius on
/// each axis; pixels without a visible neighbour keep their colour. T is the element of an operable texture.
/// @return false if the data is null or there is no memory for a copy of the level; nothing is thrown.
template <typename T>
bool bleedLevel(const LevelView<T>& level);

/// bleedLevel() of a level given by its parts.
template <typename T>
bool bleedLevel(T* data, std::uint32_t width, std::uint32_t height, std::uint32_t depth) {
    return bleedLevel(LevelView<T>{data, {width, height, depth}});
}

/// Whether bleedLevel() uses running integer sums: where no sum over a box reaches 2 to the 24, floats add exactly in any order.
template <typename T>
bool bleedsByRunningSums(const LevelSize& size);

}  // namespace moktexture
