#include "tool_fixture.h"

#include <algorithm>
#include <filesystem>

ToolRun ToolTest::run(const std::string& commandLine, const std::string& input) const {
    std::istringstream words(commandLine), in(input);
    std::vector<std::string> arguments;
    for (std::string word; words >> word;)
        arguments.push_back(word[0] == '@' ? path(word.substr(1)) : word == "''" ? "" : word);
    std::ostringstream out, err;
    moktextool::Console console{in, out, err, false, isTerminal};
    const ExitStatus status = moktextool::runMoktex(arguments, console);
    return {status, out.str(), err.str()};
}

ToolRun ToolTest::expectSuccess(const std::string& commandLine, const std::string& input) const {
    ToolRun result = run(commandLine, input);
    EXPECT_EQ(result.status, ExitStatus::success) << commandLine << '\n' << result.err;
    return result;
}

void ToolTest::expectRefusal(const std::string& commandLine, ExitStatus status, const std::string& remedy) const {
    const std::map<std::string, std::string> before = files();
    const ToolRun result = run(commandLine);
    EXPECT_EQ(result.status, status) << commandLine;
    EXPECT_TRUE(result.err.starts_with("moktex: ")) << result.err;
    EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
    EXPECT_NE(result.err.find(remedy), std::string::npos) << commandLine << '\n' << result.err;
    EXPECT_EQ(result.out, "") << commandLine;
    EXPECT_TRUE(files() == before) << commandLine;
}

std::string ToolTest::read(const std::string& name) const {
    const auto bytes = folder.read(name);
    return {bytes.begin(), bytes.end()};
}

void ToolTest::writePNG(const std::string& name, std::uint32_t width, std::uint32_t height,
                        const std::vector<std::uint8_t>& rgba) const {
    moktextool::Image image(moktextool::rgba8Format, {width, height, 1});
    std::copy(rgba.begin(), rgba.end(), image.getData());
    folder.write(name, moktextool::encodePNG(image, name));
}

void ToolTest::writePNG(const std::string& name, std::uint32_t width, const std::vector<std::uint8_t>& rgba) const {
    writePNG(name, width, static_cast<std::uint32_t>(rgba.size() / 4 / width), rgba);
}

void ToolTest::writePNG(const std::string& name, std::uint32_t width, std::uint32_t height, testimages::Kind kind) const {
    writePNG(name, width, height, testimages::make(kind, width, height));
}

std::vector<std::uint8_t> ToolTest::pixelsOf(const std::string& name) const {
    const moktextool::Image picture = std::move(moktextool::decodePicture(folder.read(name), name).image);
    return {picture.getData(), picture.getData() + picture.getDataSize()};
}

std::map<std::string, std::string> ToolTest::files() const {
    std::map<std::string, std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(path("")))
        found[entry.path().filename().string()] = entry.is_directory() ? "" : read(entry.path().filename().string());
    return found;
}

nlohmann::json ToolTest::info(const std::string& name) const {
    return nlohmann::json::parse(expectSuccess("info --json @" + name).out).at(0);
}

nlohmann::json ToolTest::compare(const std::string& a, const std::string& b, const std::string& options) const {
    return nlohmann::json::parse(expectSuccess("compare --json @" + a + " @" + b + ' ' + options).out);
}

bool ToolTest::areEqual(const std::string& a, const std::string& b) const {
    return compare(a, b)["equal"];
}
