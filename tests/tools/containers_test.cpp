#include <utility>

#include "tool_fixture.h"

TEST_F(ToolTest, KTXAndDDSFilesRoundTripByNameAndByContent) {
    writePNG("a.png", 16, 8, testimages::Kind::noise);
    // clang-format off
    const struct { const char *format, *extension, *formatRead; } cases[] = {
        // format written, extension, format read
        {"bgra8888", "KTX", "bgra8888"}, {"rgba16161616:float --mipmaps", "ktx", "rgba16161616:float"},
        {"moktc-4bpp-rgba -q 0", "ktx", "moktc-4bpp-rgba"}, {"moktc-4bpp-rgb -q 0", "dds", "moktc-4bpp-rgb"},
        {"rgba5551", "ktx", "rgba5551"}, {"etc1 --mipmaps", "ktx2", "etc1"}, {"dxt5 --mipmaps", "KTX2", "dxt5"},
        {"argb8888:uintnorm --mipmaps", "dds", "argb8888:uintnorm"}, {"r16:float", "dds", "r16:float"}, {"rgb888", "dds", "rgb888"},
        {"rgb565", "DDS", "rgb565"}, {"dxt1 --mipmaps", "dds", "dxt1"}, {"uyvy", "dds", "uyvy"}};
    // clang-format on
    for (const auto& [format, extension, formatRead] : cases) {
        const std::string file = std::string("a.") + extension, options = std::string(" -y -f ") + format;
        expectSuccess("convert @a.png @plain.mok" + options);
        expectSuccess("convert @a.png @" + file + options);
        EXPECT_EQ(info(file)["format"], formatRead) << file;
        EXPECT_EQ(info(file)["levels"], info("plain.mok")["levels"]) << file;
        EXPECT_EQ(compare("plain.mok", file, "--levels")["equal"], true) << format << ' ' << file;
        expectSuccess("convert - @piped.mok -y", read(file));
        expectSuccess("convert @" + file + " @named.mok -y");
        EXPECT_EQ(read("piped.mok"), read("named.mok")) << file;
    }
}

TEST_F(ToolTest, RefusalOfAContainerNamesTheSuitableOnes) {
    writePNG("a.png", 8, 8);
    write("taken.dds", "precious");
    const std::pair<const char*, const char*> cases[] = {
        // arguments, message
        {"@taken.dds -y -f etc1",
         "taken.dds: .dds files cannot hold etc1, srgb: the container has no number for the pixel format and "
         "channel type; use .mok, .ktx, .ktx2 or .h, or another --format"},
        {"@new.ktx2 -f moktc-4bpp-rgb -q 0", "new.ktx2: .ktx2 files cannot hold moktc-4bpp-rgb, srgb: "},
        {"@new.dds -f dxt1 --layout own",
         "cannot hold the pixel format in this colour space; use .mok, .ktx2 or .h, or another --format"},
        {"@new.mok -f dxt1 --legacy gl-a",
         "new.mok: --legacy gl-a files cannot hold dxt1, srgb; use --legacy d3d-a or d3d-b, or"},
    };
    for (const auto& [arguments, line] : cases)
        expectRefusal(std::string("convert @a.png ") + arguments, ExitStatus::notSupported, line);
    for (const char* arguments : {"@new.ktx --legacy vg", "- --legacy vg", "@new.mok --legacy gl"})
        expectRefusal(std::string("convert @a.png ") + arguments, ExitStatus::commandLine);
}

TEST_F(ToolTest, FilesReadBackAsTheSameTexture) {
    writePNG("a.png", 8, 8);
    expectSuccess("convert @a.png @volume.mok -f rgb565");
    std::string volume = read("volume.mok");
    volume[32] = 2;
    write("volume.mok", volume + volume.substr(volume.size() - 128));
    for (const char* file : {"volume.dds", "volume.ktx", "volume.ktx2"}) {
        expectSuccess(std::string("convert @volume.mok @") + file);
        expectSuccess(std::string("convert @") + file + " @back.mok -y");
        EXPECT_EQ(read("back.mok"), read("volume.mok")) << file;
    }
    EXPECT_EQ(run("convert @volume.mok @c.dds --layout own").status, ExitStatus::notSupported);
    EXPECT_EQ(run("convert @volume.mok @c.mok --legacy gl-a").status, ExitStatus::notSupported);
}

TEST_F(ToolTest, InfoAndFormatsShowGraphicsApiNumbers) {
    using nlohmann::json;
    writePNG("a.png", 4, 4);
    expectSuccess("convert @a.png @dxt.mok -f dxt5");
    EXPECT_EQ(info("a.png")["apiNumbers"]["openGL"], json({{"internalFormat", 0x8058}, {"format", 0x1908}, {"type", 0x1401}}));
    EXPECT_EQ(info("a.png")["apiNumbers"]["dxgi"], 29) << "sRGB";
    EXPECT_EQ(info("dxt.mok")["apiNumbers"]["dxgi"], 78) << "sRGB";
    EXPECT_EQ(info("dxt.mok")["apiNumbers"]["direct3D9"], 0x35545844);
    EXPECT_TRUE(info("dxt.mok")["apiNumbers"]["openGL"].is_null());
    std::map<std::string, json> dxgi;
    for (const json& format : json::parse(expectSuccess("formats --api --json").out))
        dxgi[format["name"]] = {format["apiNumbers"]["dxgi"], format["apiNumbers"]["dxgiSRGB"]};
    EXPECT_EQ(dxgi["dxt1"], json({71, 72}));
    EXPECT_EQ(dxgi["etc1"], json({nullptr, nullptr}));
    const std::string table = expectSuccess("formats --api").out, text = expectSuccess("info @dxt.mok").out;
    EXPECT_NE(expectSuccess("formats").out.find("rgba16161616:float"), std::string::npos);
    EXPECT_NE(table.find("0x8058 0x1908 0x1401  0x1908 0x1908 0x1401  -           28    29"), std::string::npos) << table;
    EXPECT_NE(text.find("Direct3D 9     DXT5"), std::string::npos) << text;
}

TEST_F(ToolTest, LoadErrorsNameTheRemedy) {
    writePNG("a.png", 8, 8);
    expectSuccess("convert @a.png @a.dds -f dxt1");
    const std::string dds = read("a.dds");
    std::string code = dds, size = dds;
    code[84] = '?';
    size[4] = 1;
    for (const auto& [bytes, status, remedy] :
         {std::tuple{code, ExitStatus::notSupported, "not read; export it"},
          {size, ExitStatus::invalidInput, "itself; export it again"},
          {dds.substr(0, 130), ExitStatus::invalidInput, "; copy or export it again"},
          {"nothing", ExitStatus::invalidInput, "; use a .mok, .ktx, .ktx2 or .dds file, or a PNG"}}) {
        write("bad.dds", bytes);
        expectRefusal("info @bad.dds", status, remedy);
    }
}

TEST_F(ToolTest, LegacyFilesAndCSourceHoldTheTexture) {
    writePNG("a.png", 16, 8, testimages::Kind::noise);
    const std::tuple<const char*, const char*, int> cases[] = {
        // API, format, its legacy number
        {"gl-a", "moktc-4bpp-rgba", 25}, {"gl-b", "rgba8888", 18}, {"gl-c", "rgb565", 19}, {"d3d-a", "dxt1", 32},
        {"d3d-b", "dxt5", 36},           {"dxgi", "rgba8888", 97}, {"vg", "rgba8888", 145}};
    for (const auto& [api, format, number] : cases) {
        expectSuccess(std::string("convert @a.png @plain.mok -y -f ") + format);
        expectSuccess(std::string("convert @plain.mok @old.mok -y --legacy ") + api);
        EXPECT_EQ(static_cast<unsigned char>(read("old.mok")[16]), number) << api;
        EXPECT_EQ(info("old.mok")["format"], format) << api;
        EXPECT_TRUE(areEqual("plain.mok", "old.mok")) << api;
    }
    for (const auto& [file, name] : {std::pair{"2nd-leaf.v1.h", "_2nd_leaf_v1"},
                                     {"texture.H", "texture"},
                                     {"class.h", "class_"},
                                     {"and_eq.h", "and_eq_"},
                                     {"_Bool.h", "_Bool_"},
                                     {"A8BIT.h", "A8BIT_"},
                                     {"Struct.h", "Struct"}}) {
        expectSuccess(std::string("convert @a.png @") + file);
        EXPECT_NE(read(file).find(std::string("A8BIT ") + name + "[] = {"), std::string::npos) << file;
    }
}
