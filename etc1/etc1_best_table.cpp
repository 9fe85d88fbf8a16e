#include "etc1/etc1_best_table.h"

#include <cstdint>
#include <type_traits>

#include "etc1/etc1_table_lanes.h"

namespace moktexture::etc1 {
namespace {

/// The error of one colour in the type that the measure computes with.
template <class Error>
Error pixelError(const Half& half, const Colour& pixel, const Colour& base, int modifier) {
    Error error{};
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const int difference = pixel[channel] - searchedChannel(base[channel] + modifier, half.wrapsBelowZero);
        const Error square = static_cast<Error>(difference * difference);
        if constexpr (std::is_same_v<Error, float>)
            error += perceptualWeights[channel] * square;
        else
            error += square;
    }
    return error;
}

/// Chooses the modifiers of the half's pixels from one table and returns the sum of their errors.
template <class Error>
Error chooseModifiers(const Half& half, const Colour& base, std::uint32_t table, std::array<std::uint32_t, halfArea>& indices) {
    Error sum{};
    for (std::size_t n = 0; n < halfArea; ++n) {
        Error least = static_cast<Error>(blockErrorBound);
        for (const std::uint32_t index : ascendingIndices) {
            const Error error = pixelError<Error>(half, half.pixels[n], base, modifiers[table][index]);
            if (error < least) {
                least = error;
                indices[n] = index;
            }
        }
        sum += least;
    }
    return sum;
}

template <class Error>
TableFit bestOfTables(const Half& half, const Colour& base) {
    TableFit fit{};
    Error least = static_cast<Error>(halfErrorBound);
    for (std::uint32_t table = 0; table < tableCount; ++table) {
        std::array<std::uint32_t, halfArea> indices{};
        const Error error = chooseModifiers<Error>(half, base, table, indices);
        if (error < least) {
            least = error;
            fit.table = table;
            fit.indices = indices;
        }
    }
    fit.error = static_cast<int>(least);
    return fit;
}

/// The half's error with each table. Floats hold the plain measure's integers exactly.
TableLanes tableErrors(const Half& half, const Colour& base) {
    std::array<ModifiedLanes, channelCount> modified;
    for (std::size_t channel = 0; channel < channelCount; ++channel)
        modified[channel] = modifiedLanes(base[channel], half.wrapsBelowZero);
    TableLanes sum = filled(0);
    for (const Colour& pixel : half.pixels) {
        TableLanes least = filled(static_cast<float>(blockErrorBound));
        for (std::size_t step = 0; step < modifierCount; ++step) {
            TableLanes error = filled(0);
            for (std::size_t channel = 0; channel < channelCount; ++channel) {
                const TableLanes difference = filled(pixel[channel]) - modified[channel][step];
                const float weight = half.measure == Measure::perceptual ? perceptualWeights[channel] : 1.0f;
                error = error + filled(weight) * (difference * difference);
            }
            least = lower(error, least);
        }
        sum = sum + least;
    }
    return sum;
}

}  // namespace

TableFit BestTablePlain(const Half& half, const Colour& base) {
    return half.measure == Measure::plain ? bestOfTables<std::int32_t>(half, base) : bestOfTables<float>(half, base);
}

TableFit BestTableLanes(const Half& half, const Colour& base) {
    const TableLanes errors = tableErrors(half, base);
    TableFit fit{};
    for (std::uint32_t table = 1; table < tableCount; ++table) {
        if (errors[table] < errors[fit.table]) fit.table = table;
    }
    fit.error = static_cast<int>(errors[fit.table]);
    if (half.measure == Measure::plain)
        chooseModifiers<std::int32_t>(half, base, fit.table, fit.indices);
    else
        chooseModifiers<float>(half, base, fit.table, fit.indices);
    return fit;
}

}  // namespace moktexture::etc1
