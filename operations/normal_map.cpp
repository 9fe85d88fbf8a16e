/// @file
/// Normal maps from heights.
///
/// The red channel is a height h from 0 to 1. The slopes are central differences over two pixels, not divided by 2, times the
/// caller's scale; the normal of the surface is (dx, dy, 1), normalised and stored from 0 to 1:
///
///     dx = (h(x - 1, y) - h(x + 1, y)) * scale
///     dy = (h(x, y - 1) - h(x, y + 1)) * scale
///     length = sqrt(dx * dx + dy * dy + 1)
///     normal = (dx, dy, 1) / length * 0.5 + 0.5
///
/// Neighbours beyond an edge come from the opposite edge, for tiling textures. Each level is converted from its own pixels.
///
/// The level is read row by row. Three rows of heights (above, here, below) are held as floats with one extra height on either
/// side for the wrap in x, so that the inner loop has neither a test nor a conversion; going one row down exchanges the rows and
/// reads one new row. Runs of normals are computed component by component, which vectorises, and then arranged in the caller's
/// channel order. Cost: one square root and three divisions per pixel; memory: three rows of floats.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// What a channel of the output holds; `one` is the constant 1.0.
enum class Content : std::uint8_t { one, x, y, z, height };
using ChannelContents = std::array<Content, channelsPerPixel>;

struct NormalMapSettings {
    float scale;
    ChannelContents channels;
};

/// Parses a channel order such as "xyzh": its first four letters name the contents of the channels. Of equal letters the last one
/// counts; other letters are skipped.
ChannelContents parseOrder(const char* order) {
    constexpr char letters[] = {'x', 'y', 'z', 'h'};
    constexpr Content contents[] = {Content::x, Content::y, Content::z, Content::height};
    ChannelContents channels = {};
    if (order == nullptr) order = "xyz";
    for (std::size_t channel = 0; channel < channelsPerPixel && order[channel] != 0; ++channel) {
        const auto letter = std::find(std::begin(letters), std::end(letters), order[channel]);
        if (letter == std::end(letters)) continue;
        const Content content = contents[letter - std::begin(letters)];
        std::replace(channels.begin(), channels.end(), content, Content::one);
        channels[channel] = content;
    }
    return channels;
}

/// Heights of a row, with one more on either side that comes from the row's other end.
class HeightRow {
public:
    explicit HeightRow(std::uint32_t width) : heights(std::size_t{width} + 2) {}

    template <typename T>
    void read(const T* pixels) {
        const std::size_t width = heights.size() - 2;
        for (std::size_t x = 0; x < width; ++x)
            heights[x + 1] = scaledElement<float>(pixels[x * channelsPerPixel]);
        heights[0] = heights[width];
        heights[width + 1] = heights[1];
    }
    /// The height at pixel x; at(0)[-1] and at(width - 1)[1] are valid too.
    const float* at(std::size_t x) const { return heights.data() + x + 1; }

private:
    std::vector<float> heights;
};

/// A row of heights and its neighbours.
struct HeightRows {
    HeightRow above;
    HeightRow here;
    HeightRow below;

    explicit HeightRows(std::uint32_t width) : above(width), here(width), below(width) {}
};

/// Pixels that are computed at a time: the components of a run take 1.5 KB, which stays in the cache.
constexpr std::size_t normalRunLength = 128;

/// The components of a run of normals, from 0 to 1 as they are stored.
struct NormalRun {
    float x[normalRunLength];
    float y[normalRunLength];
    float z[normalRunLength];
};

void computeNormals(const HeightRows& rows, std::size_t first, std::size_t count, float scale, NormalRun& normals) {
    const float* const above = rows.above.at(first);
    const float* const left = rows.here.at(first) - 1;
    const float* const right = rows.here.at(first) + 1;
    const float* const below = rows.below.at(first);
    for (std::size_t i = 0; i < count; ++i) {
        const float dx = (left[i] - right[i]) * scale;
        const float dy = (above[i] - below[i]) * scale;
        const float length = std::sqrt(dx * dx + dy * dy + 1.0f);
        normals.x[i] = withCanonicalNaN(dx / length * 0.5f + 0.5f);
        normals.y[i] = withCanonicalNaN(dy / length * 0.5f + 0.5f);
        normals.z[i] = withCanonicalNaN(1.0f / length * 0.5f + 0.5f);
    }
}

/// Arranges a run of normals and their heights as pixels.
void storeNormals(const NormalRun& normals, const float* heights, std::size_t count, const ChannelContents& channels,
                  float* pixels) {
    static constexpr std::array<float, normalRunLength> ones = [] {
        std::array<float, normalRunLength> values = {};
        values.fill(1.0f);
        return values;
    }();
    const float* const contents[] = {ones.data(), normals.x, normals.y, normals.z, heights};
    const float* source[channelsPerPixel];
    for (std::size_t c = 0; c < channelsPerPixel; ++c)
        source[c] = contents[static_cast<std::size_t>(channels[c])];
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t c = 0; c < channelsPerPixel; ++c)
            pixels[i * channelsPerPixel + c] = source[c][i];
    }
}

void mapRow(const HeightRows& rows, std::uint32_t width, const NormalMapSettings& settings, float* pixels) {
    NormalRun normals;
    for (std::size_t first = 0; first < width; first += normalRunLength) {
        const std::size_t count = std::min(normalRunLength, width - first);
        computeNormals(rows, first, count, settings.scale, normals);
        storeNormals(normals, rows.here.at(first), count, settings.channels, pixels + first * channelsPerPixel);
    }
}

/// Computes the normals of a level's heights.
/// @return false, with the destination left as it is, if the scale is 0
template <typename T>
bool normalMapLevel(const LevelView<const T>& source, const LevelView<float>& destination, const NormalMapSettings& settings) {
    if (settings.scale == 0.0f) return false;
    const LevelSize& size = source.size;
    HeightRows rows(size.width);
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        // Kept (normals-wrap-to-slice-0): above the first and below the last row of every slice lie rows of slice 0. Normal maps
        // of volumes in stored .mok files have that seam.
        rows.above.read(source.row(size.height - 1, 0));
        rows.here.read(source.row(0, z));
        for (std::uint32_t y = 0; y < size.height; ++y) {
            rows.below.read(y + 1 < size.height ? source.row(y + 1, z) : source.row(0, 0));
            mapRow(rows, size.width, settings, destination.row(y, z));
            std::swap(rows.above, rows.here);
            std::swap(rows.here, rows.below);
        }
    }
    return true;
}

}  // namespace

bool GenerateNormalMap(CMOKTexture& texture, float scale, CMOKTString channelOrder) {
    if (!isOperable(texture)) return false;
    CMOKTextureHeader header = texture;
    header.setPixelFormat(PixelTypeRGBA32);
    header.setChannelType(eVarFloat);
    header.setBumpMap(scale, channelOrder);
    const NormalMapSettings settings = {scale, parseOrder(channelOrder.c_str())};
    // Kept (normal-map-scale-0-replaces): a scale of 0 gives false and yet a zeroed float texture with the metadata of a bump
    // map. Hosts that ignore the result go on with the float form and call Transcode() on it.
    return rebuildLevels<float>(texture, header, VisitedLevels::all,
                                [&settings](const auto& source, const auto& destination, const Subresource&) {
                                    return normalMapLevel(source, destination, settings);
                                });
}

}  // namespace moktexture
