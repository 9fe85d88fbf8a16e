#include "texture_input.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <istream>
#include <vector>

#include "console.h"
#include "picture_file.h"

using namespace moktexture;

namespace moktextool {

namespace {

std::vector<unsigned char> readAll(std::istream& stream, const std::string& name) {
    std::vector<unsigned char> bytes;
    std::array<char, 65536> chunk;
    while (stream.read(chunk.data(), chunk.size()) || stream.gcount() > 0)
        bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + stream.gcount());
    if (stream.bad()) throw Failure(ExitStatus::inputOutput, name, "reading failed; check the disk or the connection");
    return bytes;
}

std::vector<unsigned char> readFile(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw Failure(ExitStatus::inputOutput, path, "a folder; name the files in it");
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        const bool exists = std::filesystem::exists(path, error);
        throw Failure(ExitStatus::inputOutput, path,
                      exists ? "cannot be read; check its permissions" : "no such file; check the name");
    }
    return readAll(stream, path);
}

bool hasMagic(const std::vector<unsigned char>& bytes) {
    const std::uint32_t magic = MOKTextureHeaderV3::magic;
    return bytes.size() >= sizeof magic && std::memcmp(bytes.data(), &magic, sizeof magic) == 0;
}

bool hasTextureExtension(const std::string& path) {
    const std::filesystem::path extension = std::filesystem::path(path).extension();
    return extension == ".mok" || extension == ".ktx" || extension == ".dds";
}

Failure loadFailure(ELoadStatus status, const std::string& name) {
    const std::string what = describe(status);
    switch (status) {
        case eLoadUnreadable:
            return {ExitStatus::inputOutput, name, what + "; check that it can be read"};
        case eLoadTooLarge:
            return {ExitStatus::notSupported, name, what + "; use a smaller texture"};
        case eLoadUnsupported:
            return {ExitStatus::notSupported, name, what + "; use .mok or a picture"};
        default:
            return {ExitStatus::invalidInput, name, what + "; use a .mok file, or a PNG, JPEG, TGA, BMP or HDR picture"};
    }
}

}  // namespace

std::string displayName(const std::string& path) {
    return path == standardStream ? "standard stream" : path;
}

TextureInput readTexture(const std::string& path, Console& console) {
    const bool isStandard = path == standardStream;
    const std::string name = displayName(path);
    std::vector<unsigned char> bytes = isStandard ? readAll(console.in, name) : readFile(path);
    if (bytes.empty()) throw Failure(ExitStatus::invalidInput, name, "empty; name a picture or texture");
    const bool isPicture =
        !hasMagic(bytes) && (hasPictureExtension(path) || (!hasTextureExtension(path) && looksLikePicture(bytes)));
    if (isPicture) return {decodePicture(bytes, name), true};
    TextureInput input{{}, false};
    ELoadStatus status;
    if (isStandard) {
        status = LoadTexture(input.texture, bytes.data(), bytes.size());
    } else {
        bytes = {};
        status = LoadTextureFile(input.texture, path.c_str());
    }
    if (status != eLoadOk) throw loadFailure(status, name);
    return input;
}

}  // namespace moktextool
