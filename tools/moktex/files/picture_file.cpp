#include "moktex/files/picture_file.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>

#include "moktex/formats/texture_format.h"
#include "moktex/report/console.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_TGA
#define STBI_ONLY_BMP
#define STBI_ONLY_HDR
#define STBI_NO_STDIO
#define STBI_WRITE_NO_STDIO
#define STBI_MAX_DIMENSIONS 65536
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wcast-qual"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wdouble-promotion"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

using namespace moktexture;

namespace moktextool {

namespace {

/// A picture above this would need gigabytes before it can be validated.
constexpr std::uint64_t maxPixels = std::uint64_t{1} << 28;

template <class T>
using DecodedPixels = std::unique_ptr<T[], decltype(&std::free)>;

struct PictureInfo {
    int width = 0;
    int height = 0;
};

PictureInfo readInfo(const unsigned char* data, int size, const std::string& file) {
    PictureInfo info;
    int channels = 0;
    if (!stbi_info_from_memory(data, size, &info.width, &info.height, &channels) || info.width < 1 || info.height < 1)
        throw Failure(ExitStatus::invalidInput, file,
                      "not a PNG, JPEG, TGA, BMP or HDR picture, or a broken one; export it again");
    if (static_cast<std::uint64_t>(info.width) * static_cast<std::uint64_t>(info.height) > maxPixels)
        throw Failure(ExitStatus::notSupported, file, "more than 2^28 pixels; make the picture smaller");
    return info;
}

template <class T>
CMOKTexture makeTexture(T* decoded, const PictureInfo& info, const TextureFormat& format, EMOKTColourSpace label,
                        const std::string& file) {
    const DecodedPixels<T> pixels(decoded, &std::free);
    if (!pixels) {
        throw Failure(ExitStatus::invalidInput, file,
                      std::string("the picture is broken (") + stbi_failure_reason() + "); export it again");
    }
    const CMOKTextureHeader header(format.pixelType.id, static_cast<std::uint32_t>(info.height),
                                   static_cast<std::uint32_t>(info.width), 1, 1, 1, 1, label, format.channelType, false);
    return {header, pixels.get()};
}

}  // namespace

bool hasPictureExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    static constexpr const char* known[] = {".png", ".jpg", ".jpeg", ".tga", ".bmp", ".hdr"};
    return std::find(std::begin(known), std::end(known), extension) != std::end(known);
}

bool looksLikePicture(std::span<const unsigned char> bytes) {
    int width = 0, height = 0, channels = 0;
    const int size = static_cast<int>(std::min<std::size_t>(bytes.size(), std::numeric_limits<int>::max()));
    return stbi_info_from_memory(bytes.data(), size, &width, &height, &channels) != 0;
}

CMOKTexture decodePicture(std::span<const unsigned char> bytes, const std::string& file) {
    if (bytes.size() > std::numeric_limits<int>::max())
        throw Failure(ExitStatus::notSupported, file, "above 2 GiB; make the picture smaller");
    const unsigned char* data = bytes.data();
    const int size = static_cast<int>(bytes.size());
    PictureInfo info = readInfo(data, size, file);
    if (stbi_is_hdr_from_memory(data, size)) {
        float* pixels = stbi_loadf_from_memory(data, size, &info.width, &info.height, nullptr, 4);
        return makeTexture(pixels, info, rgbaFloatFormat, eColourSpaceLinear, file);
    }
    if (stbi_is_16_bit_from_memory(data, size)) {
        stbi_us* pixels = stbi_load_16_from_memory(data, size, &info.width, &info.height, nullptr, 4);
        return makeTexture(pixels, info, rgba16Format, eColourSpaceSRGB, file);
    }
    stbi_uc* pixels = stbi_load_from_memory(data, size, &info.width, &info.height, nullptr, 4);
    return makeTexture(pixels, info, rgba8Format, eColourSpaceSRGB, file);
}

std::vector<unsigned char> encodePNG(const CMOKTexture& texture, const std::string& file) {
    const std::uint64_t rowSize = std::uint64_t{texture.getWidth()} * 4;
    int size = 0;
    DecodedPixels<unsigned char> encoded(nullptr, &std::free);
    if ((rowSize + 1) * texture.getHeight() < std::numeric_limits<int>::max() / 2) {
        encoded.reset(stbi_write_png_to_mem(static_cast<const unsigned char*>(texture.getDataPtr()), static_cast<int>(rowSize),
                                            static_cast<int>(texture.getWidth()), static_cast<int>(texture.getHeight()), 4,
                                            &size));
    }
    if (!encoded) throw Failure(ExitStatus::workFailed, file, "the picture is too large for a PNG; use --resize");
    return {encoded.get(), encoded.get() + size};
}

}  // namespace moktextool
