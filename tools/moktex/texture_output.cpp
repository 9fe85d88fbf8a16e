#include "texture_output.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <random>
#include <vector>

#include "console.h"
#include "picture_file.h"
#include "texture_input.h"

namespace fs = std::filesystem;

namespace moktextool {

namespace {

/// A file that vanishes unless it is moved to its final name.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target) : path(target) {
        std::random_device random;
        path += ".part" + std::to_string(random());
    }
    ~TemporaryFile() {
        std::error_code ignored;
        if (!path.empty()) fs::remove(path, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool write(std::span<const unsigned char> bytes) const {
        std::ofstream stream(path, std::ios::binary);
        stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        stream.close();
        return !stream.fail();
    }
    bool moveTo(const fs::path& target) {
        std::error_code error;
        fs::rename(path, target, error);
        if (!error) path.clear();
        return !error;
    }

private:
    fs::path path;
};

std::vector<unsigned char> encode(const moktexture::CMOKTexture& texture, const std::string& path) {
    if (outputKind(path) == OutputKind::picture) return encodePNG(texture, path);
    std::vector<unsigned char> image;
    if (!moktexture::SaveTexture(texture, "mok", image))
        throw Failure(ExitStatus::workFailed, displayName(path),
                      "there are no pixels, or empty metadata, to write; check the input");
    return image;
}

}  // namespace

OutputKind outputKind(const std::string& path) {
    if (path == standardStream) return OutputKind::texture;
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".mok") return OutputKind::texture;
    if (extension == ".png") return OutputKind::picture;
    throw Failure(ExitStatus::notSupported, path, "such files cannot be written; use .mok or .png");
}

void requireWritable(const std::string& path, bool overwrite) {
    if (path == standardStream) return;
    std::error_code error;
    const fs::path folder = fs::path(path).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error))
        throw Failure(ExitStatus::inputOutput, path, "its folder does not exist; make it first");
    if (!fs::exists(path, error)) return;
    if (!fs::is_regular_file(path, error)) throw Failure(ExitStatus::inputOutput, path, "not a file; choose another name");
    if (!overwrite) throw Failure(ExitStatus::inputOutput, path, "exists already; use --overwrite or another name");
}

std::size_t writeTexture(const moktexture::CMOKTexture& texture, const std::string& path, Console& console) {
    const std::vector<unsigned char> image = encode(texture, path);
    if (path == standardStream) {
        console.out.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size())).flush();
        if (!console.out) throw Failure(ExitStatus::inputOutput, displayName(path), "writing failed; check what reads it");
        return image.size();
    }
    std::error_code error;
    const fs::path target = fs::is_symlink(path, error) ? fs::canonical(path, error) : fs::path(path);
    TemporaryFile file(target);
    if (!file.write(image) || !file.moveTo(target))
        throw Failure(ExitStatus::inputOutput, path, "writing failed; check the folder's permissions and the disk's space");
    return image.size();
}

}  // namespace moktextool
