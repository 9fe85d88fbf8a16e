// Inputs that are endless or far longer than they say are refused after their beginning.
#include <thread>

#include "tool_fixture.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#endif

namespace {

/// A stream of a beginning and zeros without end.
class EndlessBuffer : public std::streambuf {
public:
    explicit EndlessBuffer(std::string start) : buffer(std::move(start)) {
        setg(buffer.data(), buffer.data(), buffer.data() + buffer.size());
    }
    std::size_t refills = 0;

private:
    int underflow() override {
        ++refills;
        buffer.assign(1 << 20, 0);
        setg(buffer.data(), buffer.data(), buffer.data() + buffer.size());
        return 0;
    }
    std::string buffer;
};

}  // namespace

TEST_F(ToolTest, EndlessInputsAreRefused) {
    writePNG("a.png", 8, 8);
    for (const char* name : {"a.mok", "a.ktx", "a.dds -f dxt1"})
        expectSuccess(std::string("convert @a.png @") + name);
    expectSuccess("convert @a.png @old.mok --legacy gl-c");
    // clang-format off
    const struct { std::string start, told; } cases[] = {
        // beginning, message
        {"", "neither a texture nor a picture"}, {std::string(70000, 'x'), "neither a texture nor a picture"},
        {read("a.png"), "longer than its header allows"}, {read("a.mok"), "longer than its header allows"},
        {read("a.ktx"), "longer than its header allows"}, {read("a.dds"), "longer than its header allows"},
        {read("old.mok"), "longer than its header allows"}};
    // clang-format on
    for (const auto& [start, told] : cases) {
        EndlessBuffer endless(start);
        std::istream in(&endless);
        std::ostringstream out, err;
        moktextool::Console console{in, out, err};
        EXPECT_EQ(moktextool::runMoktex({"info", "-"}, console), ExitStatus::invalidInput);
        EXPECT_NE(err.str().find(told), std::string::npos) << err.str();
        EXPECT_LE(endless.refills, 80u) << "MiB read";
    }
}

#ifndef _WIN32

TEST_F(ToolTest, LengthsAreComparedBeforeAFileIsRead) {
    writePNG("a.png", 8, 8);
    expectSuccess("convert @a.png @a.mok");
    write("b.bin", "neither");
    for (const char* name : {"a.png", "a.mok", "b.bin"}) {
        std::filesystem::resize_file(path(name), std::uintmax_t{20} << 30);  // without blocks on the disk
        const ToolRun result = run(std::string("info @") + name);
        EXPECT_EQ(result.status, ExitStatus::invalidInput) << result.err;
        std::filesystem::remove(path(name));
    }
    EXPECT_EQ(run("info /dev/zero").status, ExitStatus::invalidInput);
}

TEST_F(ToolTest, PipesAreRead) {
    writePNG("a.png", 300, 200, testimages::Kind::noise);
    ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(path("pipe.png"), std::ios::binary) << read("a.png"); });
    expectSuccess("convert @pipe.png @b.mok");
    writer.join();
    EXPECT_TRUE(areEqual("a.png", "b.mok"));
}

#endif
