#include <bit>
#include <tuple>

#include "core/texture/TextureInternals.h"
#include "image_operations.h"
#include "operation_textures.h"
#include "operations/frame/operable_texture.h"
#include "operations/frame/operation_frame.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

using Texture = CMOKTexture;
EChannelName red[] = {eChannelRed}, luminance[] = {eChannelLuminance}, intensity[] = {eChannelIntensity};
unsigned int number[] = {1};
float value[] = {1.0f};

/// What becomes of a texture that has no buffer.
enum Fate { unchanged, flagged, replaced, keptForLackOfLevelZero };

// Each with its result for a texture without pixels.
// clang-format off
const struct { bool (*run)(Texture& t); bool resultWithoutPixels; Fate fate; } operations[] = {
    {[](Texture& t) { return SetChannels(t, 1, red, number); }, false, unchanged},
    {[](Texture& t) { return SetChannels(t, 0, red, number); }, true, unchanged},
    {[](Texture& t) { return SetChannelsFloat(t, 1, red, value); }, false, unchanged},
    {[](Texture& t) { return CopyChannels(t, t, 1, red, red); }, false, unchanged},
    {[](Texture& t) { return CopyChannels(t, t, 0, red, red); }, true, unchanged},
    {[](Texture& t) { return Resize(t, 3, 2, 1, eResizeCubic); }, false, replaced},
    {[](Texture& t) { return Resize(t, 4, 4, 1, eResizeCubic); }, true, unchanged},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, allMIPLevels); }, false, keptForLackOfLevelZero},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, t.getNumMIPLevels()); }, true, unchanged},
    {[](Texture& t) { return ColourMIPMaps(t); }, false, unchanged},
    {[](Texture& t) { return PreMultiplyAlpha(t); }, false, flagged},
    {[](Texture& t) { return Bleed(t); }, false, unchanged},
    {[](Texture& t) { return Flip(t, eAxisX); }, false, unchanged},
    {[](Texture& t) { return Rotate90(t, eAxisZ, true); }, false, replaced},
    {[](Texture& t) { return Border(t, 1, 0, 0); }, false, replaced},
    {[](Texture& t) { return Border(t, 0, 0, 0); }, true, unchanged},
    {[](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); }, false, replaced}};

enum Lack { form, buffer, pieces };
const struct { Lack lack; void (*spoil)(Texture& t); } spoilers[] = {
    {form, [](Texture& t) { t.setPixelFormat(PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8)); }},
    {form, [](Texture& t) { t.setHeight(5); }},          // the buffer is too short
    {form, [](Texture& t) { t.setWidth(0x40000001); }},  // the size wraps
    {buffer, [](Texture& t) { TextureInternals::release(t); }},
    {pieces, [](Texture& t) { t.setNumArrayMembers(0), t.setNumFaces(0xFFFFFFFF); }},
    {pieces, [](Texture& t) { t.setNumFaces(0), t.setNumArrayMembers(0x03FFFFFF); }},
    {pieces, [](Texture& t) { t.setNumMIPLevels(0), t.setNumArrayMembers(0xFFFFFFFF), t.setNumFaces(0xFFFFFFFF); }}};
// clang-format on

bool haveSameHeader(const CMOKTextureHeader& a, const CMOKTextureHeader& b) {
    const MOKTextureHeaderV3 headerA = a.getFileHeader(), headerB = b.getFileHeader();
    return std::memcmp(&headerA, &headerB, sizeof headerA) == 0;
}

TEST(OperationFrame, AcceptsFourFormsOnly) {
    std::vector<std::uint32_t> accepted;
    for (const PixelType& format : {PixelTypeRGBA8, PixelTypeRGBA16, PixelTypeRGBA32, PixelType(eFmtDXT1)})
        for (unsigned int type = 0; type < 16; ++type)
            if (isOperableTexture(format, static_cast<EMOKTVariableType>(type)))
                accepted.insert(accepted.end(), {format.part.high >> 24, type});
    EXPECT_EQ(accepted, (std::vector<std::uint32_t>{8, eVarUByteNorm, 16, eVarUShortNorm, 32, eVarUIntNorm, 32, eVarFloat}));
}

TEST(OperationFrame, LeavesWhatItCannotTouchAloneButReplacesAMissingBuffer) {
    const CMOKTexture sound = randomTexture<std::uint8_t>({4, 4});
    for (const auto& [run, resultWithoutPixels, fate] : operations) {
        for (const auto& [lack, spoil] : spoilers) {
            if (lack == pieces && (fate == replaced || fate == keptForLackOfLevelZero)) continue;
            SCOPED_TRACE(testing::Message() << "operation " << &run - &operations[0].run << ", lack " << lack);
            CMOKTexture texture = sound;
            spoil(texture);
            CMOKTexture before = texture;
            before.setIsPreMultiplied(lack != form && fate == flagged);
            EXPECT_EQ(run(texture), lack != form && resultWithoutPixels);
            if (lack == buffer && fate == replaced) {
                EXPECT_TRUE(isAllZero(texture));
                continue;
            }
            EXPECT_TRUE(haveSameHeader(texture, before) && (lack == buffer) == (texture.getDataPtr() == nullptr));
            EXPECT_TRUE(lack == buffer || std::memcmp(texture.getDataPtr(), sound.getDataPtr(), 64) == 0);
        }
        CMOKTexture texture = sound;
        EXPECT_TRUE(run(texture));
    }
}

// Operations that build a new texture, applied to a texture of 4 by 2 pixels without layers, faces or levels: the header that
// results; the result where there are no layers or no faces; whether a texture without levels is replaced.
// clang-format off
const struct { const char* name; bool (*run)(Texture& t); bool resultWithoutSurfaces, isReplacedWithoutLevels;
               void (*changeHeader)(CMOKTextureHeader& h); } rebuildingOperations[] = {
    // name           call                                                             result  replaced  changes of the header
    {"Resize",        [](Texture& t) { return Resize(t, 8, 2, 3, eResizeLinear); },      false, true, [](CMOKTextureHeader& h) {
        h.setWidth(8), h.setHeight(2), h.setDepth(3), h.setNumMIPLevels(1), h.setBorder(2, 1, 3); }},
    {"two MIP levels", [](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 2); },  true, false, [](CMOKTextureHeader& h) {
        h.setNumMIPLevels(2); }},
    {"all MIP levels", [](Texture& t) { return GenerateMIPMaps(t, eResizeCubic); },      true, false, [](CMOKTextureHeader& h) {
        h.setNumMIPLevels(3); }},
    {"Rotate90 z",    [](Texture& t) { return Rotate90(t, eAxisZ, true); },              false, true, [](CMOKTextureHeader& h) {
        h.setWidth(2), h.setHeight(4); }},
    {"Rotate90 y",    [](Texture& t) { return Rotate90(t, eAxisY, true); },              false, true, [](CMOKTextureHeader& h) {
        h.setHeight(4); }},
    {"Border",        [](Texture& t) { return Border(t, 1, 2, 3); },                     false, true, [](CMOKTextureHeader& h) {
        h.setWidth(6), h.setHeight(6), h.setDepth(7), h.setNumMIPLevels(1), h.setBorder(1, 2, 3); }},
    {"normal map",    [](Texture& t) { return GenerateNormalMap(t, 2.0f, "xyzh"); },     false, true, [](CMOKTextureHeader& h) {
        h.setPixelFormat(PixelTypeRGBA32), h.setChannelType(eVarFloat), h.setBumpMap(2.0f, "xyzh"); }},
};
using CountSetter = void (CMOKTextureHeader::*)(std::uint32_t);
const CountSetter countSetters[] = {&Texture::setNumArrayMembers, &Texture::setNumFaces, &Texture::setNumMIPLevels};
// clang-format on

/// What a header says about border and bump map.
std::tuple<unsigned int, unsigned int, unsigned int, float, CMOKTString> metaDataOf(const CMOKTextureHeader& header) {
    unsigned int x, y, z;
    header.getBorder(x, y, z);
    return {x, y, z, header.getBumpMapScale(), header.getBumpMapOrder()};
}

TEST(OperationFrame, ReplacesTexturesWithoutLayersFacesOrLevels) {
    for (const auto& [name, run, resultWithoutSurfaces, isReplacedWithoutLevels, changeHeader] : rebuildingOperations) {
        for (const CountSetter& setCount : countSetters) {
            SCOPED_TRACE(testing::Message() << name << ", count " << &setCount - countSetters);
            const bool isWithoutLevels = &setCount == &countSetters[2];
            CMOKTexture texture = randomTexture<std::uint8_t>({4, 2, 1, 1, 2, 2});
            texture.setBorder(1, 1, 1);
            (texture.*setCount)(0);
            const void* const oldPixels = texture.getDataPtr();
            CMOKTextureHeader expected = texture.getHeader();
            const bool isReplaced = !isWithoutLevels || isReplacedWithoutLevels;
            if (isReplaced) changeHeader(expected);

            EXPECT_EQ(run(texture), !isWithoutLevels && resultWithoutSurfaces);
            EXPECT_TRUE(haveSameHeader(texture, expected));
            EXPECT_EQ(metaDataOf(texture), metaDataOf(expected));
            EXPECT_EQ(texture.getDataPtr() != oldPixels, isReplaced);
            ASSERT_NE(texture.getDataPtr(), nullptr);
            EXPECT_TRUE(!isReplaced || isAllZero(texture));
        }
    }
}

TEST(OperationFrame, RefusesResultsThatDoNotFit) {
    // clang-format off
    const std::pair<Shape, bool (*)(Texture& t)> rows[] = {
        {{4, 4}, [](Texture& t) { return Resize(t, 0x10000, 0x10000, 1, eResizeCubic) || Resize(t, 0, 4, 1, eResizeCubic); }},
        {{4, 4}, [](Texture& t) { return Resize(t, 4, 0, 1, eResizeCubic) || Resize(t, 4, 4, 0, eResizeCubic); }},
        // 4 bytes too many for 32 bits
        {{1, 1, 1, 1, 4210753}, [](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 255); }},
        {{16384, 1}, [](Texture& t) { return Rotate90(t, eAxisY, true); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0x10000000, 0, 0) || Border(t, 0, 0x7FFFFFFF, 0); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0, 0, 0x80000000) || Border(t, 0xFFFFFFFF, 0, 0); }},
        {{16384, 2048}, [](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); }}};
    // clang-format on
    for (const auto& [shape, run] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>(shape, {1, 2, 3, 4});
        const void* const pixels = texture.getDataPtr();
        const CMOKTextureHeader before = texture.getHeader();
        EXPECT_FALSE(run(texture)) << shape.width;
        EXPECT_TRUE(haveSameHeader(texture, before) && texture.getDataPtr() == pixels) << shape.width;
    }
}

TEST(OperationFrame, ComputesOneQuietNaN) {
    // Operations, with the level and the element looked at.
    // clang-format off
    const std::tuple<bool (*)(Texture& t), int, std::size_t> rows[] = {
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
        EXPECT_EQ(std::bit_cast<std::uint32_t>(piece<float>(texture, level)[element]), 0x7FC00000u) << level << element;
    }
}

TEST(WalkPieces, GoesByMembersFacesAndLevelsAndGivesTheLastResult) {
    CMOKTexture texture = textureOf<std::uint8_t>({5, 1, 1, 2, 2, 2}, {});
    std::vector<unsigned int> visited;  // 100s: member, 10s: face, 1s: width of the level
    const auto visit = [&visited](const Subresource& piece) {
        visited.push_back(piece.member * 100 + piece.face * 10 + piece.size.width);
        return visited.size() == 8 || visited.size() == 12 || visited.size() == 13;
    };
    EXPECT_TRUE(forEachSubresource(texture, WalkedLevels::all, visit) && forEachSubresource(texture, WalkedLevels::first, visit));
    EXPECT_EQ(visited, (std::vector{5u, 2u, 15u, 12u, 105u, 102u, 115u, 112u, 5u, 15u, 105u, 115u}));
    EXPECT_FALSE(forEachSubresource(texture, WalkedLevels::first, visit));
    TextureInternals::release(texture);
    texture.setNumArrayMembers(0xFFFFFFFF);
    EXPECT_TRUE(!forEachSubresource(texture, WalkedLevels::all, visit) && visited.size() == 16);
}

}  // namespace
