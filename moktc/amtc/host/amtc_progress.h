#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>

/// @file
/// A progress record that a host may fill on one thread and query on another. The encoder resets it and reports nothing.

namespace moktexture::amtc {

/// Work done, guarded by its mutex. The thread that holds the mutex may query the progress or reset it.
struct AmtcProgress {
    std::uint32_t started = 0;
    std::uint32_t doneA = 0, doneB = 0;  ///< added up against `total`; where that is 0, only doneA counts
    std::uint32_t total = 0;             ///< amount of work, 0 if not known
    float mipFactor = 1.0F;              ///< 1.3333334 where MIP levels are made: a full chain adds a third
    std::recursive_mutex mutex;
};

/// Stores a new record, or null if memory is short. Always 0.
std::uint32_t CreateProgress(AmtcProgress** record);
/// Sets all counters to 0 and the factor to that of an encoding with or without further MIP levels.
void ResetProgress(AmtcProgress& record, bool hasMIPLevels);
/// The fraction of the work that is done, from 0 to 1; 0 for a null record.
float GetProgress(AmtcProgress** record);
/// Frees a record with its mutex, which no thread may hold or wait for, and stores null. No effect for a null record.
void DestroyProgress(AmtcProgress** record);

/// A mutex that is created when it is first needed.
struct OnceMutex {
    std::atomic<std::uint32_t> initialised{0};
    std::optional<std::recursive_mutex> mutex;
};
/// Creates the mutex once, however many threads call at the same time.
void InitOnceMutex(OnceMutex& record);

}  // namespace moktexture::amtc
