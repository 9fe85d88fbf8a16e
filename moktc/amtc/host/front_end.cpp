#include "moktc/amtc/host/front_end.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <thread>

#include "moktc/amtc/driver/level_images.h"

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

constexpr std::size_t wordBytes = 4;

std::size_t wordCountOf(std::uint32_t bitsPerPixel, std::uint32_t pixels) {
    const std::uint32_t blockPixels = bitsPerPixel == 1 ? 64 : bitsPerPixel == 2 ? 32 : 16;
    return std::size_t{2} * (pixels / blockPixels);
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

void CheckSourceSize(const char* name, std::uint32_t bitsPerPixel, std::int32_t* width, std::int32_t* height,
                     std::uint32_t* linearBlockOrder, std::uint32_t warn) {
    std::int32_t validWidth = *width & ~(bitsPerPixel == 4 ? 3 : 7);
    std::int32_t validHeight = *height & ~(bitsPerPixel == 1 ? 7 : 3);
    if (*linearBlockOrder == 0 && !(isPowerOfTwo(validWidth) && isPowerOfTwo(validHeight))) {
        std::fprintf(stderr, "Warning :Image \"%s\" dimensions not powers of 2. Twiddling disabled\n", name);
        *linearBlockOrder = 1;
    }
    // Kept (one-large-side-lets-other-be-zero): with one side above the limit the other may be 0. Front ends that call this
    // before CompressImageLevels() rely on its refusal instead of the end of their process.
    if (validWidth > largestSide || validHeight > largestSide) {
        if (warn != 0) std::fprintf(stderr, "Warning:Src Image dim \"%s\" is too large- truncating\n", name);
        validWidth = std::min(validWidth, largestSide);
        validHeight = std::min(validHeight, largestSide);
    } else if (validWidth <= 0 || validHeight <= 0) {
        std::fprintf(stderr, "Error :Src Image \"%s\" is too small for compressor \n", name);
        std::exit(1);
    } else if (warn != 0 && (validWidth != *width || validHeight != *height)) {
        std::fprintf(stderr, "Warning: Image \"%s\" has been truncated to a valid texture size\n", name);
    }
    *width = validWidth;
    *height = validHeight;
}

void WriteBlocksAsText(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels) {
    const std::size_t bytes = wordCountOf(bitsPerPixel, sizeInPixels) * wordBytes;
    for (std::size_t i = 0; i < bytes; ++i)
        std::fprintf(stream, "0x%.2x,", static_cast<unsigned int>(blocks[i]));
}

void WriteBlocksRaw(const std::uint8_t* blocks, std::FILE* stream, std::uint32_t bitsPerPixel, std::uint32_t sizeInPixels) {
    const std::size_t words = wordCountOf(bitsPerPixel, sizeInPixels);
    for (std::size_t i = 0; i < words; ++i) {
        if (std::fwrite(blocks + i * wordBytes, 1, wordBytes, stream) != wordBytes)
            std::fputs("Warning! Write failed  WriteU32\n", stderr);
    }
}

}  // namespace moktexture::amtc
