#include "tool_fixture.h"

TEST_F(ToolTest, WithoutAFormatTheContainerGetsALayoutThatItHolds) {
    writePNG("a.png", 8, 8, testimages::Kind::softAlpha);
    // clang-format off
    const struct { const char *format, *extension, *written; } cases[] = {
        // format of the input, extension of the output, format written
        {"rgba8888",              "dds",  "rgba8888"},
        {"rgba8888",              "ktx",  "rgba8888"},
        {"rgba8888",              "ktx2", "rgba8888"},
        {"argb8888",              "ktx",  "rgba8888"},
        {"argb8888",              "ktx2", "rgba8888"},
        {"i8",                    "dds",  "rgba8888"},
        {"rgba32323232:uintnorm", "dds",  "rgba32323232"}};
    // clang-format on
    for (const auto& [format, extension, written] : cases) {
        expectSuccess(std::string("convert @a.png @in.mok -y -f ") + format);
        const std::string out = std::string("out.") + extension;
        const ToolRun result = expectSuccess("convert @in.mok -y -o @" + out);
        EXPECT_EQ(info(out)["format"], written) << format << ' ' << extension;
        EXPECT_NE(result.out.find(std::string(": ") + written + ','), std::string::npos) << result.out;
        EXPECT_TRUE(areEqual("in.mok", out)) << format << ' ' << extension;
    }
    expectSuccess("convert @a.png @blocks.mok -f etc1 -q 0");
    expectRefusal("convert @blocks.mok @blocks.dds", ExitStatus::notSupported, "use .mok, .ktx, .ktx2 or .h");
    EXPECT_NE(expectSuccess("convert @a.png @b.mok --mip-filter cubic").err.find("--mip-filter has no effect"),
              std::string::npos);
}
