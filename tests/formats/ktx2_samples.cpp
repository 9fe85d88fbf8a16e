// Files for ktx_parse.mjs, in a folder:
//   ktx2_samples write FOLDER     NUMBER.ktx2 of every published format and shape, and its levels, the largest first, as
//   NUMBER.raw ktx2_samples compare FOLDER   whether NUMBER.ktx2 and every NUMBER.*.ktx2 hold the same pixels in the same form
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "formats/standard/key_values.h"
#include "sample_textures.h"

using namespace moktexture;
using namespace sampletextures;
namespace fs = std::filesystem;

namespace {

void write(const fs::path& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

int writeSamples(const fs::path& folder) {
    int number = 0;
    for (const PublishedFormat& format : publishedFormats()) {
        for (const Shape& shape : shapes) {
            const CMOKTexture texture =
                makeTexture(format, shape, format.vulkan.sRGB != 0 ? eColourSpaceSRGB : eColourSpaceLinear);
            Bytes image;
            if (SaveTexture(texture, eContainerKTX2, image) != eSaveOk) continue;
            write(folder / (std::to_string(number) + ".ktx2"), image);
            write(folder / (std::to_string(number) + ".raw"), pixelsOf(texture));
            ++number;
        }
    }
    std::printf("%d files\n", number);
    return number > 300 ? 0 : 1;
}

int compareSamples(const fs::path& folder) {
    int compared = 0, failed = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        const std::string number = name.substr(0, name.find('.'));
        if (entry.path().extension() != ".ktx2" || name == number + ".ktx2") continue;
        CMOKTexture ours, theirs;
        const ELoadStatus ourStatus = LoadTextureFile(ours, (folder / (number + ".ktx2")).string().c_str());
        const ELoadStatus theirStatus = LoadTextureFile(theirs, entry.path().string().c_str());
        ++compared;
        if (ourStatus == eLoadOk && theirStatus == eLoadOk && describeSameImage(ours, theirs) &&
            pixelsOf(ours) == pixelsOf(theirs))
            continue;
        std::printf("%s: %s\n", name.c_str(), describe(theirStatus));
        ++failed;
    }
    std::printf("%d files compared, %d differ\n", compared, failed);
    return compared > 300 && failed == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    return std::strcmp(arguments[1], "write") == 0 ? writeSamples(arguments[2]) : compareSamples(arguments[2]);
}
