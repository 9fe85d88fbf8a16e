#include "moktex/pictures/DecodedPicture.h"

#include <cstring>
#include <new>
#include <utility>

namespace moktextool {

void requirePictureSize(std::uint32_t width, std::uint32_t height, const std::string& file) {
    if (width == 0 || height == 0) throw brokenPicture(file, "a side of 0");
    if (std::uint64_t{width} * height > mostPicturePixels)
        throw Failure(
            ExitStatus::notSupported, file,
            std::to_string(width) + " x " + std::to_string(height) + " is more than 2^28 pixels; make the picture smaller");
}

DecodedPicture makePicture(std::uint32_t width, std::uint32_t height, const TextureFormat& format, const std::string& file) {
    requirePictureSize(width, height, file);
    DecodedPicture picture;
    picture.width = width;
    picture.height = height;
    picture.format = format;
    picture.pixels.reset(static_cast<unsigned char*>(std::malloc(picture.rowSize() * height)));
    if (!picture.pixels) throw std::bad_alloc();
    return picture;
}

Failure brokenPicture(const std::string& file, std::string_view reason) {
    return {ExitStatus::invalidInput, file, "the picture is broken (" + std::string(reason) + "); export it again"};
}

std::string profileWarning(const std::string& profile) {
    return "its colour profile" + (profile.empty() ? "" : " '" + profile + "'") +
           " is not applied: the values are taken as sRGB; convert the picture to sRGB if colours are wrong";
}

void turnUpright(DecodedPicture& picture, unsigned int orientation) {
    if (orientation <= 1 || orientation > 8) return;
    // What EXIF's numbers mean, beginning with the stored rows: 5 to 8 exchange rows and columns, then the axes are mirrored.
    struct Turn {
        bool exchanges, mirrorsX, mirrorsY;
    };
    // clang-format off
    constexpr Turn turns[9] = {
        // exchanges, mirrors x, mirrors y
        {false, false, false},
        {false, false, false},
        {false, true,  false},
        {false, true,  true},
        {false, false, true},
        {true,  false, false},
        {true,  true,  false},
        {true,  true,  true},
        {true,  false, true},
    };
    // clang-format on
    const auto [exchanges, mirrorsX, mirrorsY] = turns[orientation];
    const std::size_t width = exchanges ? picture.height : picture.width, height = exchanges ? picture.width : picture.height;
    const std::size_t pixelSize = picture.pixelSize();
    std::unique_ptr<unsigned char[], FreeMemory> turned(static_cast<unsigned char*>(std::malloc(width * height * pixelSize)));
    if (!turned) throw std::bad_alloc();
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            std::size_t fromX = mirrorsX ? width - 1 - x : x, fromY = mirrorsY ? height - 1 - y : y;
            if (exchanges) std::swap(fromX, fromY);
            std::memcpy(&turned[(y * width + x) * pixelSize], &picture.pixels[(fromY * picture.width + fromX) * pixelSize],
                        pixelSize);
        }
    }
    picture.pixels = std::move(turned);
    picture.notes.push_back("turned upright, as its EXIF orientation " + std::to_string(orientation) + " says");
    if (exchanges) std::swap(picture.width, picture.height);
}

}  // namespace moktextool
