#include "moktex/files/texture_file.h"

#include <filesystem>
#include <ostream>
#include <vector>

#include "moktex/files/TemporaryFile.h"
#include "moktex/files/input_file.h"
#include "moktex/files/picture_file.h"
#include "moktex/report/console.h"

namespace fs = std::filesystem;
using namespace moktexture;

namespace moktextool {

namespace {

constexpr const char* readableFiles = "use a .mok, .ktx, .ktx2 or .dds file, or a PNG, JPEG, TGA, BMP or HDR picture";

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
                    what + "; export it in a format that 'moktex formats' lists, without supercompression, or as a picture"};
        case eLoadTruncated:
            return {ExitStatus::invalidInput, name, what + "; copy or export it again"};
        case eLoadCorrupt:
            return {ExitStatus::invalidInput, name, what + "; export it again"};
        default:
            return {ExitStatus::invalidInput, name, what + "; " + readableFiles};
    }
}

/// Writes the legacy layout, which the library can write only to files.
void writeLegacy(const moktexture::CMOKTexture& texture, const OutputTarget& target, const TemporaryFile& file) {
    requireHoldable(texture, target);
    if (!texture.saveFileLegacyMOK(file.getPath().string().c_str(), *target.legacyApi))
        throw Failure(ExitStatus::inputOutput, target.path, "writing failed; check the disk's space");
}

TextureInput inputOf(Picture picture) {
    const Image& image = picture.image;
    TextureInput input;
    static_cast<CMOKTextureHeader&>(input.texture) =
        CMOKTextureHeader(image.getFormat().pixelType.id, image.getSize().height, image.getSize().width, 1, 1, 1, 1,
                          picture.colourSpace, image.getFormat().channelType, false);
    input.picture = std::move(picture.image);
    return input;
}

}  // namespace

TextureInput readTexture(const std::string& path, Console& console) {
    const std::string name = displayName(path);
    const std::vector<unsigned char> bytes = readInput(path, console);
    const bool isPicture = !startsLikeTexture(bytes) &&
                           (hasPictureExtension(path) || (!isReadableExtension(extensionOf(path)) && looksLikePicture(bytes)));
    if (isPicture) return inputOf(decodePicture(bytes, name, &console));
    TextureInput input;
    const ELoadStatus status = LoadTexture(input.texture, bytes.data(), bytes.size());
    if (status != eLoadOk) throw loadFailure(status, name);
    return input;
}

OutputKind outputKind(const std::string& path) {
    if (path == standardStream) return OutputKind::texture;
    const std::string extension = extensionOf(path);
    if (isContainerExtension(extension)) return OutputKind::texture;
    if (extension == ".png") return OutputKind::picture;
    throw Failure(ExitStatus::notSupported, path, "such files cannot be written; use .mok, .ktx, .ktx2, .dds, .h or .png");
}

void requireWritable(const std::string& path, bool overwrite, const Console& console) {
    if (path == standardStream && console.outIsTerminal)
        throw Failure(ExitStatus::commandLine, path, "standard output is a terminal; redirect it to a file or a program");
    if (path == standardStream) return;
    std::error_code error;
    const fs::path folder = resolveLinks(path).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error))
        throw Failure(ExitStatus::inputOutput, path, "its folder does not exist; make it first");
    if (!fs::exists(path, error)) return;
    if (!fs::is_regular_file(path, error)) throw Failure(ExitStatus::inputOutput, path, "not a file; choose another name");
    if (!overwrite) throw Failure(ExitStatus::inputOutput, path, "exists already; use --overwrite or another name");
}

namespace {

/// Writes the bytes of a file, or in the legacy layout the texture.
std::size_t writeOutput(const std::vector<unsigned char>& image, const CMOKTexture& texture, const OutputTarget& output,
                        Console& console) {
    const std::string& path = output.path;
    if (path == standardStream) {
        console.out.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size())).flush();
        if (!console.out) throw Failure(ExitStatus::inputOutput, displayName(path), "writing failed; check what reads it");
        return image.size();
    }
    TemporaryFile file(path);
    if (output.legacyApi)
        writeLegacy(texture, output, file);
    else
        file.write(image);
    return static_cast<std::size_t>(file.publish(output.overwrites));
}

}  // namespace

std::size_t writeTexture(const CMOKTexture& texture, const OutputTarget& output, Console& console) {
    return writeOutput(output.legacyApi ? std::vector<unsigned char>{} : encodeContainer(texture, output), texture, output,
                       console);
}

std::size_t writePicture(const Image& image, const OutputTarget& output, Console& console) {
    return writeOutput(encodePNG(image, output.path), {}, output, console);
}

}  // namespace moktextool
