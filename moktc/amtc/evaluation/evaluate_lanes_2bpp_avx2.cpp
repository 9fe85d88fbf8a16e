// The evaluator of pixel_evaluation.cpp at 2 bits per pixel, on the lanes of lane_layout.h.
//
//     samples of the outer ring, then of the inner rows:  decode, choose, keep the weights in a grid
//     means of the inner rows, then of the ring:          weight = sum of the neighbours in the grid * factor, rounded; decode
//     for each interpolation weight in use:               sum the choices under a mask
//
// The ring's samples are needed on every pass, by the means next to them.

#include "core/base/instruction_set.h"

#if MOKTEX_X86_KERNELS

#include "moktc/amtc/evaluation/lane_arithmetic_avx2.h"

namespace {

using namespace moktexture::amtc;
using Lanes = EvaluationLanes2bpp;
constexpr std::size_t lastRow = Lanes::lastRow;

/// Interpolation weights of samples by row. Those of the last column are separate; a row of zeroes precedes and one follows.
class SampleGrid {
public:
    MOKTEX_LANE_FUNCTION SampleGrid() { rows[0] = rows[lastRow + 2] = _mm256_setzero_si256(); }
    MOKTEX_LANE_FUNCTION void setRow(std::size_t row, __m256i samples) { rows[row + 1] = samples; }
    MOKTEX_LANE_FUNCTION void setColumn(__m256i samples) { column = samples; }

    /// Sums of left and right neighbours, as far as they lie in the footprint, for the pixels between a row's samples.
    MOKTEX_LANE_FUNCTION __m256i across(std::size_t row) const {
        static constexpr std::int32_t shifts[2][laneCount] = {{1, 2, 3, 4, 5, 6, 7, 0}, {7, 0, 1, 2, 3, 4, 5, 6}};
        static constexpr std::int32_t beyond[2][laneCount] = {{0, 0, 0, 0, 0, 0, 0, -1}, {-1}};
        const __m256i last = _mm256_permutevar8x32_epi32(column, _mm256_set1_epi32(Lanes::columnLanes[row]));
        const __m256i atEdge = row % 2 == 0 ? last : _mm256_setzero_si256();
        const __m256i shifted = _mm256_permutevar8x32_epi32(rows[row + 1], load(shifts[row % 2]));
        return _mm256_add_epi32(rows[row + 1], blend(shifted, atEdge, load(beyond[row % 2])));
    }
    /// Likewise of the neighbours above and below.
    MOKTEX_LANE_FUNCTION __m256i down(std::size_t row) const { return _mm256_add_epi32(rows[row], rows[row + 2]); }

    /// The same for the last column's pixels of odd rows, in their lanes.
    MOKTEX_LANE_FUNCTION __m256i acrossColumn() const {
        const auto left = [this](std::size_t row) { return _mm256_extract_epi32(rows[row + 1], laneCount - 1); };
        return _mm256_setr_epi32(left(1), left(3), 0, 0, left(5), left(7), 0, 0);
    }
    MOKTEX_LANE_FUNCTION __m256i downColumn() const {
        const __m256i below = _mm256_setr_epi32(Lanes::columnLanes[2], Lanes::columnLanes[4], 0, 0,  //
                                                Lanes::columnLanes[6], Lanes::columnLanes[8], 0, 0);
        return _mm256_add_epi32(column, _mm256_permutevar8x32_epi32(column, below));
    }

private:
    __m256i rows[lastRow + 3], column;
};

struct EvaluatedLanes {
    ChannelLanes difference;
    __m256i error, value;
};

MOKTEX_LANE_FUNCTION EvaluatedLanes evaluateSamples(const SampleLanes& lanes, const BlockRow& upper, const BlockRow& lower) {
    const EndDifferences ends = decodeEnds(lanes.pixels, upper, lower);
    const Blend blendOfEnds(ends);
    const ChannelLanes blend1 = blendOfEnds.at(_mm256_set1_epi16(3 << weightShift)),
                       blend2 = blendOfEnds.at(_mm256_set1_epi16(5 << weightShift));
    // With one bit, indices 1 and 2 cannot win and B wins ties with A.
    const __m256i oneBit = load(lanes.oneBit);
    const __m256i error1 = _mm256_or_si256(squaredLength(blend1), oneBit);
    const __m256i error2 = _mm256_or_si256(squaredLength(blend2), oneBit);
    const __m256i error0 = squaredLength(ends.a), error3 = squaredLength(ends.b);
    const __m256i takes1 = _mm256_cmpgt_epi32(error2, error1);
    const __m256i smallest12 = _mm256_min_epi32(error1, error2);
    const __m256i takes0 = _mm256_cmpgt_epi32(smallest12, error0);
    const __m256i smallest012 = _mm256_min_epi32(smallest12, error0);
    const __m256i takes3 = _mm256_cmpgt_epi32(smallest012, _mm256_sub_epi32(error3, _mm256_srli_epi32(oneBit, 30)));
    const ChannelLanes difference = blend(blend(blend(blend2, blend1, takes1), ends.a, takes0), ends.b, takes3);
    __m256i value = blend(_mm256_set1_epi32(5), _mm256_set1_epi32(3), takes1);
    value = _mm256_andnot_si256(takes0, value);
    value = blend(value, _mm256_set1_epi32(8), takes3);
    return {difference, _mm256_min_epi32(smallest012, error3), value};
}

/// Pixels with a mean of samples, or one bit of their own.
MOKTEX_LANE_FUNCTION EvaluatedLanes evaluateMeans(const MeanLanes& lanes, const EndDifferences& ends, __m256i across,
                                                  __m256i down, bool hasOneBit) {
    const __m256i sums = _mm256_or_si256(across, _mm256_slli_epi32(down, 16));
    __m256i value = _mm256_madd_epi16(sums, load(lanes.sampleFactors));
    value = _mm256_srli_epi32(_mm256_add_epi32(value, load(lanes.rounding)), 8);
    if (hasOneBit) {
        const __m256i takesA = _mm256_cmpgt_epi32(squaredLength(ends.b), squaredLength(ends.a));
        value = blend(value, _mm256_andnot_si256(takesA, _mm256_set1_epi32(8)), load(lanes.oneBit));
    }
    const __m256i weight = _mm256_or_si256(value, _mm256_slli_epi32(value, 16));
    const ChannelLanes step = ends.a - ends.b;
    const ChannelLanes difference = ends.a - ChannelLanes{_mm256_srai_epi16(_mm256_mullo_epi16(step.rg, weight), 3),
                                                          _mm256_srai_epi16(_mm256_mullo_epi16(step.ba, weight), 3)};
    return {difference, squaredLength(difference), value};
}

/// Errors of the inner pixels and of the ring.
struct ErrorLanes {
    __m256i inner = _mm256_setzero_si256(), outer = inner;

    /// Lane 0 belongs to the ring where a row starts with column 0.
    MOKTEX_LANE_FUNCTION void addRow(__m256i error, std::size_t firstColumn) {
        static constexpr std::int32_t ringLanes[2][laneCount] = {{-1}, {}};
        const __m256i isRing = load(ringLanes[firstColumn]);
        inner = _mm256_add_epi32(inner, _mm256_andnot_si256(isRing, error));
        outer = _mm256_add_epi32(outer, _mm256_and_si256(isRing, error));
    }
    MOKTEX_LANE_FUNCTION void addRing(__m256i error) { outer = _mm256_add_epi32(outer, error); }
    MOKTEX_LANE_FUNCTION LaneError total(bool withOuter) const {
        return {static_cast<std::uint32_t>(sumOf(inner)), withOuter ? static_cast<std::uint32_t>(sumOf(outer)) : 0};
    }
};

/// The steps of an evaluation, in their order: means need the samples of their own row and of the rows above and below.
class Evaluation {
public:
    MOKTEX_LANE_FUNCTION Evaluation(const Lanes& preparedLanes, ColourBytes colours)
        : lanes(preparedLanes),
          rows{loadBlockRow(colours), loadBlockRow(colours + blockRowBytes), loadBlockRow(colours + 2 * blockRowBytes)},
          upperColumn(rightHalves(rows[0], rows[1])),
          lowerColumn(rightHalves(rows[1], rows[2])) {}

    MOKTEX_LANE_FUNCTION void evaluateInnerSamples(ErrorLanes& errors) {
        for (std::size_t row = 1; row <= innerGroups; ++row) {
            const std::size_t group = row - 1;
            const EvaluatedLanes result = evaluateSamples(lanes.samples[group], upper(row), lower(row));
            grid.setRow(row, result.value);
            samples[group] = chosen(result.difference, result.value);
            errors.addRow(result.error, row % 2);
        }
    }

    MOKTEX_LANE_FUNCTION void evaluateOuterSamples(ErrorLanes& errors) {
        for (std::size_t row = 0; row <= lastRow; row += lastRow) {
            const std::size_t group = row == 0 ? Lanes::topGroup : Lanes::bottomGroup;
            const EvaluatedLanes result = evaluateSamples(lanes.samples[group], upper(row), lower(row));
            grid.setRow(row, result.value);
            errors.addRing(result.error);
        }
        const EvaluatedLanes result = evaluateSamples(lanes.samples[Lanes::columnGroup], upperColumn, lowerColumn);
        grid.setColumn(result.value);
        errors.addRing(result.error);
    }

    MOKTEX_LANE_FUNCTION void evaluateInnerMeans(ErrorLanes& errors) {
        for (std::size_t row = 1; row <= innerGroups; ++row) {
            const EvaluatedLanes result = evaluateMeansOfRow(row, row - 1);
            means[row - 1] = chosen(result.difference, result.value);
            errors.addRow(result.error, 1 - row % 2);
        }
    }

    MOKTEX_LANE_FUNCTION void evaluateOuterMeans(ErrorLanes& errors) {
        errors.addRing(evaluateMeansOfRow(0, Lanes::topGroup).error);
        errors.addRing(evaluateMeansOfRow(lastRow, Lanes::bottomGroup).error);
        const MeanLanes& column = lanes.means[Lanes::columnGroup];
        const EndDifferences ends = decodeEnds(column.pixels, upperColumn, lowerColumn);
        errors.addRing(evaluateMeans(column, ends, grid.acrossColumn(), grid.downColumn(), lanes.hasOneBitInMeans).error);
    }

    MOKTEX_LANE_FUNCTION void finishSums(const LaneSums& sums) const {
        for (std::uint32_t value = 0; value <= 8; ++value) {
            if ((lanes.valuesInUse >> value & 1) == 0) continue;
            WeightAccumulator accumulator(value);
            if ((twoBitValues >> value & 1) != 0) {
                for (std::size_t group = 0; group < innerGroups; ++group)
                    accumulator.add(lanes.samples[group].pixels, samples[group]);
            }
            for (std::size_t group = 0; group < innerGroups; ++group)
                accumulator.add(lanes.means[group].pixels, means[group]);
            accumulator.finish(sums);
        }
    }

private:
    MOKTEX_LANE_FUNCTION const BlockRow& upper(std::size_t row) const { return rows[row < 4 ? 0 : 1]; }
    MOKTEX_LANE_FUNCTION const BlockRow& lower(std::size_t row) const { return rows[row < 4 ? 1 : 2]; }

    MOKTEX_LANE_FUNCTION EvaluatedLanes evaluateMeansOfRow(std::size_t row, std::size_t group) {
        const MeanLanes& pixels = lanes.means[group];
        const EndDifferences ends = decodeEnds(pixels.pixels, upper(row), lower(row));
        return evaluateMeans(pixels, ends, grid.across(row), grid.down(row), lanes.hasOneBitInMeans);
    }

    const Lanes& lanes;
    const BlockRow rows[3];
    const BlockRow upperColumn, lowerColumn;
    SampleGrid grid;
    ChosenLanes samples[innerGroups], means[innerGroups];
};

}  // namespace

namespace moktexture::amtc {

LaneError evaluateLanes2bppAVX2(const EvaluationLanes2bpp& lanes, const ColourPair* colours, bool firstPass,
                                const LaneSums& sums) {
    Evaluation evaluation(lanes, bytesOf(colours));
    ErrorLanes errors;
    evaluation.evaluateOuterSamples(errors);
    evaluation.evaluateInnerSamples(errors);
    evaluation.evaluateInnerMeans(errors);
    if (firstPass) evaluation.evaluateOuterMeans(errors);
    evaluation.finishSums(sums);
    return errors.total(firstPass);
}

}  // namespace moktexture::amtc

#endif
