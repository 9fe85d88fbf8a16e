#include "moktex/files/TemporaryFile.h"

#include <fstream>
#include <random>
#include <string>

namespace fs = std::filesystem;

namespace moktextool {

TemporaryFile::TemporaryFile(const fs::path& target) : path(target) {
    std::random_device random;
    path += ".part" + std::to_string(random());
}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    if (!path.empty()) fs::remove(path, ignored);
}

bool TemporaryFile::write(std::span<const unsigned char> bytes) const {
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    return !stream.fail();
}

bool TemporaryFile::moveTo(const fs::path& target) {
    std::error_code error;
    fs::rename(path, target, error);
    if (!error) path.clear();
    return !error;
}

}  // namespace moktextool
