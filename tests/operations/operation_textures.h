#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <vector>

#include "CMOKTexture.h"
#include "support/test_images.h"

/// Operable textures of every element type.
namespace operationtextures {

struct Shape {
    std::uint32_t width = 1, height = 1, depth = 1, levels = 1, members = 1, faces = 1;
};

/// A texture whose first elements are those given, the rest zeroed.
template <typename T>
moktexture::CMOKTexture textureOf(const Shape& shape, const std::vector<T>& elements) {
    constexpr auto bits = static_cast<std::uint8_t>(8 * sizeof(T));
    const moktexture::PixelType format{'r', 'g', 'b', 'a', bits, bits, bits, bits};
    const EMOKTVariableType types[] = {eVarNone, eVarUByteNorm, eVarUShortNorm, eVarNone, eVarUIntNorm};
    moktexture::CMOKTextureHeader header(format.id, shape.height, shape.width, shape.depth, shape.levels, shape.members,
                                         shape.faces, eColourSpaceLinear, types[sizeof(T)], false);
    if (std::is_same_v<T, float>) header.setChannelType(eVarFloat);
    moktexture::CMOKTexture texture(header, nullptr);
    if (!elements.empty()) std::memcpy(texture.getDataPtr(), elements.data(), elements.size() * sizeof(T));
    return texture;
}

/// Elements over the whole range of integers with much white, and from -0.25 to 1.25 for floats.
template <typename T>
std::vector<T> randomElements(std::size_t count, testimages::Random& random) {
    std::vector<T> elements(count);
    for (T& element : elements) {
        const std::uint32_t number = random.below(8) == 0 ? 0xFFFFFFFFu : random.next();
        element = std::is_same_v<T, float> ? static_cast<T>(static_cast<float>(number >> 8) * 0x1.8p-24f - 0.25f)
                                           : static_cast<T>(number);
    }
    return elements;
}

/// Puts infinities and NaNs of several payloads in place of some elements of a float image.
template <typename T>
void scatterSpecialValues(std::vector<T>& elements, testimages::Random& random) {
    if constexpr (std::is_same_v<T, float>) {
        const std::uint32_t bits[] = {0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC00000, 0x7FC12345, 0xFFFFFFFF};
        for (float& element : elements) {
            if (random.below(6) == 0) std::memcpy(&element, &bits[random.below(6)], sizeof element);
        }
    }
}

/// Pixels whose four elements are alike, one for each number.
template <typename T, typename Number>
std::vector<T> alikePixels(const std::vector<Number>& numbers) {
    std::vector<T> elements;
    for (const Number& number : numbers)
        elements.insert(elements.end(), 4, static_cast<T>(number));
    return elements;
}

template <typename T>
std::vector<T> repeatedPixel(const std::vector<T>& pixel, std::size_t count) {
    std::vector<T> elements;
    for (std::size_t i = 0; i < count; ++i)
        elements.insert(elements.end(), pixel.begin(), pixel.end());
    return elements;
}

template <typename T>
moktexture::CMOKTexture randomTexture(const Shape& shape, std::uint64_t seed = 1) {
    testimages::Random random(seed);
    return textureOf(shape, randomElements<T>(textureOf<T>(shape, {}).getDataSize() / sizeof(T), random));
}

/// Elements of one piece.
template <typename T>
std::vector<T> piece(const moktexture::CMOKTexture& texture, std::uint32_t level = 0, unsigned int member = 0,
                     unsigned int face = 0) {
    const T* const first = static_cast<const T*>(texture.getDataPtr(level, member, face));
    return {first, first + texture.getDataSize(static_cast<int>(level), false, false) / sizeof(T)};
}

/// Elements of the whole buffer.
template <typename T>
std::vector<T> elementsOf(const moktexture::CMOKTexture& texture) {
    const T* const first = static_cast<const T*>(texture.getDataPtr());
    return {first, first + texture.getDataSize() / sizeof(T)};
}

/// Calls `test(T)` for the four element types.
template <typename Test>
void forEachElementType(Test test) {
    test(std::uint8_t{});
    test(std::uint16_t{});
    test(std::uint32_t{});
    test(float{});
}

}  // namespace operationtextures
