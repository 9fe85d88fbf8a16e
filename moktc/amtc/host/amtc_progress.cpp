#include "moktc/amtc/host/amtc_progress.h"

#include <new>
#include <thread>

namespace moktexture::amtc {

namespace {

/// Guards InitOnceMutex() for all records of the process. A record is not shared between processes, so it need not be a named
/// system mutex.
std::mutex initialisation;

float shareDone(const AmtcProgress& record) {
    if (record.total != 0) return static_cast<float>(record.doneA + record.doneB) / static_cast<float>(record.total);
    if (record.started == 0) return 0.0F;
    // Kept (progress-divides-by-zero): work of unknown amount is divided by zero. GetProgress() clamps the result, so a host's
    // progress bar shows 0 before the first count and 1 from then on.
    return static_cast<float>(record.doneA) / (record.mipFactor * 0.0F);
}

}  // namespace

std::uint32_t CreateProgress(AmtcProgress** record) {
    if (record != nullptr) *record = new (std::nothrow) AmtcProgress;
    return 0;
}

void ResetProgress(AmtcProgress& record, bool hasMIPLevels) {
    const std::scoped_lock lock(record.mutex);
    record.started = record.doneA = record.doneB = record.total = 0;
    record.mipFactor = hasMIPLevels ? 1.3333334F : 1.0F;
}

float GetProgress(AmtcProgress** record) {
    if (record == nullptr || *record == nullptr) return 0.0F;
    float share;
    {
        const std::scoped_lock lock((*record)->mutex);
        share = shareDone(**record);
    }
    std::this_thread::yield();
    if (!(share > 0.0F)) return 0.0F;  // not a number either
    return share < 1.0F ? share : 1.0F;
}

void DestroyProgress(AmtcProgress** record) {
    if (record == nullptr) return;
    delete *record;
    *record = nullptr;
}

void InitOnceMutex(OnceMutex& record) {
    if (record.initialised != 0) return;
    const std::scoped_lock lock(initialisation);
    if (record.initialised != 0) return;
    record.mutex.emplace();
    record.initialised = 1;
}

}  // namespace moktexture::amtc
