#include <array>
#include <limits>
#include <new>

#include "image_operations.h"
#include "operation_textures.h"
#include "operations/bleed.h"

using namespace moktexture;
using namespace operationtextures;

static bool isMemoryRefused = false;

// The allocation that does not throw, for arrays.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return isMemoryRefused ? nullptr : ::operator new[](size);
}

namespace {

const float nan = std::numeric_limits<float>::quiet_NaN();

template <typename T>
void expectProducts(std::initializer_list<std::array<T, 3>> rows) {
    for (const auto& [colour, alpha, expected] : rows) {
        CMOKTexture texture = textureOf<T>({1, 1, 1, 2}, repeatedPixel<T>({colour, colour, colour, alpha}, 2));
        EXPECT_TRUE(PreMultiplyAlpha(texture) && texture.isPreMultiplied() && !PreMultiplyAlpha(texture));
        EXPECT_EQ(elementsOf<T>(texture), repeatedPixel<T>({expected, expected, expected, alpha}, 2)) << +colour;
    }
}

TEST(PreMultiplyAlpha, KeepsTheLowByteOfEveryProductOnce) {
    expectProducts<std::uint8_t>({{200, 128, 100}, {201, 255, 201}, {255, 1, 1}, {254, 1, 0}, {77, 0, 0}});
    expectProducts<std::uint16_t>({{60000, 65535, 96}, {300, 32768, 150}, {600, 32768, 44}, {55303, 1044, 113}});
    expectProducts<std::uint32_t>({{0xFFFFFFFF, 0xFFFFFFFF, 0}, {1000, 0x80000000, 244}, {0x12345678, 0xFFFFFFFF, 0x80}});
    expectProducts<float>({{0.75f, 1, 0}, {3.5f, 0.5f, 1}, {300.5f, 1, 44}, {1.5f, -1, 255}, {1e30f, 1, 0}, {nan, 1, 0}});
}

TEST(Bleed, TakesTheMeanOfVisiblePixelsUpToFourAway) {
    forEachElementType([]<typename T>(T) {
        std::vector<T> line = alikePixels<T>({10, 7, 7, 21, 7, 7, 7, 7, 7, 7, 7});
        std::vector<T> expected = alikePixels<T>({10, 15.5, 15.5, 21, 15.5, 21, 21, 21, 7, 7, 7});
        for (std::size_t i = 0; i < 11; ++i)
            line[4 * i + 3] = expected[4 * i + 3] = i == 0 || i == 3;
        for (const Shape& shape : {Shape{11, 1, 1}, Shape{1, 11, 1}, Shape{1, 1, 11}}) {
            CMOKTexture texture = textureOf<T>(shape, line);
            EXPECT_TRUE(Bleed(texture) && elementsOf<T>(texture) == expected) << shape.width << shape.height;
        }
    });
    // The corners of its box, and no further.
    CMOKTexture volume = textureOf<std::uint8_t>({6, 7, 8}, {9, 9, 9, 1});
    ASSERT_TRUE(Bleed(volume));
    for (std::size_t i = 0; i < 6 * 7 * 8; ++i)
        ASSERT_EQ(elementsOf<std::uint8_t>(volume)[i * 4], i % 6 < 5 && i / 6 % 7 < 5 && i / 42 < 5 ? 9 : 0) << i;
}

TEST(Bleed, GivesTheHandWorkedMeansOfWideElements) {
    const auto firstRed = []<typename T>(const Shape& shape, const std::vector<T>& elements) {
        CMOKTexture texture = textureOf<T>(shape, elements);
        return Bleed(texture) ? elementsOf<T>(texture)[0] : T{1};
    };
    EXPECT_EQ((firstRed.operator()<std::uint32_t>({2}, {5, 0, 0, 0, 0xFFFFFFFF, 0, 0, 1})), 0u);
    EXPECT_EQ((firstRed.operator()<float>({2}, {5, 0, 0, -0.0f, 8.5f, 0, 0, nan})), 8.5f);
    EXPECT_EQ((firstRed.operator()<float>({2}, {5, 0, 0, nan, 8.5f, 0, 0, 1})), 5.0f);
    // 1e8, -1e8 and 1 in the order of z, y and x.
    const std::vector<float> slices = {0, 0, 0, 0, 1e8f, 0, 0, 1, -1e8f, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 1};
    EXPECT_EQ(firstRed.operator()<float>({2, 2, 2}, slices), 1.0f / 3.0f);
}

TEST(Bleed, EveryFormGivesTheBitsOfThePlainOne) {
    testimages::Random random(3);
    forEachElementType([&]<typename T>(T) {
        for (const Shape& shape : {Shape{1, 1, 1}, Shape{3, 2, 2}, Shape{9, 9, 3}, Shape{9, 9, 4}, Shape{4, 4, 30},
                                   Shape{200, 1, 1}, Shape{1, 40, 6}, Shape{33, 21, 1}, Shape{14, 13, 12}})
            for (std::uint32_t oneIn : {2u, 20u, 200u}) {
                std::vector<T> pixels =
                    randomElements<T>(std::size_t{4} * shape.width * shape.height * shape.depth, random, random.below(2) == 0);
                for (std::size_t i = 3; i < pixels.size(); i += 4)
                    if (random.below(oneIn) != 0) pixels[i] = T{0};
                std::vector<T> plain = pixels;
                ASSERT_TRUE(bleedLevelPlain(plain.data(), shape.width, shape.height, shape.depth) &&
                            bleedLevel(pixels.data(), shape.width, shape.height, shape.depth));
                ASSERT_EQ(std::memcmp(pixels.data(), plain.data(), plain.size() * sizeof(T)), 0) << shape.width;
            }
    });
    EXPECT_TRUE(bleedsByRunningSums<std::uint8_t>({99, 99, 99}) && bleedsByRunningSums<std::uint16_t>({99, 99, 3}) &&
                !bleedsByRunningSums<std::uint16_t>({9, 9, 4}));
}

TEST(Bleed, TreatsTheLastPieceAndFailsWithoutMemory) {
    forEachElementType([]<typename T>(T) {
        CMOKTexture texture = randomTexture<T>({24, 18, 4, 2, 2, 2});
        for (std::size_t i = 3; i < 4 * 12 * 9 * 2; i += 8)
            static_cast<T*>(texture.getDataPtr(1, 1, 1))[i] = T{0};
        const std::vector<T> before = elementsOf<T>(texture);
        isMemoryRefused = true;
        EXPECT_FALSE(Bleed(texture));
        isMemoryRefused = false;
        EXPECT_EQ(elementsOf<T>(texture), before);
        std::vector<T> expected = piece<T>(texture, 1, 1, 1);
        bleedLevelPlain(expected.data(), 12, 9, 2);
        EXPECT_TRUE(Bleed(texture) && piece<T>(texture, 1, 1, 1) == expected);
    });
}

}  // namespace
