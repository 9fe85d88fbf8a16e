#include "etc1/etc1_code_errors.h"

#include <algorithm>

namespace moktexture::etc1 {
namespace {

/// Sums of floats in different orders differ by less than this part of them.
constexpr float roundingMargin = 1.0f / 65536.0f;

/// Bounds above this are bounds of errors above `limit`.
float cutoffFor(int limit) {
    return static_cast<float>(limit + 1) * (1.0f + roundingMargin);
}

bool reaches(const TableLanes& bounds, float cutoff) {
    return lowest(bounds) <= cutoff;
}

/// The sum over the pixels of the least among the modifiers, pixel by pixel.
TableLanes sumOfLeast(const ChannelErrors& errors) {
    TableLanes sum = filled(0);
    for (const std::array<TableLanes, modifierCount>& pixel : errors)
        sum = sum + lower(lower(pixel[0], pixel[1]), lower(pixel[2], pixel[3]));
    return sum;
}

ChannelErrors channelErrors(const Half& half, std::size_t channel, int base) {
    const ModifiedLanes modified = modifiedLanes(base, half.wrapsBelowZero);
    const TableLanes weight = filled(half.measure == Measure::perceptual ? perceptualWeights[channel] : 1.0f);
    ChannelErrors errors;
    for (std::size_t n = 0; n < halfArea; ++n) {
        for (std::size_t step = 0; step < modifierCount; ++step) {
            const TableLanes difference = filled(half.pixels[n][channel]) - modified[step];
            errors[n][step] = weight * (difference * difference);
        }
    }
    return errors;
}

const ChannelErrors& errorsOf(const CodeErrors& errors, std::size_t channel, int code) {
    return errors.channels[channel].errors[static_cast<std::size_t>(code - errors.box.first[channel])];
}

const TableLanes& floorOf(const CodeErrors& errors, std::size_t channel, int code) {
    return errors.channels[channel].floors[static_cast<std::size_t>(code - errors.box.first[channel])];
}

void add(const ChannelErrors& a, const ChannelErrors& b, ChannelErrors& sum) {
    for (std::size_t n = 0; n < halfArea; ++n) {
        for (std::size_t step = 0; step < modifierCount; ++step)
            sum[n][step] = a[n][step] + b[n][step];
    }
}

/// The half's error with the best table, from the errors of red and green together and of blue.
float errorWithBlue(const ChannelErrors& redGreen, const ChannelErrors& blue) {
    TableLanes sum = filled(0);
    for (std::size_t n = 0; n < halfArea; ++n) {
        TableLanes least = redGreen[n][0] + blue[n][0];
        for (std::size_t step = 1; step < modifierCount; ++step)
            least = lower(least, redGreen[n][step] + blue[n][step]);
        sum = sum + least;
    }
    return lowest(sum);
}

int errorOf(const CodeErrors& errors, const Codes& codes) {
    ChannelErrors redGreen;
    add(errorsOf(errors, 0, codes[0]), errorsOf(errors, 1, codes[1]), redGreen);
    return static_cast<int>(errorWithBlue(redGreen, errorsOf(errors, 2, codes[2])));
}

/// Calls `visit` with every colour of the box whose error may be at most `limit`, and its error. The visitor may lower the limit.
template <class Visit>
void visitColours(const CodeErrors& errors, const CodeBox& box, const int& limit, Visit visit) {
    for (int r = box.first[0]; r <= box.last[0]; ++r) {
        for (int g = box.first[1]; g <= box.last[1]; ++g) {
            const TableLanes& lowestBlue = errors.channels[2].lowestFloor;
            if (!reaches(floorOf(errors, 0, r) + floorOf(errors, 1, g) + lowestBlue, cutoffFor(limit))) continue;
            ChannelErrors redGreen;
            add(errorsOf(errors, 0, r), errorsOf(errors, 1, g), redGreen);
            const TableLanes floor = sumOfLeast(redGreen);
            if (!reaches(floor + lowestBlue, cutoffFor(limit))) continue;
            for (int b = box.first[2]; b <= box.last[2]; ++b) {
                if (!reaches(floor + floorOf(errors, 2, b), cutoffFor(limit))) continue;
                visit(Codes{r, g, b}, static_cast<int>(errorWithBlue(redGreen, errorsOf(errors, 2, b))));
            }
        }
    }
}

/// A number that orders colours by their errors, and equal errors as the box is walked.
std::int64_t rank(int error, const Codes& codes) {
    return std::int64_t{error} << 15 | codes[0] << 10 | codes[1] << 5 | codes[2];
}

bool contains(const CodeBox& box, const Codes& codes) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        if (codes[channel] < box.first[channel] || codes[channel] > box.last[channel]) return false;
    }
    return true;
}

/// A good colour of the box, found by steps downhill from the codes nearest to `start`.
ColourError descend(const CodeErrors& errors, const CodeBox& box, const Codes& start) {
    // Steps along the channels and along grey, for which the modifiers may make up.
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

CodeErrors::CodeErrors(const Half& half, const CodeBox& codeBox, Form form) : box(codeBox) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        Channel& tables = channels[channel];
        const auto codes = static_cast<std::size_t>(box.last[channel] - box.first[channel] + 1);
        for (std::size_t place = 0; place < codes; ++place) {
            const int code = box.first[channel] + static_cast<int>(place);
            const int base = form == Form::individual ? expandFourBits(code) : expandFiveBits(code);
            tables.errors[place] = channelErrors(half, channel, base);
            tables.floors[place] = sumOfLeast(tables.errors[place]);
            tables.lowestFloor = place == 0 ? tables.floors[0] : lower(tables.lowestFloor, tables.floors[place]);
        }
    }
}

int errorFloor(const CodeErrors& errors) {
    const TableLanes sum = errors.channels[0].lowestFloor + errors.channels[1].lowestFloor + errors.channels[2].lowestFloor;
    return static_cast<int>(lowest(sum) * (1.0f - roundingMargin));
}

std::optional<ColourError> lowestError(const CodeErrors& errors, const CodeBox& box, const Codes& start, int limit) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        if (box.first[channel] > box.last[channel]) return std::nullopt;
    }
    if (limit < errorFloor(errors)) return std::nullopt;
    ColourError best = descend(errors, box, start);
    int bound = std::min(limit, best.error);
    visitColours(errors, box, bound, [&](const Codes& codes, int error) {
        if (rank(error, codes) >= rank(best.error, best.codes)) return;
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
        std::array<std::size_t, channelCount> place;
        for (std::size_t channel = 0; channel < channelCount; ++channel)
            place[channel] = static_cast<std::size_t>(codes[channel] - errors.box.first[channel]);
        if (error <= limit) collected[place[0]][place[1]][place[2]] = error;
    });
}

}  // namespace moktexture::etc1
