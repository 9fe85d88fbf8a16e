#include <array>
#include <bit>

#include "core/texture/TextureInternals.h"
#include "operation_textures.h"
#include "operations/frame/operation_frame.h"

using namespace operationtextures;

namespace {

using Texture = CMOKTexture;
using Header = CMOKTextureHeader;
EChannelName red[] = {eChannelRed}, luminance[] = {eChannelLuminance}, intensity[] = {eChannelIntensity};
unsigned int number[] = {1};
float value[] = {1.0f};

// clang-format off
const struct { bool (*run)(Texture& t); bool resultWithoutSurfaces, resultWithoutTop, changesWithoutTop;
               void (*change)(Header& h); } operations[] = {
    // call, result without layers or faces, result without levels or buffer, is the texture changed then? change of 4 by 2 pixels
    {[](Texture& t) { return SetChannels(t, 1, red, number); }, false, false, false, nullptr},
    {[](Texture& t) { return SetChannels(t, 0, red, number); }, true, true, false, nullptr},
    {[](Texture& t) { return SetChannelsFloat(t, 1, red, value); }, false, false, false, nullptr},
    {[](Texture& t) { return CopyChannels(t, t, 1, red, red); }, false, false, false, nullptr},
    {[](Texture& t) { return CopyChannels(t, t, 0, red, red); }, true, true, false, nullptr},
    {[](Texture& t) { return Resize(t, t.getWidth(), t.getHeight(), 1, eResizeCubic); }, true, true, false, nullptr},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, t.getNumMIPLevels()); }, true, true, false, nullptr},
    {[](Texture& t) { return ColourMIPMaps(t); }, false, false, false, nullptr},
    {[](Texture& t) { return PreMultiplyAlpha(t); }, false, false, true, [](Header& h) { h.setIsPreMultiplied(true); }},
    {[](Texture& t) { return Bleed(t); }, false, false, false, nullptr},
    {[](Texture& t) { return Flip(t, eAxisX); }, false, false, false, nullptr},
    {[](Texture& t) { return Border(t, 0, 0, 0); }, true, true, false, nullptr},
    {[](Texture& t) { return Resize(t, 8, 2, 3, eResizeLinear); }, false, false, true, [](Header& h) {
        h.setWidth(8), h.setHeight(2), h.setDepth(3), h.setNumMIPLevels(1), h.setBorder(2, 1, 3); }},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 2); }, true, false, false, [](Header& h) { h.setNumMIPLevels(2); }},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeCubic); }, true, false, false, [](Header& h) { h.setNumMIPLevels(3); }},
    {[](Texture& t) { return Rotate90(t, eAxisZ, true); }, false, false, true, [](Header& h) { h.setWidth(2), h.setHeight(4); }},
    {[](Texture& t) { return Rotate90(t, eAxisY, true); }, false, false, true, [](Header& h) { h.setHeight(4); }},
    {[](Texture& t) { return Border(t, 1, 2, 3); }, false, false, true, [](Header& h) {
        h.setWidth(6), h.setHeight(6), h.setDepth(7), h.setNumMIPLevels(1), h.setBorder(1, 2, 3); }},
    {[](Texture& t) { return GenerateNormalMap(t, 2.0f, "xyzh"); }, false, false, true, [](Header& h) {
        h.setPixelFormat(PixelTypeRGBA32), h.setChannelType(eVarFloat), h.setBumpMap(2.0f, "xyzh"); }}};

const struct { bool hasSurfaces; void (*empty)(Texture& t); } emptyings[] = {
    {false, [](Texture& t) { t.setNumArrayMembers(0), t.setNumFaces(0xFFFFFFFF); }},
    {false, [](Texture& t) { t.setNumFaces(0), t.setNumArrayMembers(0x00200000); }},
    {true, [](Texture& t) { t.setNumMIPLevels(0); }}, {true, [](Texture& t) { TextureInternals::release(t); }}};
// clang-format on

/// The record of a header as bytes, border and bump map.
auto contentsOf(const CMOKTextureHeader& header) {
    unsigned int x, y, z;
    header.getBorder(x, y, z);
    const auto record = std::bit_cast<std::array<unsigned char, sizeof(MOKTextureHeaderV3)>>(header.getFileHeader());
    return std::tuple(record, x, y, z, header.getBumpMapScale(), header.getBumpMapOrder());
}

TEST(OperationFrame, AcceptsFourFormatsOnly) {
    std::vector<std::uint32_t> accepted;
    for (const PixelType& format : {PixelTypeRGBA8, PixelTypeRGBA16, PixelTypeRGBA32, PixelType(eFmtDXT1)})
        for (unsigned int type = 0; type < 16; ++type)
            if (isOperableTexture(format, static_cast<EMOKTVariableType>(type)))
                accepted.insert(accepted.end(), {format.part.high >> 24, type});
    EXPECT_EQ(accepted, (std::vector<std::uint32_t>{8, eVarUByteNorm, 16, eVarUShortNorm, 32, eVarUIntNorm, 32, eVarFloat}));
}

TEST(OperationFrame, RefusesUnsuitableTextures) {
    const Texture suitable = randomTexture<std::uint8_t>({4, 2});
    Texture unsuitable[] = {suitable, suitable, suitable};
    unsuitable[0].setPixelFormat(PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8));
    unsuitable[1].setHeight(3);          // more than the buffer holds
    unsuitable[2].setWidth(0x40000001);  // the size wraps
    for (const auto& operation : operations) {
        SCOPED_TRACE(&operation - operations);
        for (Texture texture : unsuitable) {
            const auto before = contentsOf(texture);
            EXPECT_FALSE(operation.run(texture));
            EXPECT_EQ(contentsOf(texture), before);
            EXPECT_EQ(std::memcmp(texture.getDataPtr(), suitable.getDataPtr(), 32), 0);
        }
        Texture accepted = suitable;
        EXPECT_TRUE(operation.run(accepted));
    }
}

TEST(OperationFrame, LeavesOrReplacesTexturesWithoutPixels) {
    Texture full = randomTexture<std::uint8_t>({4, 2});
    full.setBorder(1, 1, 1), full.setBumpMap(3.0f, "x"), full.setColourSpace(eColourSpaceSRGB);
    for (const auto& [hasSurfaces, empty] : emptyings)
        for (const auto& operation : operations) {
            SCOPED_TRACE(testing::Message() << "row " << &operation - operations << ", surfaces " << hasSurfaces);
            Texture texture = full;
            empty(texture);
            const void* const oldPixels = texture.getDataPtr();
            CMOKTextureHeader expected = texture.getHeader();
            const bool isChanged = operation.change != nullptr && (!hasSurfaces || operation.changesWithoutTop);
            if (isChanged) operation.change(expected);
            EXPECT_EQ(operation.run(texture), hasSurfaces ? operation.resultWithoutTop : operation.resultWithoutSurfaces);
            EXPECT_EQ(contentsOf(texture), contentsOf(expected));
            const bool isReplaced = isChanged && !expected.isPreMultiplied();
            EXPECT_EQ(texture.getDataPtr() != oldPixels, isReplaced);
            EXPECT_TRUE(!isReplaced || isAllZero(texture));
        }
}

TEST(OperationFrame, RefusesResultsThatDoNotFit) {
    // clang-format off
    const std::pair<Shape, bool (*)(Texture& t)> rows[] = {
        // shape, operation
        {{4, 4}, [](Texture& t) { return Resize(t, 0x10000, 0x10000, 1, eResizeCubic); }},
        {{4, 4}, [](Texture& t) { return Resize(t, 0, 4, 1, eResizeCubic); }},
        {{4, 4}, [](Texture& t) { return Resize(t, 4, 0, 1, eResizeCubic); }},
        {{4, 4}, [](Texture& t) { return Resize(t, 4, 4, 0, eResizeCubic); }},
        // 4 bytes too many for 32 bits
        {{1, 1, 1, 1, 4210753}, [](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 255); }},
        {{16384, 1}, [](Texture& t) { return Rotate90(t, eAxisY, true); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0x10000000, 0, 0); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0, 0x7FFFFFFF, 0); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0, 0, 0x80000000); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0xFFFFFFFF, 0, 0); }},
        {{16384, 2048}, [](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); }}};
    // clang-format on
    for (const auto& [shape, run] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>(shape, {1, 2, 3, 4});
        const void* const pixels = texture.getDataPtr();
        const auto before = contentsOf(texture);
        EXPECT_FALSE(run(texture)) << shape.width;
        EXPECT_EQ(contentsOf(texture), before) << shape.width;
        EXPECT_EQ(texture.getDataPtr(), pixels) << shape.width;
    }
}

TEST(OperationFrame, StoresTheCanonicalNaN) {
    // clang-format off
    const std::tuple<bool (*)(Texture& t), int, std::size_t> rows[] = {
        // operation, level and element that are compared
        {[](Texture& t) { return Resize(t, 3, 1, 1, eResizeLinear); }, 0, 0}, {[](Texture& t) { return Bleed(t); }, 0, 0},
        {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 3); }, 1, 0}, {[](Texture& t) { return ColourMIPMaps(t); }, 1, 1},
        {[](Texture& t) { return CopyChannels(t, t, 1, red, luminance); }, 0, 0},
        {[](Texture& t) { return CopyChannels(t, t, 1, red, intensity); }, 0, 0},
        {[](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); }, 0, 0}};
    // clang-format on
    std::vector<float> elements(12, std::bit_cast<float>(0xFFC12345u));
    elements[3] = 0.0f;
    for (const auto& [run, level, element] : rows) {
        CMOKTexture texture = textureOf<float>({2, 1, 1, 2}, elements);
        EXPECT_TRUE(run(texture));
        EXPECT_EQ(std::bit_cast<std::uint32_t>(elementsOf<float>(texture, level)[element]), 0x7FC00000u) << level << element;
    }
}

}  // namespace
