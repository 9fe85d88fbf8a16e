// The evaluators of pixel_evaluation.cpp and segment_evaluation.cpp at 4 bits per pixel, on the lanes of lane_layout.h.
//
//     for each group:  differences of all four indices; their squared lengths; the smallest; difference and weight of the choice
//     for each interpolation weight in use:  sum the groups' choices under a mask
//
// With segments, errors are stored by slot first, segments are chosen from prefix sums, and each group then takes its pixels'
// choices. A tie is broken by ranking: the error shifted left, with the rank below, makes one minimum do both.
//
// `isSpecial` variants handle palette taps and punch-through cells; most tables have neither.

#include "core/base/instruction_set.h"

#if MOKTEX_X86_KERNELS

#include "moktc/amtc/evaluation/lane_arithmetic_avx2.h"

namespace {

using namespace moktexture::amtc;
using Lanes = EvaluationLanes4bpp;

/// What the pixels of a group share.
struct Surroundings {
    const BlockRow &upper, &lower;
    const Palette& palette;
};

/// Differences of pixels from the colours of each modulation index.
struct IndexDifferences {
    ChannelLanes index0, index1, index2, index3;
};

/// Masks colours that are given by their differences from the pixels.
MOKTEX_LANE_FUNCTION ChannelLanes maskColours(const ChannelLanes& difference, const IndexLanes& pixels) {
    const ChannelLanes pixel = widen(load(pixels.pixels.pixel)), mask = widen(load(pixels.mask2));
    const ChannelLanes colour = pixel - difference;
    return pixel - ChannelLanes(_mm256_and_si256(colour.rg, mask.rg), _mm256_and_si256(colour.ba, mask.ba));
}

/// Colours of palette taps at one modulation index; 0 for other pixels.
MOKTEX_LANE_FUNCTION ChannelLanes tapColours(const Palette& palette, __m256i paletteIndex, char index) {
    const __m256i firstOffsets = _mm256_setr_epi32(0, 0x04040404, 0x08080808, 0x0C0C0C0C,  //
                                                   0, 0x04040404, 0x08080808, 0x0C0C0C0C);
    const __m256i offsets = _mm256_shuffle_epi8(paletteIndex, _mm256_add_epi8(firstOffsets, _mm256_set1_epi8(index)));
    const __m256i bytes = _mm256_or_si256(offsets, _mm256_set1_epi32(static_cast<int>(0x80018000)));
    return {_mm256_shuffle_epi8(palette.rg, bytes), _mm256_shuffle_epi8(palette.ba, bytes)};
}

/// `isSpecial`: there may be punch-through pixels and palette taps.
template <bool isSpecial>
MOKTEX_LANE_FUNCTION IndexDifferences decodeIndices(const Lanes& lanes, std::size_t group, const Surroundings& around) {
    const IndexLanes& pixels = lanes.groups[group];
    const EndDifferences ends = decodeEnds(pixels.pixels, around.upper, around.lower);
    const Blend blendOfEnds(ends);
    const ChannelLanes blend1 = blendOfEnds.at(load(pixels.weight1)), blend2 = blendOfEnds.at(load(pixels.weight2));
    if constexpr (!isSpecial) return {ends.a, blend1, blend2, ends.b};
    const ChannelLanes masked2 = maskColours(blend2, pixels);
    if (!lanes.hasPaletteTaps) return {ends.a, blend1, masked2, ends.b};
    // Taps have come out of the blends as colour 0.
    const __m256i offsets = load(pixels.paletteIndex);
    const Palette& palette = around.palette;
    return {ends.a - tapColours(palette, offsets, 0), blend1 - tapColours(palette, offsets, 1),
            masked2 - tapColours(palette, offsets, 2), ends.b - tapColours(palette, offsets, 3)};
}

struct IndexErrors {
    MOKTEX_LANE_FUNCTION explicit IndexErrors(const IndexDifferences& differences)
        : index0(squaredLength(differences.index0)),
          index1(squaredLength(differences.index1)),
          index2(squaredLength(differences.index2)),
          index3(squaredLength(differences.index3)) {}
    __m256i index0, index1, index2, index3;
};

/// Masks of the pixels that prefer an index to those before it: 1 over 2, 0 over these, 3 over all.
struct IndexChoice {
    __m256i takes1, takes0, takes3;
};

MOKTEX_LANE_FUNCTION ChosenLanes chosenLanes(const IndexLanes& pixels, const IndexDifferences& differences,
                                             const IndexChoice& choice) {
    const ChannelLanes difference =
        blend(blend(blend(differences.index2, differences.index1, choice.takes1), differences.index0, choice.takes0),
              differences.index3, choice.takes3);
    __m256i shift = blend(_mm256_set1_epi32(16), _mm256_set1_epi32(8), choice.takes1);
    shift = _mm256_andnot_si256(choice.takes0, shift);
    shift = blend(shift, _mm256_set1_epi32(24), choice.takes3);
    const __m256i value = _mm256_and_si256(_mm256_srlv_epi32(load(pixels.levelValue), shift), _mm256_set1_epi32(0xFF));
    return chosen(difference, value);
}

/// Errors of the nearest colours; the earliest of 2, 1, 0, 3 among equals.
MOKTEX_LANE_FUNCTION __m256i chooseIndices(const IndexErrors& errors, IndexChoice& choice) {
    choice.takes1 = _mm256_cmpgt_epi32(errors.index2, errors.index1);
    const __m256i smallest12 = _mm256_min_epi32(errors.index1, errors.index2);
    choice.takes0 = _mm256_cmpgt_epi32(smallest12, errors.index0);
    const __m256i smallest012 = _mm256_min_epi32(smallest12, errors.index0);
    choice.takes3 = _mm256_cmpgt_epi32(smallest012, errors.index3);
    return _mm256_min_epi32(smallest012, errors.index3);
}

/// Errors by lane: of the groups of rows, whose lane 0 belongs to the outer ring, and of the groups of the ring.
struct ErrorLanes {
    __m256i rows = _mm256_setzero_si256(), ring = rows;

    MOKTEX_LANE_FUNCTION void add(std::size_t group, __m256i errors) {
        __m256i& sum = group < innerGroups ? rows : ring;
        sum = _mm256_add_epi32(sum, errors);
    }
    MOKTEX_LANE_FUNCTION LaneError total(bool withOuter) const {
        const __m256i isRing = _mm256_setr_epi32(-1, 0, 0, 0, 0, 0, 0, 0);
        const __m256i outer = _mm256_add_epi32(ring, _mm256_and_si256(isRing, rows));
        return {static_cast<std::uint32_t>(sumOf(_mm256_andnot_si256(isRing, rows))),
                withOuter ? static_cast<std::uint32_t>(sumOf(outer)) : 0};
    }
};

/// Calls `visit` with each group of a row and, if wanted, of the ring, and with the group's surroundings.
template <bool isSpecial, typename Visit>
MOKTEX_LANE_FUNCTION void forEachGroup(const ColourPair* colours, bool withRing, const Visit& visit) {
    const ColourBytes topPairs = bytesOf(colours), middlePairs = topPairs + blockRowBytes;
    const BlockRow top = loadBlockRow(topPairs), middle = loadBlockRow(middlePairs),
                   bottom = loadBlockRow(middlePairs + blockRowBytes);
    const Palette upperPalette = isSpecial ? loadPalette(topPairs) : Palette();
    const Palette lowerPalette = isSpecial ? loadPalette(middlePairs) : Palette();
    const Surroundings upper = {top, middle, upperPalette}, lower = {middle, bottom, lowerPalette};
    for (std::size_t group = 0; group < 3; ++group)
        visit(group, upper);
    for (std::size_t group = 3; group < innerGroups; ++group)
        visit(group, lower);
    if (!withRing) return;
    const BlockRow columnUpper = rightHalves(top, middle), columnLower = rightHalves(middle, bottom);
    const Palette columnPalette = rightHalves(upperPalette, lowerPalette);
    const Surroundings column = {columnUpper, columnLower, columnPalette};
    const Surroundings* const ofRing[] = {&upper, &lower, &column, &column};
    for (std::size_t group = innerGroups; group < Lanes::groupCount; ++group)
        visit(group, *ofRing[group - innerGroups]);
}

MOKTEX_LANE_FUNCTION void finishSums(const Lanes& lanes, const ChosenLanes* choices, const LaneSums& sums) {
    constexpr std::uint32_t values[] = {0, 3, 4, 5, 8};
    for (const std::uint32_t value : values) {
        if ((lanes.valuesInUse >> value & 1) == 0) continue;
        WeightAccumulator accumulator(value);
        for (std::size_t group = 0; group < innerGroups; ++group)
            accumulator.add(lanes.groups[group].pixels, choices[group]);
        accumulator.finish(sums);
    }
}

/// The errors of a pixel or a run, by modulation index.
using FourErrors = __m128i;

/// Prefix sums of errors along a list of slots: a run's errors are the difference of two of them.
template <std::size_t size>
class RunningErrors {
public:
    MOKTEX_LANE_FUNCTION void fill(const std::uint8_t* slots, std::size_t count, const FourErrors* errors) {
        FourErrors sum = _mm_setzero_si128();
        sums[0] = sum;
        for (std::size_t i = 0; i < count; ++i) {
            sum = _mm_add_epi32(sum, errors[slots[i]]);
            sums[i + 1] = sum;
        }
    }
    MOKTEX_LANE_FUNCTION FourErrors between(std::size_t begin, std::size_t end) const {
        return _mm_sub_epi32(sums[end], sums[begin]);
    }

private:
    FourErrors sums[size + 1];
};

MOKTEX_LANE_FUNCTION std::uint32_t minimumOf(__m128i values) {
    values = _mm_min_epu32(values, _mm_shuffle_epi32(values, 0x4E));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_min_epu32(values, _mm_shuffle_epi32(values, 0xB1))));
}

/// All four errors of the pixels of a group, by slot.
MOKTEX_LANE_FUNCTION void storeErrors(const IndexErrors& errors, FourErrors* slots) {
    const __m256i first01 = _mm256_unpacklo_epi32(errors.index0, errors.index1),
                  last01 = _mm256_unpackhi_epi32(errors.index0, errors.index1),
                  first23 = _mm256_unpacklo_epi32(errors.index2, errors.index3),
                  last23 = _mm256_unpackhi_epi32(errors.index2, errors.index3);
    store(slots + 0, _mm256_unpacklo_epi64(first01, first23));
    store(slots + 2, _mm256_unpackhi_epi64(first01, first23));
    store(slots + 4, _mm256_unpacklo_epi64(last01, last23));
    store(slots + 6, _mm256_unpackhi_epi64(last01, last23));
}

MOKTEX_LANE_FUNCTION void storeDifferences(const IndexDifferences& from, __m256i* to) {
    const ChannelLanes* const differences[] = {&from.index0, &from.index1, &from.index2, &from.index3};
    for (std::size_t index = 0; index < 4; ++index) {
        store(to + 2 * index, differences[index]->rg);
        store(to + 2 * index + 1, differences[index]->ba);
    }
}

MOKTEX_LANE_FUNCTION IndexDifferences loadDifferences(const __m256i* from) {
    const auto at = [from](std::size_t index) { return ChannelLanes(load(from + 2 * index), load(from + 2 * index + 1)); };
    return {at(0), at(1), at(2), at(3)};
}

/// Chooses the modulation indices of segments as segment_evaluation.cpp does.
class SegmentChoice {
public:
    MOKTEX_LANE_FUNCTION SegmentChoice(const SegmentLanes& segmentLanes, const FourErrors* errors, bool firstPass)
        : segments(segmentLanes) {
        indices[0] = 0;  // for lanes without a run
        inner.fill(segments.innerSlots, segments.innerSlotCount, errors);
        outer.fill(segments.outerSlots, firstPass ? segments.outerSlotCount : 0, errors);
        for (std::size_t i = 0; i < segments.singleCount; ++i)
            chooseIndex(segments.single[i], firstPass);
        for (std::size_t i = 0; i < segments.pairCount; ++i)
            choosePair(std::size_t{2} * segments.pairs[i], firstPass);
        for (std::size_t i = 0; firstPass && i < segments.outerCount; ++i)
            addOuterSegment(std::size_t{2} * segments.outer[i]);
    }

    MOKTEX_LANE_FUNCTION __m256i indicesOf(std::size_t group) const {
        return _mm256_i32gather_epi32(indices, load(segments.runOfPixel[group]), 4);
    }

    LaneError total = {0, 0};

private:
    MOKTEX_LANE_FUNCTION FourErrors innerErrors(std::size_t run) const {
        return inner.between(segments.runs[run].innerBegin, segments.runs[run].innerEnd);
    }
    MOKTEX_LANE_FUNCTION FourErrors outerErrors(std::size_t run) const {
        return outer.between(segments.runs[run].outerBegin, segments.runs[run].outerEnd);
    }
    MOKTEX_LANE_FUNCTION void addOuter(std::size_t run) {
        std::uint32_t errors[4];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(errors), outerErrors(run));
        total.outer += errors[indices[run]];
    }

    /// The earliest of 3, 0, 1, 2 among equals.
    MOKTEX_LANE_FUNCTION void chooseIndex(std::size_t run, bool firstPass) {
        const __m128i ranks = _mm_setr_epi32(1, 2, 3, 0);
        const std::uint32_t smallest = minimumOf(_mm_or_si128(_mm_slli_epi32(innerErrors(run), 2), ranks));
        indices[run] = static_cast<std::int32_t>((smallest + 3) & 3);
        total.inner += smallest >> 2;
        if (firstPass) addOuter(run);
    }

    /// The earliest of six pairs of indices among equals.
    MOKTEX_LANE_FUNCTION void choosePair(std::size_t run, bool firstPass) {
        constexpr std::uint8_t standardIndices[] = {0, 3, 0, 3, 1, 2}, punchIndices[] = {0, 3, 2, 2, 1, 1};
        const FourErrors standard = innerErrors(run), punchThrough = innerErrors(run + 1);
        const __m128i firstFour = _mm_add_epi32(_mm_shuffle_epi32(standard, 0xCC), _mm_shuffle_epi32(punchThrough, 0xAC));
        const __m128i lastTwo = _mm_add_epi32(_mm_shuffle_epi32(standard, 0x99), _mm_shuffle_epi32(punchThrough, 0x55));
        const __m128i ranked = _mm_min_epu32(_mm_or_si128(_mm_slli_epi32(firstFour, 3), _mm_setr_epi32(0, 1, 2, 3)),
                                             _mm_or_si128(_mm_slli_epi32(lastTwo, 3), _mm_setr_epi32(4, 5, 4, 5)));
        const std::uint32_t smallest = minimumOf(ranked);
        indices[run] = standardIndices[smallest & 7];
        indices[run + 1] = punchIndices[smallest & 7];
        total.inner += smallest >> 3;
        if (!firstPass) return;
        addOuter(run);
        addOuter(run + 1);
    }

    /// The smallest of the four pairs of indices that segments without inner pixels may take.
    MOKTEX_LANE_FUNCTION void addOuterSegment(std::size_t run) {
        const __m128i standard = _mm_shuffle_epi32(outerErrors(run), 0x9C);
        total.outer += minimumOf(_mm_add_epi32(standard, _mm_shuffle_epi32(outerErrors(run + 1), 0x5C)));
    }

    const SegmentLanes& segments;
    RunningErrors<SegmentLanes::innerPixels> inner;
    RunningErrors<SegmentLanes::outerPixels> outer;
    std::int32_t indices[2 * SegmentLanes::maxSegments];  ///< by run
};

template <bool isSpecial>
LaneError evaluateFreely(const Lanes& lanes, const ColourPair* colours, bool firstPass, const LaneSums& sums) {
    ChosenLanes choices[innerGroups];
    ErrorLanes errorLanes;
    forEachGroup<isSpecial>(colours, firstPass, [&](std::size_t group, const Surroundings& around) {
        const IndexDifferences differences = decodeIndices<isSpecial>(lanes, group, around);
        IndexChoice choice;
        errorLanes.add(group, chooseIndices(IndexErrors(differences), choice));
        if (group < innerGroups) choices[group] = chosenLanes(lanes.groups[group], differences, choice);
    });
    finishSums(lanes, choices, sums);
    return errorLanes.total(firstPass);
}

template <bool isSpecial>
LaneError evaluateSegments(const Lanes& lanes, const SegmentLanes& segments, const ColourPair* colours, bool firstPass,
                           const LaneSums& sums) {
    FourErrors errors[Lanes::groupCount * laneCount];
    __m256i differences[innerGroups][8];
    ChosenLanes choices[innerGroups];
    __m256i isTap[Lanes::groupCount], tapIndices[Lanes::groupCount];
    ErrorLanes tapErrors;
    forEachGroup<isSpecial>(colours, firstPass, [&](std::size_t group, const Surroundings& around) {
        const IndexDifferences decoded = decodeIndices<isSpecial>(lanes, group, around);
        const IndexErrors indexErrors(decoded);
        storeErrors(indexErrors, errors + group * laneCount);
        if (group < innerGroups) storeDifferences(decoded, differences[group]);
        if (!lanes.hasPaletteTaps) return;
        isTap[group] = _mm256_cmpgt_epi32(load(lanes.groups[group].paletteIndex), _mm256_set1_epi32(-1));
        const __m256i takesA = _mm256_cmpgt_epi32(indexErrors.index3, indexErrors.index0);
        tapIndices[group] = _mm256_andnot_si256(takesA, _mm256_set1_epi32(3));
        tapErrors.add(group, _mm256_and_si256(isTap[group], _mm256_min_epi32(indexErrors.index0, indexErrors.index3)));
    });
    const SegmentChoice segmentChoice(segments, errors, firstPass);
    for (std::size_t group = 0; group < innerGroups; ++group) {
        __m256i index = segmentChoice.indicesOf(group);
        if (lanes.hasPaletteTaps) index = blend(index, tapIndices[group], isTap[group]);
        const IndexChoice choice = {_mm256_cmpeq_epi32(index, _mm256_set1_epi32(1)),
                                    _mm256_cmpeq_epi32(index, _mm256_setzero_si256()),
                                    _mm256_cmpeq_epi32(index, _mm256_set1_epi32(3))};
        choices[group] = chosenLanes(lanes.groups[group], loadDifferences(differences[group]), choice);
    }
    finishSums(lanes, choices, sums);
    const LaneError ofTaps = tapErrors.total(firstPass);
    return {segmentChoice.total.inner + ofTaps.inner, segmentChoice.total.outer + ofTaps.outer};
}

}  // namespace

namespace moktexture::amtc {

LaneError evaluateLanes4bppAVX2(const EvaluationLanes4bpp& lanes, const ColourPair* colours, bool firstPass,
                                const LaneSums& sums) {
    const bool isSpecial = lanes.hasPaletteTaps || lanes.hasPunchThrough;
    return isSpecial ? evaluateFreely<true>(lanes, colours, firstPass, sums)
                     : evaluateFreely<false>(lanes, colours, firstPass, sums);
}

LaneError evaluateSegmentLanesAVX2(const EvaluationLanes4bpp& lanes, const SegmentLanes& segments, const ColourPair* colours,
                                   bool firstPass, const LaneSums& sums) {
    const bool isSpecial = lanes.hasPaletteTaps || lanes.hasPunchThrough;
    return isSpecial ? evaluateSegments<true>(lanes, segments, colours, firstPass, sums)
                     : evaluateSegments<false>(lanes, segments, colours, firstPass, sums);
}

}  // namespace moktexture::amtc

#endif
