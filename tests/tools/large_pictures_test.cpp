// Bands, sizes above 32 bits and padded blocks: what a picture of any size relies on, tested on small ones.

#include <cstring>

#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_size.h"
#include "moktex/operations/conversion.h"
#include "tool_fixture.h"

using namespace moktexture;
using moktextool::ConversionRequest;

namespace {

struct GivenOption {
    const char *name, *value;
};

/// An image of the picture with its right and lower edge repeated.
std::vector<std::uint8_t> paddedByHand(const std::vector<std::uint8_t>& rgba, std::uint32_t width, std::uint32_t height,
                                       std::uint32_t paddedWidth, std::uint32_t paddedHeight) {
    std::vector<std::uint8_t> padded;
    for (std::uint32_t y = 0; y < paddedHeight; ++y) {
        for (std::uint32_t x = 0; x < paddedWidth; ++x) {
            const std::size_t pixel = std::size_t{std::min(y, height - 1)} * width + std::min(x, width - 1);
            padded.insert(padded.end(), &rgba[pixel * 4], &rgba[pixel * 4] + 4);
        }
    }
    return padded;
}

}  // namespace

class LargePictureTest : public ToolTest {
protected:
    /// The file that a.png becomes, with bands of that many pixels.
    std::string convertInBands(const char* format, const std::vector<GivenOption>& options, std::uint64_t bandPixels) const {
        ConversionRequest request;
        request.bandPixels = bandPixels;
        request.overwrites = true;
        request.format = moktextool::parseFormat(format);
        request.quality = moktextool::parseQuality("0");
        for (const auto& [name, value] : options) {
            for (const moktextool::OperationOption& option : moktextool::operationOptions())
                if (longName(option) == name) request.operations.push_back(option.parse(name, value));
        }
        request.resize = moktextool::ResizeRequest{41, 27};
        std::ostringstream out, err;
        std::istringstream in;
        moktextool::Console console{in, out, err, false, false};
        convertFile(request, path("a.png"), path("b.mok"), console);
        return read("b.mok");
    }
};

TEST_F(LargePictureTest, SizeOfTheBandsChangesNoByte) {
    const std::vector<GivenOption> nothing, chain = {{"--mipmaps", "all"}};
    // clang-format off
    const struct { const char* format; std::vector<GivenOption> options; } cases[] = {
        // format          operations behind --resize 41x27
        {"dxt1", chain}, {"dxt2", chain}, {"dxt3", chain}, {"dxt4", chain}, {"dxt5", chain}, {"etc1", chain}, {"uyvy", chain},
        {"yuy2", chain}, {"bw1", chain}, {"moktc2-4bpp", chain}, {"rgb565", chain}, {"rgba8888", nothing},
        {"rgba16161616", chain}, {"rgba32323232", chain},
        {"rgba8888", {{"--flip", "x"}, {"--flip", "y"}, {"--rotate90", "z"}, {"--rotate90", "-z"}, {"--border", "3x2"}}},
        {"rgba8888", {{"--bleed", ""}, {"--premultiply", ""}, {"--swizzle", "gbra"}, {"--set-channel", "g=9"}}},
        {"dxt5", {{"--mipmaps", "all"}, {"--colour-mips", ""}, {"--bleed", ""}, {"--normal-map", "2:xyzh"}}}};
    // clang-format on
    writePNG("a.png", 50, 33, testimages::Kind::cutOut);
    for (const auto& [format, options] : cases) {
        const std::string whole = convertInBands(format, options, std::uint64_t{1} << 40);
        for (const std::uint64_t bandPixels : {1, 200})
            EXPECT_TRUE(convertInBands(format, options, bandPixels) == whole) << format << ' ' << bandPixels;
    }
}

TEST_F(LargePictureTest, LastBlocksRepeatTheEdge) {
    // clang-format off
    const struct { const char* format; std::uint32_t width, height, paddedWidth, paddedHeight; } cases[] = {
        // format, size, size of whole blocks
        {"dxt1", 50, 50, 52, 52}, {"dxt5", 5, 30, 8, 32}, {"etc1 -q 1", 9, 6, 12, 8}, {"etc1 -q 1", 40, 30, 40, 32},
        {"uyvy", 7, 3, 8, 3}, {"bw1", 9, 3, 16, 3}, {"moktc2-4bpp -q 0", 50, 21, 52, 24}, {"moktc2-2bpp -q 0", 13, 9, 16, 12}};
    // clang-format on
    for (const auto& [format, width, height, paddedWidth, paddedHeight] : cases) {
        const auto pixels = testimages::make(testimages::Kind::gradient, width, height);
        writePNG("a.png", width, height, pixels);
        writePNG("padded.png", paddedWidth, paddedHeight, paddedByHand(pixels, width, height, paddedWidth, paddedHeight));
        expectSuccess(std::string("convert @a.png @a.mok -y -f ") + format);
        expectSuccess(std::string("convert @padded.png @padded.mok -y -f ") + format);
        constexpr std::size_t headerSize = 52;
        EXPECT_EQ(read("a.mok").substr(headerSize), read("padded.mok").substr(headerSize)) << format;
        EXPECT_EQ(info("a.mok")["width"], width) << format;
        expectSuccess("convert @a.mok @back.png -y");
        if (std::string(format) != "bw1") {
            EXPECT_GE(compare("a.png", "back.png")["levels"][0]["channels"]["rgb"]["psnr"], 19) << format;
        }
    }
}

TEST_F(LargePictureTest, ChainsOfAnySizeReadBackOnEveryLevel) {
    writePNG("a.png", 60, 45, testimages::Kind::gradient);
    expectSuccess("convert @a.png @plain.mok --mips");
    for (const char* format : {"dxt1", "dxt5", "etc1 -q 1", "moktc2-2bpp -q 0", "moktc2-4bpp -q 0", "yuy2"}) {
        expectSuccess(std::string("convert @a.png @block.mok -y --mips -f ") + format);
        const nlohmann::json levels = compare("plain.mok", "block.mok", "--levels")["levels"];
        ASSERT_EQ(levels.size(), 6u);
        for (const nlohmann::json& level : levels) {
            const nlohmann::json psnr = level["channels"]["rgb"]["psnr"];
            EXPECT_GE(psnr.is_null() ? 99 : psnr.get<double>(), 14) << format << level["level"];
        }
    }
}

TEST(TextureSize, DoesNotWrapAt32Bits) {
    // clang-format off
    const struct { const char* format; std::uint32_t width, height, levels, layers; std::uint64_t bytes; bool fits; } cases[] = {
        // format        size          levels  layers  bytes         fits
        {"rgba8888",     12000, 12000, 1,      1,      576000000,    false},
        {"rgba8888",     16384, 8192,  1,      1,      536870912,    false},
        {"rgba8888",     16384, 8191,  1,      1,      536805376,    true},
        {"rgba8888",     16383, 8192,  1,      8,      4294705152,   true},
        {"rgba8888",     16383, 8192,  1,      9,      4831543296,   false},
        {"dxt5",         16384, 16384, 15,     1,      357913968,    true},
        {"dxt5",         32768, 16384, 16,     1,      715827920,    false},
        {"dxt1",         50,    50,    6,      1,      1864,         true},
        {"rgba32323232", 65536, 65536, 1,      6,      412316860416, false}};
    // clang-format on
    for (const auto& [format, width, height, levels, layers, bytes, fits] : cases) {
        const moktextool::TextureFormat parsed = moktextool::parseFormat(format);
        const CMOKTextureHeader header(parsed.pixelType.id, height, width, 1, levels, layers, 1, eColourSpaceLinear,
                                       parsed.channelType, false);
        EXPECT_EQ(moktextool::textureSize(header), bytes) << format;
        EXPECT_EQ(moktextool::fitsTexture(header), fits) << format << ' ' << width << ' ' << height;
    }
}

TEST_F(LargePictureTest, ResultAboveTheLimitIsRefusedBeforeWorkBegins) {
    writePNG("a.png", 4, 4);
    for (const char* arguments : {"@a.png @b.mok --resize 16384x8192", "@a.png @b.mok --resize 30000x30000 -m -f dxt5",
                                  "@a.png @b.mok --resize 65536x65536 --mips -f rgb565"})
        expectRefusal(std::string("convert ") + arguments, ExitStatus::notSupported, "536870911 (512 MiB)");
    expectRefusal("convert @a.png @b.png --resize 16384x16385", ExitStatus::notSupported, "1 GiB of pixels");
    expectRefusal("convert @a.png @b.mok --resize 20000x20000 -f bw1 --dither", ExitStatus::notSupported, "leave out --dither");
}
