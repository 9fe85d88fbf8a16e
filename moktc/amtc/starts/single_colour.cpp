// Single colours: a pair of storable colours one of whose blends hits one colour.
//
// Problem   A flat area has one colour of 8 bits per channel, while a block stores 3 to 5 bits per channel. The nearest code
//           misses the colour by up to 4 at 5 bits, 12 at 4 and 20 at 3. The blends of two different codes lie between the codes.
// Idea      For each target byte and each position on the way from A to B, tables hold the pair of codes whose blend is nearest.
//           All channels of a block share the position, so that a colour takes the option with the smallest sum of errors over
//           the channels.
//
// Tables    For two bit depths and an interpolation weight of 0 to 8, at compile time:
//
//     for each value a of A, for each value b of B from a up to `reach` steps of A above it:
//         the pair produces the byte (a (8 - weight) + b weight) / 8, rounded down; of several pairs for a byte the closest
//     for each target byte: the pair of the nearest byte that has one
//
//           The reach keeps A and B near the target, so that pixels that show another blend of them stay near it too. All loops
//           are bounded by the number of codes; the seven tables take 43,008 bytes.
// Ties      Of pairs with equal errors the closer one, then the lower one. Of two options with equal sums B before A, either of
//           them before a blend, and 5/8 before 3/8.
// Cost      A match reads one row of 24 bytes per channel and adds up to 16 errors.

#include <algorithm>

#include "moktc/amtc/starts/colour_quantiser.h"

namespace moktexture::amtc {

namespace {

// How many steps of A the value of B may lie above A. A larger reach hits more targets, a smaller one keeps both colours nearer
// to the target; the bytes of flat areas depend on both.
constexpr std::size_t wideReach = 3, narrowReach = 1;

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

/// Two values and their distance.
struct ValuePair {
    int a = 0, b = 0, span = 256;  ///< a span of 256 means that there is no pair
};

/// Indexed by byte: the pair that blends to it.
using PairsByBlend = std::array<ValuePair, 256>;

/// The pairs, indexed by the byte that they produce at interpolation weight `weight` (0 to 8) from A to B.
constexpr PairsByBlend blendPairs(const Values& valuesA, const Values& valuesB, int weight, std::size_t reach) {
    PairsByBlend pairs{};
    // Kept (single-colour-pairs-limited): A is at most B, B is within reach, and the blend is truncated, not rounded. Another
    // pair may hit a target better; flat blocks of every encoded file hold the pairs that these tables name.
    std::size_t nearA = 0;
    for (std::size_t i = 0; i < valuesA.count; ++i) {
        const int a = valuesA.values[i], highest = i + reach < valuesA.count ? valuesA.values[i + reach] : 255;
        while (nearA < valuesB.count && valuesB.values[nearA] < a)
            ++nearA;
        for (std::size_t k = nearA; k < valuesB.count && valuesB.values[k] <= highest; ++k) {
            const int b = valuesB.values[k];
            ValuePair& pair = pairs[static_cast<std::size_t>((a * (8 - weight) + b * weight) / 8)];
            if (b - a < pair.span) pair = {a, b, b - a};
        }
    }
    return pairs;
}

/// The pair whose blend is nearest to the target.
constexpr SingleColourOption nearestBlend(const PairsByBlend& pairs, int target) {
    for (int distance = 0;; ++distance) {
        const int below = std::max(target - distance, 0), above = std::min(target + distance, 255);
        const ValuePair &lower = pairs[static_cast<std::size_t>(below)], &upper = pairs[static_cast<std::size_t>(above)];
        const ValuePair& nearest = upper.span < lower.span ? upper : lower;
        if (nearest.span < 256) return makeOption(target + distance, target, nearest.a, nearest.b);
    }
}

constexpr SingleColourTable makeTable(const Values& valuesA, const Values& valuesB) {
    SingleColourTable table{};
    for (std::size_t blend = 1; blend <= 3; ++blend) {
        const int weight = static_cast<int>(blend) + 2;
        const PairsByBlend wide = blendPairs(valuesA, valuesB, weight, wideReach);
        const PairsByBlend narrow = blendPairs(valuesA, valuesB, weight, narrowReach);
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

// One constant per table, each within what compilers evaluate at a time.
constexpr Values bits3 = valuesOfBits(3), bits4 = valuesOfBits(4), bits5 = valuesOfBits(5);
constexpr SingleColourTable a5b5 = makeTable(bits5, bits5);
constexpr SingleColourTable a4b5 = makeTable(bits4, bits5);
constexpr SingleColourTable a4b4 = makeTable(bits4, bits4);
constexpr SingleColourTable a3b4 = makeTable(bits3, bits4);
constexpr SingleColourTable a3b5 = makeTable(bits3, bits5);
constexpr SingleColourTable alpha = makeTable(alphaValuesAndOpaque(), alphaValuesAndOpaque());
constexpr SingleColourTable alpha2 = makeTable(alphaValues(0), alphaValues(1));

/// The row of an opaque alpha: every option is exact.
constexpr SingleColourRow opaqueAlphaRow = [] {
    SingleColourRow row{};
    row.fill({0, 255, 255});
    return row;
}();

/// The rows of a target colour, by channel.
using ColourRows = std::array<const SingleColourRow*, channelCount>;

/// The lowest alpha of a target that is matched as opaque. A lower value gives nearly opaque areas more colour bits, a higher one
/// keeps more of their alpha.
constexpr std::uint32_t lowestOpaqueTarget = 248;

ColourRows rowsOf(std::uint32_t colour, const SingleColourTable& redAndGreen, const SingleColourTable& blue,
                  const SingleColourRow& alphaRow) {
    return {&redAndGreen[channelOf(colour, 0)], &redAndGreen[channelOf(colour, 1)], &blue[channelOf(colour, 2)], &alphaRow};
}

std::uint32_t errorOf(const ColourRows& rows, std::size_t option) {
    std::uint32_t error = 0;
    for (const SingleColourRow* row : rows)
        error += (*row)[option].error;
    return error;
}

/// The option with the smallest error over all channels.
std::size_t chooseOption(const ColourRows& rows, bool isPunchThrough, bool narrow) {
    const std::size_t blends = narrow ? 4 : 0;
    const std::uint32_t errorA = errorOf(rows, 0), errorB = errorOf(rows, 4);
    const std::size_t single = errorB > errorA ? 0 : 4;
    const std::uint32_t singleError = std::min(errorA, errorB);
    if (isPunchThrough) return errorOf(rows, blends + 2) < singleError ? blends + 2 : single;

    const std::uint32_t error3 = errorOf(rows, blends + 1), error5 = errorOf(rows, blends + 3);
    if (std::min(error3, error5) >= singleError) return single;
    return error5 <= error3 ? blends + 3 : blends + 1;
}

ColourPair pairOf(const ColourRows& rows, std::size_t option) {
    ColourPair pair{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        pair.a |= std::uint32_t{(*rows[channel])[option].a} << 8 * channel;
        pair.b |= std::uint32_t{(*rows[channel])[option].b} << 8 * channel;
    }
    return pair;
}

/// True if A and B may be exchanged: each channel may, or has the same value in both.
bool isExchangeable(const ColourPair& pair, const Swappable& swappable) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        if (!swappable[channel] && channelOf(pair.a, channel) != channelOf(pair.b, channel)) return false;
    }
    return true;
}

}  // namespace

constexpr SingleColourTables singleColourTables = {a5b5, a4b5, a4b4, a3b4, a3b5, alpha, alpha2};

ColourPair SingleColourMatch(std::uint32_t colour, bool isPunchThrough, Generation generation, bool narrow,
                             Swappable& swappable) {
    const SingleColourTables& tables = singleColourTables;
    const bool secondGeneration = generation == Generation::second;
    const std::uint32_t targetAlpha = channelOf(colour, alphaChannel);
    const bool isOpaque = targetAlpha >= lowestOpaqueTarget;
    const SingleColourRow& alphaRow = isOpaque ? opaqueAlphaRow : (secondGeneration ? tables.alpha2 : tables.alpha)[targetAlpha];
    const ColourRows rows =
        isOpaque ? rowsOf(colour, tables.a5b5, tables.a4b5, alphaRow) : rowsOf(colour, tables.a4b4, tables.a3b4, alphaRow);
    swappable = {true, true, false, isOpaque || !secondGeneration};
    const ColourPair pair = pairOf(rows, chooseOption(rows, isPunchThrough, narrow));
    if (isOpaque || secondGeneration || channelOf(pair.b, alphaChannel) != 255) return pair;

    // The first generation stores an opaque B with more bits, whatever A is.
    // Kept (opaque-a-with-3-bit-blue): where A comes out opaque too, its blue is still one of 3 bits, and the 4 bits of the block
    // may miss it by 8. Flat areas of alpha 247 get their start candidates from here.
    swappable = {};
    const ColourRows mixedRows = rowsOf(colour, tables.a4b5, tables.a3b5, alphaRow);
    ColourPair mixed = pairOf(mixedRows, chooseOption(mixedRows, isPunchThrough, narrow));
    mixed.b |= 255u << 8 * alphaChannel;
    return mixed;
}

ColourPair SplitEqualPair(Generation generation, bool isPunchThrough, const ColourVector& floatA, const ColourVector& floatB,
                          std::uint32_t equalColour) {
    Swappable swappable{};
    const ColourPair pair = SingleColourMatch(equalColour, isPunchThrough, generation, true, swappable);
    const ColourVector a = toVector(pair.a), b = toVector(pair.b);
    const float straight = squaredDistance(floatA, a) + squaredDistance(floatB, b);
    const float crossed = squaredDistance(floatA, b) + squaredDistance(floatB, a);
    return crossed < straight && isExchangeable(pair, swappable) ? ColourPair{pair.b, pair.a} : pair;
}

}  // namespace moktexture::amtc
