#include "tool_fixture.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Grey pixels with alpha 255, but for those of value 0, which are transparent.
Bytes greys(std::initializer_list<int> values) {
    Bytes rgba;
    for (const int value : values)
        for (const int element : {value, value, value, value == 0 ? 0 : 255})
            rgba.push_back(static_cast<std::uint8_t>(element));
    return rgba;
}

}  // namespace

TEST_F(ToolTest, OperationsGiveHandComputedPixels) {
    const Bytes abc = greys({10, 20, 30}), colour = {200, 100, 50, 128};
    // clang-format off
    const struct { const char* options; std::uint32_t width; Bytes input; std::uint32_t expectedWidth; Bytes expected; } cases[] = {
        // options, width and pixels before, width and pixels after
        {"--flip x", 3, abc, 3, greys({30, 20, 10})},
        {"--rotate90 z", 1, abc, 3, greys({30, 20, 10})},
        {"--rotate90 -z", 1, abc, 3, abc},
        {"--border 2x0", 3, abc, 7, greys({20, 10, 10, 20, 30, 30, 20})},
        {"--border 1", 3, abc, 5, greys({10, 10, 20, 30, 30, 10, 10, 20, 30, 30, 10, 10, 20, 30, 30})},
        {"--flip x --border 1x0", 3, abc, 5, greys({30, 30, 20, 10, 10})},
        {"--border 0x1 --rotate90 z --flip x", 3, abc, 3, greys({10, 10, 10, 20, 20, 20, 30, 30, 30})},
        {"--premultiply", 1, colour, 1, {100, 50, 25, 128}},
        {"--set-channel a=255 --premultiply", 1, colour, 1, {200, 100, 50, 255}},
        {"--set-channel r=1 --swizzle rrra --set-channel b=7", 1, colour, 1, {1, 1, 7, 128}},
        {"--resize 1x2 --resize-filter nearest --flip x --set-channel g=9", 1, colour, 1, {200, 9, 50, 128, 200, 9, 50, 128}},
        {"--bleed", 3, greys({0, 20, 0}), 3, {20, 20, 20, 0, 20, 20, 20, 255, 20, 20, 20, 0}},
        {"--normal-map 1", 3, greys({90, 90, 90}), 3, {128, 128, 255, 255, 128, 128, 255, 255, 128, 128, 255, 255}},
        {"--normal-map -1e0:hz", 1, greys({90, 90}), 1, {90, 255, 255, 255, 90, 255, 255, 255}}};
    // clang-format on
    for (const auto& [options, width, input, expectedWidth, expected] : cases) {
        writePNG("a.png", width, static_cast<std::uint32_t>(input.size() / 4 / width), input);
        expectSuccess(std::string("convert @a.png -o @b.png -y ") + options);
        EXPECT_EQ(pixelsOf("b.png"), expected) << options;
        EXPECT_EQ(info("b.png")["width"], expectedWidth) << options;
    }
}

TEST_F(ToolTest, OperationsKeepTheirOrderAfterTheChangeOfSize) {
    writePNG("a.png", 16, 8, testimages::Kind::cutOut);
    expectSuccess("convert @a.png @first.mok --bleed --mips --resize 8x8");
    expectSuccess("convert @a.png @last.mok --resize 8x8 --mips --bleed");
    EXPECT_TRUE(areEqual("first.mok", "last.mok"));
    EXPECT_FALSE(compare("first.mok", "last.mok", "--levels")["equal"]) << "colours bleed before or behind the mean";
    expectSuccess("convert @a.png @tinted.mok --mips=3 -m=2 --colour-mips --flip x");
    expectSuccess("convert @a.png @plain.mok --flip x -m=2");
    const nlohmann::json levels = compare("tinted.mok", "plain.mok", "--levels")["levels"];
    ASSERT_EQ(levels.size(), 2u);
    EXPECT_EQ(levels[0]["channels"]["rgba"]["mse"], 0);
    EXPECT_NE(levels[1]["channels"]["rgba"]["mse"], 0);
}

TEST_F(ToolTest, OperationsUpdateTheHeader) {
    writePNG("a.png", 8, 4);
    expectSuccess("convert @a.png @b.mok --border 2x1 --rotate90 z --premultiply --normal-map 2:xyzh -f rgba8888");
    const nlohmann::json description = info("b.mok");
    EXPECT_EQ(description["width"], 6);
    EXPECT_EQ(description["height"], 12);
    EXPECT_EQ(description["topics"]["border"], nlohmann::json({1, 2, 0}));
    EXPECT_EQ(description["flags"], nlohmann::json({"premultiplied"}));
    EXPECT_EQ(description["colourSpace"], "linear");
    EXPECT_EQ(expectSuccess("convert @b.mok @c.mok -f rgb888").err.find("curve"), std::string::npos);
}

TEST_F(ToolTest, OperationsThatMovePixelsKeep16BitValues) {
    const moktexture::CMOKTextureHeader header(moktexture::PixelTypeRGBA16.id, 64, 32, 1, 1, 1, 1, eColourSpaceLinear,
                                               eVarUShortNorm, false);
    const moktexture::CMOKTexture texture(header, testimages::randomBytes(header.getDataSize(), 2).data());
    ASSERT_TRUE(texture.saveFile(path("all.mok").c_str()));
    const std::string bytes = read("all.mok");
    expectSuccess("convert @all.mok @same.mok --swizzle bgra --swizzle bgra --flip x --flip x --rotate90 z --rotate90 -z");
    EXPECT_TRUE(read("same.mok") == bytes);
    expectSuccess("convert @all.mok @set.mok --set-channel g=65535 --set-channel g=300");
    EXPECT_EQ(read("set.mok").substr(bytes.size() - 6, 2), std::string("\x2C\x01"));
}

TEST_F(ToolTest, RefusalOfAnOperationNamesTheRemedy) {
    writePNG("a.png", 8, 4);
    expectSuccess("convert @a.png @wide.mok -f rgba16161616");
    expectSuccess("convert @a.png @float.mok -f rgba32323232");
    expectSuccess("convert @a.png @done.mok --premultiply");
    moktexture::CMOKTextureHeader header;
    header.setPixelFormat(moktexture::PixelTypeRGBA8), header.setDepth(4);
    ASSERT_TRUE(moktexture::CMOKTexture(header, nullptr).saveFile(path("volume.mok").c_str()));
    // clang-format off
    const struct { ExitStatus status; const char* remedy; std::vector<const char*> arguments; } cases[] = {
        // status                   part of the message, command lines
        {ExitStatus::notSupported, "rgba8888", {"@wide.mok --premultiply", "@float.mok --premultiply", "@a.png --normal-map 1 --premultiply"}},
        {ExitStatus::notSupported, "leave it out", {"@done.mok --premultiply", "@a.png --premultiply --premultiply"}},
        {ExitStatus::notSupported, "before --premultiply", {"@a.png --premultiply --bleed"}},
        {ExitStatus::notSupported, "use z", {"@a.png --rotate90 x", "@a.png --rotate90 -y"}},
        {ExitStatus::commandLine, "use z", {"@a.png --rotate90 w"}},
        {ExitStatus::notSupported, "8x4", {"@a.png --border 9"}},
        {ExitStatus::notSupported, "start without it", {"@a.png --border 1 --border 1"}},
        {ExitStatus::commandLine, "before --mipmaps", {"@a.png --mips --border 1"}},
        {ExitStatus::commandLine, "4x2", {"@a.png --border 0", "@a.png --border 1x"}},
        {ExitStatus::commandLine, "--mipmaps before", {"@a.png --colour-mips", "@a.png --colour-mips --mips"}},
        {ExitStatus::commandLine, "other than 0", {"@a.png --normal-map 0", "@a.png --normal-map 1e-60", "@a.png --normal-map nan",
                                                   "@a.png --normal-map 1e40"}},
        {ExitStatus::commandLine, "xyzh", {"@a.png --normal-map 1:xyq", "@a.png --normal-map 1:xx", "@a.png --normal-map 1:"}},
        {ExitStatus::commandLine, "leave it out", {"@a.png --normal-map 1 --colour-space srgb"}},
        {ExitStatus::notSupported, "without depth", {"@volume.mok --normal-map 1"}},
        {ExitStatus::commandLine, "0 to 255", {"@a.png --set-channel a=256", "@a.png --set-channel a=0.5", "@a.png --set-channel a=1.0"}},
        {ExitStatus::commandLine, "a=255", {"@a.png --set-channel q=1", "@a.png --set-channel a"}},
        {ExitStatus::commandLine, "bgra", {"@a.png --swizzle bgr", "@a.png --swizzle bgrl"}}};
    // clang-format on
    for (const auto& [status, remedy, commandLines] : cases)
        for (const char* arguments : commandLines)
            expectRefusal(std::string("convert ") + arguments + " -o @new.mok", status, remedy);
    expectSuccess("convert @float.mok @new.mok --set-channel a=0.25");
    EXPECT_NE(expectSuccess("convert @a.png @flat.mok --flip z --quiet").err.find("changes nothing"), std::string::npos);
}
