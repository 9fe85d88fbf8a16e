#pragma once

#include "etc1/etc1_block.h"

namespace moktexture::etc1 {

/// One float for each of the eight modifier tables, computed side by side. Two vectors of four suit every processor's baseline.
struct TableLanes {
    typedef float Four __attribute__((vector_size(16)));
    Four first, last;

    float operator[](std::size_t table) const { return table < 4 ? first[table] : last[table - 4]; }
};

/// The same value for all tables.
inline TableLanes broadcast(float value) {
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

/// The smaller of two values, table by table.
inline TableLanes min(const TableLanes& a, const TableLanes& b) {
    return {a.first < b.first ? a.first : b.first, a.last < b.last ? a.last : b.last};
}

/// The smallest of the eight.
inline float minOfTables(const TableLanes& a) {
    const TableLanes::Four four = a.first < a.last ? a.first : a.last;
    const float even = four[0] < four[2] ? four[0] : four[2], odd = four[1] < four[3] ? four[1] : four[3];
    return even < odd ? even : odd;
}

/// One channel of a base colour plus each modifier, in ascending order, for all tables.
using ModifiedLanes = std::array<TableLanes, modifierCount>;

/// The channel plus modifiers, clamped to 0 to 255; with `wrapsBelowZero` values below 0 become 255.
inline ModifiedLanes modifiedLanes(int base, bool wrapsBelowZero) {
    constexpr auto m = [](std::size_t table, std::size_t step) {
        return static_cast<float>(modifiers[table][ascendingIndices[step]]);
    };
    const TableLanes belowZero = broadcast(wrapsBelowZero ? 255.0f : 0.0f), top = broadcast(255), zero = broadcast(0);
    ModifiedLanes modified;
    for (std::size_t step = 0; step < modifierCount; ++step) {
        const TableLanes::Four firstModifiers = {m(0, step), m(1, step), m(2, step), m(3, step)};
        const TableLanes::Four lastModifiers = {m(4, step), m(5, step), m(6, step), m(7, step)};
        const TableLanes sum = min(broadcast(static_cast<float>(base)) + TableLanes{firstModifiers, lastModifiers}, top);
        modified[step] = {sum.first < zero.first ? belowZero.first : sum.first, sum.last < zero.last ? belowZero.last : sum.last};
    }
    return modified;
}

}  // namespace moktexture::etc1
