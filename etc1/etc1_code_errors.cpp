#include "etc1/etc1_code_errors.h"

#include <algorithm>

// The base colour of lowest error among up to 3375, without computing most of their errors.
//
// The tables. The error of a pixel is the sum of its channels' errors, so that with E[channel][code] tabulated for each pixel,
// modifier and table, a colour's error takes additions and minima only, eight tables side by side:
//
//   error(r, g, b) = min over tables of the sum over pixels of min over modifiers of (E[red][r] + E[green][g] + E[blue][b])
//
// The bounds. The minimum of a sum is at least the sum of the minima. With, for each channel and code,
//
//   bound[channel][code] = sum over pixels of min over modifiers of E[channel][code]          (one value per table)
//
// a colour's error is, with each table, at least the sum of its channels' bounds. With red and green fixed, the minimum of their
// sum, plus the bound of blue, is a tighter bound for a whole row of blues.
//
// The search of `lowestError`:
//
//   best = a good colour found by steps downhill from `start`;  limit = min(limit, its error)
//   for each red, for each green:
//       if bound[red] + bound[green] + lowest bound of blue > limit in all tables:       skip all blues
//       redGreen = E[red] + E[green];  floor = the sum of its minima
//       if floor + lowest bound of blue > limit in all tables:                           skip all blues
//       for each blue:
//           if floor + bound[blue] > limit in all tables:                                skip
//           compute the error; if it comes before the best in (error, red, green, blue): best = it, limit = its error
//
// It ends: the box is finite and visited once, and a step downhill lowers an integer error that is not negative. Nothing better
// is missed: a colour is skipped only if its error is above the limit, and the limit is an error that the result may still have.
// A colour of exactly that error is not skipped, so that the first of several wins, as it would if all were computed. In the
// worst case all are; with a good start colour few are.
//
// Bounds are sums in another order than errors, so that their rounding differs in floats: `roundingMargin` covers that. With
// uniform weights all values are exact.

namespace moktexture::etc1 {
namespace {

/// Above the relative difference of two sums of the same values in different orders: some fifty additions, each within 2^-24. A
/// larger margin would cost time and change no result.
constexpr float roundingMargin = 1.0f / 65536.0f;

/// If a bound is above this, the error is above `limit` even once truncated to an integer.
float cutoffFor(int limit) {
    return static_cast<float>(limit + 1) * (1.0f + roundingMargin);
}

/// Whether any table's bound is low enough.
bool mayReach(const TableLanes& bounds, float cutoff) {
    return minOfTables(bounds) <= cutoff;
}

/// The sum over the pixels of the minimum over the modifiers, taken per pixel.
TableLanes sumOfMinima(const ChannelErrors& errors) {
    TableLanes sum = broadcast(0);
    for (const std::array<TableLanes, modifierCount>& pixel : errors)
        sum = sum + min(min(pixel[0], pixel[1]), min(pixel[2], pixel[3]));
    return sum;
}

ChannelErrors channelErrors(const Subblock& subblock, std::size_t channel, int base) {
    const ModifiedLanes modified = modifiedLanes(base, subblock.wrapsBelowZero);
    const TableLanes weight = broadcast(channelWeights(subblock.metric)[channel]);
    ChannelErrors errors;
    for (std::size_t n = 0; n < subblockArea; ++n) {
        for (std::size_t step = 0; step < modifierCount; ++step) {
            const TableLanes difference = broadcast(subblock.pixels[n][channel]) - modified[step];
            errors[n][step] = weight * (difference * difference);
        }
    }
    return errors;
}

const ChannelErrors& errorsOf(const CodeErrors& errors, std::size_t channel, int code) {
    return errors.channels[channel].errors[static_cast<std::size_t>(code - errors.box.first[channel])];
}

const TableLanes& lowerBoundOf(const CodeErrors& errors, std::size_t channel, int code) {
    return errors.channels[channel].lowerBounds[static_cast<std::size_t>(code - errors.box.first[channel])];
}

void add(const ChannelErrors& a, const ChannelErrors& b, ChannelErrors& sum) {
    for (std::size_t n = 0; n < subblockArea; ++n) {
        for (std::size_t step = 0; step < modifierCount; ++step)
            sum[n][step] = a[n][step] + b[n][step];
    }
}

/// The subblock's error with the best table, from the errors of red and green together and of blue.
float errorWithBlue(const ChannelErrors& redGreen, const ChannelErrors& blue) {
    TableLanes sum = broadcast(0);
    for (std::size_t n = 0; n < subblockArea; ++n) {
        TableLanes smallest = redGreen[n][0] + blue[n][0];
        for (std::size_t step = 1; step < modifierCount; ++step)
            smallest = min(smallest, redGreen[n][step] + blue[n][step]);
        sum = sum + smallest;
    }
    return minOfTables(sum);
}

int errorOf(const CodeErrors& errors, const Codes& codes) {
    ChannelErrors redGreen;
    add(errorsOf(errors, 0, codes[0]), errorsOf(errors, 1, codes[1]), redGreen);
    return static_cast<int>(errorWithBlue(redGreen, errorsOf(errors, 2, codes[2])));
}

/// Calls `visit` with the colours of the box, red outermost, and their errors, without those whose error is certainly above
/// `limit`. The visitor may lower the limit.
template <class Visit>
void visitColours(const CodeErrors& errors, const CodeBox& box, const int& limit, Visit visit) {
    for (int r = box.first[0]; r <= box.last[0]; ++r) {
        for (int g = box.first[1]; g <= box.last[1]; ++g) {
            const TableLanes& lowestBlue = errors.channels[2].lowestBound;
            if (!mayReach(lowerBoundOf(errors, 0, r) + lowerBoundOf(errors, 1, g) + lowestBlue, cutoffFor(limit))) continue;
            ChannelErrors redGreen;
            add(errorsOf(errors, 0, r), errorsOf(errors, 1, g), redGreen);
            const TableLanes redGreenBound = sumOfMinima(redGreen);
            if (!mayReach(redGreenBound + lowestBlue, cutoffFor(limit))) continue;
            for (int b = box.first[2]; b <= box.last[2]; ++b) {
                if (!mayReach(redGreenBound + lowerBoundOf(errors, 2, b), cutoffFor(limit))) continue;
                visit(Codes{r, g, b}, static_cast<int>(errorWithBlue(redGreen, errorsOf(errors, 2, b))));
            }
        }
    }
}

/// Whether `a` comes before `b` in the order of errors, and of equal errors in the order in which a box is traversed.
bool isBefore(const ColourError& a, const ColourError& b) {
    return a.error != b.error ? a.error < b.error : a.codes < b.codes;
}

bool contains(const CodeBox& box, const Codes& codes) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        if (codes[channel] < box.first[channel] || codes[channel] > box.last[channel]) return false;
    }
    return true;
}

/// A good colour of the box, found by steps downhill from the codes nearest to `start`. Steps go along each channel, and along
/// grey because the modifiers can compensate a grey error.
ColourError descend(const CodeErrors& errors, const CodeBox& box, const Codes& start) {
    static constexpr Codes steps[] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0},
                                      {0, 0, 1}, {0, 0, -1}, {1, 1, 1}, {-1, -1, -1}};
    ColourError best{};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        best.codes[channel] = std::clamp(start[channel], box.first[channel], box.last[channel]);
    best.error = errorOf(errors, best.codes);
    for (bool improved = true; improved;) {
        improved = false;
        const Codes centre = best.codes;
        for (const Codes& step : steps) {
            const Codes codes = {centre[0] + step[0], centre[1] + step[1], centre[2] + step[2]};
            if (!contains(box, codes)) continue;
            const int error = errorOf(errors, codes);
            if (error >= best.error) continue;
            best = {codes, error};
            improved = true;
        }
    }
    return best;
}

}  // namespace

CodeErrors::CodeErrors(const Subblock& subblock, const CodeBox& codeBox, ColourMode mode) : box(codeBox) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        Channel& tables = channels[channel];
        const auto codes = static_cast<std::size_t>(box.last[channel] - box.first[channel] + 1);
        for (std::size_t offset = 0; offset < codes; ++offset) {
            const int code = box.first[channel] + static_cast<int>(offset);
            const int base = mode == ColourMode::individual ? expandFourBits(code) : expandFiveBits(code);
            tables.errors[offset] = channelErrors(subblock, channel, base);
            tables.lowerBounds[offset] = sumOfMinima(tables.errors[offset]);
            tables.lowestBound = offset == 0 ? tables.lowerBounds[0] : min(tables.lowestBound, tables.lowerBounds[offset]);
        }
    }
}

int errorLowerBound(const CodeErrors& errors) {
    const TableLanes sum = errors.channels[0].lowestBound + errors.channels[1].lowestBound + errors.channels[2].lowestBound;
    return static_cast<int>(minOfTables(sum) * (1.0f - roundingMargin));
}

std::optional<ColourError> lowestError(const CodeErrors& errors, const CodeBox& box, const Codes& start, int limit) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        if (box.first[channel] > box.last[channel]) return std::nullopt;
    }
    if (limit < errorLowerBound(errors)) return std::nullopt;
    ColourError best = descend(errors, box, start);
    int bound = std::min(limit, best.error);
    visitColours(errors, box, bound, [&](const Codes& codes, int error) {
        if (!isBefore({codes, error}, best)) return;
        best = {codes, error};
        bound = std::min(bound, error);
    });
    if (best.error > limit) return std::nullopt;
    return best;
}

void collectErrors(const CodeErrors& errors, int limit, BoxErrors& collected) {
    for (auto& plane : collected) {
        for (auto& row : plane)
            row.fill(noError);
    }
    visitColours(errors, errors.box, limit, [&](const Codes& codes, int error) {
        std::array<std::size_t, channelCount> offset;
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            offset[channel] = static_cast<std::size_t>(codes[channel] - errors.box.first[channel]);
        if (error <= limit) collected[offset[0]][offset[1]][offset[2]] = error;
    });
}

}  // namespace moktexture::etc1
