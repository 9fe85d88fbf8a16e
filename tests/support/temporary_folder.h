#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// A folder of its own that goes away with the object, under a name that no other process has.
class TemporaryFolder {
public:
    using Bytes = std::vector<unsigned char>;

    TemporaryFolder() {
        unsigned int number = 0;
        do
            folder = std::filesystem::temp_directory_path() / ("moktex_test_" + std::to_string(number++));
        while (!std::filesystem::create_directory(folder));
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(folder); }

    std::string path(const std::string& name) const { return (folder / name).string(); }
    /// Writes a file and gives its path.
    std::string write(const std::string& name, const Bytes& bytes) const {
        std::ofstream file(path(name), std::ios::binary);
        std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
        return path(name);
    }
    Bytes read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(file), {});
    }

private:
    std::filesystem::path folder;
};
