// Problem: choose two colours, a region mode and the modulation of every block of an image so that the decoded pixels come close
// to the given ones, by the sum of squared differences of R, G, B and A. A decoder blends the colours of four blocks at each
// pixel, so no block can be encoded alone: its colours reach a footprint of (2 * block width + 1) by (2 * block height + 1)
// pixels, and the best colours depend on those of the eight blocks around it.
//
// Idea: coordinate descent over the block grid. One visit improves the candidates of one block in each region mode while its
// neighbours stay as they are, and then makes the best mode the one that the neighbours see. Sweeps over all blocks repeat this.
//
//     set-up pass 0: statistics of each footprint
//     set-up pass 1: detail statistics, segmentation, start candidates          (needs the neighbours' statistics)
//     for each sweep:
//         set what this sweep may try
//         for each of four parity phases:                                       (see block_passes.cpp)
//             for each block of the phase, in parallel:
//                 unless a visit is forced: skip it if no neighbour has changed since its last visit
//                 for each region mode: refine its candidates                   (see mode_refinement.cpp)
//                 choose the best mode; note the step, and whether the block changed
//     for each block: choose the modulation against the final colours and pack the words
//
// The search widens from sweep to sweep. Sweep 0 only scores the start candidates, so that sweep 1 refines each block against
// sensible neighbours. Early sweeps keep colours in the bounds of the pixels and let each connected segment of the image share
// one modulation index, which guards against fitting noise; later ones drop both rules. The second generation's own modes join
// once the shared ones are near their colours. A sweep that widens the search visits every block; the others only those near a
// change.
//
// It ends after a fixed number of sweeps. A visit does not always lower the error of the whole image (modes are tried under
// assumptions on the neighbours' modes, see mode_refinement.cpp), so convergence is likely but not proven.
//
// Cost: a visit that is not skipped evaluates each mode's candidates, at most 14 under each of 1 or 8 variants, up to
// `refineIterations` times. Late sweeps skip most blocks, so time grows less than linearly with the number of sweeps. Memory: one
// BlockRecord per block for the whole level.

#include "moktc/amtc/driver/level_pipeline.h"

#include <algorithm>
#include <cstdio>

#include "moktc/block/block_order.h"

namespace moktexture::amtc {
namespace {

struct Effort {
    std::uint32_t sweeps, refineIterations;
};

// One row per quality, 0 to 4. More sweeps: colours travel further across the grid, at nearly linear cost while blocks still
// change. More iterations: candidates come closer to their optimum in one visit; time grows linearly. Bytes depend on both.
constexpr std::array<Effort, 5> efforts = {{
    // sweeps  evaluations per candidate from sweep 1 on
    {2, 3},
    {4, 3},
    {8, 4},
    {16, 6},
    {32, 8},
}};

// Earlier: more sweeps refine with the wider search, at up to eight times the cost of a visit. Later: qualities with few sweeps
// never reach it.
constexpr std::uint32_t firstExtendedSweep = 3;       ///< the second generation's own modes join
constexpr std::uint32_t firstUnconstrainedSweep = 4;  ///< colours may leave their bounds, pixels their segments

const Effort& effortOf(std::uint32_t quality) {
    return efforts[std::min<std::size_t>(quality, efforts.size() - 1)];
}

/// Whether a sweep tries more or allows more than the one before, so that every block may find something new.
bool isSearchWidened(const AmtcLevelSettings& settings, const AmtcLevelSettings& previous) {
    return previous.extendedModes < settings.extendedModes || previous.neighbourModeVariants < settings.neighbourModeVariants ||
           previous.clampToBounds > settings.clampToBounds || previous.useSegments != settings.useSegments;
}

/// The block records of one level.
class LevelRecords {
public:
    LevelRecords(const AmtcImage& image, const AmtcLevelSettings& settings)
        : allocated(AllocateBlockRows(image.Width, image.Height, settings.blockWidth, settings.blockHeight, blockRows)) {}
    LevelRecords(const LevelRecords&) = delete;
    LevelRecords& operator=(const LevelRecords&) = delete;
    ~LevelRecords() { FreeBlockRows(blockRows); }

    bool areAllocated() const { return allocated; }
    const BlockRows& rows() const { return blockRows; }

private:
    BlockRows blockRows;
    bool allocated;
};

void setUp(const AmtcThreadContext& context) {
    const FootprintKernels kernels = makeFootprintKernels(context.settings);
    for (const std::uint32_t pass : {0u, 1u})
        RunBlockPass(context, pass, kernels);
}

void sweepLevel(const AmtcImage& image, const EncodeOptions& options, AmtcLevelSettings& settings, const BlockRows& blockRows) {
    const std::uint32_t threadLimit = std::clamp(settings.blocksDown / 2, 1u, maxThreads);
    const AmtcThreadContext context = {image, settings, blockRows, threadLimit, options.threads, options.instructionSet};
    const std::uint32_t sweeps = sweepCount(options.quality);
    for (std::uint32_t sweep = 0; sweep < sweeps; ++sweep) {
        const AmtcLevelSettings previous = settings;
        SetSweepSettings(options.quality, sweeps, sweep, settings, previous);
        if (sweep == 0) setUp(context);
        runSweep(context, sweep);
    }
}

void packLevel(const AmtcImage& image, const AmtcLevelSettings& settings, const BlockRows& blockRows, bool linearBlockOrder,
               std::uint8_t* destination) {
    BlendTable blendTable;
    for (std::uint32_t row = 0; row < settings.blocksDown; ++row) {
        for (std::uint32_t column = 0; column < settings.blocksAcross; ++column) {
            const std::uint64_t index =
                moktc::BlockIndex(settings.blocksAcross, settings.blocksDown, column, row, linearBlockOrder);
            PackLocalBlock(image, blockRows, settings, row, column, blendTable, destination + index * 8);
        }
    }
}

}  // namespace

std::uint32_t sweepCount(std::uint32_t quality) {
    return effortOf(quality).sweeps;
}

void SetSweepSettings(std::uint32_t quality, std::uint32_t sweeps, std::uint32_t sweep, AmtcLevelSettings& settings,
                      const AmtcLevelSettings& previous) {
    const bool isFirst = sweep == 0, isLast = sweep + 1 == sweeps;
    const bool hasNeighbours = settings.blocksDown >= 2 && settings.blocksAcross >= 2;
    settings.refineIterations = isFirst ? 1 : effortOf(quality).refineIterations;
    settings.candidatesKept = maxCandidates;
    settings.extendedModes = settings.secondGeneration != 0 && sweep >= firstExtendedSweep;
    settings.neighbourModeVariants = settings.extendedModes != 0 && !isLast && hasNeighbours;
    settings.clampToBounds = sweep < firstUnconstrainedSweep;
    settings.useSegments = !isFirst && sweep < firstUnconstrainedSweep;
    settings.forceVisit = isFirst || isSearchWidened(settings, previous);
}

EncodeOptions makeEncodeOptions(std::uint32_t formatVersion, std::uint32_t bitsPerPixel, std::uint32_t secondGeneration,
                                std::uint32_t linearBlockOrder, std::uint8_t quality) {
    const bool isKnownRate = bitsPerPixel == 1 || bitsPerPixel == 2 || bitsPerPixel == 4;
    return {
        .variant = {isKnownRate ? Rate(bitsPerPixel) : Rate{0}, secondGeneration != 0 ? Generation::second : Generation::first},
        .linearBlockOrder = linearBlockOrder != 0,
        .quality = quality,
        .formatVersion = formatVersion};
}

bool encodeLevel(const AmtcImage& image, const EncodeOptions& options, std::uint8_t* destination) {
    AmtcLevelSettings settings = makeLevelSettings(image.Width, image.Height, options.variant);
    settings.formatVersion = static_cast<std::uint8_t>(options.formatVersion);
    const LevelRecords records(image, settings);
    if (!records.areAllocated()) {
        std::fprintf(stderr, "PANIC. Out of memory!? (L:%d) Compression failed\n\n", __LINE__);
        return false;
    }
    sweepLevel(image, options, settings, records.rows());
    packLevel(image, settings, records.rows(), options.linearBlockOrder, destination);
    return true;
}

std::uint32_t CompressLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                            std::uint32_t secondGeneration, std::uint8_t* destination, std::uint32_t linearBlockOrder,
                            std::uint8_t quality, AmtcProgress** /*progress*/) {
    const EncodeOptions options = makeEncodeOptions(formatVersion, bitsPerPixel, secondGeneration, linearBlockOrder, quality);
    return encodeLevel(image, options, destination) ? 1 : 0;
}

}  // namespace moktexture::amtc
