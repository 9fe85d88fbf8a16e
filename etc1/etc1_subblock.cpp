#include "etc1/etc1_subblock.h"

// For a base colour each pixel takes, in each of the eight tables, the best of four modifiers. The errors of all tables are
// computed side by side, one lane each:
//
//   for each pixel:     smallest = minimum over the modifiers of
//                                  the sum over channels of weight * (pixel - clamp(base + modifier))^2
//                       sum += smallest
//   the table is the first lane of lowest sum
//
// and only for that table the errors are computed again, one modifier per lane, to choose the indices. With uniform weights all
// sums are integers below 2^24, which floats hold exactly. A run takes 8 * 4 * 3 squares of eight lanes.

namespace moktexture::etc1 {
namespace {

/// The base colour plus each modifier.
using ModifiedColours = std::array<ModifiedLanes, channelCount>;

ModifiedColours modifiedColours(const Subblock& subblock, const Colour& base) {
    ModifiedColours modified;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        modified[channel] = modifiedLanes(base[channel], subblock.wrapsBelowZero);
    return modified;
}

/// The subblock's error with each table.
TableLanes tableErrors(const Subblock& subblock, const ModifiedColours& modified) {
    const std::array<float, channelCount> weights = channelWeights(subblock.metric);
    TableLanes sum = broadcast(0);
    for (const Colour& pixel : subblock.pixels) {
        TableLanes smallest = broadcast(static_cast<float>(blockErrorBound));
        for (std::size_t step = 0; step < modifierCount; ++step) {
            TableLanes error = broadcast(0);
            for (std::size_t channel = 0; channel < channelCount; ++channel) {
                const TableLanes difference = broadcast(pixel[channel]) - modified[channel][step];
                error = error + broadcast(weights[channel]) * (difference * difference);
            }
            smallest = min(error, smallest);
        }
        sum = sum + smallest;
    }
    return sum;
}

/// Index of each pixel's modifier of lowest error in a table. Here a lane is a modifier.
std::array<std::uint32_t, subblockArea> bestIndices(const Subblock& subblock, const ModifiedColours& modified,
                                                    std::uint32_t table) {
    const std::array<float, channelCount> weights = channelWeights(subblock.metric);
    std::array<TableLanes::Four, channelCount> steps;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const ModifiedLanes& m = modified[channel];
        steps[channel] = TableLanes::Four{m[0][table], m[1][table], m[2][table], m[3][table]};
    }
    std::array<std::uint32_t, subblockArea> indices;
    for (std::size_t n = 0; n < subblockArea; ++n) {
        TableLanes::Four error = {};
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            const TableLanes::Four difference = static_cast<float>(subblock.pixels[n][channel]) - steps[channel];
            error = error + weights[channel] * (difference * difference);
        }
        std::size_t best = 0;
        for (std::size_t step = 1; step < modifierCount; ++step) {
            if (error[step] < error[best]) best = step;
        }
        indices[n] = ascendingIndices[best];
    }
    return indices;
}

}  // namespace

TableFit BestTable(const Subblock& subblock, const Colour& base) {
    const ModifiedColours modified = modifiedColours(subblock, base);
    const TableLanes errors = tableErrors(subblock, modified);
    TableFit fit{};
    for (std::uint32_t table = 1; table < tableCount; ++table) {
        if (errors[table] < errors[fit.table]) fit.table = table;
    }
    fit.error = static_cast<int>(errors[fit.table]);
    fit.indices = bestIndices(subblock, modified, fit.table);
    return fit;
}

CodedBlock packBlock(Split split, ColourMode mode, const std::array<Codes, 2>& codes, const std::array<TableFit, 2>& fits) {
    CodedBlock coded{0, {static_cast<std::uint32_t>(mode) << 1 | static_cast<std::uint32_t>(split), 0}};
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        coded.words.colours |= packChannel(codes[0][channel], codes[1][channel], mode) << (24 - 8 * channel);
    for (std::size_t subblock = 0; subblock < 2; ++subblock) {
        const TableFit& fit = fits[subblock];
        coded.error += fit.error;
        coded.words.colours |= fit.table << tableShift(subblock);
        for (std::size_t n = 0; n < subblockArea; ++n) {
            const std::size_t pixel = pixelNumber(split, subblock, n);
            coded.words.indices |= (fit.indices[n] & 1) << pixel | fit.indices[n] >> 1 << (pixel + 16);
        }
    }
    return coded;
}

CodedBlock codeBlock(const Subblocks& subblocks, Split split, ColourMode mode, const std::array<Codes, 2>& codes) {
    return packBlock(split, mode, codes,
                     {BestTable(subblocks[0], expand(codes[0], mode)), BestTable(subblocks[1], expand(codes[1], mode))});
}

}  // namespace moktexture::etc1
