#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <optional>

/// @file
/// For a front end of the encoder: a progress record that it may fill on one thread and query on another, and routines of a
/// command-line program, whose messages go to the standard error stream. Nothing in the library calls the routines; the encoder
/// resets the record and reports nothing in it.

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

/// Rounds an image's size down to one that can be encoded. Sizes that are no powers of two switch linear block order on, sides
/// above 4096 are limited to that; messages name the image. One smaller than a block ends the process with status 1.
/// @param width, height, linearBlockOrder read and written
/// @param warn non-zero: write a warning when the size is changed
void CheckSourceSize(const char* name, std::uint32_t bitsPerPixel, std::int32_t* width, std::int32_t* height,
                     std::uint32_t* linearBlockOrder, std::uint32_t warn);

/// Writes the blocks of `sizeInPixels` pixels, 8 bytes each, as C source, a byte at a time. Pixels beyond whole blocks are
/// ignored.
void WriteBlocksAsText(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels);
/// Writes the same blocks as bytes, a 32-bit word at a time, with a message for each one that fails.
void WriteBlocksRaw(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels);

}  // namespace moktexture::amtc
