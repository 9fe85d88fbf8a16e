#include "etc1/etc1_encoder.h"

#include <memory>
#include <new>

#include "etc1/etc1.h"

namespace moktexture {
namespace etc1 {
namespace {

enum class Strategy { quickCandidates, search };

struct QualityMode {
    Strategy strategy;
    int radius;
    Measure measure;
};

// Row: quality. Columns: how base colours are found, how far from the averages, how errors are measured.
// clang-format off
constexpr std::array<QualityMode, 6> qualityModes = {{
    {Strategy::quickCandidates, 0,            Measure::plain     },
    {Strategy::quickCandidates, 0,            Measure::perceptual},
    {Strategy::search,          narrowRadius, Measure::plain     },
    {Strategy::search,          narrowRadius, Measure::perceptual},
    {Strategy::search,          wideRadius,   Measure::plain     },
    {Strategy::search,          wideRadius,   Measure::perceptual},
}};
// clang-format on

}  // namespace

const EncoderForm plainEncoder = {"plain", BestTablePlain, CompressBlockSearchPlain};
const EncoderForm boundedEncoder = {"bounded", BestTableLanes, CompressBlockSearchBounded};

bool encodeLevel(const std::uint8_t* pixels, std::uint8_t* out, const Level& level, std::uint32_t quality,
                 const EncoderForm& form) {
    const QualityMode& mode = qualityModes[quality];
    std::unique_ptr<std::uint8_t[]> scratch;
    if (mode.strategy == Strategy::quickCandidates) {
        scratch.reset(new (std::nothrow) std::uint8_t[scratchRowBytes(level.width)]);
        if (scratch == nullptr) return false;
    }
    for (std::size_t y = 0; y < level.height; y += blockEdge) {
        const Level rest = {level.width, level.height - y};
        for (std::size_t x = 0; x < level.width; x += blockEdge, out += bytesPerBlock) {
            const BlockPixels block = readBlock(pixels + level.indexOf(0, y) * bytesPerPixel, rest, x, 0);
            writeWords(out, mode.strategy == Strategy::quickCandidates
                                ? CompressBlockFast(block, {scratch.get(), rest, x}, mode.measure, form.bestTable)
                                : form.search(block, mode.radius, mode.measure));
        }
    }
    return true;
}

}  // namespace etc1

std::uint32_t CompressETC1(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           std::uint32_t quality) {
    using namespace etc1;
    if (width == nullptr || height == nullptr) return 0;
    // Kept: not rounded up to whole blocks, though whole blocks are written; callers that compare it with the blocks' size refuse
    // textures whose sides are no multiples of 4.
    const std::uint32_t size = *width * *height / 2;
    if (pixels == nullptr || out == nullptr) return size;
    const Level level{*width, *height};
    if (quality >= qualityModes.size()) return 0;
    if (level.pixelCount() == 0) return size;
    const bool encoded =
        encodeLevel(static_cast<const std::uint8_t*>(pixels), static_cast<std::uint8_t*>(out), level, quality, boundedEncoder);
    return encoded ? size : 0;
}

}  // namespace moktexture
