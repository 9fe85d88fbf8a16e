#include <array>
#include <bit>
#include <functional>
#include <tuple>

#include "core/TextureInternals.h"
#include "image_operations.h"
#include "operation_textures.h"
#include "operations/operable_texture.h"
#include "operations/operation_frame.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

using Texture = CMOKTexture;
EChannelName red[] = {eChannelRed};
unsigned int number[] = {1};
float value[] = {1.0f};

/// What becomes of a texture that has no buffer.
enum class Fate { unchanged, flagged, replaced };

const struct {
    std::function<bool(Texture&)> run;
    bool resultWithoutPixels;
    Fate fate;
} operations[] = {
    {[](Texture& t) { return SetChannels(t, 1, red, number); }, false, Fate::unchanged},
    {[](Texture& t) { return SetChannels(t, 0, red, number); }, true, Fate::unchanged},
    {[](Texture& t) { return SetChannelsFloat(t, 1, red, value); }, false, Fate::unchanged},
    {[](Texture& t) { return CopyChannels(t, t, 1, red, red); }, false, Fate::unchanged},
    {[](Texture& t) { return CopyChannels(t, t, 0, red, red); }, true, Fate::unchanged},
    {[](Texture& t) { return Resize(t, 3, 2, 1, eResizeCubic); }, false, Fate::replaced},
    {[](Texture& t) { return Resize(t, 4, 4, 1, eResizeCubic); }, true, Fate::unchanged},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, allMIPLevels); }, false, Fate::unchanged},
    {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, t.getNumMIPLevels()); }, true, Fate::unchanged},
    {[](Texture& t) { return ColourMIPMaps(t); }, false, Fate::unchanged},
    {[](Texture& t) { return PreMultiplyAlpha(t); }, false, Fate::flagged},
    {[](Texture& t) { return Bleed(t); }, false, Fate::unchanged},
    {[](Texture& t) { return Flip(t, eAxisX); }, false, Fate::unchanged},
    {[](Texture& t) { return Rotate90(t, eAxisZ, true); }, false, Fate::replaced},
    {[](Texture& t) { return Border(t, 1, 0, 0); }, false, Fate::replaced},
    {[](Texture& t) { return Border(t, 0, 0, 0); }, true, Fate::unchanged},
    {[](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); }, false, Fate::replaced},
};

enum Lack { form, buffer, pieces };
const struct {
    Lack lack;
    std::function<void(Texture&)> spoil;
} spoilers[] = {
    {form, [](Texture& t) { t.setPixelFormat(PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8)); }},
    {form, [](Texture& t) { t.setChannelType(eVarUByte); }},
    {form, [](Texture& t) { t.setHeight(5); }},          // the buffer is too short
    {form, [](Texture& t) { t.setWidth(0x40000001); }},  // the size wraps
    {buffer, [](Texture& t) { TextureInternals::release(t); }},
    {pieces, [](Texture& t) { t.setNumArrayMembers(0), t.setNumFaces(0xFFFFFFFF); }},
    {pieces, [](Texture& t) { t.setNumFaces(0), t.setNumArrayMembers(0x03FFFFFF); }},
    {pieces, [](Texture& t) { t.setNumMIPLevels(0), t.setNumArrayMembers(0xFFFFFFFF), t.setNumFaces(0xFFFFFFFF); }},
};

bool haveSameHeader(const Texture& a, const Texture& b) {
    const MOKTextureHeaderV3 headerA = a.getFileHeader(), headerB = b.getFileHeader();
    return std::memcmp(&headerA, &headerB, sizeof headerA) == 0;
}

TEST(OperationFrame, AcceptsFourFormsOnly) {
    int accepted = 0;
    for (const PixelType& format : {PixelTypeRGBA8, PixelTypeRGBA16, PixelTypeRGBA32, PixelType(eFmtDXT1)}) {
        for (unsigned int type = 0; type < 16; ++type)
            accepted += isOperableTexture(format, static_cast<EMOKTVariableType>(type));
    }
    EXPECT_EQ(accepted, 4);
    EXPECT_TRUE(isOperableTexture(PixelTypeRGBA8, eVarUByteNorm) && isOperableTexture(PixelTypeRGBA16, eVarUShortNorm) &&
                isOperableTexture(PixelTypeRGBA32, eVarUIntNorm) && isOperableTexture(PixelTypeRGBA32, eVarFloat));
}

TEST(OperationFrame, LeavesWhatItCannotTouchAloneButReplacesAMissingBuffer) {
    const CMOKTexture sound = randomTexture<std::uint8_t>({4, 4});
    for (const auto& operation : operations) {
        for (const auto& [lack, spoil] : spoilers) {
            SCOPED_TRACE(testing::Message() << "operation " << &operation - operations << ", lack " << lack);
            CMOKTexture texture = sound;
            spoil(texture);
            CMOKTexture before = texture;
            before.setIsPreMultiplied(lack != form && operation.fate == Fate::flagged);
            EXPECT_EQ(operation.run(texture), lack != form && operation.resultWithoutPixels);
            if (lack == buffer && operation.fate == Fate::replaced) {
                const std::vector<std::uint8_t> bytes = elementsOf<std::uint8_t>(texture);
                EXPECT_EQ(bytes, std::vector<std::uint8_t>(bytes.size(), 0));
                continue;
            }
            EXPECT_TRUE(haveSameHeader(texture, before));
            EXPECT_TRUE(lack == buffer || std::memcmp(texture.getDataPtr(), sound.getDataPtr(), 64) == 0);
            EXPECT_EQ(lack == buffer, texture.getDataPtr() == nullptr);
        }
        CMOKTexture texture = sound;
        EXPECT_TRUE(operation.run(texture)) << &operation - operations;
    }
}

TEST(OperationFrame, RefusesResultsThatDoNotFit) {
    const std::pair<Shape, std::function<bool(Texture&)>> rows[] = {
        {{4, 4}, [](Texture& t) { return Resize(t, 0x10000, 0x10000, 1, eResizeCubic) || Resize(t, 0, 4, 1, eResizeCubic); }},
        {{4, 4}, [](Texture& t) { return Resize(t, 4, 0, 1, eResizeCubic) || Resize(t, 4, 4, 0, eResizeCubic); }},
        // 4 bytes too many for 32 bits
        {{1, 1, 1, 1, 4210753}, [](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 255); }},
        {{16384, 1}, [](Texture& t) { return Rotate90(t, eAxisY, true); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0x10000000, 0, 0) || Border(t, 0, 0x7FFFFFFF, 0); }},
        {{4, 3, 2, 2}, [](Texture& t) { return Border(t, 0, 0, 0x80000000) || Border(t, 0xFFFFFFFF, 0, 0); }},
        {{16384, 2048}, [](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); }},
    };
    for (const auto& [shape, run] : rows) {
        CMOKTexture texture = textureOf<std::uint8_t>(shape, {1, 2, 3, 4});
        const void* const pixels = texture.getDataPtr();
        const CMOKTexture before(texture.getHeader(), nullptr);
        EXPECT_FALSE(run(texture)) << shape.width;
        EXPECT_TRUE(haveSameHeader(texture, before) && texture.getDataPtr() == pixels) << shape.width;
    }
}

TEST(OperationFrame, ComputesOneQuietNaN) {
    EChannelName luminance[] = {eChannelLuminance}, intensity[] = {eChannelIntensity};
    // An operation, and the level and element looked at.
    const std::tuple<std::function<bool(Texture&)>, std::uint32_t, std::size_t> rows[] = {
        {[](Texture& t) { return Resize(t, 3, 1, 1, eResizeLinear); }, 0, 0},
        {[](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 3); }, 1, 0},
        {[](Texture& t) { return ColourMIPMaps(t); }, 1, 1},
        {[&](Texture& t) { return CopyChannels(t, t, 1, red, luminance); }, 0, 0},
        {[&](Texture& t) { return CopyChannels(t, t, 1, red, intensity); }, 0, 0},
        {[](Texture& t) { return Bleed(t); }, 0, 0},
        {[](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); }, 0, 0},
    };
    std::vector<float> elements(12, std::bit_cast<float>(0xFFC12345u));
    elements[3] = 0.0f;
    for (const auto& [run, level, element] : rows) {
        CMOKTexture texture = textureOf<float>({2, 1, 1, 2}, elements);
        EXPECT_TRUE(run(texture));
        EXPECT_EQ(std::bit_cast<std::uint32_t>(piece<float>(texture, level)[element]), 0x7FC00000u) << level << element;
    }
}

TEST(WalkPieces, GoesByMembersFacesAndLevelsAndGivesTheLastResult) {
    using Visited = std::vector<std::array<std::uint32_t, 4>>;
    Visited visited;
    const auto walk = [&visited](const CMOKTexture& texture, WalkedLevels levels, std::size_t goodVisit) {
        visited.clear();
        return walkPieces(texture, levels, [&](const TexturePiece& piece) {
            visited.push_back({piece.member, piece.face, piece.level, piece.size.width});
            return visited.size() == goodVisit;
        });
    };
    CMOKTexture texture = textureOf<std::uint8_t>({5, 1, 1, 2, 2, 2}, {});
    EXPECT_TRUE(walk(texture, WalkedLevels::all, 8));
    EXPECT_EQ(
        visited,
        (Visited{
            {0, 0, 0, 5}, {0, 0, 1, 2}, {0, 1, 0, 5}, {0, 1, 1, 2}, {1, 0, 0, 5}, {1, 0, 1, 2}, {1, 1, 0, 5}, {1, 1, 1, 2}}));
    EXPECT_FALSE(walk(texture, WalkedLevels::all, 7));
    EXPECT_TRUE(walk(texture, WalkedLevels::first, 4));
    EXPECT_EQ(visited, (Visited{{0, 0, 0, 5}, {0, 1, 0, 5}, {1, 0, 0, 5}, {1, 1, 0, 5}}));
    TextureInternals::release(texture);
    texture.setNumArrayMembers(0xFFFFFFFF);
    EXPECT_FALSE(walk(texture, WalkedLevels::all, 1));
    EXPECT_TRUE(visited.empty());
}

}  // namespace
