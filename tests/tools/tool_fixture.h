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
    ToolRun run(const std::string& commandLine, const std::string& input = "") const {
        std::istringstream words(commandLine), in(input);
        std::vector<std::string> arguments;
        for (std::string word; words >> word;)
            arguments.push_back(word[0] == '@' ? path(word.substr(1)) : word == "''" ? "" : word);
        std::ostringstream out, err;
        moktextool::Console console{in, out, err, false, isTerminal};
        const ExitStatus status = moktextool::runMoktex(arguments, console);
        return {status, out.str(), err.str()};
    }
    /// The same, expecting success.
    ToolRun expectSuccess(const std::string& commandLine, const std::string& input = "") const {
        ToolRun result = run(commandLine, input);
        EXPECT_EQ(result.status, ExitStatus::success) << commandLine << '\n' << result.err;
        return result;
    }

    /// Expects a status, one line on the error stream that contains `remedy`, and no changed file.
    void expectRefusal(const std::string& commandLine, ExitStatus status, const std::string& remedy = "") const {
        const std::map<std::string, std::string> before = files();
        const ToolRun result = run(commandLine);
        EXPECT_EQ(result.status, status) << commandLine;
        EXPECT_TRUE(result.err.starts_with("moktex: ")) << result.err;
        EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
        EXPECT_NE(result.err.find(remedy), std::string::npos) << commandLine << '\n' << result.err;
        EXPECT_EQ(result.out, "") << commandLine;
        EXPECT_TRUE(files() == before) << commandLine;
    }

    void write(const std::string& name, const std::string& bytes) const { folder.write(name, {bytes.begin(), bytes.end()}); }
    std::string read(const std::string& name) const {
        const auto bytes = folder.read(name);
        return {bytes.begin(), bytes.end()};
    }
    void writePNG(const std::string& name, std::uint32_t width, std::uint32_t height,
                  const std::vector<std::uint8_t>& rgba) const {
        moktextool::Image image(moktextool::rgba8Format, {width, height, 1});
        std::copy(rgba.begin(), rgba.end(), image.getData());
        folder.write(name, moktextool::encodePNG(image, name));
    }
    void writePNG(const std::string& name, std::uint32_t width, const std::vector<std::uint8_t>& rgba) const {
        writePNG(name, width, static_cast<std::uint32_t>(rgba.size() / 4 / width), rgba);
    }
    void writePNG(const std::string& name, std::uint32_t width, std::uint32_t height,
                  testimages::Kind kind = testimages::Kind::softAlpha) const {
        writePNG(name, width, height, testimages::make(kind, width, height));
    }
    /// The bytes of a picture's pixels, RGBA8.
    std::vector<std::uint8_t> pixelsOf(const std::string& name) const {
        const moktextool::Image picture = std::move(moktextool::decodePicture(folder.read(name), name).image);
        return {picture.getData(), picture.getData() + picture.getDataSize()};
    }
    /// The names of the files in the folder and their contents; folders have none.
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path("")))
            found[entry.path().filename().string()] = entry.is_directory() ? "" : read(entry.path().filename().string());
        return found;
    }
    nlohmann::json info(const std::string& name) const {
        return nlohmann::json::parse(expectSuccess("info --json @" + name).out).at(0);
    }
    nlohmann::json compare(const std::string& a, const std::string& b, const std::string& options = "") const {
        return nlohmann::json::parse(expectSuccess("compare --json @" + a + " @" + b + ' ' + options).out);
    }
    bool areEqual(const std::string& a, const std::string& b) const { return compare(a, b)["equal"]; }

    TemporaryFolder folder;
    bool isTerminal = false;  ///< whether the error stream counts as a terminal
};
