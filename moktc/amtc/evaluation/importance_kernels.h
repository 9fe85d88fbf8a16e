#pragma once

#include <array>
#include <cstdint>

/// @file
/// How much a footprint's pixels count, along a row or a column, by how the two blocks that it crosses decode.

namespace moktexture::amtc {

/// One factor for each pixel of a line from the first centre to the end of the footprint.
template <std::size_t length>
using ImportanceKernel = std::array<std::int32_t, length>;

// Row: classes of the first and the second block, 0 for upscaled colours, 1 for flat ones, 2 for the corner palette. Column: a
// pixel from the first block's centre on.
// clang-format off
inline constexpr std::array<std::array<ImportanceKernel<9>, 3>, 3> importanceKernels9 = {{
    {{{-32,   8,  28,  64, 127,  64,  28,   8, -32},     // 0, 0
      {-32,   8,  32,  56,  96,  72,  -4,   0,   0},     // 0, 1
      {  0,   8,  32,  56,  96,  40,  28,  32,   0}}},   // 0, 2
    {{{  0,   0,  60,  72,  96,  56,  32,   8, -32},     // 1, 0
      {  0,   0,  64,  64,  64,  64,   0,   0,   0},     // 1, 1
      {  0,   0,  64,  64,  64,  32,  32,  32,   0}}},   // 1, 2
    {{{  0,  32,  28,  40,  96,  56,  32,   8,   0},     // 2, 0
      {  0,  32,  32,  32,  64,  64,   0,   0,   0},     // 2, 1
      {  0,  32,  32,  32,  64,  32,  32,  32,   0}}},   // 2, 2
}};
inline constexpr std::array<std::array<ImportanceKernel<17>, 2>, 2> importanceKernels17 = {{
    {{{-24,  -6,   7,   9,  12,  23,  29,  48,  80,  48,  29,  23,  12,   9,   7,  -6, -24},     // 0, 0
      {-24,  -6,   6,  10,  16,  22,  26,  38,  56,  42,  35,  33,  -4,  -1,   1,   0,   0}}},   // 0, 1
    {{{  0,   0,   1,  -1,  28,  33,  35,  42,  56,  38,  26,  22,  16,  10,   6,  -6, -24},     // 1, 0
      {  0,   0,   0,   0,  32,  32,  32,  32,  32,  32,  32,  32,   0,   0,   0,   0,   0}}},   // 1, 1
}};
// clang-format on

}  // namespace moktexture::amtc
