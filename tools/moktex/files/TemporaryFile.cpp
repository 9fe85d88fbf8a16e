#include "moktex/files/TemporaryFile.h"

#include <algorithm>
#include <cerrno>
#include <random>
#include <system_error>

#include "moktex/files/interruption.h"
#include "moktex/report/console.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#endif

namespace fs = std::filesystem;

namespace moktextool {

namespace {

constexpr const char* existsAlready = "exists already; use --overwrite or another name";

/// What to do about a failed write.
const char* remedyFor(const std::error_code& error) {
    if (error == std::errc::no_space_on_device) return "free some space or choose another disk";
    if (error == std::errc::file_too_large) return "raise the limit of file size or write something smaller";
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted)
        return "check the permissions of its folder";
    if (error == std::errc::no_such_file_or_directory) return "make its folder first";
    return "choose another name or disk";
}

std::error_code lastError() {
#ifdef _WIN32
    return {static_cast<int>(GetLastError()), std::system_category()};
#else
    return {errno, std::system_category()};
#endif
}

[[noreturn]] void failWriting(const std::string& name, const std::error_code& error) {
    throw Failure(ExitStatus::inputOutput, name, "writing failed (" + systemReason(error) + "); " + remedyFor(error));
}

/// A name that no other process chooses; short, because the target's name may be as long as the file system allows.
std::string temporaryName() {
    std::random_device random;
    constexpr char digits[] = "0123456789abcdef";
    std::string name = "moktex-";
    for (int i = 0; i < 4; ++i)
        for (unsigned int bits = random(), digit = 0; digit < 4; ++digit, bits >>= 4)
            name += digits[bits & 15];
    return name + ".part";
}

#ifdef _WIN32

bool moveReplacing(const fs::path& from, const fs::path& to) {
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != 0;
}

bool moveWithoutReplacing(const fs::path& from, const fs::path& to) {
    return MoveFileExW(from.c_str(), to.c_str(), 0) != 0;
}

#else

bool moveReplacing(const fs::path& from, const fs::path& to) {
    return rename(from.c_str(), to.c_str()) == 0;
}

/// Not every file system can do each of these; all leave errno at EEXIST if `to` exists.
bool moveWithoutReplacing(const fs::path& from, const fs::path& to) {
#ifdef RENAME_NOREPLACE
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno == EEXIST) return false;
#endif
    if (link(from.c_str(), to.c_str()) == 0) return unlink(from.c_str()) == 0;
    if (errno == EEXIST) return false;
    // An empty file takes the name.
    const int placeholder = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (placeholder < 0) return false;
    ::close(placeholder);
    if (moveReplacing(from, to)) return true;
    const int reason = errno;
    unlink(to.c_str());
    errno = reason;
    return false;
}

#endif

}  // namespace

fs::path resolveLinks(const fs::path& path) {
    constexpr int mostLinks = 40;
    fs::path found = path;
    std::error_code error;
    for (int i = 0; i < mostLinks && fs::is_symlink(found, error); ++i) {
        const fs::path next = fs::read_symlink(found, error);
        if (error) return found;
        found = found.parent_path() / next;  // `next` alone if it is absolute
    }
    return found;
}

TemporaryFile::TemporaryFile(const std::string& output) : name(output), target(resolveLinks(output)) {
    create();
}

TemporaryFile::~TemporaryFile() {
    close();
    const InterruptionDelay delay;
    std::error_code ignored;
    if (!path.empty()) fs::remove(path, ignored);
    if (registration) unregisterFile(*registration);
}

std::uint64_t TemporaryFile::publish(bool replaces) {
    takeMode();
    if (!close()) failWriting(name, lastError());
    std::error_code error;
    const std::uint64_t size = fs::file_size(path, error);
    if (error) failWriting(name, error);
    if (!(replaces ? moveReplacing(path, target) : moveWithoutReplacing(path, target))) {
        error = lastError();
        if (!replaces && error == std::errc::file_exists) throw Failure(ExitStatus::inputOutput, name, existsAlready);
        failWriting(name, error);
    }
    const InterruptionDelay delay;
    if (registration) unregisterFile(*registration);
    registration.reset();
    path.clear();
    return size;
}

#ifdef _WIN32

void TemporaryFile::create() {
    path = target.parent_path() / temporaryName();
    const InterruptionDelay delay;
    // DELETE sharing lets an interruption remove the file while it is open.
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) failWriting(name, lastError());
    handle = reinterpret_cast<std::intptr_t>(file);
    registration = registerFile(path);
}

void TemporaryFile::write(std::span<const unsigned char> bytes) {
    constexpr std::size_t most = std::size_t{1} << 30;
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(reinterpret_cast<HANDLE>(handle), bytes.data(), static_cast<DWORD>(std::min(bytes.size(), most)), &written,
                       nullptr))
            failWriting(name, lastError());
        bytes = bytes.subspan(written);
    }
}

/// Files of Windows have no mode.
void TemporaryFile::takeMode() {}

bool TemporaryFile::close() {
    const bool isClosed = handle == -1 || CloseHandle(reinterpret_cast<HANDLE>(handle)) != 0;
    handle = -1;
    return isClosed;
}

#else

void TemporaryFile::create() {
    struct stat existing;
    if (stat(target.c_str(), &existing) == 0) mode = existing.st_mode & 0777u;
    path = target.parent_path() / temporaryName();
    const InterruptionDelay delay;
    // The contents of a file that few may read are not shown to more while they are written.
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode ? 0600 : 0666);
    if (file < 0) {
        path.clear();
        failWriting(name, lastError());
    }
    handle = file;
    registration = registerFile(path);
}

void TemporaryFile::write(std::span<const unsigned char> bytes) {
    constexpr std::size_t most = std::size_t{1} << 30;
    while (!bytes.empty()) {
        const ssize_t written = ::write(static_cast<int>(handle), bytes.data(), std::min(bytes.size(), most));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) failWriting(name, lastError());
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

void TemporaryFile::takeMode() {
    struct stat existing;
    const int file = static_cast<int>(handle);
    if (stat(target.c_str(), &existing) == 0) {
        mode = existing.st_mode & 0777u;
        // Only the administrator can keep the file of another owner.
        if (fchown(file, existing.st_uid, existing.st_gid) != 0) errno = 0;
    }
    if (mode && fchmod(file, *mode) != 0) failWriting(name, lastError());
}

bool TemporaryFile::close() {
    const bool isClosed = handle == -1 || ::close(static_cast<int>(handle)) == 0;
    handle = -1;
    return isClosed;
}

#endif

}  // namespace moktextool
