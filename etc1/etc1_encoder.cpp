#include "etc1/etc1_encoder.h"

#include <memory>
#include <new>

#include "etc1/etc1.h"
#include "etc1/etc1_block.h"

// Blocks are encoded independently. The six qualities combine three ways to find base colours, from fast to thorough, with two
// error metrics; docs/quality.md and docs/performance.md list their quality and speed.

namespace moktexture {
namespace etc1 {
namespace {

enum class Method { quickCandidates, search };

struct QualitySettings {
    Method method;
    int radius;  ///< how many codes of 5 bits the search goes from the averages
    ErrorMetric metric;
};

// Row: quality.
// clang-format off
constexpr std::array<QualitySettings, 6> qualities = {{
    // method                radius        metric
    {Method::quickCandidates, 0,            ErrorMetric::uniform   },
    {Method::quickCandidates, 0,            ErrorMetric::perceptual},
    {Method::search,          narrowRadius, ErrorMetric::uniform   },
    {Method::search,          narrowRadius, ErrorMetric::perceptual},
    {Method::search,          wideRadius,   ErrorMetric::uniform   },
    {Method::search,          wideRadius,   ErrorMetric::perceptual},
}};
// clang-format on

void encodeBySearch(const ConstImageView& image, std::uint8_t* out, const QualitySettings& settings) {
    for (std::size_t y = 0; y < image.height; y += blockEdge) {
        for (std::size_t x = 0; x < image.width; x += blockEdge, out += bytesPerBlock)
            writeWords(out, CompressBlockSearch(readBlock(image, x, y), settings.radius, settings.metric));
    }
}

/// False if there is no memory for the scratch row.
bool encodeByQuickCandidates(const ConstImageView& image, std::uint8_t* out, const QualitySettings& settings) {
    const std::unique_ptr<std::uint8_t[]> scratch(new (std::nothrow) std::uint8_t[scratchRowBytes(image.width)]);
    if (scratch == nullptr) return false;
    for (std::size_t y = 0; y < image.height; y += blockEdge) {
        const ImageView rest = packedImage(scratch.get(), image.width, static_cast<std::uint32_t>(image.height - y));
        for (std::size_t x = 0; x < image.width; x += blockEdge, out += bytesPerBlock)
            writeWords(out, CompressBlockFast(readBlock(image, x, y), {rest, x}, settings.metric));
    }
    return true;
}

bool encodeImage(const ConstImageView& image, std::uint8_t* out, const QualitySettings& settings) {
    if (settings.method == Method::quickCandidates) return encodeByQuickCandidates(image, out, settings);
    encodeBySearch(image, out, settings);
    return true;
}

}  // namespace
}  // namespace etc1

std::uint32_t CompressETC1(const void* pixels, void* out, const std::uint32_t* width, const std::uint32_t* height,
                           std::uint32_t quality) {
    using namespace etc1;
    if (width == nullptr || height == nullptr) return 0;
    // Kept (etc1-size-not-rounded): not rounded up to whole blocks, though whole blocks are written. `Transcode` compares it with
    // the size of the blocks, and so returns false for textures whose sides are no multiples of 4.
    const std::uint32_t size = *width * *height / 2;
    if (pixels == nullptr || out == nullptr) return size;
    if (quality >= qualities.size()) return 0;
    if (*width == 0 || *height == 0) return size;
    return encodeImage(packedImage(pixels, *width, *height), static_cast<std::uint8_t*>(out), qualities[quality]) ? size : 0;
}

}  // namespace moktexture
