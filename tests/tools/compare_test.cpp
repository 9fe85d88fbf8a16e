#include <cmath>
#include <limits>

#include "moktex/commands/pixel_difference.h"
#include "tool_fixture.h"

TEST_F(ToolTest, CompareGivesHandComputedNumbers) {
    writePNG("a.png", 2, 1, {10, 20, 30, 255, 0, 0, 0, 255});
    writePNG("b.png", 2, 1, {13, 20, 30, 255, 0, 4, 0, 255});
    const nlohmann::json comparison = compare("a.png", "b.png");
    // clang-format off
    const struct { const char* channel; double error, psnr, largest; } expected[] = {
        // channel, mean squared error, PSNR, largest difference
        {"r", 4.5, 41.5987, 3}, {"g", 8, 39.0998, 4}, {"rgb", 12.5 / 3, 41.9329, 4}, {"rgba", 3.125, 43.1823, 4},
        {"weighted", 0.299 * 4.5 + 0.587 * 8, 40.3193, 4}};
    // clang-format on
    const nlohmann::json& channels = comparison["levels"][0]["channels"];
    for (const auto& [channel, error, psnr, largest] : expected) {
        EXPECT_DOUBLE_EQ(channels[channel]["mse"], error) << channel;
        EXPECT_NEAR(channels[channel]["psnr"], psnr, 1e-3) << channel;
        EXPECT_EQ(channels[channel]["largest"], largest) << channel;
    }
    EXPECT_TRUE(channels["b"]["psnr"].is_null());
    EXPECT_FALSE(comparison["equal"]);
    const std::string text = expectSuccess("compare @a.png @b.png").out;
    for (const char* number : {"41.60", "inf"})
        EXPECT_NE(text.find(number), std::string::npos) << text;
}

TEST(PixelDifference, IsRightForPicturesOfAnySizeAndNeverPassesWithoutANumber) {
    using namespace moktextool;
    const std::uint64_t pixels = std::uint64_t{16384} * 8192;
    // clang-format off
    const struct { double square; double peak; double psnr; } cases[] = {
        // square of every difference, peak, PSNR
        {255.0 * 255, 255, 0}, {1, 255, 48.1308}, {65535.0 * 65535, 65535, 0}, {0, 255, std::numeric_limits<double>::infinity()}};
    // clang-format on
    for (const auto& [square, peak, psnr] : cases) {
        DifferenceSums sums;
        sums.squares.fill(square * static_cast<double>(pixels));
        sums.pixels = pixels;
        const ChannelDifferences differences = differencesOf(sums, peak, "b.png");
        EXPECT_DOUBLE_EQ(differences[overAll].meanSquaredError, square);
        if (std::isinf(psnr))
            EXPECT_EQ(differences[overAll].psnr, psnr);
        else
            EXPECT_NEAR(differences[overAll].psnr, psnr, 1e-4);
    }
    DifferenceSums unknown;
    EXPECT_THROW(differencesOf(unknown, 255, "b.png"), Failure) << "no pixels";
    unknown.pixels = 1;
    unknown.squares[1] = std::nan("");
    EXPECT_THROW(differencesOf(unknown, 255, "b.png"), Failure) << "no number";
}

TEST_F(ToolTest, CompareReturnsStatus7ForTooLargeDifferences) {
    writePNG("a.png", 8, 8);
    writePNG("b.png", 8, 8, testimages::Kind::noise);
    writePNG("small.png", 8, 4);
    EXPECT_EQ(run("compare @a.png @b.png --min-psnr 60").status, ExitStatus::different);
    EXPECT_EQ(run("compare @a.png @small.png").status, ExitStatus::different);
    for (const char* command : {"compare @a.png @b.png --min-psnr 1", "compare @a.png @a.png --min-psnr 999"})
        expectSuccess(command);
}

TEST_F(ToolTest, CompareUsesFullPrecisionForWideFormats) {
    writePNG("a.png", 4, 4);
    expectSuccess("convert @a.png @wide.mok -f rgba16161616");
    expectSuccess("convert @a.png @float.mok -f rgba32323232");
    EXPECT_EQ(compare("wide.mok", "wide.mok")["peak"], 65535);
    EXPECT_EQ(compare("wide.mok", "float.mok")["peak"], 1);
    EXPECT_EQ(compare("wide.mok", "a.png")["peak"], 255);
}

TEST_F(ToolTest, InfoShowsAllHeaderFields) {
    using namespace moktexture;
    CMOKTextureHeader header(eFmtDXT1, 8, 16, 1, 2, 3, 6, static_cast<EMOKTColourSpace>(9), eVarUByteNorm, true);
    header.setOrientation(eOrientUp);
    header.setBorder(1, 2, 3);
    header.setBumpMap(0.5F, "xy\x1B\xFF");
    ASSERT_TRUE(CMOKTexture(header, nullptr).saveFile(path("a.mok").c_str()));
    const nlohmann::json description = info("a.mok");
    EXPECT_EQ(description["colourSpace"], "unknown-9");
    EXPECT_EQ(description["flags"], nlohmann::json({"premultiplied"}));
    EXPECT_EQ(description["topics"]["orientation"], "right, up, in");
    EXPECT_EQ(description["topics"]["border"], nlohmann::json({1, 2, 3}));
    EXPECT_EQ(description["levels"][1]["bytes"], 8 / 4 * 1 * 8 * 3 * 6);
    const std::string text = expectSuccess("info @a.mok").out;
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_EQ(text.find('\xFF'), std::string::npos);
    EXPECT_EQ(run("convert @a.mok @b.mok --colour-space srgb").status, ExitStatus::notSupported);
    expectSuccess("convert @a.mok @c.png --layer 2 --face 5 --level 1");
}
