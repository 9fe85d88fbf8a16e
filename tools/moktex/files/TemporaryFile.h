#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace moktextool {

/// The file that a write to `path` makes or replaces: symbolic links are resolved, even if the file does not exist yet.
std::filesystem::path resolveLinks(const std::filesystem::path& path);

/// An output file that is not complete yet. It stands beside its target under a short name of its own, takes the target's name
/// when it is complete, and is removed otherwise: by the destructor, or by removeUnfinishedFiles() when a signal ends the
/// process. Everything that goes wrong is a Failure that names the target and gives the system's reason.
class TemporaryFile {
public:
    /// Creates the file beside what `output` is or links to.
    explicit TemporaryFile(const std::string& output);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& getPath() const { return path; }
    /// Appends bytes.
    void write(std::span<const unsigned char> bytes);
    /// Gives the file its target's name.
    /// @param replaces  an existing file is replaced, and its mode kept; without, it stays as it is, also one that has appeared
    ///                  since, and is a Failure
    /// @return the size of the file
    std::uint64_t publish(bool replaces);

private:
    void create();
    void takeMode();
    bool close();

    std::string name;              ///< of the output in messages
    std::filesystem::path target;  ///< with symbolic links resolved
    std::filesystem::path path;    ///< empty once the file has its target's name
    std::optional<std::size_t> registration;
    std::optional<unsigned int> mode;  ///< of the file that stood at the target
    std::intptr_t handle = -1;         ///< file descriptor or Windows handle
};

}  // namespace moktextool
