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

/// What a channel of a normal map holds.
enum class Content : std::uint8_t { one, x, y, z, height };
using ChannelContents = std::array<Content, channelsPerPixel>;

/// Reads an order: its first four letters name the contents of the channels. Of equal letters the last one counts.
ChannelContents readOrder(const char* order) {
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

/// Heights of a row with one more on either side, which come from the row's other end.
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
    /// Of pixel x; at(0)[-1] and at(width - 1)[1] are there too.
    const float* at(std::size_t x) const { return heights.data() + x + 1; }

private:
    std::vector<float> heights;
};

/// A row of heights and those beside it.
struct HeightRows {
    HeightRow above;
    HeightRow here;
    HeightRow below;

    explicit HeightRows(std::uint32_t width) : above(width), here(width), below(width) {}
};

/// Pixels that are computed at a time.
constexpr std::size_t runLength = 128;

/// The components of a run of normals as they are stored: from 0 to 1.
struct NormalRun {
    float x[runLength];
    float y[runLength];
    float z[runLength];
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
        normals.x[i] = withPlainNaN(dx / length * 0.5f + 0.5f);
        normals.y[i] = withPlainNaN(dy / length * 0.5f + 0.5f);
        normals.z[i] = withPlainNaN(1.0f / length * 0.5f + 0.5f);
    }
}

/// Arranges a run of normals and their heights as pixels.
void storeNormals(const NormalRun& normals, const float* heights, std::size_t count, const ChannelContents& channels,
                  float* pixels) {
    static constexpr std::array<float, runLength> ones = [] {
        std::array<float, runLength> values = {};
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

void mapRow(const HeightRows& rows, std::uint32_t width, float scale, const ChannelContents& channels, float* pixels) {
    NormalRun normals;
    for (std::size_t first = 0; first < width; first += runLength) {
        const std::size_t count = std::min(runLength, width - first);
        computeNormals(rows, first, count, scale, normals);
        storeNormals(normals, rows.here.at(first), count, channels, pixels + first * channelsPerPixel);
    }
}

/// Computes the normals of a level's heights, which are in the red channel.
/// @return false if the scale is 0; the destination is then not written.
template <typename T>
bool normalMapLevel(const T* source, float* destination, const LevelSize& size, float scale, const ChannelContents& channels) {
    if (scale == 0.0f) return false;
    const std::size_t rowLength = std::size_t{size.width} * channelsPerPixel;
    // Kept: in every slice the rows before the first and after the last are those of slice 0; baked volumes show that seam.
    const T* const lastRow = source + (size.height - 1) * rowLength;
    const T* const firstRow = source;
    HeightRows rows(size.width);
    for (std::uint32_t z = 0; z < size.depth; ++z) {
        rows.above.read(lastRow);
        rows.here.read(source);
        for (std::uint32_t y = 0; y < size.height; ++y, source += rowLength, destination += rowLength) {
            rows.below.read(y + 1 < size.height ? source + rowLength : firstRow);
            mapRow(rows, size.width, scale, channels, destination);
            std::swap(rows.above, rows.here);
            std::swap(rows.here, rows.below);
        }
    }
    return true;
}

/// Fills a float texture with the normals of an operable texture of the same shape.
bool mapNormals(const CMOKTexture& texture, CMOKTexture& normals, float scale, const ChannelContents& channels) {
    return withElementType(texture.getChannelType(), [&](auto element) {
        using T = typename decltype(element)::type;
        return forEachSubresource(texture, WalkedLevels::all, [&](const Subresource& piece) {
            return normalMapLevel(pieceData<const T>(texture, piece), pieceData<float>(normals, piece), piece.size, scale,
                                  channels);
        });
    });
}

}  // namespace

bool GenerateNormalMap(CMOKTexture& texture, float scale, CMOKTString channelOrder) {
    if (!isOperable(texture)) return false;
    CMOKTextureHeader header = texture;
    header.setPixelFormat(PixelTypeRGBA32);
    header.setChannelType(eVarFloat);
    header.setBumpMap(scale, channelOrder);
    // Kept: a scale of 0 fails and yet gives a zeroed float texture with the metadata of a bump map; callers find the form
    // changed whatever the result is.
    return rebuild(texture, header, [&](const CMOKTexture& source, CMOKTexture& normals) {
        return mapNormals(source, normals, scale, readOrder(channelOrder.c_str()));
    });
}

}  // namespace moktexture
