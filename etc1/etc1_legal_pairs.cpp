#include "etc1/etc1_legal_pairs.h"

#include <algorithm>

namespace moktexture::etc1 {
namespace {

/// Orders second colours by their errors, and equal errors as their box is walked: error << 15 | red << 10 | green << 5 | blue.
using Rank = std::int64_t;
using Ranks = std::array<std::array<std::array<Rank, widestBox>, widestBox>, widestBox>;

constexpr Rank noRank = std::int64_t{noError} << 15;

Rank rankOf(const BoxErrors& errors, const CodeBox& box, std::size_t r, std::size_t g, std::size_t b) {
    const int error = errors[r][g][b];
    if (error == noError) return noRank;
    const auto code = [&](std::size_t channel, std::size_t place) { return box.first[channel] + static_cast<int>(place); };
    return std::int64_t{error} << 15 | code(0, r) << 10 | code(1, g) << 5 | code(2, b);
}

/// Lowest rank of the second codes that are legal for each first code, along one channel; the result stands by first codes.
std::array<Rank, widestBox> slidingLowest(const std::array<Rank, widestBox>& ranks, int firstCode, int secondCode) {
    std::array<Rank, widestBox> result;
    for (int place = 0; place < widestBox; ++place) {
        const int nearest = firstCode + place - secondCode;
        const int from = std::max(nearest + leastDelta, 0), to = std::min(nearest + greatestDelta, widestBox - 1);
        Rank least = noRank;
        for (int other = from; other <= to; ++other)
            least = std::min(least, ranks[static_cast<std::size_t>(other)]);
        result[static_cast<std::size_t>(place)] = least;
    }
    return result;
}

/// Slides along each channel in turn, which together covers all legal differences.
void slideAll(Ranks& ranks, const CodeBox& first, const CodeBox& second) {
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        for (std::size_t i = 0; i < widestBox; ++i) {
            for (std::size_t j = 0; j < widestBox; ++j) {
                const auto at = [&](std::size_t k) -> Rank& {
                    return channel == 0 ? ranks[k][i][j] : channel == 1 ? ranks[i][k][j] : ranks[i][j][k];
                };
                std::array<Rank, widestBox> line;
                for (std::size_t k = 0; k < widestBox; ++k)
                    line[k] = at(k);
                line = slidingLowest(line, first.first[channel], second.first[channel]);
                for (std::size_t k = 0; k < widestBox; ++k)
                    at(k) = line[k];
            }
        }
    }
}

}  // namespace

PairError bestLegalPair(const BoxErrors& firstErrors, const CodeBox& first, const BoxErrors& secondErrors,
                        const CodeBox& second) {
    Ranks partners;
    for (std::size_t r = 0; r < widestBox; ++r) {
        for (std::size_t g = 0; g < widestBox; ++g) {
            for (std::size_t b = 0; b < widestBox; ++b)
                partners[r][g][b] = rankOf(secondErrors, second, r, g, b);
        }
    }
    slideAll(partners, first, second);
    PairError best{{}, noError};
    for (std::size_t r = 0; r < widestBox; ++r) {
        for (std::size_t g = 0; g < widestBox; ++g) {
            for (std::size_t b = 0; b < widestBox; ++b) {
                const Rank partner = partners[r][g][b];
                const int error = firstErrors[r][g][b] + static_cast<int>(partner >> 15);
                if (error >= best.error) continue;
                best.error = error;
                best.codes[0] = {first.first[0] + static_cast<int>(r), first.first[1] + static_cast<int>(g),
                                 first.first[2] + static_cast<int>(b)};
                best.codes[1] = {static_cast<int>(partner >> 10 & 31), static_cast<int>(partner >> 5 & 31),
                                 static_cast<int>(partner & 31)};
            }
        }
    }
    return best;
}

}  // namespace moktexture::etc1
