#include <atomic>
#include <cstring>
#include <iostream>
#include <thread>

#include "moktex/report/ProgressLine.h"
#include "tool_fixture.h"

using namespace moktexture;
using moktextool::ProgressLine;
using moktextool::progressText;

TEST_F(ToolTest, PicturesRoundTripThroughUncompressedFormats) {
    writePNG("a.png", 20, 12, testimages::Kind::noise);
    for (const char* format :
         {"rgba8888", "abgr8888", "rgba16161616", "rgba16161616:float", "rgba32323232", "rgba32323232:uintnorm"}) {
        expectSuccess(std::string("convert @a.png @a.mok -y -f ") + format);
        expectSuccess("convert @a.mok @b.png -y");
        EXPECT_EQ(info("a.mok")["format"], format);
        EXPECT_TRUE(areEqual("a.png", "b.png")) << format;
    }
}

TEST_F(ToolTest, CompressedTexturesDecodeOnEveryMipLevel) {
    writePNG("a.png", 100, 50, testimages::Kind::gradient);
    for (const char* format :
         {"dxt1", "bc2", "dxt5", "etc1 -q 1", "moktc-2bpp-rgb -q 0", "moktc-2bpp-rgba -q 1", "moktc-4bpp-rgb -q fastest",
          "moktc-4bpp-rgba -q fast", "moktc2-2bpp -q 1", "moktc2-4bpp -q 0", "uyvy --resize 128x50", "yuy2 --resize 128x64"}) {
        const std::string size = std::string(format).find("--resize") == std::string::npos ? " --resize pow2" : "";
        expectSuccess("convert @a.png @block.mok -y -m" + size + " -f " + format);
        const nlohmann::json description = info("block.mok");
        EXPECT_EQ(description["levels"].size(), 8u);
        EXPECT_EQ(description["width"], 128);
        expectSuccess("convert @a.png @plain.mok -y --mips --set-channel a=255 --resize 128x" + description["height"].dump());
        const nlohmann::json levels = compare("plain.mok", "block.mok", "--levels")["levels"];
        ASSERT_EQ(levels.size(), 8u) << format;
        for (const nlohmann::json& level : levels)
            EXPECT_GE(level["channels"]["rgb"]["psnr"].is_null() ? 99 : level["channels"]["rgb"]["psnr"].get<double>(), 14)
                << format << level["level"];
        expectSuccess("convert @block.mok @level.png -y --level 7");
        EXPECT_EQ(info("level.png")["width"], 1);
    }
}

TEST_F(ToolTest, LevelsThatAreNotMultiplesOfTheBlockDecodeCropped) {
    // The data of a texture of whole blocks, under a header with a smaller size, decodes to the cropped picture.
    // clang-format off
    const struct { const char* format; std::uint32_t width, height, croppedWidth, croppedHeight; } cases[] = {
        // format, size, cropped
        {"etc1", 8, 8, 5, 7}, {"dxt1", 4, 4, 3, 2}, {"uyvy", 8, 3, 7, 3}, {"yuy2", 2, 4, 1, 4}, {"bw1", 16, 3, 9, 3}};
    // clang-format on
    for (const auto& [format, width, height, croppedWidth, croppedHeight] : cases) {
        writePNG("a.png", width, height, testimages::Kind::noise);
        expectSuccess(std::string("convert @a.png @whole.mok -y -f ") + format);
        expectSuccess("convert @whole.mok @whole.png -y");
        std::string bytes = read("whole.mok");
        bytes[24] = static_cast<char>(croppedHeight);
        bytes[28] = static_cast<char>(croppedWidth);
        write("part.mok", bytes);
        expectSuccess("convert @part.mok @part.png -y");
        const std::vector<std::uint8_t> whole = pixelsOf("whole.png"), part = pixelsOf("part.png");
        ASSERT_EQ(part.size(), croppedWidth * croppedHeight * 4u) << format;
        for (std::size_t y = 0; y < croppedHeight; ++y)
            EXPECT_EQ(std::memcmp(&part[y * croppedWidth * 4], &whole[y * width * 4], croppedWidth * 4), 0) << format << ' ' << y;
    }
}

TEST_F(ToolTest, EverySliceOfACompressedVolumeDecodes) {
    writePNG("a.png", 8, 8, testimages::Kind::edges);
    for (const char* format : {"moktc-4bpp-rgb", "moktc-2bpp-rgb --resize 16x8", "etc1", "uyvy"}) {
        expectSuccess(std::string("convert @a.png @flat.mok -y -f ") + format);
        std::string bytes = read("flat.mok");
        bytes[32] = 2;
        write("volume.mok", bytes + bytes.substr(bytes.size() - info("flat.mok")["levels"][0]["bytes"].get<std::size_t>()));
        expectSuccess("convert @flat.mok @plain.mok -y -f rgba8888");
        expectSuccess("convert @volume.mok @slices.mok -y -f rgba8888");
        const std::string one = read("plain.mok");
        const std::string slice = one.substr(one.size() - info("plain.mok")["levels"][0]["bytes"].get<std::size_t>());
        EXPECT_TRUE(read("slices.mok").ends_with(slice + slice)) << format;
    }
}

TEST_F(ToolTest, RefusalOfASizeNamesOptionsThatWork) {
    const std::string powersOfTwo = ": width and height must be powers of two from ";
    // clang-format off
    const struct { std::uint32_t width, height; std::string options, remedy; } cases[] = {
        // size, options, message behind "cannot hold"
        {48, 8, "moktc-2bpp-rgb -m -q 0", "48 x 8" + powersOfTwo + "16 x 8 to 4096 x 4096; use --resize 64x8"},
        {10, 3, "moktc-4bpp-rgb -q 0 --rotate90 z --border 2x1", "7 x 12" + powersOfTwo + "8 x 8 to 4096 x 4096; use --resize 14x4"},
        {8, 5000, "moktc-2bpp-rgb -q 0", "8 x 5000" + powersOfTwo + "16 x 8 to 4096 x 4096; use --resize 16x4096"},
        {5000, 4, "moktc2-4bpp -q 0", "5000 x 4: sides must be at most 4096; use --resize 4096x4"}};
    // clang-format on
    for (const auto& [width, height, options, remedy] : cases) {
        writePNG("a.png", width, height);
        const std::string name = options.substr(0, options.find(' '));
        expectRefusal("convert @a.png @a.mok -f " + options, ExitStatus::notSupported,
                      "moktex: " + path("a.png") + ": " + name + " cannot hold " + remedy + '\n');
        // Every suggested option works.
        for (std::size_t at = remedy.find("--"); at != std::string::npos; at = remedy.find("--", at + 2))
            expectSuccess("convert @a.png @b.mok -y -f " + options + ' ' + remedy.substr(at, remedy.find(" or", at) - at));
        std::filesystem::remove(path("b.mok"));
    }
}

TEST_F(ToolTest, BadRequestsGiveTheirStatusOneLineAndNoFile) {
    writePNG("a.png", 8, 8);
    expectSuccess("convert @a.png @good.mok");
    const std::string mok = read("good.mok"), png = read("a.png");
    write("bc4.mok", std::string(mok).replace(8, 8, std::string("\x0C\0\0\0\0\0\0\0", 8)));
    write("cut.mok", mok.substr(0, mok.size() - 1));
    write("cut.png", png.substr(0, png.size() / 2));
    write("empty.png", "");
    for (const char* name : {"text.mok", "text.png", "text", "taken.mok"})
        write(name, "no texture");
    // clang-format off
    const struct { ExitStatus status; std::vector<const char*> arguments; } cases[] = {
        // status                   command lines
        {ExitStatus::commandLine, {"", "convert", "convert @a.png", "convert @a.png @good.mok @new.mok", "convert @good.mok @new.png --level 1"}},
        {ExitStatus::inputOutput, {"convert @none.png @new.mok", "convert @a.png @none/new.mok", "convert @a.png @taken.mok", "info @none.mok",
                                   "compare @a.png @none.png"}},
        {ExitStatus::invalidInput, {"convert @cut.mok @new.mok", "convert @cut.png @new.mok", "convert @text.mok @new.mok",
                                    "convert @text.png @new.mok", "convert @text @new.mok", "convert @empty.png @new.mok",
                                    "convert @cut.mok @taken.mok -y"}},
        {ExitStatus::notSupported, {"convert @a.png @new.gif", "convert @a.png @new.mok -f bc7", "convert @bc4.mok @new.png",
                                    "convert @a.png @new.mok -f rgb8.4.4:ubytenorm"}}};
    // clang-format on
    for (const auto& [status, commandLines] : cases)
        for (const char* commandLine : commandLines)
            expectRefusal(commandLine, status);
    for (const char* options : {"--no-such-option", "-f dxt9", "-f ''", "-q 6", "-q ''", "--resize 0x4", "--resize 4x",
                                "--resize ''", "-m 5", "-m=0", "--mip-filter box", "--colour-space red"})
        expectRefusal(std::string("convert @a.png @new.mok ") + options, ExitStatus::commandLine);
}

TEST_F(ToolTest, TruncatedPicturesDoNotCrash) {
    writePNG("a.png", 5, 3, testimages::Kind::noise);
    const std::string png = read("a.png");
    for (std::size_t size = 0; size < png.size(); ++size)
        run("convert - @new.mok -y", png.substr(0, size));
    EXPECT_EQ(run("convert - @new.mok -y", png.substr(0, 60)).status, ExitStatus::invalidInput);
}

TEST_F(ToolTest, SeveralInputsGoToAFolderAndTheFirstFailureIsTheStatus) {
    writePNG("a.png", 8, 4);
    writePNG("b.png", 4, 8);
    write("bad.png", "no picture");
    const ToolRun result = run("convert @a.png @bad.png @b.png -o @made/ -f dxt5");
    EXPECT_EQ(result.status, ExitStatus::invalidInput);
    EXPECT_EQ(info("made/a.mok")["format"], "dxt5");
    EXPECT_EQ(info("made/b.mok")["height"], 8);
    EXPECT_FALSE(std::filesystem::exists(path("made/bad.mok")));
    EXPECT_EQ(run("convert @a.png @made/a.mok -o @made").status, ExitStatus::commandLine) << "one name for two outputs";
    EXPECT_EQ(run("convert @a.png @b.png -o @made").status, ExitStatus::inputOutput) << "taken names";
    expectSuccess("convert @a.png @b.png -o @made --overwrite");
}

TEST_F(ToolTest, StandardStreamsCarryTextures) {
    writePNG("a.png", 8, 8);
    const std::string texture = expectSuccess("convert - - -f dxt1", read("a.png")).out;
    EXPECT_EQ(texture.substr(0, 4), "MOK\x03");
    expectSuccess("convert - @out.png", texture);
    expectSuccess("compare - @out.png --min-psnr 200", texture);
    EXPECT_EQ(expectSuccess("convert - - -f bc1", texture).out, texture)
        << "a texture in the requested format is not encoded again";
}

TEST_F(ToolTest, ColourCurvesAreAppliedOnlyOnRequestAndReported) {
    writePNG("grey.png", 4, 4, std::vector<std::uint8_t>(64, 128));
    // clang-format off
    const struct { const char *options, *line; double expected; const char* label; } cases[] = {
        // options, message, grey 128 becomes, colour space of the output
        {"", "", 128, "srgb"},
        {"--assign-colour-space linear", "", 128, "linear"},
        {"--colour-space linear --quiet", "sRGB to linear", 55, "linear"},
        {"--assign-colour-space linear --colour-space srgb -f dxt5", "linear to sRGB", 188, "srgb"},
        {"--assign-colour-space linear --colour-space srgb -f rgba16161616", "linear to sRGB", 188, "srgb"}};
    // clang-format on
    for (const auto& [options, line, expected, label] : cases) {
        const ToolRun result = expectSuccess(std::string("convert @grey.png @out.mok -y ") + options);
        EXPECT_EQ(result.err.empty(), *line == '\0') << result.err;
        EXPECT_NE(result.err.find(line), std::string::npos) << result.err;
        EXPECT_EQ(info("out.mok")["colourSpace"], label);
        EXPECT_EQ(expectSuccess("convert @out.mok @back.png -y").err.find("curve"), std::string::npos);
        const nlohmann::json red = compare("grey.png", "back.png")["levels"][0]["channels"]["r"];
        EXPECT_NEAR(red["largest"], std::abs(expected - 128), 4.0) << options;
    }
}

TEST_F(ToolTest, EncodingImageByImageEqualsTranscodeAndErasesTheProgressLine) {
    const CMOKTextureHeader header(PixelTypeRGBA8.id, 8, 16, 1, 3, 2, 6, eColourSpaceLinear, eVarUByteNorm, true);
    const CMOKTexture source(header, testimages::randomBytes(header.getDataSize(), 7).data());
    ASSERT_TRUE(source.saveFile(path("a.mok").c_str()));
    // clang-format off
    const struct { const char* options; PixelType format; ECompressorQuality quality; bool dithers; } cases[] = {
        // options                       format            quality              dithers
        {"etc1 -q 1",                    eFmtETC1,         eCompressorQuality1, false},
        {"bw1 --dither",                 eFmtBW1bpp,       eCompressorQuality3, true},
        {"moktc-2bpp-rgb -q 0 --dither", eFmtMOKTC2bppRGB, eCompressorQuality0, true},
        {"moktc2-4bpp -q 0",             eFmtMOKTCII4bpp,  eCompressorQuality0, false}};
    // clang-format on
    for (const auto& [options, format, quality, dithers] : cases) {
        CMOKTexture whole = source;
        ASSERT_TRUE(Transcode(whole, format, eVarUByteNorm, eColourSpaceLinear, quality, dithers));
        ASSERT_TRUE(whole.saveFile(path("whole.mok").c_str()));
        for (const bool onTerminal : {false, true}) {
            isTerminal = onTerminal;
            const std::string told = expectSuccess(std::string("convert @a.mok @b.mok -y -f ") + options).err;
            EXPECT_EQ(read("b.mok"), read("whole.mok")) << options;
            if (told.find('\r') == std::string::npos) continue;
            EXPECT_TRUE(onTerminal) << told;
            EXPECT_NE(told.find(" \r"), std::string::npos) << told;
        }
    }
}

TEST(ProgressLine, IsDrawnOnATerminalAndErased) {
    EXPECT_EQ(progressText({1, 1}, 0, 0), "0 of 1 level, 0 s");
    EXPECT_EQ(progressText({12, 4}, 9, 100), "2 of 12 surfaces, 1 of 4 levels, 100 s");
    struct FlushCounter : std::stringbuf {
        std::atomic<int> flushes = 0;
        int sync() override { return ++flushes, 0; }
    } drawn;
    std::ostream err(&drawn);
    moktextool::Console console{std::cin, std::cout, err, false, true};
    {
        ProgressLine line(console, {1, 4}, std::chrono::milliseconds(1));
        line.advance();
        for (const int before = drawn.flushes; drawn.flushes < before + 2;)
            std::this_thread::yield();
    }
    const std::string text = drawn.str();
    EXPECT_NE(text.find("\rmoktex: 1 of 4 levels, "), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with(std::string(20, ' ') + '\r')) << text;
    console.quiet = true;
    ProgressLine(console, {1, 4}, std::chrono::milliseconds(0)).advance();
    EXPECT_EQ(drawn.str(), text);
}

TEST_F(ToolTest, HDRBecomesFloatAndIsClampedToTheTargetsRange) {
    // Two pixels: 4, 1, 0.25 and 0, 0, 0.5.
    write("sun.hdr", std::string("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 2\n\x80\x20\x08\x83\x00\x00\x80\x80", 53));
    expectSuccess("convert @sun.hdr @a.mok");
    EXPECT_EQ(info("a.mok")["format"], "rgba32323232");
    EXPECT_EQ(info("a.mok")["colourSpace"], "linear");
    const ToolRun clamped = expectSuccess("convert @sun.hdr @a.png");
    EXPECT_NE(clamped.err.find("clamped"), std::string::npos);
    writePNG("expected.png", 2, 1, {255, 255, 64, 255, 0, 0, 128, 255});
    EXPECT_TRUE(areEqual("a.png", "expected.png"));
    EXPECT_EQ(expectSuccess("convert @sun.hdr @half.mok -f rgba16161616:float").err, "");
    EXPECT_LE(compare("half.mok", "a.mok")["levels"][0]["channels"]["rgb"]["largest"], 1e-4);
}

TEST_F(ToolTest, SixteenBitsAChannelRoundTripThroughPNG) {
    const CMOKTextureHeader header(PixelTypeRGBA16.id, 5, 7, 1, 1, 1, 1, eColourSpaceSRGB, eVarUShortNorm, false);
    const CMOKTexture texture(header, testimages::randomBytes(header.getDataSize(), 3).data());
    ASSERT_TRUE(texture.saveFile(path("a.mok").c_str()));
    EXPECT_EQ(expectSuccess("convert @a.mok @deep.png").err, "");
    EXPECT_EQ(read("deep.png")[24], 16) << "bits a channel in the file";
    expectSuccess("convert @deep.png @b.mok");
    EXPECT_EQ(read("b.mok"), read("a.mok"));
    EXPECT_NE(expectSuccess("convert @a.mok @shallow.png -f rgba8888").err.find("8 bits"), std::string::npos);
    EXPECT_EQ(read("shallow.png")[24], 8);
}

TEST_F(ToolTest, ReportAndHelpPrintTheExpectedText) {
    writePNG("a.png", 4, 4);
    EXPECT_EQ(expectSuccess("convert @a.png @b.mok").out, path("b.mok") + ": rgba8888, 4 x 4, 1 level, srgb, 116 bytes\n");
    for (const char* command : {"convert", "info", "compare", "formats"})
        EXPECT_NE(expectSuccess(std::string(command) + " --help").out.find("Example"), std::string::npos) << command;
}
