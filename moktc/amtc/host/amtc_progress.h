#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>

/// @file
/// A record of progress that a host may fill from one thread and ask from another. The encoder resets it and reports nothing.

namespace moktexture::amtc {

/// Work done, under its mutex. Whoever holds that may ask for the progress or reset it.
struct AmtcProgress {
    std::uint32_t started = 0;
    std::uint32_t doneA = 0, doneB = 0;  ///< both count against `total`; where that is 0, A alone
    std::uint32_t total = 0;             ///< amount of work, 0 if not known
    float mipFactor = 1.0F;              ///< 1.3333334 where MIP levels are made: a full chain adds a third
    std::recursive_mutex mutex;
};

/// Stores a new record, or null if memory is short. Always 0.
std::uint32_t CreateProgress(AmtcProgress** record);
/// Sets all counters to 0 and the factor to that of an encoding with this MIP mode.
void ResetProgress(AmtcProgress& record, std::int32_t mipMode);
/// How much is done, from 0 to 1; 0 for a null record.
float GetProgress(AmtcProgress** record);
/// Frees a record with its mutex, which nobody may hold or wait for any more, and stores null. Nothing for a null record.
void DestroyProgress(AmtcProgress** record);

/// A mutex made when it is first asked for.
struct OnceMutex {
    std::atomic<std::uint32_t> initialised{0};
    std::optional<std::recursive_mutex> mutex;
};
/// Makes the mutex once, whoever asks at the same time.
void InitOnceMutex(OnceMutex& record);

}  // namespace moktexture::amtc
