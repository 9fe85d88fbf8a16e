#include "moktc/amtc/driver/block_passes.h"

#include <algorithm>
#include <array>
#include <thread>

#include "moktc/amtc/driver/threadsupport.h"
#include "moktc/amtc/refinement/visit_block.h"

namespace moktexture::amtc {
namespace {

/// Everything that the workers of one fan-out share.
struct AmtcThreadContext {
    const AmtcImage* image;
    const AmtcLevelSettings* settings;
    std::uint32_t pass;                         ///< RunBlockPass
    std::uint32_t rowPhase, columnPhase, step;  ///< RunParityPhase
    const FootprintKernels* kernels;            ///< RunBlockPass
    const BlockRows* blockRows;
    InstructionSet instructionSet;
    std::uint32_t threadCount;  ///< shares of the pass
    std::uint32_t workerCount;  ///< at most threadCount; worker w carries shares w, w + workerCount and so on
    std::array<std::thread, mostThreads> handles;

    struct PerThread {
        const AmtcThreadContext* context;
        std::uint32_t worker;
    };
    std::array<PerThread, mostThreads> perThread;
};

/// What a worker does. It allocates nothing, so that no failure has to find its way out of a thread or past those still running.
using Work = void (*)(const AmtcThreadContext& context, std::uint32_t worker) noexcept;

void setUpShares(const AmtcThreadContext& context, std::uint32_t worker) noexcept {
    const AmtcLevelSettings& settings = *context.settings;
    for (std::uint32_t share = worker; share < context.threadCount; share += context.workerCount) {
        for (std::uint32_t row = share; row < settings.blocksDown; row += context.threadCount) {
            for (std::uint32_t column = 0; column < settings.blocksAcross; ++column)
                VisitBlockSetup(context.pass, *context.image, settings, row, column, *context.kernels, *context.blockRows);
        }
    }
}

void refineRow(const AmtcThreadContext& context, std::uint32_t row, VisitSpace& space) {
    for (std::uint32_t column = context.columnPhase; column < context.settings->blocksAcross; column += 2)
        VisitBlockRefine(*context.image, *context.settings, row, column, context.instructionSet, space, context.step,
                         *context.blockRows);
}

/// Of an odd number of rows the last has the first one's parity and is its neighbour across the edge. It waits for the others.
std::uint32_t rowsToShare(const AmtcThreadContext& context) {
    return context.settings->blocksDown / 2 * 2;
}

void refineShares(const AmtcThreadContext& context, std::uint32_t worker) noexcept {
    VisitSpace space;
    for (std::uint32_t share = worker; share < context.threadCount; share += context.workerCount) {
        for (std::uint32_t row = context.rowPhase + 2 * share; row < rowsToShare(context); row += 2 * context.threadCount)
            refineRow(context, row, space);
    }
}

template <Work work>
void routine(void* context) {
    const auto* thread = static_cast<const AmtcThreadContext::PerThread*>(context);
    work(*thread->context, thread->worker);
}

/// Runs all shares and returns when they are done. The caller's thread is the last worker.
template <Work work>
void fanOut(AmtcThreadContext& context, std::uint32_t processors) {
    if (context.threadCount == 0) return;
    context.workerCount = std::clamp(processors, 1u, context.threadCount);
    const std::uint32_t helpers = context.workerCount - 1;
    for (std::uint32_t worker = 0; worker < helpers; ++worker) {
        context.perThread[worker] = {&context, worker};
        context.handles[worker] = StartThread(routine<work>, &context.perThread[worker]);
    }
    work(context, helpers);
    WaitForThreads(context.handles.data(), helpers);
}

}  // namespace

void RunBlockPass(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, const FootprintKernels& kernels,
                  std::uint32_t threadLimit, const LevelResources& resources, const BlockRows& blockRows) {
    AmtcThreadContext context{};
    context.image = &image;
    context.settings = &settings;
    context.pass = pass;
    context.kernels = &kernels;
    context.blockRows = &blockRows;
    context.threadCount = std::min(threadLimit, settings.blocksDown);
    fanOut<setUpShares>(context, resources.processors);
}

void RunParityPhase(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t rowPhase, std::uint32_t columnPhase,
                    std::uint32_t step, std::uint32_t threadLimit, const LevelResources& resources, const BlockRows& blockRows) {
    AmtcThreadContext context{};
    context.image = &image;
    context.settings = &settings;
    context.rowPhase = rowPhase;
    context.columnPhase = columnPhase;
    context.step = step;
    context.blockRows = &blockRows;
    context.instructionSet = resources.instructionSet;
    // Kept: half of one row of blocks is no thread, so images one block high are never refined and keep their start candidates.
    context.threadCount = std::min(threadLimit, settings.blocksDown / 2);
    fanOut<refineShares>(context, resources.processors);

    const bool lastRowWaits = rowPhase == 0 && rowsToShare(context) != settings.blocksDown;
    if (lastRowWaits && context.threadCount != 0) {
        VisitSpace space;
        refineRow(context, settings.blocksDown - 1, space);
    }
}

}  // namespace moktexture::amtc
