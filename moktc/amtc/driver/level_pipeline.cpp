#include "moktc/amtc/driver/level_pipeline.h"

#include <algorithm>
#include <cstdio>

#include "moktc/amtc/driver/block_passes.h"
#include "moktc/amtc/driver/pack_local_block.h"
#include "moktc/amtc/driver/sweep_settings.h"
#include "moktc/block/block_order.h"

namespace moktexture::amtc {
namespace {

struct ParityPhase {
    std::uint32_t row, column;
};

// The order of a sweep's phases.
constexpr ParityPhase parityPhases[] = {{0, 0}, {1, 1}, {0, 1}, {1, 0}};

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

void setUp(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t threadLimit, const LevelResources& resources,
           const BlockRows& blockRows) {
    const FootprintKernels kernels = makeFootprintKernels(settings);
    for (const std::uint32_t pass : {0u, 1u})
        RunBlockPass(pass, image, settings, kernels, threadLimit, resources, blockRows);
}

void sweep(const AmtcImage& image, AmtcLevelSettings& settings, std::uint32_t quality, const LevelResources& resources,
           const BlockRows& blockRows) {
    const std::uint32_t threadLimit = std::clamp(settings.blocksDown / 2, 1u, mostThreads);
    const std::uint32_t sweeps = sweepCount(quality);
    std::uint32_t step = 1;
    for (std::uint32_t number = 0; number < sweeps; ++number) {
        const AmtcLevelSettings previous = settings;
        SetSweepSettings(quality, sweeps, number, settings, previous);
        if (number == 0) setUp(image, settings, threadLimit, resources, blockRows);
        for (const ParityPhase& phase : parityPhases)
            RunParityPhase(image, settings, phase.row, phase.column, step++, threadLimit, resources, blockRows);
    }
}

void pack(const AmtcImage& image, const AmtcLevelSettings& settings, const BlockRows& blockRows, bool linearBlockOrder,
          std::uint8_t* destination) {
    BlendTable blendTable;
    for (std::uint32_t row = 0; row < settings.blocksDown; ++row) {
        for (std::uint32_t column = 0; column < settings.blocksAcross; ++column) {
            const std::uint64_t place =
                moktc::BlockIndex(settings.blocksAcross, settings.blocksDown, column, row, linearBlockOrder);
            PackLocalBlock(image, blockRows, settings, row, column, blendTable, destination + place * 8);
        }
    }
}

}  // namespace

bool CompressLevel(const AmtcImage& image, std::uint32_t formatVersion, std::uint32_t bitsPerPixel,
                   std::uint32_t secondGeneration, std::uint8_t* destination, bool linearBlockOrder, std::uint32_t quality,
                   const LevelResources& resources) {
    const BlockVariant variant = {Rate(bitsPerPixel), secondGeneration != 0 ? Generation::second : Generation::first};
    AmtcLevelSettings settings = makeLevelSettings(image.Width, image.Height, variant);
    settings.formatVersion = static_cast<std::uint8_t>(formatVersion);
    const LevelRecords records(image, settings);
    if (!records.areAllocated()) {
        std::fprintf(stderr, "PANIC. Out of memory!? (L:%d) Compression failed\n\n", __LINE__);
        return false;
    }
    sweep(image, settings, quality, resources, records.rows());
    pack(image, settings, records.rows(), linearBlockOrder, destination);
    return true;
}

}  // namespace moktexture::amtc
