#include "moktex/formats/format_names.h"

#include <gtest/gtest.h>

#include <sstream>

#include "moktex/report/console.h"
#include "support/test_images.h"

using namespace moktextool;
using namespace moktexture;

TEST(FormatNames, ParseToTheirFormats) {
    const std::tuple<const char*, PixelType, EMOKTVariableType, const char*> cases[] = {
        // name, pixel type, channel type, name of the parsed format
        {"bc1", eFmtDXT1, eVarUByteNorm, "dxt1"},
        {"bc3", eFmtDXT5, eVarUByteNorm, "dxt5"},
        {"rgba8.8.8.8:ubytenorm", 0x0808080861626772, eVarUByteNorm, "rgba8888"},
        {"rgba8888:sbyte", 0x0808080861626772, eVarSByte, "rgba8888:sbyte"},
        {"rgb565", 0x0005060500626772, eVarUShortNorm, "rgb565"},
        {"abgr2.10.10.10", {'a', 'b', 'g', 'r', 2, 10, 10, 10}, eVarUIntNorm, "abgr2.10.10.10"},
        {"bgr10.11.11:float", {'b', 'g', 'r', 0, 10, 11, 11, 0}, eVarFloat, "bgr101111:float"},
        // spellings of other tools
        {"RGBA", PixelTypeRGBA8, eVarUByteNorm, "rgba8888"},
        {"BC3_UNORM", eFmtDXT5, eVarUByteNorm, "dxt5"},
        {"DXT-1", eFmtDXT1, eVarUByteNorm, "dxt1"},
        {"MOKTC_4bpp_RGBA", eFmtMOKTC4bppRGBA, eVarUByteNorm, "moktc-4bpp-rgba"},
        {"rgba8", PixelTypeRGBA8, eVarUByteNorm, "rgba8888"},
        {"R8G8B8A8_UNORM", PixelTypeRGBA8, eVarUByteNorm, "rgba8888"},
        {"rgba16", PixelTypeRGBA16, eVarUShortNorm, "rgba16161616"},
        {"RGBA16F", PixelTypeRGBA16, eVarFloat, "rgba16161616:float"},
        {"r32g32b32a32_float", PixelTypeRGBA32, eVarFloat, "rgba32323232"},
        {"RGB565", 0x0005060500626772, eVarUShortNorm, "rgb565"},
        {"bgra", {'b', 'g', 'r', 'a', 8, 8, 8, 8}, eVarUByteNorm, "bgra8888"},
    };
    for (const auto& [name, format, type, canonical] : cases) {
        EXPECT_EQ(parseFormat(name), (TextureFormat{format, type})) << name;
        EXPECT_EQ(nameOf(parseFormat(name)), canonical);
    }
}

TEST(FormatNames, OfCompressedFormatsAndRandomLayoutsRoundTrip) {
    for (unsigned int id = 0; id < eFmtUnknown; ++id)
        EXPECT_EQ(parseFormat(nameOf(TextureFormat{id, eVarUByteNorm})), (TextureFormat{id, eVarUByteNorm}));
    testimages::Random random(5);
    int usable = 0;
    for (int i = 0; i < 200000; ++i) {
        TextureFormat format{{}, static_cast<EMOKTVariableType>(random.below(15))};
        const std::uint32_t count = 1 + random.below(4);
        for (std::uint32_t channel = 0; channel < count; ++channel) {
            format.pixelType.layout.channelName[channel] = static_cast<std::uint8_t>("rgbalixz"[random.below(8)]);
            format.pixelType.layout.channelBits[channel] =
                static_cast<std::uint8_t>(random.below(2) ? 8u << random.below(3) : random.below(33));
        }
        if (isCompressed(format.pixelType) || !layoutProblem(format).empty()) continue;
        ++usable;
        EXPECT_EQ(parseFormat(nameOf(format)), format) << nameOf(format);
    }
    EXPECT_GT(usable, 1000);
}

TEST(FormatNames, ThatAreInvalidAreRefused) {
    std::istringstream names(
        "dxt dxt6 8888 rgba888 rgba88888 rgba08888 rgba8.8.8 rgba8..8.8 rgbaa88888 rgq888 rgba8888: "
        "rgba8888:half rgb9.9.9 rr88 rgb8.4.4:ubytenorm rgb10.10.10:float rgba32323232:ubytenorm r64 rgba5 r8gba r8g16 rgbaf "
        "8rgba f rgba8.8f");
    for (std::string name; names >> name;)
        EXPECT_THROW(parseFormat(name), Failure) << name;
    EXPECT_THROW(parseFormat(""), Failure);
    EXPECT_EQ(nameOf(TextureFormat{PixelType(0x0808080808080808), eVarUByteNorm}), "layout-0x0808080808080808");
    EXPECT_EQ(nameOf(TextureFormat{PixelType(77), eVarUByteNorm}), "unknown-77");
}

TEST(FormatNames, ThatAreMisspeltAreAnsweredWithWhatIsMeant) {
    const std::pair<const char*, const char*> cases[] = {
        // name, message
        {"dxt9", "did you mean dxt1?"},
        {"rgba888", "did you mean rgba8888?"},
        {"moktc-4bpp", "did you mean moktc-4bpp-rgb?"},
        {"sRGB", "sRGB is a colour space; use --colour-space srgb"},
        {"BC1_UNORM_SRGB", "sRGB is a colour space"},
        {"DDS", "the kind of file follows from the output's name"},
        {"rgba8888:half", "use one of ubytenorm, sbytenorm"},
        {"nonsense", "no such format; 'moktex formats' lists them"},
    };
    for (const auto& [name, message] : cases) {
        try {
            parseFormat(name);
            FAIL() << name;
        } catch (const Failure& failure) {
            EXPECT_NE(std::string(failure.what()).find(message), std::string::npos) << failure.what();
        }
    }
}

TEST(QualityNames, MapNumbersAndNamesByFormat) {
    // clang-format off
    const struct { const char* text; unsigned int moktc, etc1; } cases[] = {
        // name, quality of MOKTC, quality of ETC1
        {"", 3, 3},           {"fastest", 0, 1}, {"fast", 1, 1}, {"medium", 2, 3}, {"thorough", 3, 3}, {"verythorough", 4, 5},
        {"exhaustive", 5, 5}, {"0", 0, 0},       {"2", 2, 2},    {"5", 5, 5}};
    // clang-format on
    for (const auto& [text, moktc, etc1] : cases) {
        const std::optional<Quality> quality = *text != 0 ? std::optional(parseQuality(text)) : std::nullopt;
        EXPECT_EQ(encoderQuality(quality, eFmtETC1), etc1) << text;
        EXPECT_EQ(encoderQuality(quality, eFmtMOKTCII4bpp), moktc) << text;
    }
    for (const char* text : {"6", "-1", "best", "3 "})
        EXPECT_THROW(parseQuality(text), Failure) << text;
}
