#include "moktc/amtc/starts/single_colour_tables.h"

#include <algorithm>

#include "moktc/amtc/starts/colour_quantiser.h"

namespace moktexture::amtc {

namespace {

/// Storable values of a channel as 8 bits, ascending.
struct Values {
    std::size_t count = 0;
    std::array<int, 32> values{};

    constexpr void add(std::uint32_t value) { values[count++] = static_cast<int>(value); }
};

constexpr Values valuesOfBits(std::uint32_t bits) {
    Values values;
    for (std::uint32_t code = 0; code < 1u << bits; ++code)
        values.add(expandToByte(code, bits));
    return values;
}

constexpr Values alphaValues(std::uint32_t lowBit) {
    Values values;
    for (std::uint32_t alpha = lowBit; alpha < 16; alpha += 2)
        values.add(alpha * 17);
    return values;
}

constexpr Values alphaValuesAndOpaque() {
    Values values = alphaValues(0);
    values.add(255);
    return values;
}

constexpr SingleColourOption makeOption(int value, int target, int a, int b) {
    const int error = (value - target) * (value - target);
    return {static_cast<std::uint8_t>(std::min(error, 255)), static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b)};
}

/// The value nearest to `target`, the lower of two.
constexpr int nearestValue(const Values& values, int target) {
    std::size_t above = 0;
    while (above + 1 < values.count && values.values[above] < target)
        ++above;
    const int upper = values.values[above], lower = values.values[above == 0 ? 0 : above - 1];
    return target - lower <= upper - target ? lower : upper;
}

/// Two values and the distance from A up to B.
struct ValuePair {
    int a = 0, b = 0, span = 256;  ///< a span of 256 stands for no pair
};

/// By byte: the pair that blends to it.
using PairsByBlend = std::array<ValuePair, 256>;

/// The pairs by what they give at `eighths` of the way from A to B; of several the one that lies closest together, then the
/// lowest. B is at most `reach` of A's own steps above A.
constexpr PairsByBlend blendPairs(const Values& valuesA, const Values& valuesB, int eighths, std::size_t reach) {
    PairsByBlend pairs{};
    // Kept: A is at most B, B is within reach, and the blend is cut off, not rounded, so that a pair further apart or the other
    // way round may hit a target better and is not taken; encoded files depend on it.
    std::size_t nearA = 0;
    for (std::size_t i = 0; i < valuesA.count; ++i) {
        const int a = valuesA.values[i], highest = i + reach < valuesA.count ? valuesA.values[i + reach] : 255;
        while (nearA < valuesB.count && valuesB.values[nearA] < a)
            ++nearA;
        for (std::size_t k = nearA; k < valuesB.count && valuesB.values[k] <= highest; ++k) {
            const int b = valuesB.values[k];
            ValuePair& pair = pairs[static_cast<std::size_t>((a * (8 - eighths) + b * eighths) / 8)];
            if (b - a < pair.span) pair = {a, b, b - a};
        }
    }
    return pairs;
}

/// The pair whose blend comes nearest to the target; of two that miss it by as much the one that lies closer together, then the
/// lower.
constexpr SingleColourOption nearestBlend(const PairsByBlend& pairs, int target) {
    for (int distance = 0;; ++distance) {
        const int below = std::max(target - distance, 0), above = std::min(target + distance, 255);
        const ValuePair &lower = pairs[static_cast<std::size_t>(below)], &upper = pairs[static_cast<std::size_t>(above)];
        const ValuePair& nearest = upper.span < lower.span ? upper : lower;
        if (nearest.span < 256) return makeOption(target + distance, target, nearest.a, nearest.b);
    }
}

constexpr SingleColourTable makeTable(const Values& valuesA, const Values& valuesB) {
    constexpr std::size_t wideReach = 3, narrowReach = 1;
    SingleColourTable table{};
    for (std::size_t blend = 1; blend <= 3; ++blend) {
        const int eighths = static_cast<int>(blend) + 2;
        const PairsByBlend wide = blendPairs(valuesA, valuesB, eighths, wideReach);
        const PairsByBlend narrow = blendPairs(valuesA, valuesB, eighths, narrowReach);
        for (int target = 0; target < 256; ++target) {
            SingleColourRow& row = table[static_cast<std::size_t>(target)];
            row[blend] = nearestBlend(wide, target);
            row[4 + blend] = nearestBlend(narrow, target);
        }
    }
    for (int target = 0; target < 256; ++target) {
        SingleColourRow& row = table[static_cast<std::size_t>(target)];
        const int a = nearestValue(valuesA, target), b = nearestValue(valuesB, target);
        row[0] = makeOption(a, target, a, nearestValue(valuesB, a));
        row[4] = makeOption(b, target, nearestValue(valuesA, b), b);
    }
    return table;
}

// One constant a table, each within what compilers compute at a time.
constexpr Values bits3 = valuesOfBits(3), bits4 = valuesOfBits(4), bits5 = valuesOfBits(5);
constexpr SingleColourTable a5b5 = makeTable(bits5, bits5);
constexpr SingleColourTable a4b5 = makeTable(bits4, bits5);
constexpr SingleColourTable a4b4 = makeTable(bits4, bits4);
constexpr SingleColourTable a3b4 = makeTable(bits3, bits4);
constexpr SingleColourTable a3b5 = makeTable(bits3, bits5);
constexpr SingleColourTable alpha = makeTable(alphaValuesAndOpaque(), alphaValuesAndOpaque());
constexpr SingleColourTable alpha2 = makeTable(alphaValues(0), alphaValues(1));

}  // namespace

constexpr SingleColourTables singleColourTables = {a5b5, a4b5, a4b4, a3b4, a3b5, alpha, alpha2};

}  // namespace moktexture::amtc
