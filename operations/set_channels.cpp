#include <array>
#include <bit>

#include "image_operations.h"
#include "operations/frame/channel_elements.h"
#include "operations/frame/operation_frame.h"

namespace moktexture {
namespace {

/// What the entries come to for one element of a pixel: the last value that was written to it, if any.
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

// Kept: values are in units of the element and never scaled, so 1.0 stores 1 in an 8-bit channel and 255 stores 255.0 in a float
// one; callers pass raw element values.
template <typename T, typename Value>
T elementFromValue(Value value) {
    if constexpr (std::is_same_v<Value, float>) {
        return elementFromFloat<T>(value);
    } else {
        return static_cast<T>(value);
    }
}

/// Unsigned integer of the size of an element, in which a float keeps its bits.
template <typename T>
using ElementBits = std::conditional_t<std::is_same_v<T, float>, std::uint32_t, T>;

/// Writes constants to some elements of every pixel, as `pixel AND keep OR value` on its bits.
template <typename T, typename Value>
bool setLevel(T* pixels, std::size_t pixelCount, const PixelWrites<Value>& writes) {
    using Bits = ElementBits<T>;
    std::array<Bits, channelsPerPixel> keep;
    std::array<Bits, channelsPerPixel> value;
    for (std::size_t c = 0; c < channelsPerPixel; ++c) {
        keep[c] = writes[c].isWritten ? Bits{0} : static_cast<Bits>(~Bits{0});
        value[c] = writes[c].isWritten ? std::bit_cast<Bits>(elementFromValue<T>(writes[c].value)) : Bits{0};
    }
    for (std::size_t i = 0; i < pixelCount; ++i) {
        T* const pixel = pixels + i * channelsPerPixel;
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
    return processLevels(
        texture, [&writes](auto* pixels, const Subresource& piece) { return setLevel(pixels, piece.size.pixelCount(), writes); });
}

}  // namespace

bool SetChannels(CMOKTexture& texture, unsigned int count, EChannelName* channels, unsigned int* values) {
    return setChannels(texture, count, channels, values);
}

bool SetChannelsFloat(CMOKTexture& texture, unsigned int count, EChannelName* channels, float* values) {
    return setChannels(texture, count, channels, values);
}

}  // namespace moktexture
