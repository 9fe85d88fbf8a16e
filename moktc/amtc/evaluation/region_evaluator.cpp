// The choice between the scalar evaluators and the lanes, and the layout of the latter (drawn in lane_layout.h).
//
// A visit evaluates one footprint and blend table with dozens of pairs of colours. Laying both out in lanes once makes all
// further evaluations straight loads: no gather, no branch on the kind of a pixel.
//
// Cost of the layout: one pass over the table, for each blend table.

#include "moktc/amtc/evaluation/region_evaluator.h"

#include <new>

namespace moktexture::amtc {

#if MOKTEX_X86_KERNELS
namespace {

constexpr std::size_t lastRow = footprintRows - 1;
static_assert(EvaluationLanes2bpp::lastRow == lastRow && SegmentLanes::pixelCount == footprintPixels4bpp);
static_assert(SegmentLanes::innerPixels == (footprintWidth4bpp - 2) * innerGroups && innerGroups == footprintRows - 2);
static_assert(SegmentLanes::outerPixels == SegmentLanes::pixelCount - SegmentLanes::innerPixels);

/// Where a kernel stores the errors of a lane's pixel: unpacking interleaves lanes 0 to 3 with lanes 4 to 7.
constexpr std::size_t slotOf(std::size_t group, std::size_t lane) {
    return group * laneCount + lane % 4 * 2 + lane / 4;
}

constexpr std::uint32_t bothHalves = 0x00010001;
constexpr std::uint32_t noTap = 0x80808080;

constexpr std::uint32_t wordOf(const std::array<std::uint8_t, indexCount>& bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 | std::uint32_t{bytes[3]} << 24;
}

/// Palette indices (2 * position, + 1 for B) as byte offsets of two channels each in a table of four As, then four Bs.
constexpr std::uint32_t tapOffsets(std::uint32_t paletteIndices) {
    return (paletteIndices & 0x06060606) | (paletteIndices & 0x01010101) << 3;
}

/// What may occur among pixels: a bit for each interpolation weight, and these.
using Traits = std::uint32_t;
constexpr Traits paletteTapTrait = 1 << 16, punchThroughTrait = 1 << 17, oneBitMeanTrait = 1 << 18;

struct Source {
    const PixelBlendEntry* table;
    const std::uint32_t* footprint;
};

void setPixel(const Source& source, std::size_t index, std::size_t lane, PixelLanes& lanes) {
    const PixelBlendEntry& entry = source.table[index];
    lanes.pixel[lane] = source.footprint[index];
    const std::uint32_t leftRight = ((8u - entry.weightX) | std::uint32_t{entry.weightX} << 8) * bothHalves;
    const bool isTap = entry.isPaletteTap != 0, isInner = entry.isOuterRing == 0;
    lanes.upperWeights[lane] = isTap ? 0 : leftRight * (8u - entry.weightY);
    lanes.lowerWeights[lane] = isTap ? 0 : leftRight * entry.weightY;
    lanes.importance[lane] = isInner ? (static_cast<std::uint32_t>(entry.importance) & 0xFFFF) * bothHalves : 0;
    lanes.influence[lane] = isInner ? entry.influence * influenceUnit + 1 : 0;
}

Traits setIndices(const Source& source, std::size_t index, std::size_t lane, IndexLanes& indices) {
    const PixelBlendEntry& entry = source.table[index];
    setPixel(source, index, lane, indices.pixels);
    const bool isTap = entry.isPaletteTap != 0;
    indices.weight1[lane] = entry.level1B * (bothHalves << weightShift);
    indices.weight2[lane] = entry.level2B * (bothHalves << weightShift);
    indices.mask2[lane] = isTap ? ~0u : entry.level2Mask;
    indices.levelValue[lane] = wordOf(entry.levelValue);
    indices.paletteIndex[lane] = isTap ? tapOffsets(wordOf(entry.paletteIndex)) : noTap;
    if (isTap) return paletteTapTrait;
    return 1u << entry.levelValue[1] | 1u << entry.levelValue[2] | (entry.level2Mask != ~0u ? punchThroughTrait : 0);
}

Traits setSample(const Source& source, std::size_t index, std::size_t lane, SampleLanes& samples) {
    setPixel(source, index, lane, samples.pixels);
    const bool isOneBit = source.table[index].modulationClass == ModulationClass::oneBit;
    samples.oneBit[lane] = isOneBit ? EvaluationLanes2bpp::oneBitMark : 0;
    return isOneBit ? 0 : twoBitValues;
}

Traits setMean(const Source& source, std::size_t row, std::size_t column, std::size_t lane, MeanLanes& means) {
    const std::size_t index = row * footprintWidth2bpp + column;
    const PixelBlendEntry& entry = source.table[index];
    setPixel(source, index, lane, means.pixels);
    const ModulationClass from = entry.modulationClass;
    const bool isOneBit = from == ModulationClass::oneBit;
    means.oneBit[lane] = isOneBit ? ~0u : 0;
    const std::uint32_t across = from == ModulationClass::vertical ? 0 : (column > 0) + (column + 1 < footprintWidth2bpp);
    const std::uint32_t down = from == ModulationClass::horizontal ? 0 : (row > 0) + (row < lastRow);
    // A third of 256 is rounded up: the means of three samples, which are small, still come out exact.
    const std::uint32_t count = across + down, factor = (256 + count - 1) / count;
    means.sampleFactors[lane] = (across != 0 ? factor : 0) | (down != 0 ? factor << 16 : 0);
    means.rounding[lane] = count / 2 * factor;
    return isOneBit ? oneBitMeanTrait : allValues;
}

/// Fills the runs segment by segment, in the order of the lists of slots.
class SegmentSorter {
public:
    SegmentSorter(const PixelBlendEntry* blendTable, SegmentLanes& segmentLanes) : table(blendTable), lanes(segmentLanes) {}

    void addSegment(std::size_t segment, const std::uint8_t* begin, const std::uint8_t* end) {
        for (const std::size_t run : {2 * segment, 2 * segment + 1})
            addRun(run, begin, end);
        const bool hasStandard = hasInner(2 * segment), hasPunchThrough = hasInner(2 * segment + 1);
        if (hasStandard && hasPunchThrough)
            lanes.pairs[lanes.pairCount++] = static_cast<std::uint8_t>(segment);
        else if (hasStandard || hasPunchThrough)
            lanes.single[lanes.singleCount++] = static_cast<std::uint8_t>(2 * segment + (hasPunchThrough ? 1 : 0));
        else if (lanes.runs[2 * segment].outerBegin != lanes.runs[2 * segment + 1].outerEnd)
            lanes.outer[lanes.outerCount++] = static_cast<std::uint8_t>(segment);
    }

private:
    bool hasInner(std::size_t run) const { return lanes.runs[run].innerBegin != lanes.runs[run].innerEnd; }

    void addRun(std::size_t run, const std::uint8_t* begin, const std::uint8_t* end) {
        SegmentLanes::Run& bounds = lanes.runs[run];
        bounds.innerBegin = lanes.innerSlotCount;
        bounds.outerBegin = lanes.outerSlotCount;
        for (const std::uint8_t* pixel = begin; pixel != end; ++pixel) {
            if (table[*pixel].isPaletteTap == 0 && table[*pixel].punchClass == run % 2) addPixel(*pixel, run);
        }
        bounds.innerEnd = lanes.innerSlotCount;
        bounds.outerEnd = lanes.outerSlotCount;
    }

    void addPixel(std::size_t pixel, std::size_t run) {
        const std::size_t row = pixel / footprintWidth4bpp, column = pixel % footprintWidth4bpp;
        if (table[pixel].isOuterRing == 0) {
            lanes.innerSlots[lanes.innerSlotCount++] = static_cast<std::uint8_t>(slotOf(row - 1, column));
            lanes.runOfPixel[row - 1][column] = static_cast<std::uint32_t>(run);
        } else {
            lanes.outerSlots[lanes.outerSlotCount++] = static_cast<std::uint8_t>(outerSlotOf(row, column));
        }
    }

    static std::size_t outerSlotOf(std::size_t row, std::size_t column) {
        using Lanes = EvaluationLanes4bpp;
        if (column == lastRow)
            return row == lastRow ? slotOf(Lanes::cornerGroup, Lanes::cornerLane) : slotOf(Lanes::columnGroup, row);
        if (row == 0 || row == lastRow) return slotOf(row == 0 ? Lanes::topGroup : Lanes::bottomGroup, column);
        return slotOf(row - 1, column);
    }

    const PixelBlendEntry* table;
    SegmentLanes& lanes;
};

/// At 4 bits per pixel indices 1 and 2 have weights of at most 7 for B and the rest for A, except where the mask is 0.
void prepareLanes(const Source& source, EvaluationLanes4bpp& lanes) {
    using Lanes = EvaluationLanes4bpp;
    constexpr std::size_t lastColumn = footprintWidth4bpp - 1;
    Traits traits = endValues;
    for (std::size_t row = 0; row <= lastRow; ++row) {
        IndexLanes& group = lanes.groups[row == 0 ? Lanes::topGroup : row == lastRow ? Lanes::bottomGroup : row - 1];
        for (std::size_t lane = 0; lane < laneCount; ++lane)
            traits |= setIndices(source, row * footprintWidth4bpp + lane, lane, group);
    }
    for (std::size_t row = 0; row < lastRow; ++row)
        traits |= setIndices(source, row * footprintWidth4bpp + lastColumn, row, lanes.groups[Lanes::columnGroup]);
    IndexLanes& corner = lanes.groups[Lanes::cornerGroup];
    corner = IndexLanes{};
    for (std::uint32_t& index : corner.paletteIndex)
        index = noTap;
    traits |= setIndices(source, lastRow * footprintWidth4bpp + lastColumn, Lanes::cornerLane, corner);
    lanes.valuesInUse = traits & allValues;
    lanes.hasPaletteTaps = (traits & paletteTapTrait) != 0;
    lanes.hasPunchThrough = (traits & punchThroughTrait) != 0;
}

/// At 2 bits per pixel the interpolation weights are 0, 3, 5 and 8, without masks or palette taps; pixels whose x + y is even
/// have one or two bits of their own, and no other pixel has two.
void prepareLanes(const Source& source, EvaluationLanes2bpp& lanes) {
    using Lanes = EvaluationLanes2bpp;
    constexpr std::size_t lastColumn = footprintWidth2bpp - 1;
    lanes.samples[Lanes::columnGroup] = SampleLanes{};
    lanes.means[Lanes::columnGroup] = MeanLanes{};
    Traits traits = endValues;
    for (std::size_t row = 0; row <= lastRow; ++row) {
        const std::size_t group = row == 0 ? Lanes::topGroup : row == lastRow ? Lanes::bottomGroup : row - 1;
        const std::size_t firstSample = row % 2, firstMean = 1 - firstSample;
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            traits |= setSample(source, row * footprintWidth2bpp + firstSample + 2 * lane, lane, lanes.samples[group]);
            traits |= setMean(source, row, firstMean + 2 * lane, lane, lanes.means[group]);
        }
        const auto columnLane = static_cast<std::size_t>(Lanes::columnLanes[row]);
        if (firstSample == 0)
            traits |= setSample(source, row * footprintWidth2bpp + lastColumn, columnLane, lanes.samples[Lanes::columnGroup]);
        else
            traits |= setMean(source, row, lastColumn, columnLane, lanes.means[Lanes::columnGroup]);
    }
    lanes.valuesInUse = traits & allValues;
    lanes.hasOneBitInMeans = (traits & oneBitMeanTrait) != 0;
}

void prepareLanes(const PixelBlendEntry* table, const Segments& segments, SegmentLanes& lanes) {
    lanes.innerSlotCount = lanes.outerSlotCount = lanes.singleCount = lanes.pairCount = lanes.outerCount = 0;
    for (auto& row : lanes.runOfPixel) {
        for (std::uint32_t& run : row)
            run = 0;
    }
    SegmentSorter sorter(table, lanes);
    const std::uint8_t* const order = segments.order.data();
    const std::uint8_t* const end = order + SegmentLanes::pixelCount;
    std::size_t segment = 0;
    for (const std::uint8_t *begin = order, *next = order; begin != end; begin = next, ++segment) {
        while (next != end && segments.labels[*next] == segments.labels[*begin])
            ++next;
        sorter.addSegment(segment, begin, next);
    }
}

RegionError evaluateByLanes(const EvaluationLanes4bpp& lanes, const SegmentLanes* segments, const NeighbourColours& colours,
                            bool firstPass, const LaneSums& sums) {
    const LaneError error = segments != nullptr ? evaluateSegmentLanesAVX2(lanes, *segments, colours.data(), firstPass, sums)
                                                : evaluateLanes4bppAVX2(lanes, colours.data(), firstPass, sums);
    return {error.inner, error.outer};
}

}  // namespace
#endif

RegionEvaluator::RegionEvaluator(const AmtcLevelSettings& settings, const BlendTable& blendTable, const Footprint& pixels,
                                 const Segments* sharedIndices, InstructionSet instructionSet)
    : table(blendTable),
      footprint(pixels),
      segments(sharedIndices),
      is4bpp(settings.bitsPerPixel == 4),
      usesLanes(MOKTEX_X86_KERNELS != 0 && instructionSet >= InstructionSet::avx2) {
#if MOKTEX_X86_KERNELS
    if (!usesLanes) return;
    // Not initialised: the lanes are large, and every entry that is used is set.
    if (is4bpp)
        prepareLanes({table.data(), footprint.data()}, *::new (&lanes4bpp) EvaluationLanes4bpp);
    else
        prepareLanes({table.data(), footprint.data()}, *::new (&lanes2bpp) EvaluationLanes2bpp);
    if (is4bpp && segments != nullptr) prepareLanes(table.data(), *segments, segmentLanes);
#endif
}

RegionError RegionEvaluator::evaluate(const NeighbourColours& colours, bool firstPass, RegressionSums& sums) const {
    sums = RegressionSums{};
    if (!usesLanes) return evaluateScalar(colours, firstPass, sums);
#if MOKTEX_X86_KERNELS
    static_assert(sizeof(ColourPair) == 8 && sizeof(ColourDifference) == 16, "the kernels' layout");
    const LaneSums laneSums = {sums.levelCount.data(), sums.levelWeight.data(), sums.levelResidual.data()};
    if (is4bpp) return evaluateByLanes(lanes4bpp, segments != nullptr ? &segmentLanes : nullptr, colours, firstPass, laneSums);
    const LaneError error = evaluateLanes2bppAVX2(lanes2bpp, colours.data(), firstPass, laneSums);
    return {error.inner, error.outer};
#else
    return {};
#endif
}

RegionError RegionEvaluator::evaluateScalar(const NeighbourColours& colours, bool firstPass, RegressionSums& sums) const {
    if (!is4bpp) return EvalRegion2bpp(table, footprint, colours, firstPass, sums);
    if (segments == nullptr) return EvalRegion4bpp(table, footprint, colours, firstPass, sums);
    return EvalRegionSegments4bpp(table, footprint, *segments, colours, firstPass, sums);
}

}  // namespace moktexture::amtc
