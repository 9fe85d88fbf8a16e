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
    for (const char* format : {"dxt1", "bc2", "dxt5"}) {
        expectSuccess(std::string("convert @a.png @block.mok -y -m --resize pow2 -f ") + format);
        expectSuccess("convert @a.png @plain.mok -y --mipmaps --resize 128x64");
        const nlohmann::json description = info("block.mok");
        EXPECT_EQ(description["levels"].size(), 8u);
        EXPECT_EQ(description["width"], 128);
        EXPECT_EQ(description["height"], 64);
        expectSuccess("compare @plain.mok @block.mok --levels --min-psnr 15");
        expectSuccess("convert @block.mok @level.png -y --level 7");
        EXPECT_EQ(info("level.png")["width"], 1);
    }
}

TEST_F(ToolTest, SizesThatBlocksCannotHoldAreRefusedWithTheRemedy) {
    const struct {
        std::uint32_t width, height;
        const char *options, *remedy;
    } cases[] = {
        {500, 300, "-m",
         "level 1 of 250 x 150: each level's width and height must be a multiple of 4, or below 4; "
         "use --resize 512x256 or --mipmaps=1"},
        {24, 40, "-m=3",
         "level 2 of 6 x 10: each level's width and height must be a multiple of 4, or below 4; "
         "use --resize 32x48 or --mipmaps=2"},
        {10, 3, "", "level 0 of 10 x 3: each level's width and height must be a multiple of 4, or below 4; use --resize 12x3"},
    };
    for (const auto& [width, height, options, remedy] : cases) {
        writePNG("a.png", width, height);
        const ToolRun result = run(std::string("convert @a.png @a.mok -f dxt1 ") + options);
        EXPECT_EQ(result.status, ExitStatus::notSupported);
        EXPECT_EQ(result.err, "moktex: " + path("a.png") + ": dxt1 cannot hold " + remedy + '\n');
        EXPECT_EQ(files(), Names{"a.png"});
        for (std::string option = remedy; option.find("--") != std::string::npos;) {  // each remedy works
            option = option.substr(option.find("--"));
            const std::string words = option.substr(0, option.find(" or"));
            expectSuccess(std::string("convert @a.png @b.mok -f dxt1 ") + options + ' ' + words);
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
    unknownFormat.replace(8, 8, std::string("\x06\0\0\0\0\0\0\0", 8));
    write("etc1.mok", unknownFormat);
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
        {"convert @etc1.mok @new.png", ExitStatus::notSupported},
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
