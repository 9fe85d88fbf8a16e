#include <functional>

#include "core/TextureInternals.h"
#include "image_operations.h"
#include "operation_textures.h"
#include "operations/operable_texture.h"

using namespace moktexture;
using namespace operationtextures;

namespace {

using Texture = CMOKTexture;
EChannelName red[] = {eChannelRed};
unsigned int number[] = {1};
float value[] = {1.0f};
const std::function<bool(CMOKTexture&)> operations[] = {
    [](Texture& t) { return SetChannels(t, 1, red, number); },
    [](Texture& t) { return SetChannels(t, 0, red, number); },
    [](Texture& t) { return SetChannelsFloat(t, 1, red, value); },
    [](Texture& t) { return CopyChannels(t, t, 1, red, red); },
    [](Texture& t) { return CopyChannels(t, t, 0, red, red); },
    [](Texture& t) { return Resize(t, 3, 2, 1, eResizeCubic); },
    [](Texture& t) { return Resize(t, 4, 4, 1, eResizeCubic); },
    [](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, allMIPLevels); },
    [](Texture& t) { return GenerateMIPMaps(t, eResizeLinear, 1); },
    [](Texture& t) { return ColourMIPMaps(t); },
    [](Texture& t) { return PreMultiplyAlpha(t); },
    [](Texture& t) { return Bleed(t); },
    [](Texture& t) { return Flip(t, eAxisX); },
    [](Texture& t) { return Rotate90(t, eAxisZ, true); },
    [](Texture& t) { return Border(t, 1, 0, 0); },
    [](Texture& t) { return Border(t, 0, 0, 0); },
    [](Texture& t) { return GenerateNormalMap(t, 1.0f, "xyz"); },
};

const std::pair<const char*, std::function<void(CMOKTexture&)>> spoilers[] = {
    {"another channel order",
     [](Texture& t) {
         t.setPixelFormat({'b', 'g', 'r', 'a', 8, 8, 8, 8});
     }},
    {"another channel type", [](Texture& t) { t.setChannelType(eVarUByte); }},
    {"no buffer", [](Texture& t) { TextureInternals::release(t); }},
    {"a buffer too short", [](Texture& t) { t.setHeight(5); }},
    {"a size that wraps", [](Texture& t) { t.setWidth(0x40000001); }},
    {"no members", [](Texture& t) { t.setNumArrayMembers(0); }},
    {"no faces", [](Texture& t) { t.setNumFaces(0); }},
    {"no levels", [](Texture& t) { t.setNumMIPLevels(0); }},
};

TEST(OperationFrame, AcceptsFourFormsOnly) {
    int accepted = 0;
    for (const PixelType& format : {PixelTypeRGBA8, PixelTypeRGBA16, PixelTypeRGBA32, PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8),
                                    PixelType('r', 'g', 'b', 0, 8, 8, 8, 0), PixelType(eFmtDXT1)}) {
        for (unsigned int type = 0; type < 16; ++type)
            accepted += isOperableTexture(format, static_cast<EMOKTVariableType>(type));
    }
    EXPECT_EQ(accepted, 4);
    EXPECT_TRUE(isOperableTexture(PixelTypeRGBA8, eVarUByteNorm) && isOperableTexture(PixelTypeRGBA16, eVarUShortNorm) &&
                isOperableTexture(PixelTypeRGBA32, eVarUIntNorm) && isOperableTexture(PixelTypeRGBA32, eVarFloat));
}

TEST(OperationFrame, RefusesWhatItCannotTouchAndLeavesItAlone) {
    const CMOKTexture sound = randomTexture<std::uint8_t>({4, 4, 1, 1, 1, 1});
    for (const auto& operation : operations) {
        for (const auto& [reason, spoil] : spoilers) {
            SCOPED_TRACE(testing::Message() << "operation " << &operation - operations << " with " << reason);
            CMOKTexture texture = sound;
            spoil(texture);
            const MOKTextureHeaderV3 before = texture.getFileHeader();
            EXPECT_FALSE(operation(texture));
            const MOKTextureHeaderV3 after = texture.getFileHeader();
            EXPECT_EQ(std::memcmp(&after, &before, sizeof after), 0);
            const unsigned char* const data = TextureInternals::data(texture);
            EXPECT_TRUE(data == nullptr || std::memcmp(data, sound.getDataPtr(), 64) == 0);
        }
        CMOKTexture texture = sound;
        EXPECT_TRUE(operation(texture)) << &operation - operations;
    }
}

}  // namespace
