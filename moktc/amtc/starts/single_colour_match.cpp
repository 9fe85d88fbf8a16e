#include <algorithm>

#include "moktc/amtc/starts/colour_quantiser.h"
#include "moktc/amtc/starts/single_colour_tables.h"

namespace moktexture::amtc {

namespace {

/// The rows of a target colour, by channel.
using ColourRows = std::array<const SingleColourRow*, channelCount>;

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

/// The option that serves all channels best. A or B alone is preferred to a blend, and B to A.
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

/// Whether A and B may change places: each channel may, or is the same in both.
bool isExchangeable(const ColourPair& pair, const Swappable& swappable) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        if (!swappable[channel] && channelOf(pair.a, channel) != channelOf(pair.b, channel)) return false;
    }
    return true;
}

}  // namespace

ColourPair SingleColourMatch(std::uint32_t colour, bool isPunchThrough, bool secondGeneration, bool narrow,
                             Swappable& swappable) {
    const SingleColourTables& tables = singleColourTables;
    const std::uint32_t alpha = channelOf(colour, alphaChannel);
    const bool isOpaque = alpha >= lowestOpaqueTarget;
    const SingleColourRow& alphaRow = isOpaque ? opaqueAlphaRow : (secondGeneration ? tables.alpha2 : tables.alpha)[alpha];
    const ColourRows rows =
        isOpaque ? rowsOf(colour, tables.a5b5, tables.a4b5, alphaRow) : rowsOf(colour, tables.a4b4, tables.a3b4, alphaRow);
    swappable = {true, true, false, isOpaque || !secondGeneration};
    const ColourPair pair = pairOf(rows, chooseOption(rows, isPunchThrough, narrow));
    if (isOpaque || secondGeneration || channelOf(pair.b, alphaChannel) != 255) return pair;

    // The first generation stores an opaque B with more bits, whatever A is.
    // Kept: where A comes out opaque too, its blue is still one of 3 bits, which the 4 bits of the block may miss by 8; encoded
    // files depend on it.
    swappable = {};
    const ColourRows mixedRows = rowsOf(colour, tables.a4b5, tables.a3b5, alphaRow);
    ColourPair mixed = pairOf(mixedRows, chooseOption(mixedRows, isPunchThrough, narrow));
    mixed.b |= 255u << 8 * alphaChannel;
    return mixed;
}

ColourPair SplitEqualPair(bool secondGeneration, bool isPunchThrough, const ColourVector& floatA, const ColourVector& floatB,
                          std::uint32_t equalColour) {
    Swappable swappable{};
    const ColourPair pair = SingleColourMatch(equalColour, isPunchThrough, secondGeneration, true, swappable);
    const ColourVector a = toVector(pair.a), b = toVector(pair.b);
    const float straight = squaredDistance(floatA, a) + squaredDistance(floatB, b);
    const float crossed = squaredDistance(floatA, b) + squaredDistance(floatB, a);
    return crossed < straight && isExchangeable(pair, swappable) ? ColourPair{pair.b, pair.a} : pair;
}

}  // namespace moktexture::amtc
