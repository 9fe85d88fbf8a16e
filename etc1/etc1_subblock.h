#pragma once

#include "etc1/etc1_block.h"

namespace moktexture::etc1 {

/// The error metric: sums of squares over red, green and blue, or with weights on the three.
enum class ErrorMetric { uniform, perceptual };

/// Weights of red, green and blue in a metric.
constexpr std::array<float, channelCount> channelWeights(ErrorMetric metric) {
    if (metric == ErrorMetric::perceptual) return {0.299f, 0.587f, 0.114f};
    return {1.0f, 1.0f, 1.0f};
}

/// Above every error that a search reaches: 255 squared times 3 channels times the 8 pixels of a subblock, 16 of a block.
inline constexpr int subblockErrorBound = 1560600, blockErrorBound = 3121200;

/// Red, green and blue from 0 to 255.
using FloatColour = std::array<float, channelCount>;

/// The pixels of a subblock and the rules for their errors.
struct Subblock {
    std::array<Colour, subblockArea> pixels;  ///< counted down the columns
    ErrorMetric metric;
    bool wrapsBelowZero;  ///< whether the search takes a channel below 0 for 255
};

using Subblocks = std::array<Subblock, 2>;

/// Cuts a block into its subblocks.
/// Kept (etc1-below-zero-is-255): with uniform weights the search takes a channel below 0 for 255 in left and right subblocks,
/// and for 0 in top and bottom ones. Decoders clamp it to 0; but dark blocks encoded at qualities 0, 2 and 4 would come out as
/// other bytes than in the .mok files that hosts have stored.
constexpr Subblocks subblocksOf(const PixelBlock& block, Split split, ErrorMetric metric) {
    Subblocks subblocks{};
    for (std::size_t subblock = 0; subblock < 2; ++subblock) {
        subblocks[subblock].metric = metric;
        subblocks[subblock].wrapsBelowZero = metric == ErrorMetric::uniform && split == Split::leftRight;
        for (std::size_t n = 0; n < subblockArea; ++n) {
            const std::uint32_t rgba = block[rasterIndex(pixelNumber(split, subblock, n))];
            subblocks[subblock].pixels[n] = {channelOf(rgba, 0), channelOf(rgba, 1), channelOf(rgba, 2)};
        }
    }
    return subblocks;
}

/// The mean of the subblock's pixels; exact.
constexpr FloatColour HalfAverage(const Subblock& subblock) {
    FloatColour average{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        int sum = 0;
        for (const Colour& pixel : subblock.pixels)
            sum += pixel[channel];
        average[channel] = static_cast<float>(sum) * 0.125f;
    }
    return average;
}

/// The nearest code of 5 bits to a channel; halves round up.
constexpr int RoundToFiveBits(float value) {
    const double scaled = static_cast<double>(value) * 31.0 / 255.0;
    return static_cast<int>(scaled < 0.0 ? scaled - 0.5 : scaled + 0.5);
}

/// The nearest code of 4 bits to a channel; values a little below the half round up too.
constexpr int RoundToFourBits(float value) {
    constexpr float upward = 0.0001f;
    return static_cast<int>(static_cast<double>(value) / 17.0 + 0.5 + static_cast<double>(upward));
}

constexpr Codes roundToFiveBits(const FloatColour& colour) {
    return {RoundToFiveBits(colour[0]), RoundToFiveBits(colour[1]), RoundToFiveBits(colour[2])};
}

constexpr Codes roundToFourBits(const FloatColour& colour) {
    return {RoundToFourBits(colour[0]), RoundToFourBits(colour[1]), RoundToFourBits(colour[2])};
}

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

/// A subblock's modifiers around a base colour.
struct TableFit {
    int error;
    std::uint32_t table;
    std::array<std::uint32_t, subblockArea> indices;  ///< of the subblock's pixels
    bool operator==(const TableFit&) const = default;
};

/// Finds the modifier table of lowest error around a base colour, and for each pixel the modifier of lowest error in that table.
/// Of equal tables the first one wins, of equal modifiers the lowest.
/// Kept (etc1-truncated-error): perceptual errors are compared as floats here but returned truncated to integers, so that base
/// colours within 1 of each other tie and the first one tried wins; without that, blocks encoded at qualities 1, 3 and 5 would
/// differ from those in stored .mok files.
TableFit BestTable(const Subblock& subblock, const Colour& base);

/// A complete block and the sum of its subblocks' errors.
struct CodedBlock {
    int error;
    BlockWords words;
};

/// Packs base colours and modifiers into a block.
CodedBlock packBlock(Split split, ColourMode mode, const std::array<Codes, 2>& codes, const std::array<TableFit, 2>& fits);

/// Chooses the modifiers of both subblocks around their base colours and packs the block.
CodedBlock codeBlock(const Subblocks& subblocks, Split split, ColourMode mode, const std::array<Codes, 2>& codes);

}  // namespace moktexture::etc1
