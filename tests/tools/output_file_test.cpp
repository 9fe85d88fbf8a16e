// Output files: complete or absent, under the right name, with the system's reason where that fails.
#include <thread>

#include "moktex/files/TemporaryFile.h"
#include "moktex/files/interruption.h"
#include "tool_fixture.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace fs = std::filesystem;
using moktextool::Failure;
using moktextool::TemporaryFile;

namespace {

std::span<const unsigned char> bytesOf(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

}  // namespace

TEST_F(ToolTest, AFileThatAppearsDuringTheWorkIsReplacedOnlyOnRequest) {
    for (const bool replaces : {false, true}) {
        TemporaryFile file(path("out.mok"));
        file.write(bytesOf("new "));
        file.write(bytesOf("file"));
        write("out.mok", "appeared");
        try {
            EXPECT_EQ(file.publish(replaces), 8u);
            EXPECT_TRUE(replaces);
        } catch (const Failure& failure) {
            EXPECT_FALSE(replaces);
            EXPECT_EQ(failure.what(), path("out.mok") + ": exists already; use --overwrite or another name");
        }
        EXPECT_EQ(read("out.mok"), replaces ? "new file" : "appeared");
    }
    EXPECT_EQ(files().size(), 1u);
}

TEST_F(ToolTest, NamesUpToTheFileSystemsLimitAreWritten) {
    writePNG("a.png", 4, 4);
    const std::string longest = std::string(251, 'n') + ".mok";
    expectSuccess("convert @a.png @" + longest);
    EXPECT_TRUE(fs::exists(path(longest)));
    expectRefusal("convert @a.png @n" + longest, ExitStatus::inputOutput, "writing failed (");
}

#ifndef _WIN32

TEST_F(ToolTest, LinksAreFollowedAndKept) {
    writePNG("a.png", 4, 4);
    fs::create_directory(path("to"));
    fs::create_symlink("to/new.mok", path("link.mok"));
    fs::create_symlink(path("link.mok"), path("link2.mok"));
    fs::create_symlink("none/new.mok", path("lost.mok"));
    fs::create_symlink("loop.mok", path("loop.mok"));
    expectSuccess("convert @a.png @link2.mok");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path("to/new.mok"))));
    EXPECT_EQ(run("convert @a.png @link2.mok").status, ExitStatus::inputOutput);
    expectSuccess("convert @a.png @link.mok --overwrite -f dxt1");
    EXPECT_EQ(info("to/new.mok")["format"], "dxt1");
    EXPECT_TRUE(fs::is_symlink(path("link.mok")));
    fs::remove_all(path("to/new.mok"));
    EXPECT_NE(run("convert @a.png @lost.mok").err.find("folder does not exist"), std::string::npos);
    EXPECT_EQ(run("convert @a.png @loop.mok").status, ExitStatus::inputOutput);
    EXPECT_TRUE(fs::is_empty(path("to")));
}

TEST_F(ToolTest, OverwritingKeepsTheMode) {
    writePNG("a.png", 4, 4);
    const mode_t mask = umask(022);
    expectSuccess("convert @a.png @new.mok");
    write("old.mok", "");
    for (const auto& [name, mode] : {std::pair{"new.mok", 0644}, {"old.mok", 0600}, {"old.mok", 0666}}) {
        if (name[0] == 'o') {
            fs::permissions(path(name), static_cast<fs::perms>(mode));
            expectSuccess("convert @a.png @old.mok -y");
        }
        EXPECT_EQ(static_cast<int>(fs::status(path(name)).permissions()), mode);
    }
    umask(mask);
}

namespace {

/// How a process ended, and its error stream.
struct Ending {
    int status, signal;
    std::string err;
};

/// Runs `work` in a process of its own.
Ending inProcess(const std::string& errFile, const std::function<void()>& work, useconds_t killAfter = 0) {
    const pid_t child = fork();
    if (child == 0) {
        dup2(open(errFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        work();
        _exit(99);
    }
    if (killAfter > 0) {
        usleep(killAfter);
        kill(child, SIGTERM);
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::ifstream stream(errFile);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0,
            std::string(std::istreambuf_iterator<char>(stream), {})};
}

/// Runs the program itself under a limit.
Ending runLimited(const std::string& errFile, decltype(RLIMIT_AS) resource, rlim_t limit,
                  const std::vector<std::string>& arguments) {
    return inProcess(errFile, [&] {
        std::vector<char*> words{const_cast<char*>(MOKTEX_PROGRAM)};
        for (const std::string& argument : arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        dup2(open("/dev/null", O_RDWR), STDOUT_FILENO);
        const rlimit both{limit, limit};
        setrlimit(resource, &both);
        execv(words[0], words.data());
    });
}

}  // namespace

TEST_F(ToolTest, SignalsRemoveTheUnfinishedFileAndEndTheProcess) {
    const TemporaryFolder other;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        for (const bool isInAnotherThread : {false, true}) {
            const Ending ending = inProcess(other.path("err"), [&] {
                moktextool::handleInterruption();
                TemporaryFile file(path("out.mok"));
                file.write(bytesOf("half"));
                if (isInAnotherThread) std::thread([signal] { raise(signal); }).join();
                raise(signal);
            });
            EXPECT_EQ(ending.signal, signal);
            EXPECT_TRUE(files().empty());
        }
    }
}

TEST_F(ToolTest, AnIgnoredSignalStaysIgnored) {
    const TemporaryFolder other;
    const Ending ending = inProcess(other.path("err"), [&] {
        std::signal(SIGHUP, SIG_IGN);
        moktextool::handleInterruption();
        raise(SIGHUP);
    });
    EXPECT_EQ(ending.status, 99);
}

TEST_F(ToolTest, ABatchThatIsInterruptedAnywhereLeavesOnlyWholeFiles) {
    const TemporaryFolder other;
    const std::string contents(1000, 'c');
    for (useconds_t tries = 0; tries < 60; ++tries) {
        const Ending ending = inProcess(
            other.path("err"),
            [&] {
                moktextool::handleInterruption();
                for (;;) {
                    TemporaryFile file(path("out.mok"));
                    file.write(bytesOf(contents));
                    file.publish(true);
                }
            },
            2000 + tries * 37);
        ASSERT_NE(ending.status, 99);
        for (const auto& [name, bytes] : files()) {
            ASSERT_EQ(name, "out.mok");
            ASSERT_EQ(bytes, contents);
        }
    }
}

TEST_F(ToolTest, TheLimitOfFileSizeIsAnErrorWithTheSystemsReason) {
    const TemporaryFolder other;
    writePNG("a.png", 64, 64);
    const Ending ending = runLimited(other.path("err"), RLIMIT_FSIZE, 4096, {"convert", path("a.png"), path("a.mok")});
    EXPECT_EQ(ending.status, static_cast<int>(ExitStatus::inputOutput));
    EXPECT_EQ(ending.err, "moktex: " + path("a.mok") +
                              ": writing failed (File too large); raise the limit of file size or write something smaller\n");
    EXPECT_EQ(files().size(), 1u);
}

TEST_F(ToolTest, LackOfMemoryIsAMessageAndAStatus) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers need more address space than any limit here";
#endif
    const TemporaryFolder other;
    writePNG("a.png", 256, 256, testimages::Kind::noise);
    bool hasFailed = false;
    // From a limit below which the system cannot load the program's libraries up to one that is enough.
    for (rlim_t kilobytes = 5000; kilobytes < 400000; kilobytes += kilobytes < 12000 ? 150 : kilobytes / 4) {
        const Ending ending = runLimited(other.path("err"), RLIMIT_AS, kilobytes << 10,
                                         {"convert", path("a.png"), path("a.mok"), "-y", "-f", "moktc2-4bpp", "-q", "0"});
        if (ending.status == 127 || ending.err.empty()) continue;
        EXPECT_EQ(ending.status, static_cast<int>(ExitStatus::workFailed)) << kilobytes << ending.err;
        EXPECT_NE(ending.err.find("memory"), std::string::npos) << kilobytes << ending.err;
        hasFailed = true;
    }
    EXPECT_TRUE(hasFailed);
}

TEST_F(ToolTest, ATerminalReceivesNoTexture) {
    writePNG("a.png", 4, 4);
    std::ostringstream out, err;
    moktextool::Console console{std::cin, out, err};
    console.outIsTerminal = true;
    EXPECT_EQ(moktextool::runMoktex({"convert", path("a.png"), "-"}, console), ExitStatus::commandLine);
    EXPECT_NE(err.str().find("terminal"), std::string::npos);
    EXPECT_EQ(out.str(), "");
}

#endif
