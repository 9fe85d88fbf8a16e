#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path root = MOKTEX_SOURCE_DIR;

/// Which folder may include which. A folder may also include itself; a file belongs to the deepest folder listed.
// clang-format off
const std::map<std::string, std::set<std::string>> mayInclude = {
    // Folder                    Folders that it may include
    {"include",                 {}},
    {"core/base",               {}},
    {"core/containers",         {"include"}},
    {"core/texture",            {"include", "core/base"}},
    {"core/io",                 {"include", "core/base", "core/texture"}},
    {"formats/api_numbers",     {"include", "core/texture"}},
    {"formats/ktx",             {"include", "core/base", "core/texture", "core/io"}},
    {"formats/dds",             {"include", "core/base", "core/texture", "core/io", "formats/api_numbers"}},
    {"formats/legacy",          {"include", "core/base", "core/texture", "core/io", "formats/api_numbers"}},
    {"formats/c_source",        {"include", "core/base", "core/texture", "core/io"}},
    {"formats/standard",        {"include", "core/base", "core/texture", "core/io"}},
    {"formats",                 {"include", "core/base", "core/texture", "core/io", "formats/ktx", "formats/dds", "formats/legacy",
                                 "formats/c_source", "formats/standard"}},
    {"dxtn",                    {"core/base"}},
    {"etc1",                    {"core/base"}},
    {"moktc/block",             {"core/base"}},
    {"moktc/decode",            {"core/base", "moktc/block"}},
    {"moktc/fast",              {"core/base", "moktc/block"}},
    {"moktc/amtc/records",      {"core/base", "moktc/block"}},
    {"moktc/amtc/analysis",     {"core/base", "moktc/amtc/records"}},
    {"moktc/amtc/starts",       {"core/base", "moktc/amtc/records"}},
    {"moktc/amtc/evaluation",   {"core/base", "moktc/block", "moktc/amtc/records", "moktc/amtc/analysis"}},
    {"moktc/amtc/refinement",   {"core/base", "moktc/amtc/records", "moktc/amtc/analysis", "moktc/amtc/starts",
                                 "moktc/amtc/evaluation"}},
    {"moktc/amtc/driver",       {"core/base", "moktc/block", "moktc/amtc/records", "moktc/amtc/analysis", "moktc/amtc/evaluation",
                                 "moktc/amtc/refinement"}},
    {"moktc/amtc/host",         {"moktc/amtc/driver"}},
    {"moktc/amtc",              {"core/base", "moktc/block", "moktc/amtc/records", "moktc/amtc/driver", "moktc/amtc/host"}},
    {"moktc",                   {"core/base", "moktc/block", "moktc/decode", "moktc/fast", "moktc/amtc",
                                 "moktc/amtc/records"}},
    {"transcode/pixels",        {"include", "core/base", "core/texture"}},
    {"transcode",               {"include", "core/base", "core/texture", "transcode/pixels", "moktc", "etc1", "dxtn"}},
    {"operations/frame",        {"include", "core/base", "core/texture"}},
    {"operations/resample",     {"include", "core/base", "core/texture", "operations/frame"}},
    {"operations",              {"include", "core/base", "core/texture", "operations/frame", "operations/resample"}},
    {"tools/moktex/report",     {"include"}},
    {"tools/moktex/formats",    {"include", "tools/moktex/report"}},
    {"tools/moktex/pictures",   {"include", "tools/moktex/report", "tools/moktex/formats"}},
    {"tools/moktex/files",      {"include", "tools/moktex/report", "tools/moktex/formats", "tools/moktex/pictures"}},
    {"tools/moktex/operations", {"include", "tools/moktex/report", "tools/moktex/formats", "tools/moktex/files"}},
    {"tools/moktex/commands",   {"include", "tools/moktex/report", "tools/moktex/formats", "tools/moktex/files",
                                 "tools/moktex/operations"}},
    {"tools/moktex",            {"include", "tools/moktex/report", "tools/moktex/files", "tools/moktex/commands"}},
    {"examples",                {"include"}},
};
// clang-format on
/// Folders with the project's sources; `reference` may include all of the library, as only tests and benchmarks link it.
const std::vector<std::string> sourceFolders = {"include",   "core",       "formats", "dxtn",     "etc1",     "moktc",
                                                "transcode", "operations", "tools",   "examples", "reference"};

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

/// The deepest folder of `mayInclude` that holds a file, given relative to the project; "" if none does.
std::string moduleOf(const fs::path& file) {
    for (fs::path folder = file.parent_path(); !folder.empty(); folder = folder.parent_path()) {
        if (mayInclude.count(folder.generic_string()) == 1) return folder.generic_string();
    }
    return "";
}

/// The project's file that `#include "name"` leads to, relative to the project; empty if there is none.
fs::path includedFile(const std::string& name) {
    for (const char* base : {"", "include", "tools"}) {
        if (fs::exists(root / base / name)) return fs::path(base) / name;
    }
    return {};
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

TEST(Architecture, FoldersIncludeOnlyWhatTheyMay) {
    std::size_t includes = 0;
    for (const std::string& top : sourceFolders) {
        if (top == "reference") continue;
        for (const fs::path& source : sourcesOf(top)) {
            const std::string folder = moduleOf(fs::relative(source, root));
            ASSERT_NE(folder, "") << source << ": its folder stands in no row";
            for (const std::string& name : findAll(readFile(source), "#include \"([^\"]+)\"")) {
                const std::string target = moduleOf(includedFile(name));
                ++includes;
                EXPECT_TRUE(target == folder || mayInclude.at(folder).count(target) == 1) << source << " includes " << name;
            }
        }
    }
    EXPECT_GT(includes, 50u);
}

TEST(Architecture, NoFoldersIncludeEachOtherInACircle) {
    std::set<std::string> placed;
    while (placed.size() < mayInclude.size()) {
        const std::size_t before = placed.size();
        for (const auto& [folder, targets] : mayInclude) {
            if (std::includes(placed.begin(), placed.end(), targets.begin(), targets.end())) placed.insert(folder);
        }
        ASSERT_GT(placed.size(), before) << "the folders that are left include each other";
    }
}

TEST(Architecture, NoFolderListsMoreThanTwentyTwoSources) {
    for (const std::string& top : sourceFolders) {
        std::map<fs::path, int> sources;
        for (const fs::path& source : sourcesOf(top))
            ++sources[source.parent_path()];
        for (const auto& [folder, count] : sources)
            EXPECT_LE(count, 22) << folder;
    }
}

TEST(Architecture, NoBaseNameStandsTwiceButAsHeaderAndSource) {
    std::map<std::string, fs::path> seen;
    for (const std::string& folder : sourceFolders) {
        for (const fs::path& source : sourcesOf(folder)) {
            const auto [first, isNew] = seen.emplace(source.filename().string(), source);
            EXPECT_TRUE(isNew || source.filename() == "main.cpp") << source << " and " << first->second;
        }
    }
}

// A comment in the code starts with "Kept (some-id):"; its row in docs/oddities.md starts with "| `some-id` | `file` |".
TEST(Architecture, EveryOddityHasACommentAndARowWithTheSameId) {
    std::map<std::string, std::string> comments;
    for (const std::string& folder : sourceFolders) {
        for (const fs::path& source : sourcesOf(folder)) {
            const std::string text = readFile(source);
            const std::string name = fs::relative(source, root).generic_string();
            const std::vector<std::string> ids = findAll(text, "// ?Kept \\(([a-z0-9-]+)\\):");
            EXPECT_EQ(ids.size(), findAll(text, "// ?(Kept)\\b").size()) << name << ": a comment without an id";
            for (const std::string& id : ids)
                EXPECT_TRUE(comments.emplace(id, name).second) << name << ": " << id << " is also in " << comments[id];
        }
    }
    EXPECT_GT(comments.size(), 100u);
    std::map<std::string, std::string> rows;
    const std::string document = readFile(root / "docs" / "oddities.md");
    const std::vector<std::string> ids = findAll(document, "\n\\| `([a-z0-9-]+)` \\| `[^`]+` \\|");
    const std::vector<std::string> files = findAll(document, "\n\\| `[a-z0-9-]+` \\| `([^`]+)` \\|");
    EXPECT_EQ(ids.size(), findAll(document, "\n(\\| `)").size()) << "a row without an id or a file";
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_TRUE(rows.emplace(ids[i], files[i]).second) << ids[i] << " has two rows";
    for (const auto& [id, file] : comments)
        EXPECT_EQ(rows[id], file) << id << ": the row in docs/oddities.md";
    for (const auto& [id, file] : rows)
        EXPECT_EQ(comments[id], file) << id << ": the comment in the code";
}

TEST(Architecture, EveryTestThatPinsAnOddityExists) {
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
