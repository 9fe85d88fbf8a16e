#include "tool_fixture.h"

using namespace moktexture;
using Names = std::vector<std::string>;

TEST_F(ToolTest, PicturesComeBackUnchangedThroughUncompressedFormats) {
    writePNG("a.png", 20, 12, testimages::Kind::noise);
    for (const char* format :
         {"rgba8888", "abgr8888", "rgba16161616", "rgba16161616:float", "rgba32323232", "rgba32323232:uintnorm"}) {
        expectSuccess(std::string("convert @a.png @a.mok -y -f ") + format);
        expectSuccess("convert @a.mok @b.png -y");
        EXPECT_EQ(info("a.mok")["format"], format);
        EXPECT_TRUE(areEqual("a.png", "b.png")) << format;
    }
}

TEST_F(ToolTest, MipmappedBlockTexturesDecodeOnEveryLevel) {
    writePNG("a.png", 100, 50, testimages::Kind::gradient);
    for (const char* format :
         {"dxt1", "bc2", "dxt5", "etc1 -q 1", "moktc-2bpp-rgb", "moktc-2bpp-rgba", "moktc-4bpp-rgb -q fastest",
          "moktc-4bpp-rgba -q 0", "uyvy --resize 128x50", "yuy2 --resize 128x64"}) {
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

TEST_F(ToolTest, BlackAndWhiteComesBackOnEveryLevelThatIsBlackAndWhite) {
    std::vector<std::uint8_t> checks;
    for (int i = 0; i < 64 * 16; ++i)
        checks.insert(checks.end(), {std::uint8_t(-(i / 16 & 1)), std::uint8_t(-(i / 16 & 1)), std::uint8_t(-(i / 16 & 1)), 255});
    writePNG("a.png", 64, 16, checks);
    expectSuccess("convert @a.png @bits.mok -f bw1 -m=5 --mip-filter nearest");
    expectSuccess("convert @a.png @plain.mok -m=5 --mip-filter nearest");
    EXPECT_EQ(compare("bits.mok", "plain.mok", "--levels")["equal"], true);
}

TEST_F(ToolTest, LevelsThatAreNoWholeBlocksDecodeAsTheDataHasThem) {
    // An outer size of whole blocks gives the bytes; the same bytes under a smaller size are the cropped picture.
    const struct {
        const char* format;
        std::uint32_t width, height, croppedWidth, croppedHeight;
    } cases[] = {{"etc1", 8, 8, 5, 7}, {"etc1", 4, 4, 3, 2}, {"dxt1", 8, 8, 5, 7}, {"uyvy", 8, 3, 7, 3},
                 {"yuy2", 2, 4, 1, 4}, {"bw1", 16, 3, 9, 3}, {"bw1", 8, 5, 3, 5}};
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
        for (std::size_t i = 0; i < part.size(); ++i) {
            const std::size_t y = i / (croppedWidth * 4), x = i % (croppedWidth * 4);
            ASSERT_EQ(part[i], whole[y * width * 4 + x]) << format << ' ' << x / 4 << ' ' << y;
        }
    }
}

TEST_F(ToolTest, EverySliceOfACompressedVolumeDecodes) {
    writePNG("a.png", 8, 8, testimages::Kind::edges);
    for (const char* format : {"moktc-4bpp-rgb", "moktc-2bpp-rgb --resize 16x8", "etc1", "uyvy"}) {
        expectSuccess(std::string("convert @a.png @flat.mok -y -f ") + format);
        std::string bytes = read("flat.mok");
        const std::size_t dataSize = info("flat.mok")["levels"][0]["bytes"];
        bytes[32] = 2;
        write("volume.mok", bytes + bytes.substr(bytes.size() - dataSize));
        expectSuccess("convert @flat.mok @plain.mok -y -f rgba8888");
        expectSuccess("convert @volume.mok @slices.mok -y -f rgba8888");
        const std::string one = read("plain.mok"), two = read("slices.mok");
        const std::string slice = one.substr(one.size() - info("plain.mok")["levels"][0]["bytes"].get<std::size_t>());
        EXPECT_TRUE(two.ends_with(slice + slice)) << format;
    }
}

TEST_F(ToolTest, SizesThatBlocksCannotHoldAreRefusedWithTheRemedy) {
    const std::string multipleOf4 = ": each level's width and height must be a multiple of 4, or below 4; use --resize ";
    const std::string powersOfTwo = ": width and height must be powers of two from ";
    const struct {
        std::uint32_t width, height;
        std::string options, remedy;
    } cases[] = {
        {500, 300, "dxt1 -m", "level 1 of 250 x 150" + multipleOf4 + "512x256 or --mipmaps=1"},
        {24, 40, "dxt1 -m=3", "level 2 of 6 x 10" + multipleOf4 + "32x48 or --mipmaps=2"},
        {10, 3, "dxt1", "level 0 of 10 x 3" + multipleOf4 + "12x3"},
        {10, 3, "dxt1 --rotate90 z --border 2x1", "level 0 of 7 x 12" + multipleOf4 + "10x4"},
        {9, 30, "etc1", "level 0 of 9 x 30" + multipleOf4 + "8x32"},
        {7, 5, "uyvy", "level 0 of 7 x 5: each level's width must be a multiple of 2, or below 2; use --resize 8x5"},
        {6, 5, "yuy2 -m",
         "level 1 of 3 x 2: each level's width must be a multiple of 2, or below 2; use --resize 8x5 or --mipmaps=1"},
        {20, 5, "bw1", "level 0 of 20 x 5: each level's width must be a multiple of 8, or below 8; use --resize 24x5"},
        {48, 8, "moktc-2bpp-rgb -m", "48 x 8" + powersOfTwo + "16 x 8 to 4096 x 4096; use --resize 64x8"},
        {8, 5000, "moktc-2bpp-rgb", "8 x 5000" + powersOfTwo + "16 x 8 to 4096 x 4096; use --resize 16x4096"},
        {4, 12, "moktc-4bpp-rgba", "4 x 12" + powersOfTwo + "8 x 8 to 4096 x 4096; use --resize 8x16"},
    };
    for (const auto& [width, height, options, remedy] : cases) {
        writePNG("a.png", width, height);
        const ToolRun result = run("convert @a.png @a.mok -f " + options);
        EXPECT_EQ(result.status, ExitStatus::notSupported);
        const std::string name = options.substr(0, options.find(' '));
        EXPECT_EQ(result.err, "moktex: " + path("a.png") + ": " + name + " cannot hold " + remedy + '\n');
        EXPECT_EQ(files(), Names{"a.png"});
        for (std::string option = remedy; option.find("--") != std::string::npos;) {  // each remedy works
            option = option.substr(option.find("--"));
            const std::string words = option.substr(0, option.find(" or"));
            expectSuccess("convert @a.png @b.mok -f " + options + ' ' + words);
            option = option.substr(2);
            std::filesystem::remove(path("b.mok"));
        }
    }
}

TEST_F(ToolTest, EachKindOfBadRequestHasItsStatusAndOneLineAndLeavesNothing) {
    writePNG("a.png", 8, 8);
    expectSuccess("convert @a.png @good.mok");
    const std::string mok = read("good.mok"), png = read("a.png");
    std::string unknownFormat = mok;
    unknownFormat.replace(8, 8, std::string("\x0C\0\0\0\0\0\0\0", 8));
    write("bc4.mok", unknownFormat);
    write("cut.mok", mok.substr(0, mok.size() - 1));
    write("cut.png", png.substr(0, png.size() / 2));
    write("text.mok", "no texture");
    write("text.png", "no picture");
    write("text", "nothing");
    write("empty.png", "");
    write("taken.mok", "precious");
    const Names before = files();
    const struct {
        const char* arguments;
        ExitStatus status;
    } cases[] = {
        {"", ExitStatus::commandLine},
        {"convert", ExitStatus::commandLine},
        {"convert @a.png", ExitStatus::commandLine},
        {"convert @a.png @good.mok @new.mok", ExitStatus::commandLine},
        {"convert @a.png @new.mok --no-such-option", ExitStatus::commandLine},
        {"convert @a.png @new.mok -f dxt9", ExitStatus::commandLine},
        {"convert @a.png @new.mok -q 6", ExitStatus::commandLine},
        {"convert @a.png @new.mok --resize 0x4", ExitStatus::commandLine},
        {"convert @a.png @new.mok --resize 4x", ExitStatus::commandLine},
        {"convert @a.png @new.mok -m 5", ExitStatus::commandLine},
        {"convert @a.png @new.mok -m=0", ExitStatus::commandLine},
        {"convert @a.png @new.mok --mip-filter box", ExitStatus::commandLine},
        {"convert @a.png @new.mok --colour-space red", ExitStatus::commandLine},
        {"convert @good.mok @new.png --level 1", ExitStatus::commandLine},
        {"convert @none.png @new.mok", ExitStatus::inputOutput},
        {"convert @a.png @none/new.mok", ExitStatus::inputOutput},
        {"convert @a.png @taken.mok", ExitStatus::inputOutput},
        {"convert @cut.mok @new.mok", ExitStatus::invalidInput},
        {"convert @cut.png @new.mok", ExitStatus::invalidInput},
        {"convert @text.mok @new.mok", ExitStatus::invalidInput},
        {"convert @text.png @new.mok", ExitStatus::invalidInput},
        {"convert @text @new.mok", ExitStatus::invalidInput},
        {"convert @empty.png @new.mok", ExitStatus::invalidInput},
        {"convert @cut.mok @taken.mok -y", ExitStatus::invalidInput},
        {"convert @a.png @new.gif", ExitStatus::notSupported},
        {"convert @a.png @new.mok -f bc7", ExitStatus::notSupported},
        {"convert @a.png @new.mok -f rgb8.4.4:ubytenorm", ExitStatus::notSupported},
        {"convert @bc4.mok @new.png", ExitStatus::notSupported},
        {"convert @a.png @new.mok -f moktc2-4bpp", ExitStatus::notSupported},
        {"convert @a.png @new.mok -f moktc-4bpp-rgb -q 1", ExitStatus::notSupported},
        {"convert @a.png @new.mok -f moktc-4bpp-rgb -q fast", ExitStatus::notSupported},
        {"info @none.mok", ExitStatus::inputOutput},
        {"compare @a.png @none.png", ExitStatus::inputOutput},
    };
    for (const auto& [arguments, status] : cases) {
        const ToolRun result = run(arguments);
        EXPECT_EQ(result.status, status) << arguments;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << arguments << '\n' << result.err;
        EXPECT_EQ(result.err.rfind("moktex: ", 0), 0u) << result.err;
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_EQ(files(), before) << arguments;
        EXPECT_EQ(read("taken.mok"), "precious") << arguments;
    }
}

TEST_F(ToolTest, EveryPrefixOfAPictureIsRefusedOrReadWithoutHarm) {
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
    EXPECT_EQ(run("convert @bad.png @none.png -o @fresh").status, ExitStatus::invalidInput);
    EXPECT_FALSE(std::filesystem::exists(path("fresh")));
}

TEST_F(ToolTest, StandardStreamsCarryTextures) {
    writePNG("a.png", 8, 8);
    const ToolRun first = expectSuccess("convert - - -f dxt1", read("a.png"));
    EXPECT_EQ(first.out.substr(0, 4), "MOK\x03");
    expectSuccess("convert - @out.png", first.out);
    expectSuccess("compare - @out.png --min-psnr 200", first.out);
    EXPECT_EQ(nlohmann::json::parse(expectSuccess("info - --json", first.out).out)[0]["format"], "dxt1");
}

TEST_F(ToolTest, CurvesAreAppliedOnRequestAloneAndNeverSilently) {
    writePNG("grey.png", 4, 4, std::vector<std::uint8_t>(64, 128));
    const struct {
        const char* options;
        const char* line;
        double expected;
        const char* label;
    } cases[] = {
        {"", "", 128, "srgb"},
        {"--colour-space srgb", "", 128, "srgb"},
        {"--assign-colour-space linear", "", 128, "linear"},
        {"--colour-space linear --quiet", "sRGB to linear", 55, "linear"},
        {"--assign-colour-space linear --colour-space srgb -f dxt5", "linear to sRGB", 188, "srgb"},
        {"--assign-colour-space linear --colour-space srgb -f rgba16161616", "linear to sRGB", 188, "srgb"},
    };
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

TEST_F(ToolTest, TextureInTheWantedFormPassesBitForBit) {
    writePNG("a.png", 16, 16, testimages::Kind::noise);
    expectSuccess("convert @a.png @a.mok -f dxt3 -m");
    expectSuccess("convert @a.mok @b.mok");
    expectSuccess("convert @a.mok @c.mok -f bc2 --colour-space srgb");
    EXPECT_EQ(read("a.mok"), read("b.mok"));
    EXPECT_EQ(read("a.mok"), read("c.mok"));
}

TEST_F(ToolTest, OpaqueAndWhiteStayWhatTheyAreWhenSizesChange) {
    writePNG("white.png", 50, 30, std::vector<std::uint8_t>(50 * 30 * 4, 255));
    for (const char* filter : {"nearest", "linear", "cubic"}) {
        for (const char* size : {"100x60", "25x15", "37x11", "64x32"}) {
            expectSuccess(std::string("convert @white.png @a.mok -y --resize ") + size + " --resize-filter " + filter);
            expectSuccess(std::string("convert @white.png @b.png -y --resize ") + size);
            writePNG("expected.png", info("a.mok")["width"], info("a.mok")["height"],
                     std::vector<std::uint8_t>(100 * 60 * 4, 255));
            EXPECT_TRUE(areEqual("a.mok", "expected.png")) << filter << ' ' << size;
        }
    }
}

TEST_F(ToolTest, HDRBecomesFloatAndIsClampedWhereTheTargetWouldWrap) {
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

TEST_F(ToolTest, SixteenBitPNGBecomesA16BitTexture) {
    const std::string header("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\x10\x06\0\0\0____", 33);
    const std::string stored("\0\0\0\x14IDAT\x78\x01\x01\x09\0\xF6\xFF\0\x12\x34\x56\x78\x9A\xBC\xFF\xFF____", 28);
    write("deep.png", header + stored + std::string("____\0\0\0\0IEND____", 16));
    expectSuccess("convert @deep.png @a.mok");
    EXPECT_EQ(info("a.mok")["format"], "rgba16161616");
    EXPECT_EQ(read("a.mok").substr(52), "\x34\x12\x78\x56\xBC\x9A\xFF\xFF");
    EXPECT_NE(expectSuccess("convert @a.mok @shallow.png").err.find("8 bits"), std::string::npos);
}

TEST_F(ToolTest, QuietConversionsAndHelpSayWhatTheyShould) {
    writePNG("a.png", 4, 4);
    EXPECT_EQ(expectSuccess("convert @a.png @a.mok --quiet").out, "");
    EXPECT_EQ(expectSuccess("convert @a.png @b.mok").out, path("b.mok") + ": rgba8888, 4 x 4, 1 level, srgb, 116 bytes\n");
    EXPECT_EQ(expectSuccess("--version").out.substr(0, 7), "moktex ");
    for (const char* command : {"convert", "info", "compare", "formats"})
        EXPECT_NE(expectSuccess(std::string(command) + " --help").out.find("Example"), std::string::npos) << command;
}
