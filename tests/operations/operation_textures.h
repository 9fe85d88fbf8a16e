#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <vector>

#include "image_operations.h"
#include "support/test_images.h"

/// Operable textures of every element type.
namespace operationtextures {

using namespace moktexture;

struct Shape {
    std::uint32_t width = 1, height = 1, depth = 1, levels = 1, layers = 1, faces = 1;
};

/// A texture that starts with the given elements; the others are 0.
template <typename T>
CMOKTexture textureOf(const Shape& shape, const std::vector<T>& elements) {
    constexpr std::uint8_t bits = 8 * sizeof(T);
    constexpr EMOKTVariableType types[] = {eVarNone, eVarUByteNorm, eVarUShortNorm, eVarNone, eVarUIntNorm};
    const EMOKTVariableType type = std::is_same_v<T, float> ? eVarFloat : types[sizeof(T)];
    CMOKTexture texture(CMOKTextureHeader(PixelType('r', 'g', 'b', 'a', bits, bits, bits, bits).id, shape.height, shape.width,
                                          shape.depth, shape.levels, shape.layers, shape.faces, eColourSpaceLinear, type, false),
                        nullptr);
    std::copy(elements.begin(), elements.end(), static_cast<T*>(texture.getDataPtr()));
    return texture;
}

/// Integers over the whole range with one white in eight; floats from -0.25 to 1.25, `withSpecials` with infinities and NaNs of
/// several payloads among them.
template <typename T>
std::vector<T> randomElements(std::size_t count, testimages::Random& random, bool withSpecials = false) {
    constexpr std::uint32_t specials[] = {0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC00000, 0x7FC12345, 0xFFFFFFFF};
    std::vector<T> elements(count);
    for (T& element : elements) {
        const std::uint32_t number = random.below(8) == 0 ? 0xFFFFFFFFu : random.next();
        element = static_cast<T>(number);
        if constexpr (std::is_same_v<T, float>) {
            element = static_cast<float>(number >> 8) * 0x1.8p-24f - 0.25f;
            if (withSpecials && random.below(6) == 0) std::memcpy(&element, &specials[random.below(6)], sizeof element);
        }
    }
    return elements;
}

/// Pixels with four equal elements, one pixel for each number.
template <typename T>
std::vector<T> uniformPixels(const std::vector<double>& numbers) {
    std::vector<T> elements;
    for (const double number : numbers)
        elements.insert(elements.end(), 4, static_cast<T>(number));
    return elements;
}

template <typename T>
std::vector<T> repeatedPixel(const std::vector<T>& pixel, std::size_t count) {
    std::vector<T> elements;
    while (count-- > 0)
        elements.insert(elements.end(), pixel.begin(), pixel.end());
    return elements;
}

template <typename T>
CMOKTexture randomTexture(const Shape& shape, std::uint64_t seed = 1) {
    testimages::Random random(seed);
    return textureOf(shape, randomElements<T>(textureOf<T>(shape, {}).getDataSize() / sizeof(T), random));
}

/// Elements of one subresource, or of the whole buffer for level -1.
template <typename T>
std::vector<T> elementsOf(const CMOKTexture& texture, int level = -1, unsigned int layer = 0, unsigned int face = 0) {
    const auto* first = static_cast<const T*>(texture.getDataPtr(static_cast<unsigned int>(std::max(level, 0)), layer, face));
    return {first, first + texture.getDataSize(level, level < 0, level < 0) / sizeof(T)};
}

inline bool isAllZero(const CMOKTexture& texture) {
    return std::ranges::count(elementsOf<std::uint8_t>(texture), 0) == texture.getDataSize();
}

/// Calls `test(T)` for the four element types.
template <typename Test>
void forEachElementType(Test test) {
    test(std::uint8_t{}), test(std::uint16_t{}), test(std::uint32_t{}), test(float{});
}

}  // namespace operationtextures
