#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "moktex/commands/command_line.h"
#include "moktex/files/picture_file.h"
#include "moktex/formats/texture_format.h"
#include "moktex/report/console.h"
#include "support/temporary_folder.h"
#include "support/test_images.h"

using moktextool::ExitStatus;

struct ToolRun {
    ExitStatus status;
    std::string out, err;
};

/// Runs commands in this process, in a temporary folder.
class ToolTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder.path(name); }

    /// Runs a command line, split at blanks; a word with a leading '@' is a file in the test's folder, '' an empty argument.
    ToolRun run(const std::string& commandLine, const std::string& input = "") const;
    /// The same, expecting success.
    ToolRun expectSuccess(const std::string& commandLine, const std::string& input = "") const;
    /// Expects a status, one line on the error stream that contains `remedy`, and no changed file.
    void expectRefusal(const std::string& commandLine, ExitStatus status, const std::string& remedy = "") const;

    void write(const std::string& name, const std::string& bytes) const { folder.write(name, {bytes.begin(), bytes.end()}); }
    std::string read(const std::string& name) const;
    void writePNG(const std::string& name, std::uint32_t width, std::uint32_t height,
                  const std::vector<std::uint8_t>& rgba) const;
    void writePNG(const std::string& name, std::uint32_t width, const std::vector<std::uint8_t>& rgba) const;
    void writePNG(const std::string& name, std::uint32_t width, std::uint32_t height,
                  testimages::Kind kind = testimages::Kind::softAlpha) const;
    /// The bytes of a picture's pixels, RGBA8.
    std::vector<std::uint8_t> pixelsOf(const std::string& name) const;
    /// The names of the files in the folder and their contents; folders have none.
    std::map<std::string, std::string> files() const;
    nlohmann::json info(const std::string& name) const;
    nlohmann::json compare(const std::string& a, const std::string& b, const std::string& options = "") const;
    bool areEqual(const std::string& a, const std::string& b) const;

    TemporaryFolder folder;
    bool isTerminal = false;  ///< whether the error stream counts as a terminal
};
