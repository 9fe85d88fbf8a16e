#include "moktex/pictures/stb_pictures.h"

#include <algorithm>
#include <limits>

#include "moktex/pictures/jpeg_segments.h"

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

namespace moktextool {

namespace {

constexpr std::size_t largestInt = std::numeric_limits<int>::max();

/// Takes ownership of pixels that stb has allocated by malloc().
DecodedPicture takePixels(void* pixels, int width, int height, const TextureFormat& format, const std::string& file) {
    if (pixels == nullptr) {
        const std::string reason = stbi_failure_reason();
        if (reason == "outofmem") throw std::bad_alloc();
        throw brokenPicture(file, reason);
    }
    DecodedPicture picture;
    picture.width = static_cast<std::uint32_t>(width);
    picture.height = static_cast<std::uint32_t>(height);
    picture.format = format;
    picture.pixels.reset(static_cast<unsigned char*>(pixels));
    return picture;
}

}  // namespace

std::uint64_t countPixelsByStb(std::span<const unsigned char> bytes) {
    if (isJPEG(bytes)) return 0;
    int width = 0, height = 0, channels = 0;
    const int size = static_cast<int>(std::min(bytes.size(), largestInt));
    if (!stbi_info_from_memory(bytes.data(), size, &width, &height, &channels) || width < 1 || height < 1) return 0;
    return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
}

DecodedPicture decodeByStb(std::span<const unsigned char> bytes, const std::string& file) {
    if (bytes.size() > largestInt) throw Failure(ExitStatus::notSupported, file, "above 2 GiB; make the picture smaller");
    const unsigned char* data = bytes.data();
    const int size = static_cast<int>(bytes.size());
    int width = 0, height = 0, channels = 0;
    if (!stbi_info_from_memory(data, size, &width, &height, &channels) || width < 1 || height < 1)
        throw Failure(ExitStatus::invalidInput, file,
                      "not a PNG, JPEG, TGA, BMP or HDR picture, or a broken one; export it again");
    requirePictureSize(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), file);
    if (stbi_is_hdr_from_memory(data, size))
        return takePixels(stbi_loadf_from_memory(data, size, &width, &height, nullptr, 4), width, height, rgbaFloatFormat, file);
    if (stbi_is_16_bit_from_memory(data, size))
        return takePixels(stbi_load_16_from_memory(data, size, &width, &height, nullptr, 4), width, height, rgba16Format, file);
    return takePixels(stbi_load_from_memory(data, size, &width, &height, nullptr, 4), width, height, rgba8Format, file);
}

std::vector<unsigned char> deflate(std::span<const unsigned char> bytes) {
    if (bytes.size() > largestInt / 2) return {};
    int size = 0;
    // stb takes the bytes by a pointer to what it may change, and changes nothing.
    auto* source = const_cast<unsigned char*>(bytes.data());
    const std::unique_ptr<unsigned char[], FreeMemory> packed(
        stbi_zlib_compress(source, static_cast<int>(bytes.size()), &size, stbi_write_png_compression_level));
    if (!packed) throw std::bad_alloc();
    return {packed.get(), packed.get() + size};
}

std::vector<unsigned char> encodePNG8(const unsigned char* pixels, std::uint32_t width, std::uint32_t height) {
    const std::uint64_t rowSize = std::uint64_t{width} * 4;
    if ((rowSize + 1) * height >= largestInt / 2) return {};
    int size = 0;
    const std::unique_ptr<unsigned char[], FreeMemory> encoded(
        stbi_write_png_to_mem(pixels, static_cast<int>(rowSize), static_cast<int>(width), static_cast<int>(height), 4, &size));
    if (!encoded) throw std::bad_alloc();
    return {encoded.get(), encoded.get() + size};
}

}  // namespace moktextool
