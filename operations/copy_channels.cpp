#include <algorithm>
#include <array>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// Source channel of each element of a destination pixel; eChannelNone leaves the element as it is.
using ChannelSources = std::array<EChannelName, channelsPerPixel>;

/// What all entries together copy: of those that write an element, the last one with a valid source counts.
ChannelSources resolveEntries(unsigned int count, const EChannelName* destinations, const EChannelName* sources) {
    ChannelSources resolved = {};
    forEachWrite(count, destinations, [&](std::size_t c, unsigned int i) {
        if (sources[i] <= eChannelUnspecified && sources[i] != eChannelNone) resolved[c] = sources[i];
    });
    return resolved;
}

// Kept (copied-white-wraps-in-32-bits): values are truncated and neither rounded nor clamped, so that white (1.0 or 255) becomes
// 2 to the 32 and wraps to 0 in a 32-bit element. Transcode() makes grey by this copy, and its bytes in stored .mok files with
// it.
template <typename D, typename S>
D elementFromScaled(float value) {
    if constexpr (std::is_same_v<S, float>) {
        return withCanonicalNaN(elementFromFloat<D>(value));
    } else {
        return elementFromBounded<D>(value);
    }
}

/// Whether scaling leaves every element as it is.
// Kept (copied-16-bits-lose-a-unit): it does not for 16-bit elements: for 512 of them, from 259 on, the product is rounded down
// and they come out one less. Transcode() makes 16-bit grey by this copy, and its bytes in stored .mok files with it.
template <typename D, typename S>
constexpr bool isScaledToItself = std::is_same_v<D, S> && (std::is_same_v<S, std::uint8_t> || std::is_same_v<S, float>);

/// Computes one source channel of a run of pixels, in the destination's elements.
template <typename D, typename S>
void computeSource(EChannelName source, const S* pixels, std::size_t count, D* computed) {
    const auto computeEach = [&](auto valueOf) {
        for (std::size_t i = 0; i < count; ++i) {
            computed[i] = elementFromScaled<D, S>(valueOf(pixels + i * channelsPerPixel));
        }
    };
    const auto computeElement = [&](std::size_t c) {
        if constexpr (isScaledToItself<D, S>) {
            for (std::size_t i = 0; i < count; ++i)
                computed[i] = pixels[i * channelsPerPixel + c];
        } else {
            computeEach([c](const S* pixel) { return scaledElement<D>(pixel[c]); });
        }
    };
    switch (source) {
        case eChannelRed:
            return computeElement(0);
        case eChannelGreen:
            return computeElement(1);
        case eChannelBlue:
            return computeElement(2);
        case eChannelLuminance:
            return computeEach([](const S* pixel) {
                return luminanceWeights[0] * scaledElement<D>(pixel[0]) + luminanceWeights[1] * scaledElement<D>(pixel[1]) +
                       luminanceWeights[2] * scaledElement<D>(pixel[2]);
            });
        case eChannelIntensity:
            return computeEach([](const S* pixel) {
                return (scaledElement<D>(pixel[0]) + scaledElement<D>(pixel[1]) + scaledElement<D>(pixel[2])) / 3.0f;
            });
        default:
            return computeElement(3);
    }
}

/// Pixels that are copied at a time: their four computed channels, at most 4 KB, stay in the cache.
constexpr std::size_t copyRunLength = 256;

/// Copies channels of a run of pixels. All sources are computed before any element is written, so that both runs may be the same.
template <typename D, typename S>
void copyRun(const S* source, D* destination, std::size_t count, const ChannelSources& sources) {
    D columns[channelsPerPixel][copyRunLength];
    for (std::size_t c = 0; c < channelsPerPixel; ++c) {
        if (sources[c] != eChannelNone) {
            computeSource(sources[c], source, count, columns[c]);
        } else {
            for (std::size_t i = 0; i < count; ++i)
                columns[c][i] = destination[i * channelsPerPixel + c];
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t c = 0; c < channelsPerPixel; ++c)
            destination[i * channelsPerPixel + c] = columns[c][i];
    }
}

template <typename D, typename S>
bool copyLevel(const LevelView<const S>& source, const LevelView<D>& destination, const ChannelSources& sources) {
    const std::size_t pixelCount = destination.size.pixelCount();
    for (std::size_t first = 0; first < pixelCount; first += copyRunLength) {
        const std::size_t count = std::min(copyRunLength, pixelCount - first);
        copyRun(source.data + first * channelsPerPixel, destination.data + first * channelsPerPixel, count, sources);
    }
    return true;
}

bool copyLevels(CMOKTexture& destination, const CMOKTexture& source, const ChannelSources& sources) {
    if (source.getDataPtr() == nullptr) return false;
    return withElementType(source.getChannelType(), [&](auto element) {
        using S = typename decltype(element)::type;
        return processLevels(destination, [&](const auto& level, const Subresource& subresource) {
            return copyLevel(levelView<const S>(source, subresource), level, sources);
        });
    });
}

}  // namespace

bool CopyChannels(CMOKTexture& destination, const CMOKTexture& source, unsigned int count, EChannelName* destinationChannels,
                  EChannelName* sourceChannels) {
    if (!isOperable(destination) || !isOperable(source)) return false;
    if (count == 0) return true;
    if (!haveEqualShape(destination, source)) return false;
    if (destinationChannels == nullptr || sourceChannels == nullptr) return false;
    return copyLevels(destination, source, resolveEntries(count, destinationChannels, sourceChannels));
}

}  // namespace moktexture
