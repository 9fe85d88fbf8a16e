#pragma once

#include <optional>

#include "etc1/etc1_coded_block.h"
#include "etc1/etc1_quantiser.h"

namespace moktexture::etc1 {

/// Searches base colours around the averages, in boxes of `radius` codes of 5 bits, and beyond radius 3 among codes of 4 bits.
using CompressBlockSearch = BlockWords (*)(const BlockPixels& block, int radius, Measure measure);

/// Tries every colour and every pair. Slow; the reference of the bounded search.
BlockWords CompressBlockSearchPlain(const BlockPixels& block, int radius, Measure measure);

/// The same words with tabulated errors, leaving out what cannot win.
BlockWords CompressBlockSearchBounded(const BlockPixels& block, int radius, Measure measure);

/// Radii of the narrow and the wide search.
inline constexpr int narrowRadius = 3, wideRadius = 5;

/// The individual form is tried for each colour of these codes, 0 included.
/// Kept: 15 is never tried, so that white is reached by positive modifiers; searched blocks come out as they always have.
inline constexpr int greatestIndividualCode = 14;

/// A box of codes, each channel from first to last.
struct CodeBox {
    Codes first;
    Codes last;
};

/// The box of codes of 5 bits within the radius of a code.
CodeBox boxAround(const Codes& centre, int radius);

/// Whether averages that far apart are searched in the differential form.
bool isDifferentialSearched(const std::array<Codes, 2>& averages, int radius);

/// Whether the individual form is searched.
/// Kept: the narrow search tries it only where the differential form is left out, even if it would be better; files of quality 2
/// and 3 come out as they always have.
constexpr bool isIndividualSearched(bool differentialSearched, int radius) {
    return radius == wideRadius || !differentialSearched;
}

}  // namespace moktexture::etc1
