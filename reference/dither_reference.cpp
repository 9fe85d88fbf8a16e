#include "reference/dither_reference.h"

#include <algorithm>
#include <cstddef>

#include "transcode/pixels/dither.h"

namespace moktexture {

namespace {

constexpr std::size_t channels = 4;

unsigned char clampToByte(int value) {
    return static_cast<unsigned char>(std::clamp(value, 0, 255));
}

unsigned char quantise(unsigned char value, unsigned int bits) {
    const unsigned int dropped = 8 - bits;
    return clampToByte((value >> dropped << dropped) + (value >> bits));
}

void addError(unsigned char& value, int error) {
    value = clampToByte(value + error);
}

/// Dithers one channel of one slice; `slice` is the address of its first byte.
void ditherSlice(unsigned char* slice, unsigned int bits, std::size_t width, std::size_t height) {
    const std::size_t pitch = width * channels;
    for (std::size_t x = 0; x < width; ++x) {
        const bool hasRight = x + 1 < width;
        for (std::size_t y = 0; y < height; ++y) {
            unsigned char* const pixel = slice + y * pitch + x * channels;
            const unsigned char value = *pixel;
            *pixel = quantise(value, bits);
            const int error = value - *pixel;
            if (hasRight) addError(pixel[channels], error / 2);
            if (y + 1 < height) {
                if (hasRight) addError(pixel[pitch + channels], error / 4);
                addError(pixel[pitch], error / 4);
            }
        }
    }
}

}  // namespace

void ditherLevelReference(unsigned char* rgba, PixelType target, unsigned int width, unsigned int height, unsigned int depth) {
    const DitherRates rates = ditherRates(target);
    const std::size_t slice = std::size_t{width} * height * channels;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (rates[channel] < 1 || rates[channel] > 7) continue;
        for (unsigned int z = 0; z < depth; ++z)
            ditherSlice(rgba + z * slice + channel, rates[channel], width, height);
    }
}

}  // namespace moktexture
