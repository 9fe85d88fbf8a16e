#include <bit>
#include <tuple>

#include "core/texture/TextureInternals.h"
#include "image_operations.h"
#include "operation_textures.h"
#include "operations/frame/operation_frame.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

using Texture = CMOKTexture;
EChannelName red[] = {eChannelRed}, luminance[] = {eChannelLuminance}, intensity[] = {eChannelIntensity};
unsigned int number[] = {1};
float value[] = {1.0f};

// clang-format off
const struct { bool (*run)(Texture& t); bool resultWithoutPixels, setsFlag; } operationsInPlace[] = {
    // call, result for a texture without pixels, does it set isPreMultiplied()?
    {[](Texture& t) { return SetChannels(t, 1, red, number); }, false, false},
    {[](Texture& t) { return SetChannels(t, 0, red, number); }, true, false},
    {[](Texture& t) { return SetChannelsFloat(t, 1, red, value); }, false, false},
    {[](Texture& t) { return CopyChannels(t, t, 1, red, red); }, false, false},
    {[](Texture& t) { return CopyChannels(t, t, 0, red, red); }, true, false},
    {[](Texture& t) { return Resize(t, t.getWidth(), t.getHeight(), 1, eResizeCubic); }, true, false},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, t.getNumMIPLevels()); }, true, false},
    {[](Texture& t) { return ColourMIPMaps(t); }, false, false},
    {[](Texture& t) { return PreMultiplyAlpha(t); }, false, true},
    {[](Texture& t) { return Bleed(t); }, false, false},
    {[](Texture& t) { return Flip(t, eAxisX); }, false, false},
    {[](Texture& t) { return Border(t, 0, 0, 0); }, true, false}};

const struct { bool (*run)(Texture& t); bool resultWithoutSurfaces, isReplacedWithoutTop;
               void (*changeHeader)(CMOKTextureHeader& h); } rebuildingOperations[] = {
    // call; result without layers or faces; is the texture replaced without levels or buffer? header that 4 by 2 pixels get
    {[](Texture& t) { return Resize(t, 8, 2, 3, eResizeLinear); }, false, true, [](CMOKTextureHeader& h) {
        h.setWidth(8), h.setHeight(2), h.setDepth(3), h.setNumMIPLevels(1), h.setBorder(2, 1, 3); }},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 2); }, true, false, [](CMOKTextureHeader& h) { h.setNumMIPLevels(2); }},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeCubic); }, true, false, [](CMOKTextureHeader& h) { h.setNumMIPLevels(3); }},
    {[](Texture& t) { return Rotate90(t, eAxisZ, true); }, false, true, [](CMOKTextureHeader& h) { h.setWidth(2), h.setHeight(4); }},
    {[](Texture& t) { return Rotate90(t, eAxisY, true); }, false, true, [](CMOKTextureHeader& h) { h.setHeight(4); }},
    {[](Texture& t) { return Border(t, 1, 2, 3); }, false, true, [](CMOKTextureHeader& h) {
        h.setWidth(6), h.setHeight(6), h.setDepth(7), h.setNumMIPLevels(1), h.setBorder(1, 2, 3); }},
    {[](Texture& t) { return GenerateNormalMap(t, 2.0f, "xyzh"); }, false, true, [](CMOKTextureHeader& h) {
        h.setPixelFormat(PixelTypeRGBA32), h.setChannelType(eVarFloat), h.setBumpMap(2.0f, "xyzh"); }}};

const struct { bool hasSurfaces; void (*empty)(Texture& t); } emptyings[] = {
    {false, [](Texture& t) { t.setNumArrayMembers(0), t.setNumFaces(0xFFFFFFFF); }},
    {false, [](Texture& t) { t.setNumFaces(0), t.setNumArrayMembers(0x00200000); }},
    {true, [](Texture& t) { t.setNumMIPLevels(0); }}, {true, [](Texture& t) { TextureInternals::release(t); }}};
// clang-format on

bool haveSameHeader(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    const MOKTextureHeaderV3 headerA = a.getFileHeader(), headerB = b.getFileHeader();
    return std::memcmp(&headerA, &headerB, sizeof headerA) == 0;
}

/// Border and bump map of a header.
std::tuple<unsigned int, unsigned int, unsigned int, float, CMOKTString> metaDataOf(const CMOKTextureHeader& header) {
    unsigned int x, y, z;
    header.getBorder(x, y, z);
    return {x, y, z, header.getBumpMapScale(), header.getBumpMapOrder()};
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
    const CMOKTexture suitable = randomTexture<std::uint8_t>({4, 2});
    const auto expectRefusal = [&suitable](bool (*run)(Texture&), std::ptrdiff_t row) {
        Texture otherFormat = suitable, shortBuffer = suitable, wrappedSize = suitable, accepted = suitable;
        otherFormat.setPixelFormat(PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8));
        shortBuffer.setHeight(3);
        wrappedSize.setWidth(0x40000001);
        for (Texture* texture : {&otherFormat, &shortBuffer, &wrappedSize}) {
            const CMOKTextureHeader before = texture->getHeader();
            EXPECT_FALSE(run(*texture)) << row;
            EXPECT_TRUE(haveSameHeader(*texture, before)) << row;
            EXPECT_EQ(std::memcmp(texture->getDataPtr(), suitable.getDataPtr(), 32), 0) << row;
        }
        EXPECT_TRUE(run(accepted)) << row;
    };
    for (const auto& operation : operationsInPlace)
        expectRefusal(operation.run, &operation - operationsInPlace);
    for (const auto& operation : rebuildingOperations)
        expectRefusal(operation.run, &operation - rebuildingOperations);
}

TEST(OperationFrame, LeavesOrReplacesTexturesWithoutPixels) {
    CMOKTexture full = randomTexture<std::uint8_t>({4, 2});
    full.setBorder(1, 1, 1);
    for (const auto& emptying : emptyings) {
        const auto expectHeader = [&](bool (*run)(Texture&), bool result, bool isReplaced, const CMOKTextureHeader& expected) {
            Texture texture = full;
            emptying.empty(texture);
            const void* const oldPixels = texture.getDataPtr();
            EXPECT_EQ(run(texture), result);
            EXPECT_TRUE(haveSameHeader(texture, expected));
            EXPECT_EQ(metaDataOf(texture), metaDataOf(expected));
            EXPECT_EQ(texture.getDataPtr() != oldPixels, isReplaced);
            EXPECT_TRUE(!isReplaced || isAllZero(texture));
        };
        Texture emptied = full;
        emptying.empty(emptied);
        for (const auto& [run, result, setsFlag] : operationsInPlace) {
            CMOKTextureHeader expected = emptied.getHeader();
            expected.setIsPreMultiplied(setsFlag);
            expectHeader(run, result, false, expected);
        }
        for (const auto& operation : rebuildingOperations) {
            const auto& [run, resultWithoutSurfaces, isReplacedWithoutTop, changeHeader] = operation;
            SCOPED_TRACE(testing::Message() << "emptying " << &emptying - emptyings << ", row "
                                            << &operation - rebuildingOperations);
            const bool isReplaced = !emptying.hasSurfaces || isReplacedWithoutTop;
            CMOKTextureHeader expected = emptied.getHeader();
            if (isReplaced) changeHeader(expected);
            expectHeader(run, !emptying.hasSurfaces && resultWithoutSurfaces, isReplaced, expected);
        }
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
        const CMOKTextureHeader before = texture.getHeader();
        EXPECT_FALSE(run(texture)) << shape.width;
        EXPECT_TRUE(haveSameHeader(texture, before)) << shape.width;
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
        EXPECT_EQ(std::bit_cast<std::uint32_t>(elementsAt<float>(texture, level)[element]), 0x7FC00000u) << level << element;
    }
}

TEST(OperationFrame, VisitsLayersFacesAndLevelsAndReturnsTheLastResult) {
    CMOKTexture texture = textureOf<std::uint8_t>({5, 1, 1, 2, 2, 2}, {});
    std::vector<std::uint32_t> visited;  // decimal digits: layer, face, level
    bool lastResult = true;
    const auto visit = [&](const Subresource& subresource) {
        visited.push_back(subresource.layer * 100 + subresource.face * 10 + subresource.level);
        return (subresource.layer == 1 && subresource.face == 1) == lastResult;
    };
    EXPECT_TRUE(visitSubresources(texture, VisitedLevels::all, visit));
    EXPECT_TRUE(visitSubresources(texture, VisitedLevels::first, visit));
    EXPECT_EQ(visited, (std::vector<std::uint32_t>{0, 1, 10, 11, 100, 101, 110, 111, 0, 10, 100, 110}));
    lastResult = false;
    EXPECT_FALSE(visitSubresources(texture, VisitedLevels::first, visit));
}

}  // namespace
