#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const fs::path root = MOKTEX_SOURCE_DIR;

/// Who may include whom, by folder. Every module may include the public headers and itself.
const std::map<std::string, std::set<std::string>> arrows = {
    {"include", {}},
    {"core", {"include"}},
    {"formats", {"include", "core"}},
    {"transcode", {"include", "core", "moktc", "etc1", "dxtn"}},
    {"operations", {"include", "core"}},
    {"moktc", {"include", "core", "amtc"}},
    {"amtc", {"include", "core", "moktc"}},
    {"etc1", {"include", "core"}},
    {"dxtn", {"include", "core"}},
    {"tools", {"include"}},
    {"examples", {"include"}},
};

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::vector<fs::path> sourcesOf(const std::string& folder) {
    std::vector<fs::path> sources;
    if (!fs::exists(root / folder)) return sources;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / folder)) {
        if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h") sources.push_back(entry.path());
    }
    return sources;
}

/// Folder that `#include "name"` in `from` leads to; "" if it is no file of the project.
std::string folderOfInclude(const fs::path& from, const std::string& name) {
    if (fs::exists(from.parent_path() / name)) return fs::relative(from, root).begin()->string();
    if (fs::exists(root / "include" / name)) return "include";
    if (fs::exists(root / name)) return fs::path(name).begin()->string();
    return "";
}

/// All matches of a pattern's first group.
std::vector<std::string> findAll(const std::string& text, const char* pattern) {
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        found.push_back((*match)[1]);
    return found;
}

}  // namespace

TEST(HouseRules, ModulesIncludeOnlyWhomTheyMayKnow) {
    std::size_t includes = 0;
    for (const auto& [folder, mayKnow] : arrows) {
        for (const fs::path& source : sourcesOf(folder)) {
            for (const std::string& name : findAll(readFile(source), "#include \"([^\"]+)\"")) {
                const std::string target = folderOfInclude(source, name);
                ++includes;
                EXPECT_TRUE(target == folder || mayKnow.count(target) == 1) << source.filename() << " includes " << name;
            }
        }
    }
    EXPECT_GT(includes, 50u);
}

TEST(HouseRules, NoBaseNameStandsTwiceButAsHeaderAndSource) {
    std::map<std::string, fs::path> seen;
    for (const auto& [folder, mayKnow] : arrows) {
        for (const fs::path& source : sourcesOf(folder)) {
            const auto [place, isNew] = seen.emplace(source.filename().string(), source);
            EXPECT_TRUE(isNew || source.filename() == "main.cpp") << source << " and " << place->second;
        }
    }
}

TEST(HouseRules, EveryKeptOddityHasItsRow) {
    const std::string rows = readFile(root / "docs" / "oddities.md");
    std::set<std::string> filesWithOddities;
    for (const auto& [folder, mayKnow] : arrows) {
        for (const fs::path& source : sourcesOf(folder)) {
            const std::size_t kept = findAll(readFile(source), "(Kept:)").size();
            const std::string name = fs::relative(source, root).generic_string();
            const std::size_t told = findAll(rows, ("\\| `(" + name + ")` \\|").c_str()).size();
            EXPECT_EQ(kept, told) << name << ": comments that start with \"Kept:\", and its rows in docs/oddities.md";
            if (kept > 0) filesWithOddities.insert(name);
        }
    }
    for (const std::string& name : findAll(rows, "\\| `([a-z0-9/]+/[A-Za-z0-9_]+\\.(?:cpp|h))` \\|")) {
        EXPECT_EQ(filesWithOddities.count(name), 1u) << name << " has a row and no oddity";
    }
}

TEST(HouseRules, EveryTestThatPinsAnOddityExists) {
    std::set<std::string> tests;
    for (const fs::path& source : sourcesOf("tests")) {
        for (const std::string& name : findAll(readFile(source), "TEST(?:_[FP])?\\(\\w+,\\s*(\\w+)\\)"))
            tests.insert(name);
    }
    const std::vector<std::string> pins = findAll(readFile(root / "docs" / "oddities.md"), "`\\w+\\.(\\w+)` \\|\n");
    EXPECT_GT(pins.size(), 20u);
    for (const std::string& pin : pins)
        EXPECT_EQ(tests.count(pin), 1u) << pin;
}
