#pragma once

#include <filesystem>
#include <span>

namespace moktextool {

/// A file in the folder of the target that is deleted unless it is moved to its final name.
class TemporaryFile {
public:
    /// Chooses a name; the file is not created yet.
    explicit TemporaryFile(const std::filesystem::path& target);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& getPath() const { return path; }
    bool write(std::span<const unsigned char> bytes) const;
    bool moveTo(const std::filesystem::path& target);

private:
    std::filesystem::path path;
};

}  // namespace moktextool
