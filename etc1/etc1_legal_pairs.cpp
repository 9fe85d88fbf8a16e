#include <algorithm>
#include <cstdint>

#include "etc1/etc1_code_errors.h"

// The best legal pair of two boxes of n^3 colours each. Going through all pairs takes n^6 steps, 1.8 million at radius 5. But the
// second colours that are legal for a first one form a box of 8 codes per channel, and the minimum over a box is the minimum
// along one channel of the minima along the next:
//
//   rank[r][g][b] = error << 15 | red << 10 | green << 5 | blue        of each second colour: orders ties as the box is walked
//   for each channel:
//       for each line of ranks along that channel:
//           line[first code] = min over the second codes of that line at most 4 below and 3 above it
//   for each first colour, red outermost:
//       error = its error + (rank at its offset >> 15);  keep the first pair of lowest error
//
// That is 3 * n^3 * 8 comparisons at most, and 11 KB for the ranks. A rank also contains the second colour, so that nothing else
// needs to be stored.

namespace moktexture::etc1 {
namespace {

using Rank = std::int64_t;
using Ranks = std::array<std::array<std::array<Rank, maxBoxEdge>, maxBoxEdge>, maxBoxEdge>;

constexpr Rank noRank = std::int64_t{noError} << 15;

/// Calls `visit(r, g, b)` for each offset in a box, red outermost.
template <class Visit>
void forEachOffset(Visit visit) {
    for (std::size_t r = 0; r < maxBoxEdge; ++r) {
        for (std::size_t g = 0; g < maxBoxEdge; ++g) {
            for (std::size_t b = 0; b < maxBoxEdge; ++b)
                visit(r, g, b);
        }
    }
}

Codes codesAt(const CodeBox& box, std::size_t r, std::size_t g, std::size_t b) {
    return {box.first[0] + static_cast<int>(r), box.first[1] + static_cast<int>(g), box.first[2] + static_cast<int>(b)};
}

Rank rankOf(int error, const Codes& codes) {
    if (error == noError) return noRank;
    return std::int64_t{error} << 15 | codes[0] << 10 | codes[1] << 5 | codes[2];
}

/// Replaces the ranks by second codes along one channel by the lowest rank among the second codes that are legal for each first
/// code. `firstCode` and `secondCode` are those at offset 0.
std::array<Rank, maxBoxEdge> lowestLegal(const std::array<Rank, maxBoxEdge>& ranks, int firstCode, int secondCode) {
    std::array<Rank, maxBoxEdge> result;
    for (int offset = 0; offset < maxBoxEdge; ++offset) {
        const int equalCode = firstCode + offset - secondCode;
        const int from = std::max(equalCode + minDelta, 0), to = std::min(equalCode + maxDelta, maxBoxEdge - 1);
        Rank smallest = noRank;
        for (int other = from; other <= to; ++other)
            smallest = std::min(smallest, ranks[static_cast<std::size_t>(other)]);
        result[static_cast<std::size_t>(offset)] = smallest;
    }
    return result;
}

void takeLowestLegal(Ranks& ranks, const CodeBox& first, const CodeBox& second, std::size_t channel) {
    for (std::size_t i = 0; i < maxBoxEdge; ++i) {
        for (std::size_t j = 0; j < maxBoxEdge; ++j) {
            const auto at = [&](std::size_t k) -> Rank& {
                return channel == 0 ? ranks[k][i][j] : channel == 1 ? ranks[i][k][j] : ranks[i][j][k];
            };
            std::array<Rank, maxBoxEdge> line;
            for (std::size_t k = 0; k < maxBoxEdge; ++k)
                line[k] = at(k);
            line = lowestLegal(line, first.first[channel], second.first[channel]);
            for (std::size_t k = 0; k < maxBoxEdge; ++k)
                at(k) = line[k];
        }
    }
}

}  // namespace

PairError lowestLegalPair(const PairSide& first, const PairSide& second) {
    Ranks partners;
    forEachOffset([&](std::size_t r, std::size_t g, std::size_t b) {
        partners[r][g][b] = rankOf(second.errors[r][g][b], codesAt(second.box, r, g, b));
    });
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        takeLowestLegal(partners, first.box, second.box, channel);
    PairError best{{}, noError};
    forEachOffset([&](std::size_t r, std::size_t g, std::size_t b) {
        const Rank partner = partners[r][g][b];
        const int error = first.errors[r][g][b] + static_cast<int>(partner >> 15);
        if (error >= best.error) return;
        const Codes partnerCodes = {static_cast<int>(partner >> 10 & 31), static_cast<int>(partner >> 5 & 31),
                                    static_cast<int>(partner & 31)};
        best = {{codesAt(first.box, r, g, b), partnerCodes}, error};
    });
    return best;
}

}  // namespace moktexture::etc1
