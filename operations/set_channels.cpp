#include <array>
#include <bit>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// The value that all entries together write to one element of a pixel: the value of the last one that names it, if any.
template <typename Value>
struct ElementWrite {
    bool isWritten = false;
    Value value = 0;
};
template <typename Value>
using PixelWrites = std::array<ElementWrite<Value>, channelsPerPixel>;

template <typename Value>
PixelWrites<Value> resolveEntries(unsigned int count, const EChannelName* channels, const Value* values) {
    PixelWrites<Value> writes;
    forEachWrite(count, channels, [&](std::size_t c, unsigned int i) { writes[c] = {true, values[i]}; });
    return writes;
}

// Kept (set-channels-unscaled): values are in units of the element and never scaled, so that 1.0 stores 1 in an 8-bit channel and
// 255 stores 255.0 in a float one. Callers, `moktex convert --set-channel` among them, pass raw element values.
template <typename T, typename Value>
T elementFromValue(Value value) {
    if constexpr (std::is_same_v<Value, float>) {
        return elementFromFloat<T>(value);
    } else {
        return static_cast<T>(value);
    }
}

/// Unsigned integer of an element's size; floats are written as their bits.
template <typename T>
using ElementBits = std::conditional_t<std::is_same_v<T, float>, std::uint32_t, T>;

/// Writes constants to some elements of every pixel, as `(pixel & keep) | value` on its bits.
template <typename T, typename Value>
bool setLevel(const LevelView<T>& level, const PixelWrites<Value>& writes) {
    using Bits = ElementBits<T>;
    std::array<Bits, channelsPerPixel> keep;
    std::array<Bits, channelsPerPixel> value;
    for (std::size_t c = 0; c < channelsPerPixel; ++c) {
        keep[c] = writes[c].isWritten ? Bits{0} : static_cast<Bits>(~Bits{0});
        value[c] = writes[c].isWritten ? std::bit_cast<Bits>(elementFromValue<T>(writes[c].value)) : Bits{0};
    }
    const std::size_t pixelCount = level.size.pixelCount();
    for (std::size_t i = 0; i < pixelCount; ++i) {
        T* const pixel = level.data + i * channelsPerPixel;
        for (std::size_t c = 0; c < channelsPerPixel; ++c) {
            pixel[c] = std::bit_cast<T>(static_cast<Bits>((std::bit_cast<Bits>(pixel[c]) & keep[c]) | value[c]));
        }
    }
    return true;
}

template <typename Value>
bool setChannels(CMOKTexture& texture, unsigned int count, const EChannelName* channels, const Value* values) {
    if (!isOperable(texture)) return false;
    if (count == 0) return true;
    if (channels == nullptr || values == nullptr) return false;
    const PixelWrites<Value> writes = resolveEntries(count, channels, values);
    return processLevels(texture, [&writes](const auto& level, const Subresource&) { return setLevel(level, writes); });
}

}  // namespace

bool SetChannels(CMOKTexture& texture, unsigned int count, EChannelName* channels, unsigned int* values) {
    return setChannels(texture, count, channels, values);
}

bool SetChannelsFloat(CMOKTexture& texture, unsigned int count, EChannelName* channels, float* values) {
    return setChannels(texture, count, channels, values);
}

}  // namespace moktexture
