#include "moktex/files/texture_input.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <istream>
#include <vector>

#include "moktex/files/container.h"
#include "moktex/files/picture_file.h"
#include "moktex/report/console.h"

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

constexpr const char* readableFiles = "use a .mok, .ktx or .dds file, or a PNG, JPEG, TGA, BMP or HDR picture";

Failure loadFailure(ELoadStatus status, const std::string& name) {
    std::string what = describe(status);
    if (what.ends_with('.')) what.pop_back();
    switch (status) {
        case eLoadUnreadable:
            return {ExitStatus::inputOutput, name, what + "; check that it can be read"};
        case eLoadTooLarge:
            return {ExitStatus::notSupported, name, what + "; use a smaller texture"};
        case eLoadUnsupported:
            return {ExitStatus::notSupported, name,
                    what + "; export it as KTX 1 with all counts told, as DDS without pitch and extended head, or as a picture"};
        case eLoadTruncated:
            return {ExitStatus::invalidInput, name, what + "; copy or export it again"};
        case eLoadCorrupt:
            return {ExitStatus::invalidInput, name, what + "; export it again"};
        default:
            return {ExitStatus::invalidInput, name, what + "; " + readableFiles};
    }
}

}  // namespace

std::string displayName(const std::string& path) {
    return path == standardStream ? "standard stream" : path;
}

TextureInput readTexture(const std::string& path, Console& console) {
    const bool isStandard = path == standardStream;
    const std::string name = displayName(path);
    const std::vector<unsigned char> bytes = isStandard ? readAll(console.in, name) : readFile(path);
    if (bytes.empty()) throw Failure(ExitStatus::invalidInput, name, "empty; name a picture or texture");
    const bool isPicture = !startsLikeTexture(bytes) &&
                           (hasPictureExtension(path) || (!isReadableExtension(extensionOf(path)) && looksLikePicture(bytes)));
    if (isPicture) return {decodePicture(bytes, name), true};
    TextureInput input{{}, false};
    const ELoadStatus status = LoadTexture(input.texture, bytes.data(), bytes.size());
    if (status != eLoadOk) throw loadFailure(status, name);
    return input;
}

}  // namespace moktextool
