// Problem: visit every block of a level on several threads. A visit writes its own block record and reads those of the eight
// blocks around it, so blocks that touch must not be visited at the same time.
//
// Set-up needs no order within a pass: pass 0 reads no other record, pass 1 reads only what pass 0 wrote.
//
// Refinement runs in parity phases. The blocks of one phase have the same row parity and the same column parity:
//
//       column  0  1  2  3  4  5          A block of phase p has no other block of phase p among its eight neighbours, so
//       row 0   a  c  a  c  a  c          within a phase no thread reads what another one writes.
//           1   d  b  d  b  d  b
//           2   a  c  a  c  a  c          The order of the phases is a, b, c, d (`parityPhases`).
//           3   d  b  d  b  d  b
//
// No lock, atomic or fence is needed: joining the threads at the end of a pass makes its results visible to the next one.
//
//     RunParityPhase(phase):
//         on each thread t of T:  for row = phase.row + 2 t, step 2 T:  for column = phase.column, step 2:  visit
//         join
//
// The grid wraps around. With an odd number of columns the first and the last block of a row are neighbours of one parity: one
// thread visits a row, in order, so the result is still determined. With an odd number of rows the same holds for the first and
// the last row: the last one is visited on its own after the threads have been joined. So the bytes never depend on the number
// of threads.
//
// Cost: one fork and join per pass: 2 for set-up and 4 per sweep. A thread holds one VisitSpace, about 90 KiB, on its stack.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "moktc/amtc/driver/level_pipeline.h"
#include "moktc/amtc/refinement/visit_block.h"

namespace moktexture::amtc {
namespace {

/// The phases of a sweep, in their order.
constexpr std::array<ParityPhase, 4> parityPhases = {{
    // row column   in the drawing above
    {0, 0},  // a
    {1, 1},  // b
    {0, 1},  // c
    {1, 0},  // d
}};

/// Calls `work(thread, threadCount)` on each of the threads that are wanted and the machine has. Failure to start one ends the
/// process.
template <class Work>
void runOnThreads(const AmtcThreadContext& context, std::uint32_t wantedThreads, const Work& work) {
    const std::uint32_t threadCount = std::min(wantedThreads, std::max(context.threads, 1u));
    runTasks(threadCount, threadCount, [&](std::uint32_t thread) { work(thread, threadCount); }, {StartThread, WaitForThreads});
}

void refineRow(const AmtcThreadContext& context, std::uint32_t row, std::uint32_t columnPhase, std::uint32_t step,
               VisitSpace& space) {
    for (std::uint32_t column = columnPhase; column < context.settings.blocksAcross; column += 2)
        VisitBlockRefine({context.image, context.settings, context.blockRows, row, column}, step, context.instructionSet, space);
}

}  // namespace

void RunBlockPass(const AmtcThreadContext& context, std::uint32_t pass, const FootprintKernels& kernels) {
    const AmtcLevelSettings& settings = context.settings;
    runOnThreads(context, std::min(context.threadLimit, settings.blocksDown),
                 [&](std::uint32_t thread, std::uint32_t threadCount) {
                     for (std::uint32_t row = thread; row < settings.blocksDown; row += threadCount) {
                         for (std::uint32_t column = 0; column < settings.blocksAcross; ++column)
                             VisitBlockSetup({context.image, settings, context.blockRows, row, column}, pass, kernels);
                     }
                 });
}

void runSweep(const AmtcThreadContext& context, std::uint32_t sweep) {
    std::uint32_t step = 1 + sweep * static_cast<std::uint32_t>(parityPhases.size());
    for (const ParityPhase& phase : parityPhases)
        RunParityPhase(context, phase, step++);
}

void RunParityPhase(const AmtcThreadContext& context, const ParityPhase& phase, std::uint32_t step) {
    // Kept (one-block-row-never-refined): a thread takes at least two block rows, so images one block high get no thread and keep
    // their start candidates; .mok files of such textures hold the resulting blocks.
    const std::uint32_t rowPairs = context.settings.blocksDown / 2;
    if (rowPairs == 0) return;
    runOnThreads(context, std::min(context.threadLimit, rowPairs), [&](std::uint32_t thread, std::uint32_t threadCount) {
        BlendTable blendTable;
        VisitSpace space{blendTable};
        for (std::uint32_t row = phase.row + 2 * thread; row < 2 * rowPairs; row += 2 * threadCount)
            refineRow(context, row, phase.column, step, space);
    });
    const bool isLastRowLeft = phase.row == 0 && context.settings.blocksDown % 2 != 0;
    if (isLastRowLeft) {
        BlendTable blendTable;
        VisitSpace space{blendTable};
        refineRow(context, context.settings.blocksDown - 1, phase.column, step, space);
    }
}

void RunBlockPass(std::uint32_t pass, const AmtcImage& image, const AmtcLevelSettings& settings, const FootprintMask& centreMask,
                  const FootprintKernel& sharpKernel, const FootprintKernel& smoothKernel, std::uint32_t threadLimit,
                  const BlockRows& blockRows) {
    RunBlockPass({image, settings, blockRows, threadLimit}, pass, {sharpKernel, smoothKernel, centreMask});
}

void RunParityPhase(const AmtcImage& image, const AmtcLevelSettings& settings, std::uint32_t rowPhase, std::uint32_t columnPhase,
                    std::uint32_t step, std::uint32_t threadLimit, const BlockRows& blockRows) {
    RunParityPhase({image, settings, blockRows, threadLimit}, {rowPhase, columnPhase}, step);
}

void failToCreateThread() {
    // Kept (thread-message-names-fixed-line): scripts that search encoder logs match the whole line, with this name and number.
    std::fprintf(stderr, "%s at \"%s\":%d\n", "Create thread", "threadsupport.cpp", 85);
    std::abort();
}

std::thread StartThread(ThreadRoutine routine, void* context) {
    std::thread thread = startThread(routine, context);
    if (!thread.joinable()) failToCreateThread();
    return thread;
}

void WaitForThreads(std::thread* handles, std::uint32_t count) {
    joinThreads(handles, count);
}

}  // namespace moktexture::amtc
