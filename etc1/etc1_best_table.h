#pragma once

#include "etc1/etc1_half.h"

namespace moktexture::etc1 {

/// A half with its modifiers chosen.
struct TableFit {
    int error;
    std::uint32_t table;
    std::array<std::uint32_t, halfArea> indices;  ///< of the half's pixels
    bool operator==(const TableFit&) const = default;
};

/// Finds the first modifier table, and for each pixel the first modifier in ascending order, of least error around a base colour.
/// Kept: perceptual errors are compared as floats here, but handed on truncated, so that near colours tie and the first one
/// stays.
using BestTable = TableFit (*)(const Half& half, const Colour& base);

TableFit BestTablePlain(const Half& half, const Colour& base);

/// The same with all tables side by side.
TableFit BestTableLanes(const Half& half, const Colour& base);

}  // namespace moktexture::etc1
