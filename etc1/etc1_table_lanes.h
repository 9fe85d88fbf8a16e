#pragma once

#include <cstddef>

#include "etc1/etc1_block.h"

namespace moktexture::etc1 {

/// One float for each of the eight modifier tables, worked on side by side.
struct TableLanes {
    typedef float Four __attribute__((vector_size(16)));
    Four first, last;

    float operator[](std::size_t table) const { return table < 4 ? first[table] : last[table - 4]; }
};

inline TableLanes filled(float value) {
    const TableLanes::Four four = {value, value, value, value};
    return {four, four};
}

inline TableLanes operator+(const TableLanes& a, const TableLanes& b) {
    return {a.first + b.first, a.last + b.last};
}

inline TableLanes operator-(const TableLanes& a, const TableLanes& b) {
    return {a.first - b.first, a.last - b.last};
}

inline TableLanes operator*(const TableLanes& a, const TableLanes& b) {
    return {a.first * b.first, a.last * b.last};
}

inline TableLanes lower(const TableLanes& a, const TableLanes& b) {
    return {a.first < b.first ? a.first : b.first, a.last < b.last ? a.last : b.last};
}

/// The lowest of the eight.
inline float lowest(const TableLanes& a) {
    const TableLanes::Four four = a.first < a.last ? a.first : a.last;
    const float even = four[0] < four[2] ? four[0] : four[2], odd = four[1] < four[3] ? four[1] : four[3];
    return even < odd ? even : odd;
}

/// One channel of a base colour plus each modifier, in ascending order, of all tables.
using ModifiedLanes = std::array<TableLanes, modifierCount>;

/// The channel as a search sees it, see `searchedChannel`.
inline ModifiedLanes modifiedLanes(int base, bool wrapsBelowZero) {
    constexpr auto m = [](std::size_t table, std::size_t step) {
        return static_cast<float>(modifiers[table][ascendingIndices[step]]);
    };
    const TableLanes belowZero = filled(wrapsBelowZero ? 255.0f : 0.0f), top = filled(255), zero = filled(0);
    ModifiedLanes modified;
    for (std::size_t step = 0; step < modifierCount; ++step) {
        const TableLanes::Four firstModifiers = {m(0, step), m(1, step), m(2, step), m(3, step)};
        const TableLanes::Four lastModifiers = {m(4, step), m(5, step), m(6, step), m(7, step)};
        const TableLanes sum = lower(filled(static_cast<float>(base)) + TableLanes{firstModifiers, lastModifiers}, top);
        modified[step] = {sum.first < zero.first ? belowZero.first : sum.first, sum.last < zero.last ? belowZero.last : sum.last};
    }
    return modified;
}

}  // namespace moktexture::etc1
