#include <cmath>

#include "image_operations.h"
#include "operation_textures.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

template <typename T>
float heightOf(T element) {
    const float value = static_cast<float>(element);
    if (std::is_same_v<T, float>) return value;
    return sizeof(T) == 1 ? value / 255.0f : sizeof(T) == 2 ? value / 65535.0f : value * 2.3283064e-10f;
}

/// Normals of a level in the order "hzyx", written a second time: pixel by pixel.
template <typename T>
std::vector<float> normalsOf(const std::vector<T>& pixels, std::uint32_t width, std::uint32_t height, float scale) {
    std::vector<float> normals;
    for (std::size_t i = 0; i < pixels.size() / 4; ++i) {
        const std::size_t x = i % width, y = i / width % height, z = i / width / height;
        const auto heightAt = [&](std::size_t column, std::size_t row, std::size_t slice) {
            return heightOf(pixels[((slice * height + row) * width + column) * 4]);
        };
        const float left = heightAt((x + width - 1) % width, y, z), right = heightAt((x + 1) % width, y, z);
        const float up = y == 0 ? heightAt(x, height - 1, 0) : heightAt(x, y - 1, z);
        const float down = y == height - 1 ? heightAt(x, 0, 0) : heightAt(x, y + 1, z);
        const float dx = (left - right) * scale, dy = (up - down) * scale;
        const float length = std::sqrt(dx * dx + dy * dy + 1.0f);
        for (const float value :
             {heightAt(x, y, z), 1.0f / length * 0.5f + 0.5f, dy / length * 0.5f + 0.5f, dx / length * 0.5f + 0.5f})
            normals.push_back(value);
    }
    return normals;
}

TEST(GenerateNormalMap, TakesEachLevelsSlopesAndWrapsToSliceZero) {
    forEachElementType([]<typename T>(T) {
        for (const Shape& shape : {Shape{300, 5, 1, 2, 2, 2}, Shape{5, 4, 3, 3, 2, 2}, Shape{1, 1, 3, 1, 2, 2}}) {
            for (const float scale : {1.0f, -37.5f, 1e-3f}) {
                CMOKTexture texture = randomTexture<T>(shape);
                texture.setColourSpace(eColourSpaceSRGB);
                const CMOKTexture before = texture;
                ASSERT_TRUE(GenerateNormalMap(texture, scale, "hzyx"));
                EXPECT_TRUE(texture.getPixelType() == PixelTypeRGBA32 && texture.getChannelType() == eVarFloat);
                EXPECT_TRUE(texture.getColourSpace() == eColourSpaceSRGB && texture.getBumpMapScale() == scale);
                for (std::uint32_t i = 0; i < shape.levels * 4; ++i) {
                    const std::vector<T> pixels = piece<T>(before, i / 4, i / 2 % 2, i % 2);
                    ASSERT_EQ(piece<float>(texture, i / 4, i / 2 % 2, i % 2),
                              normalsOf(pixels, before.getWidth(i / 4), before.getHeight(i / 4), scale));
                }
            }
        }
    });
}

TEST(GenerateNormalMap, ArrangesChannelsByTheOrder) {
    const std::pair<const char*, std::vector<float>> rows[] = {
        {"xyzh", {0.5f, 0.5f, 1.0f, 0.2f}}, {"xzyh", {0.5f, 1.0f, 0.5f, 0.2f}},  {"", {1.0f, 1.0f, 1.0f, 1.0f}},
        {"hh", {1.0f, 0.2f, 1.0f, 1.0f}},   {"qHhxy", {1.0f, 1.0f, 0.2f, 0.5f}}, {"zzzzh", {1.0f, 1.0f, 1.0f, 1.0f}},
    };
    for (const auto& [order, expected] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>({}, {51, 1, 2, 3});
        EXPECT_TRUE(GenerateNormalMap(texture, 5.0f, order));
        EXPECT_EQ(elementsOf<float>(texture), expected) << order;
        EXPECT_TRUE(texture.getBumpMapOrder() == CMOKTString(order).left(4)) << order;
    }
}

TEST(GenerateNormalMap, FailsForScaleZeroAndReplacesTheTexture) {
    forEachElementType([]<typename T>(T) {
        for (const float scale : {0.0f, -0.0f}) {
            CMOKTexture texture = randomTexture<T>({4, 3, 2, 2, 2, 1});
            EXPECT_FALSE(GenerateNormalMap(texture, scale, "xy"));
            EXPECT_TRUE(texture.getChannelType() == eVarFloat && texture.isBumpMap() && texture.getBumpMapOrder() == "xy");
            const std::vector<float> pixels = elementsOf<float>(texture);
            EXPECT_EQ(pixels, std::vector<float>(pixels.size(), 0.0f));
        }
    });
}

TEST(GenerateNormalMap, RefusesWhatGrowsTooLarge) {
    CMOKTexture texture = textureOf<std::uint8_t>({16384, 2048}, {});
    EXPECT_FALSE(GenerateNormalMap(texture, 1.0f, "xyz"));
    EXPECT_TRUE(texture.getPixelType() == PixelTypeRGBA8 && !texture.isBumpMap());
}

}  // namespace
